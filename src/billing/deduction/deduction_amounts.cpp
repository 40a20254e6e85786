#include "billing/deduction/deduction_amounts.h"

#include "billing/tables/billing_table_types.h"

namespace korvan::billing {

std::optional<TDeductionAmounts> FixedDeductionAmounts(const TDeduction& deduction, double vat_rate,
                                                       const boq::TAvaUiValueConverter& converter) {
  if (!deduction.formula.empty()) return std::nullopt;
  const int decimals = converter.Settings().amount_decimals;
  const double entered =
      converter.RoundCurrencyValue(deduction.record.AbzugBetrag.Betrag, decimals);
  TDeductionAmounts amounts;
  if (deduction.record.KzBruttoNetto == kGrossDeduction) {
    amounts.gross = entered;
    amounts.net = converter.RoundCurrencyValue(entered / (1.0 + vat_rate / 100.0), decimals);
  } else {
    amounts.net = entered;
    amounts.gross = converter.CurrencyBrutto(entered, vat_rate);
  }
  amounts.vat = converter.RoundCurrencyValue(amounts.gross - amounts.net, decimals);
  return amounts;
}

}  // namespace korvan::billing
