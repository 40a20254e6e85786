#include "billing/contract/contract_sums.h"

#include <cmath>

#include "billing/tables/billing_table_types.h"
#include "calc/price/item_calculation.h"
#include "calc/sums/boq_ctgy_calc_sum.h"

namespace korvan::billing {
namespace {

constexpr double kTolerance = 0.0001;

bool IsZero(double value) {
  return std::fabs(value) < kTolerance;
}

// The LV's award total of the contract's items before the LV's own discount, which the
// sum run leaves in the header's Summe.
double AwardTotalOfContract(const boq::TLVPosList& lv, int32_t contract,
                            const boq::TAvaUiValueConverter& converter) {
  boq::TLVPosList copy;
  copy.Assign(lv);
  calc::TBoqCtgyCalcSum(copy, converter).Calculate(contract);
  return copy.FLv().Summe.Betrag;
}

double GrossBase(const TVertrag& contract) {
  switch (contract.BasisForBrutto) {
    case kGrossFromAward:
      return contract.SummeAusLV.Betrag;
    case kGrossFromLumpSum:
      return IsZero(contract.SummePsch.Betrag) ? contract.SummeNachNL.Betrag
                                               : contract.SummePsch.Betrag;
    default:
      return NetSum(contract);
  }
}

}  // namespace

double NetSum(const TVertrag& contract) {
  return IsZero(contract.SummePsch.Betrag) ? contract.SummeNachNL.Betrag
                                           : contract.SummePsch.Betrag;
}

void ComputeContractSums(TVertrag& contract, const boq::TLVPosList& lv,
                         const std::vector<TVertrag>& supplements,
                         const boq::TAvaUiValueConverter& converter) {
  const calc::TItemCalculation rounding(converter, lv.FLv().EPGenauigkeit);
  contract.SummeAusLV.Betrag =
      rounding.RoundAmount(AwardTotalOfContract(lv, contract.ID, converter));
  double after = contract.SummeAusLV.Betrag;
  if (!IsZero(contract.NachlassProz)) {
    after += rounding.RoundAmount(-after * contract.NachlassProz / 100.0);
  }
  if (!IsZero(contract.NachlassAbs.Betrag)) after -= contract.NachlassAbs.Betrag;
  contract.SummeNachNL.Betrag = rounding.RoundAmount(after);
  contract.Auftragssumme.Betrag = rounding.RoundAmount(NetSum(contract));
  if (contract.SummeBruttoManuell == 0) {
    contract.SummeBrutto.Betrag = converter.CurrencyBrutto(GrossBase(contract), contract.Mwst);
  }
  double lv_sum = contract.SummeAusLV.Betrag;
  double contract_sum = contract.Auftragssumme.Betrag;
  for (const TVertrag& supplement : supplements) {
    lv_sum += supplement.SummeAusLV.Betrag;
    contract_sum += supplement.Auftragssumme.Betrag;
  }
  contract.SummeAusLVKum.Betrag = rounding.RoundAmount(lv_sum);
  contract.AuftragssummeKum.Betrag = rounding.RoundAmount(contract_sum);
}

TCashDiscountSums CashDiscountSums(const TVertrag& contract,
                                   const boq::TAvaUiValueConverter& converter) {
  TCashDiscountSums sums;
  sums.percent = IsZero(contract.CashDiscount[0].DiscountPcnt)
                     ? contract.xSkonto
                     : contract.CashDiscount[0].DiscountPcnt;
  sums.gross = converter.CurrencyBrutto(contract.SummeBrutto.Betrag, -sums.percent);
  sums.net = converter.CurrencyBrutto(NetSum(contract), -sums.percent);
  return sums;
}

}  // namespace korvan::billing
