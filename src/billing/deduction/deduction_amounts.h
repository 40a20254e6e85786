#pragma once

#include <optional>

#include "billing/deduction/dm_abzug.h"
#include "boq/units/value_converter.h"

namespace korvan::billing {

// A deduction's net and gross amount and the VAT between them.
struct TDeductionAmounts {
  double net = 0.0;
  double gross = 0.0;
  double vat = 0.0;
};

// The amounts of a deduction with a fixed amount at `vat_rate` percent: entered gross, the
// net is gross / (1 + rate/100); entered net, the gross is net × (1 + rate/100); both
// rounded to the amount decimals. Nothing for a deduction with a formula: that takes the
// values of the invoice it is applied to.
std::optional<TDeductionAmounts> FixedDeductionAmounts(const TDeduction& deduction, double vat_rate,
                                                       const boq::TAvaUiValueConverter& converter);

}  // namespace korvan::billing
