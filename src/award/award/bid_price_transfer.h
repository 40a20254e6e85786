#pragma once

#include <optional>
#include <stdexcept>

#include "award/bid/dm_angebot.h"
#include "boq/model/lv_pos_list.h"

// "Bieterpreise in LV übertragen": a bidder's prices written into the LV's award prices
// (or its estimated prices), with the bid's discounts and lump sums either kept as the
// LV's own or spread into the unit prices.
namespace korvan::award {

// The transfer refused because the LV is awarded or billed and has no supplement items
// without a contract; the message names the LV.
class ETransferRefused : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct TTransferOptions {
  TBidPriceTarget target = TBidPriceTarget::kAward;
  // "Nachlässe und Pauschalierungen auf Einheitspreise umlegen".
  bool spread = false;
  // "geänderte Mengen aus Angebot übernehmen"; none: on when some bid quantity differs
  // from its LV quantity, as the dialog presets it.
  std::optional<bool> bid_quantities;
  // The user may change awarded LVs: lines under contract take prices too.
  bool edit_awarded = false;
};

struct TTransferResult {
  int items = 0;                    // items whose prices were written
  int groups = 0;                   // groups that took the bid's group discount or lump sum
  int quantities = 0;               // items that took the bid's quantity
  int quantities_refused = 0;       // items whose quantity comes from partial quantities
  double factor = 1.0;              // the spread factor f of the whole bid
  bool whole_bid_values = false;    // the LV took the bid's discount, lump sum and cash discount
  int scaled_by_item_discount = 0;  // items scaled by their own discount percent
  int scaled_groups = 0;            // groups whose discount scaled their items
};

// Whether the LV has supplement items (KzNachtrag) that are under no contract yet.
bool HasUncontractedSupplements(const boq::TLVPosList& lv);

// Whether some priced item's bid quantity differs from its LV quantity.
bool BidQuantitiesDiffer(const TdmAngebot& bid);

// Writes the prices of the opened, recalculated `bid` into `lv` (the LV the bid was opened
// on, loaded for saving) and answers what it did; the caller saves the LV with its sums.
// ETransferRefused for an awarded or billed LV without un-contracted supplement items
// unless the options allow editing awarded LVs.
TTransferResult TransferBidPrices(const TdmAngebot& bid, boq::TLVPosList& lv,
                                  const TTransferOptions& options);

}  // namespace korvan::award
