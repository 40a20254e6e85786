#include "app/commands/compare/compare_columns.h"

#include <algorithm>

namespace korvan::app {
namespace {

const award::TAngebotList* PseudoLines(const award::TPriceComparison& comparison,
                                       CompareColumnKind kind) {
  switch (kind) {
    case CompareColumnKind::kMean:
      return &comparison.Mean().lines;
    case CompareColumnKind::kMedian:
      return &comparison.Median().lines;
    case CompareColumnKind::kIdeal:
      return &comparison.Ideal().lines;
    case CompareColumnKind::kHighest:
      return &comparison.Highest();
    case CompareColumnKind::kLowest:
      return &comparison.Lowest();
    case CompareColumnKind::kBidder:
      break;
  }
  return nullptr;
}

}  // namespace

std::vector<CompareColumn> CompareColumns(const award::TPriceComparison& comparison,
                                          bool extremes) {
  std::vector<CompareColumn> columns;
  const std::vector<award::TComparedBidder>& bidders = comparison.Bidders();
  for (std::size_t b = 0; b < bidders.size(); ++b) {
    columns.push_back(
        {CompareColumnKind::kBidder, static_cast<int>(b), bidders[b].bidder.Bietername.Get()});
  }
  if (bidders.empty()) return columns;
  columns.push_back({CompareColumnKind::kMean, 0, "Mittelwert"});
  columns.push_back({CompareColumnKind::kMedian, 0, "Medianwert"});
  columns.push_back({CompareColumnKind::kIdeal, 0, "Idealangebot"});
  if (extremes) {
    columns.push_back({CompareColumnKind::kHighest, 0, "Höchstpreis"});
    columns.push_back({CompareColumnKind::kLowest, 0, "Tiefstpreis"});
  }
  return columns;
}

CompareValue LineValue(const award::TPriceComparison& comparison, const CompareColumn& column,
                       int line) {
  CompareValue value;
  if (column.kind == CompareColumnKind::kBidder) {
    const award::TBidCell& cell = comparison.Cell(line, column.bidder);
    value.up = cell.up;
    value.total = cell.total;
    value.deviates = comparison.Deviates(line, column.bidder);
  } else {
    const award::t_Angebot_DB_VERSION_201501& pseudo =
        (*PseudoLines(comparison, column.kind))[static_cast<std::size_t>(line)].Angebot;
    value.up = pseudo.EP.Betrag;
    value.total = pseudo.GP.Betrag;
  }
  value.percent = comparison.PercentOfReference(line, value.up, value.total);
  return value;
}

CompareValue TotalValue(const award::TPriceComparison& comparison, const CompareColumn& column) {
  CompareValue value;
  const std::vector<award::TComparedBidder>& bidders = comparison.Bidders();
  switch (column.kind) {
    case CompareColumnKind::kBidder: {
      const award::TComparedBidder& bidder = bidders[static_cast<std::size_t>(column.bidder)];
      value.total = bidder.totals.checked * bidder.factor;
      break;
    }
    case CompareColumnKind::kMean:
      value.total = comparison.Mean().totals.checked;
      break;
    case CompareColumnKind::kMedian:
      value.total = comparison.Median().totals.checked;
      break;
    case CompareColumnKind::kIdeal:
      value.total = comparison.Ideal().totals.checked;
      break;
    case CompareColumnKind::kHighest:
    case CompareColumnKind::kLowest: {
      const bool highest = column.kind == CompareColumnKind::kHighest;
      for (std::size_t b = 0; b < bidders.size(); ++b) {
        const double total = bidders[b].totals.checked * bidders[b].factor;
        if (b == 0 || (highest ? total > value.total : total < value.total)) value.total = total;
      }
      break;
    }
  }
  const double reference = comparison.ReferenceTotals().checked;
  if (reference > 0.0 && value.total > 0.0) value.percent = value.total / reference * 100.0;
  return value;
}

bool IsComparedLine(const award::TPriceComparison& comparison, int line) {
  const boq::TLvPos& entry = comparison.Lv()[line];
  return (entry.IsGroup() || entry.IsQuantityItem()) && comparison.Shows(line);
}

std::string ReferenceCaption(const award::TPriceComparison& comparison) {
  std::string caption = award::ReferenceModeText(comparison.Options().reference);
  if (const std::optional<int> bidder = comparison.ReferenceBidder()) {
    caption += " (" +
               comparison.Bidders()[static_cast<std::size_t>(*bidder)].bidder.Bietername.Get() +
               ")";
  }
  return caption;
}

}  // namespace korvan::app
