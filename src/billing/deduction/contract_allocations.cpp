#include "billing/deduction/contract_allocations.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "billing/tables/billing_table_types.h"

namespace korvan::billing {
namespace {

constexpr std::string_view kPercentPrefix = "FR*";
constexpr std::string_view kPercentSuffix = "/100";

bool IsAllocationName(const std::string& name) {
  return std::find(kAllocationNames.begin(), kAllocationNames.end(), name) !=
         kAllocationNames.end();
}

TAllocation AllocationOf(const TDeduction& deduction) {
  TAllocation allocation;
  allocation.name = deduction.name;
  allocation.percent = PercentOfFormula(deduction.formula);
  allocation.amount = deduction.record.AbzugBetrag.Betrag;
  allocation.invoice_kinds = deduction.record.Rechnungstyp.Get();
  return allocation;
}

void Fill(TDeduction& deduction, const TAllocation& allocation) {
  deduction.formula = allocation.percent ? PercentFormula(*allocation.percent) : std::string();
  deduction.record.AbzugBetrag.Betrag = allocation.percent ? 0.0 : allocation.amount;
  deduction.record.Rechnungstyp.Set(allocation.invoice_kinds);
}

}  // namespace

bool TAllocation::None() const {
  return percent ? std::fabs(*percent) < 1e-9 : std::fabs(amount) < 1e-9;
}

std::vector<TAllocation> AllocationsOf(const std::vector<TDeduction>& deductions) {
  std::vector<TAllocation> allocations;
  for (std::string_view name : kAllocationNames) {
    for (const TDeduction& deduction : deductions) {
      if (deduction.record.Typ == kAllocationDeduction && deduction.name == name) {
        allocations.push_back(AllocationOf(deduction));
        break;
      }
    }
  }
  return allocations;
}

void SetAllocation(TdmAbzug& book, const TAllocation& allocation) {
  if (!IsAllocationName(allocation.name)) {
    std::string names;
    for (std::string_view name : kAllocationNames) {
      names += (names.empty() ? "" : ", ") + std::string(name);
    }
    throw EDeductionError("\"" + allocation.name + "\" ist keine Umlage; möglich sind " + names +
                          ".");
  }
  for (TDeduction& deduction : book.List()) {
    if (deduction.record.Typ != kAllocationDeduction || deduction.name != allocation.name) {
      continue;
    }
    if (allocation.None()) {
      book.Delete(deduction.record.ID);
    } else {
      Fill(deduction, allocation);
      book.Change(deduction);
    }
    return;
  }
  if (allocation.None()) return;
  TDeduction deduction = NewDeduction(kAllocationDeduction, allocation.name);
  Fill(deduction, allocation);
  book.Add(deduction);
}

std::string PercentFormula(double percent) {
  char text[32];
  std::snprintf(text, sizeof text, "%.10g", percent);
  std::string figure = text;
  std::replace(figure.begin(), figure.end(), '.', ',');
  return std::string(kPercentPrefix) + figure + std::string(kPercentSuffix);
}

std::optional<double> PercentOfFormula(const std::string& formula) {
  if (formula.size() <= kPercentPrefix.size() + kPercentSuffix.size() ||
      !formula.starts_with(kPercentPrefix) || !formula.ends_with(kPercentSuffix)) {
    return std::nullopt;
  }
  std::string figure = formula.substr(
      kPercentPrefix.size(), formula.size() - kPercentPrefix.size() - kPercentSuffix.size());
  std::replace(figure.begin(), figure.end(), ',', '.');
  char* end = nullptr;
  const double percent = std::strtod(figure.c_str(), &end);
  if (end != figure.c_str() + figure.size()) return std::nullopt;
  return percent;
}

}  // namespace korvan::billing
