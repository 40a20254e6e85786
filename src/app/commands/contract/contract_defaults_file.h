#pragma once

#include <string>
#include <vector>

#include "billing/contract/contract_defaults.h"
#include "billing/deduction/dm_abzug.h"

// The contract defaults file "STANDARD-WERTE.VSW" beside the billing database: one default
// a line, "FIELD=VALUE" as `contract set` takes it, and "Umlage=NAME=VALUE[:RTYP]" for
// each allocation; lines starting with "#" are remarks. UTF-8.
namespace korvan::app {

inline constexpr const char* kContractDefaultsFileName = "STANDARD-WERTE.VSW";

// The defaults a contract's terms and allocations make.
billing::TContractDefaults DefaultsOfContract(const billing::TVertrag& contract,
                                              const std::vector<billing::TDeduction>& deductions);
// The file's text for `defaults`.
std::string ContractDefaultsText(const billing::TContractDefaults& defaults);
// Writes the file as one step; CommandError naming the file when it cannot be written.
void WriteContractDefaults(const std::string& path, const billing::TContractDefaults& defaults);
// Reads the file; CommandError naming the file and the line of a wrong or missing default.
billing::TContractDefaults ReadContractDefaults(const std::string& path);

}  // namespace korvan::app
