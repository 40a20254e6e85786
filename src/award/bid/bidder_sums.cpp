#include "award/bid/bidder_sums.h"

#include <cmath>

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

const char* BidderStatusText(uint8_t status) {
  if ((status & kBidsIncomplete) != 0) return "UV";
  if ((status & kBidsBlanko) != 0) return "BA";
  return "";
}

}  // namespace korvan::award
