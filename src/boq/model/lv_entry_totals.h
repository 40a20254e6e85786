#pragma once

#include <optional>
#include <vector>

#include "boq/model/lv_pos_list.h"

// The totals of an LV's entries as the entries themselves give them: an item's quantity
// times its estimated (or award) unit price, a group's the sum of its children. The full
// sum run with discounts, surcharges and rounding rules is the calculation's.
namespace korvan::boq {

struct TLvEntryFigures {
  int depth = 1;  // 1 for entries directly below the LV
  std::optional<double> quantity;
  std::optional<double> unit_price;
  std::optional<double> total;
};

// Which unit price an item's figures take.
enum class TLvPriceKind { kEstimate, kAward };

// The price kind that fits the LV's status: award prices once it is awarded or billed.
TLvPriceKind PriceKindOfStatus(char status);

// One figure set per entry, in list order, and in `lv_total` the sum of the top level.
std::vector<TLvEntryFigures> PriceFigures(const TLVPosList& list, TLvPriceKind kind,
                                          double* lv_total);
inline std::vector<TLvEntryFigures> EstimatedFigures(const TLVPosList& list, double* lv_total) {
  return PriceFigures(list, TLvPriceKind::kEstimate, lv_total);
}

}  // namespace korvan::boq
