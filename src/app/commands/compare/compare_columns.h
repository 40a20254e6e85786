#pragma once

#include <optional>
#include <string>
#include <vector>

#include "award/compare/price_comparison.h"
#include "boq/model/lv_pos.h"

// The columns of the price comparison as every output shows them: the bidders in list
// order, then the bids the comparison forms.
namespace korvan::app {

enum class CompareColumnKind { kBidder, kMean, kMedian, kIdeal, kHighest, kLowest };

struct CompareColumn {
  CompareColumnKind kind = CompareColumnKind::kBidder;
  int bidder = 0;  // index into the comparison's bidders, for kBidder
  std::string name;
};

// One column's figures on one line, or on the LV's total.
struct CompareValue {
  double up = 0.0;
  double total = 0.0;
  std::optional<double> percent;  // of the reference
  bool deviates = false;          // beyond the marking threshold from the mean
};

// The bidders, then "Mittelwert", "Medianwert", "Idealangebot" and, with `extremes`,
// "Höchstpreis" and "Tiefstpreis".
std::vector<CompareColumn> CompareColumns(const award::TPriceComparison& comparison, bool extremes);
CompareValue LineValue(const award::TPriceComparison& comparison, const CompareColumn& column,
                       int line);
// The checked total (the highest and lowest columns: the highest and lowest bidder's).
CompareValue TotalValue(const award::TPriceComparison& comparison, const CompareColumn& column);
// The lines a comparison shows: groups, and items with a quantity that reach its minimum
// share.
bool IsComparedLine(const award::TPriceComparison& comparison, int line);
// The caption of the reference: the mode, and the bidder's name in modes 0 to 2.
std::string ReferenceCaption(const award::TPriceComparison& comparison);

}  // namespace korvan::app
