#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "billing/deduction/dm_abzug.h"

// The allocations (Umlagen) of a contract: site sign, power, water, cleaning, waste
// container and penalty, each a percent of the invoice amount or a fixed amount, for the
// invoice kinds it names. They are the contract's deductions of type "U"; a percent is kept
// as the formula "FR*<percent>/100" over the established invoice amount.
namespace korvan::billing {

inline constexpr std::array<std::string_view, 6> kAllocationNames = {
    "Bauschild", "Baustrom", "Bauwasser", "Baureinigung", "Müllcontainer", "Vertragsstrafe"};

// The invoices that bill work: advance claims, invoices, part and final invoices.
inline constexpr const char* kAllocationInvoiceKinds = "ARSTU";

struct TAllocation {
  std::string name;               // one of kAllocationNames
  std::optional<double> percent;  // of the invoice amount; else the fixed amount
  double amount = 0.0;
  std::string invoice_kinds = kAllocationInvoiceKinds;
  // Neither a percent nor an amount: the contract has no such allocation.
  bool None() const;
};

// The allocations among a contract's deductions, in the order of kAllocationNames.
std::vector<TAllocation> AllocationsOf(const std::vector<TDeduction>& deductions);
// Sets one allocation of the contract `book` keeps: changes the deduction of that name,
// adds it, or removes it when the allocation is None(). EDeductionError for a name that is
// not one of the six.
void SetAllocation(TdmAbzug& book, const TAllocation& allocation);

// The formula that takes `percent` of the invoice amount, and back; nothing for a formula
// of another shape.
std::string PercentFormula(double percent);
std::optional<double> PercentOfFormula(const std::string& formula);

}  // namespace korvan::billing
