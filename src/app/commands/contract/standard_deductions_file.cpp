#include "app/commands/contract/standard_deductions_file.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include "app/cli/command_error.h"
#include "app/cli/german_number.h"
#include "billing/deduction/contract_allocations.h"
#include "billing/tables/billing_table_types.h"

namespace korvan::app {
namespace {

constexpr std::size_t kFieldCount = 7;

std::vector<std::string> Fields(const std::string& line) {
  std::vector<std::string> fields;
  std::string field;
  std::istringstream in(line);
  while (std::getline(in, field, '|')) fields.push_back(field);
  if (!line.empty() && line.back() == '|') fields.emplace_back();
  return fields;
}

char Letter(const std::string& field, const char* what) {
  if (field.size() != 1) throw CommandError(std::string("erwartet einen Buchstaben für ") + what);
  return field[0];
}

billing::TDeduction ReadDeduction(const std::string& line) {
  const std::vector<std::string> fields = Fields(line);
  if (fields.size() != kFieldCount) {
    throw CommandError(
        "erwartet 7 Felder Bezeichnung|Typ|SubTyp|B/N|Rechnungstypen|Betrag|Ansatz, "
        "nicht " +
        std::to_string(fields.size()));
  }
  billing::TDeduction deduction = billing::NewDeduction(Letter(fields[1], "den Typ"), fields[0]);
  deduction.record.SubTyp = Letter(fields[2], "den SubTyp");
  deduction.record.KzBruttoNetto = Letter(fields[3], "brutto/netto");
  deduction.record.Rechnungstyp.Set(fields[4]);
  const std::optional<double> amount = ParseGermanNumber(fields[5]);
  if (!amount) throw CommandError("\"" + fields[5] + "\" ist kein Betrag");
  deduction.record.AbzugBetrag.Betrag = *amount;
  deduction.formula = fields[6];
  return deduction;
}

bool IsAllocation(const billing::TDeduction& deduction) {
  return deduction.record.Typ == billing::kAllocationDeduction &&
         std::find(billing::kAllocationNames.begin(), billing::kAllocationNames.end(),
                   deduction.name) != billing::kAllocationNames.end();
}

}  // namespace

std::string StandardDeductionsText(const std::vector<billing::TDeduction>& deductions) {
  std::string text;
  for (const billing::TDeduction& d : deductions) {
    if (d.name.find('|') != std::string::npos || d.formula.find('|') != std::string::npos) {
      throw CommandError("Abzug \"" + d.name + "\": \"|\" trennt die Felder der Datei " +
                         kStandardDeductionsFileName + " und kann nicht darin stehen");
    }
    text += d.name + "|" + d.record.Typ + "|" + d.record.SubTyp + "|" + d.record.KzBruttoNetto +
            "|" + d.record.Rechnungstyp.Get() + "|" +
            GermanFigure(d.record.AbzugBetrag.Betrag, "%.2f") + "|" + d.formula + "\n";
  }
  return text;
}

std::vector<billing::TDeduction> ReadStandardDeductions(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw CommandError(path + ": die Standardabzüge können nicht gelesen werden");
  std::vector<billing::TDeduction> deductions;
  std::string line;
  int number = 0;
  while (std::getline(in, line)) {
    ++number;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty()) continue;
    try {
      deductions.push_back(ReadDeduction(line));
      billing::CheckDeduction(deductions.back());
    } catch (const std::runtime_error& error) {
      throw CommandError(path + ", Zeile " + std::to_string(number) + ": " + error.what());
    }
  }
  return deductions;
}

void TakeStandardDeductions(billing::TdmAbzug& book,
                            const std::vector<billing::TDeduction>& deductions) {
  for (const billing::TDeduction& deduction : deductions) {
    if (!IsAllocation(deduction)) {
      book.Add(deduction);
      continue;
    }
    for (const billing::TDeduction& old : book.List()) {
      if (old.record.Typ == billing::kAllocationDeduction && old.name == deduction.name) {
        book.Delete(old.record.ID);
      }
    }
    book.Add(deduction);
  }
}

}  // namespace korvan::app
