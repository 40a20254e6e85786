#pragma once

#include "award/bid/dm_angebot.h"
#include "exchange/gaeb_export/gaeb_export.h"

namespace korvan::exchange {

// Puts a bidder's bid into what an export writes, so that phase 84 writes that bid: its
// unit prices and components as the bid prices of the items, its free quantities, its
// discount and VAT rate as the LV's, and the bidder as the contractor (CTR).
void TakeBidIntoExportSource(TGaebExportSource& source, const award::TdmAngebot& bid);

}  // namespace korvan::exchange
