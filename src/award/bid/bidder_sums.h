#pragma once

#include "award/tables/bieter_record.h"
#include "boq/units/value_converter.h"
#include "calc/price/item_calculation.h"

namespace korvan::award {

// The bidder's sums as the bidder list shows them, all rounded to the amount decimals.
struct TBidderTotals {
  double checked = 0.0;                    // "Geprüft": Summe
  double after_discount = 0.0;             // "Summe ./. NL"
  double lump_sum = 0.0;                   // "Pauschal"; 0 none
  double net = 0.0;                        // the lump sum when given, else the total after discount
  double vat_rate = 0.0;                   // 0 when no rate was entered
  double vat = 0.0;                        // "MwSt Betrag"
  double gross = 0.0;                      // "Brutto"
  double cash_discount_pcnt = 0.0;         // the first cash-discount term's percent
  double gross_after_cash_discount = 0.0;  // "Brutto ./. Skonto"
  double cash_discount = 0.0;              // "Skonto Betrag"
};

// The sums of a bidder from its checked total `Summe`: the discount (percent first, then
// the amount), the lump sum replacing the net total, VAT (a rate of -1 is no rate) and the
// gross total; SummeNachNL and SummeBrutto are written into the record.
TBidderTotals ComputeBidderSums(t_Bieter_DB_VERSION_3100& bidder,
                                const calc::TItemCalculation& rounding);

// The sums shown in another currency ("Währung Anzeige"): every amount converted from the
// LV's currency into `currency` and rounded to its decimals; the rates stay as they are.
// ECurrencyError when the converter's table lacks either currency.
TBidderTotals InDisplayCurrency(const TBidderTotals& totals,
                                const boq::TAvaUiValueConverter& converter, int32_t currency);

// "Status": "UV" incomplete (it wins), "BA" no prices yet, empty otherwise.
const char* BidderStatusText(uint8_t status);

}  // namespace korvan::award
