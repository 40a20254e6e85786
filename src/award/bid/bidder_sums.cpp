#include "award/bid/bidder_sums.h"

#include <cmath>

#include "data/records/null_values.h"

namespace korvan::award {
namespace {

constexpr double kTolerance = 0.0001;

bool IsZero(double value) {
  return std::fabs(value) < kTolerance;
}

}  // namespace

TBidderTotals ComputeBidderSums(t_Bieter_DB_VERSION_3100& bidder,
                                const calc::TItemCalculation& rounding) {
  TBidderTotals totals;
  totals.checked = rounding.RoundAmount(bidder.Summe.Betrag);
  double after = totals.checked;
  if (!IsZero(bidder.NachlassProz)) {
    after += rounding.RoundAmount(-after * bidder.NachlassProz / 100.0);
  }
  if (!IsZero(bidder.NachlassAbs.Betrag)) after -= bidder.NachlassAbs.Betrag;
  totals.after_discount = rounding.RoundAmount(after);
  totals.lump_sum = rounding.RoundAmount(bidder.SummePsch.Betrag);
  totals.net = IsZero(totals.lump_sum) ? totals.after_discount : totals.lump_sum;
  totals.vat_rate = bidder.USt < 0.0F ? 0.0 : bidder.USt;
  totals.vat = rounding.RoundAmount(totals.net * totals.vat_rate / 100.0);
  totals.gross = rounding.RoundAmount(totals.net + totals.vat);
  totals.cash_discount_pcnt = bidder.CashDiscount[0].DiscountPcnt;
  totals.gross_after_cash_discount =
      rounding.RoundAmount(totals.gross * (1.0 - totals.cash_discount_pcnt / 100.0));
  totals.cash_discount = rounding.RoundAmount(totals.gross - totals.gross_after_cash_discount);
  bidder.SummeNachNL.Betrag = totals.after_discount;
  bidder.SummeBrutto.Betrag = totals.gross;
  return totals;
}

TBidderTotals InDisplayCurrency(const TBidderTotals& totals,
                                const boq::TAvaUiValueConverter& converter, int32_t currency) {
  auto shown = [&](double amount) {
    return converter.ConvertCurrencyValue(amount, data::kOwnerCurrencyId, currency, true);
  };
  TBidderTotals display = totals;
  for (double* amount :
       {&display.checked, &display.after_discount, &display.lump_sum, &display.net, &display.vat,
        &display.gross, &display.gross_after_cash_discount, &display.cash_discount}) {
    *amount = shown(*amount);
  }
  return display;
}

const char* BidderStatusText(uint8_t status) {
  if ((status & kBidsIncomplete) != 0) return "UV";
  if ((status & kBidsBlanko) != 0) return "BA";
  return "";
}

}  // namespace korvan::award
