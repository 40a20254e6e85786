#include "app/commands/contract/contract_defaults_file.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

#include "app/cli/command_error.h"
#include "app/commands/contract/allocation_text.h"
#include "app/commands/contract/contract_terms.h"
#include "storage/file/atomic_file.h"

namespace korvan::app {
namespace {

constexpr std::string_view kAllocationKey = "Umlage";

bool IsDefaultTerm(const std::string& name) {
  return std::find(billing::kDefaultTermNames.begin(), billing::kDefaultTermNames.end(), name) !=
         billing::kDefaultTermNames.end();
}

std::string DefaultTermList() {
  std::string names;
  for (std::string_view name : billing::kDefaultTermNames) {
    names += (names.empty() ? "" : ", ") + std::string(name);
  }
  return names + ", " + std::string(kAllocationKey);
}

// One line of the file into `defaults`; the name of the term it set, empty for an
// allocation. UsageError or CommandError for a wrong line.
std::string ReadLine(const std::string& line, billing::TContractDefaults& defaults) {
  const std::size_t equals = line.find('=');
  const std::string key = line.substr(0, equals);
  if (equals == std::string::npos) throw CommandError("erwartet FELD=WERT, nicht \"" + line + "\"");
  if (key == kAllocationKey) {
    billing::TAllocation allocation = ParseAllocation(line.substr(equals + 1));
    if (std::find(billing::kAllocationNames.begin(), billing::kAllocationNames.end(),
                  allocation.name) == billing::kAllocationNames.end()) {
      throw CommandError("\"" + allocation.name + "\" ist keine Umlage");
    }
    defaults.allocations.push_back(allocation);
    return {};
  }
  if (!IsDefaultTerm(key)) {
    throw CommandError("\"" + key + "\" ist kein Standardwert; möglich sind " + DefaultTermList());
  }
  SetContractTerm(defaults.terms, line);
  return key;
}

}  // namespace

billing::TContractDefaults DefaultsOfContract(const billing::TVertrag& contract,
                                              const std::vector<billing::TDeduction>& deductions) {
  billing::TContractDefaults defaults;
  billing::TakeDefaultTerms(defaults.terms, contract);
  defaults.allocations = billing::AllocationsOf(deductions);
  return defaults;
}

std::string ContractDefaultsText(const billing::TContractDefaults& defaults) {
  std::string text = "# Standardwerte für neue Verträge (korvan contract defaults)\n";
  for (std::string_view name : billing::kDefaultTermNames) {
    text += ContractTermAssignment(defaults.terms, std::string(name)) + '\n';
  }
  for (const billing::TAllocation& allocation : defaults.allocations) {
    text += std::string(kAllocationKey) + "=" + AllocationText(allocation) + '\n';
  }
  return text;
}

void WriteContractDefaults(const std::string& path, const billing::TContractDefaults& defaults) {
  const storage::FileWriteResult written = storage::WriteFileAtomically(
      path, ContractDefaultsText(defaults), storage::Durability::kDurable);
  if (!written.ok()) {
    throw CommandError(path + ": die Standardwerte können nicht geschrieben werden (" +
                       written.ErrorText() + ")");
  }
}

billing::TContractDefaults ReadContractDefaults(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw CommandError(path + ": die Standardwerte können nicht gelesen werden");
  billing::TContractDefaults defaults;
  std::set<std::string> seen;
  std::string line;
  int number = 0;
  while (std::getline(in, line)) {
    ++number;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty() || line.front() == '#') continue;
    try {
      seen.insert(ReadLine(line, defaults));
    } catch (const std::runtime_error& error) {
      throw CommandError(path + ", Zeile " + std::to_string(number) + ": " + error.what());
    }
  }
  for (std::string_view name : billing::kDefaultTermNames) {
    if (seen.count(std::string(name)) == 0) {
      throw CommandError(path + ": es fehlt die Zeile " + std::string(name) + "=...");
    }
  }
  return defaults;
}

}  // namespace korvan::app
