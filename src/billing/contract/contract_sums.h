#pragma once

#include <vector>

#include "billing/tables/vertrag_record.h"
#include "boq/model/lv_pos_list.h"
#include "boq/units/value_converter.h"

namespace korvan::billing {

// The sums of a contract from its LV: SummeAusLV is the award total of the LV's items under
// the contract (group discounts included, the LV's own discount not: the contract carries
// that as its discount); SummeNachNL takes off the discount percent, then the discount
// amount; a lump sum replaces the net sum; the gross sum comes from the base BasisForBrutto
// names plus VAT unless it was entered by hand; the cumulative sums add `supplements`
// (the contracts whose IdHauptauftrag is this one). Auftragssumme is the net sum.
void ComputeContractSums(TVertrag& contract, const boq::TLVPosList& lv,
                         const std::vector<TVertrag>& supplements,
                         const boq::TAvaUiValueConverter& converter);

// The net sum of a contract: the lump sum when set, else the sum after discount.
double NetSum(const TVertrag& contract);

// "Summe Brutto ./. NL ./. Skonto" and "Summe Netto ./. Skonto": the gross and the net sum
// less the cash discount percent (the first term, else the simple percent).
struct TCashDiscountSums {
  double percent = 0.0;
  double gross = 0.0;
  double net = 0.0;
};
TCashDiscountSums CashDiscountSums(const TVertrag& contract,
                                   const boq::TAvaUiValueConverter& converter);

}  // namespace korvan::billing
