#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "billing/deduction/dm_abzug.h"
#include "billing/tables/vertrag_record.h"
#include "boq/units/value_converter.h"

namespace korvan::app {

// A contract as `contract show`, `contract list` and `award` print it.
struct ContractView {
  billing::TVertrag contract{};
  std::string lv_name;
  std::string main_number;                      // the main contract's number; empty for a main one
  std::vector<std::string> supplements;         // numbers of its supplementary contracts
  std::vector<billing::TDeduction> deductions;  // its allocations and other deductions
};

// The JSON object of a contract (docs/JSON.md, "contract").
std::string ContractJson(const ContractView& view, const boq::TAvaUiValueConverter& converter);
// One line of the contract list.
void PrintContractLine(std::ostream& out, const ContractView& view);
// The contract with its sums and terms, a few lines.
void PrintContract(std::ostream& out, const ContractView& view,
                   const boq::TAvaUiValueConverter& converter);

}  // namespace korvan::app
