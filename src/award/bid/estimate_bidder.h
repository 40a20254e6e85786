#pragma once

#include "award/tables/bieter_record.h"

namespace korvan::award {

// The estimate bidder ("Schaetzbieter"): a bidder whose prices are the LV's estimated
// prices, the owner's own estimate beside the bids ("Eigenkalkulation" in the price
// comparison). It is known by its name.
inline constexpr char kEstimateBidderName[] = "Schaetzbieter";

inline bool IsEstimateBidder(const t_Bieter_DB_VERSION_3100& bidder) {
  return bidder.Bietername.Get() == kEstimateBidderName;
}

}  // namespace korvan::award
