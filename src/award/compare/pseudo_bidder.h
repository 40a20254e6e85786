#pragma once

#include "award/bid/dm_bieter.h"
#include "award/compare/price_comparison.h"
#include "award/tables/bieter_record.h"

namespace korvan::award {

enum class TPseudoBidKind { kMean, kIdeal };

// "Mittelwerte als eigenen Bieter anlegen" / "Idealangebot als eigenen Bieter anlegen":
// a bidder named "Mittelwerte" or "Idealangebot" appended to the LV, with the pseudo-bid's
// unit prices, line discounts and lump sums as its bid lines (the mean bidder also with
// the mean absolute discount), recomputed and stored. EBidError when it cannot be written.
t_Bieter_DB_VERSION_3100 StorePseudoBidder(TdmBieter& bidders, const TPriceComparison& comparison,
                                           TPseudoBidKind kind);

}  // namespace korvan::award
