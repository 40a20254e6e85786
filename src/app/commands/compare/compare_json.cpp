// `korvan compare --json`: the price comparison for scripts.
#include <ostream>
#include <string>

#include "app/cli/json_text.h"
#include "app/commands/compare/compare_columns.h"
#include "app/commands/compare/compare_views.h"

namespace korvan::app {
namespace {

std::string Optional(const std::optional<double>& value) {
  return value ? JsonNumber(*value) : "null";
}

std::string ValueJson(const CompareValue& value, bool with_up) {
  std::string json = "{";
  if (with_up) json += "\"up\": " + JsonNumber(value.up) + ", ";
  return json + "\"it\": " + JsonNumber(value.total) + ", \"percent\": " + Optional(value.percent) +
         ", \"deviates\": " + (value.deviates ? "true" : "false") + "}";
}

std::string ColumnKey(const CompareColumn& column) {
  switch (column.kind) {
    case CompareColumnKind::kMean:
      return "mean";
    case CompareColumnKind::kMedian:
      return "median";
    case CompareColumnKind::kIdeal:
      return "ideal";
    case CompareColumnKind::kHighest:
      return "highest";
    case CompareColumnKind::kLowest:
      return "lowest";
    case CompareColumnKind::kBidder:
      break;
  }
  return "";
}

void WriteLines(std::ostream& out, const award::TPriceComparison& comparison,
                const std::vector<CompareColumn>& columns) {
  const boq::TLVPosList& lv = comparison.Lv();
  const award::TAngebotList& reference = comparison.Reference();
  bool first = true;
  for (int i = 0; i < lv.Count(); ++i) {
    const boq::TLvPos& entry = lv[i];
    if (!IsComparedLine(comparison, i)) continue;
    out << (first ? "" : ", ") << "{\"oz\": " << JsonString(entry.LvBgBeschr.OZ.Get())
        << ", \"kind\": " << JsonString(std::string(1, entry.Kind()))
        << ", \"short_text\": " << JsonString(entry.ShortText)
        << ", \"qty\": " << (entry.IsGroup() ? "null" : JsonNumber(double{entry.LvBeschr.FMenge}))
        << ", \"unit\": " << (entry.Unit.empty() ? "null" : JsonString(entry.Unit))
        << ", \"priced\": " << (comparison.IsPriced(i) ? "true" : "false") << ", \"bids\": [";
    std::string pseudo;
    for (const CompareColumn& column : columns) {
      const std::string value = ValueJson(LineValue(comparison, column, i), !entry.IsGroup());
      if (column.kind == CompareColumnKind::kBidder) {
        out << (column.bidder == 0 ? "" : ", ") << value;
      } else {
        pseudo += ", \"" + ColumnKey(column) + "\": " + value;
      }
    }
    out << "]" << pseudo;
    if (!reference.empty()) {
      const award::t_Angebot_DB_VERSION_201501& line =
          reference[static_cast<std::size_t>(i)].Angebot;
      out << ", \"reference\": {\"up\": " << JsonNumber(double{line.EP.Betrag})
          << ", \"it\": " << JsonNumber(double{line.GP.Betrag}) << "}";
    }
    out << "}";
    first = false;
  }
}

std::string TotalsJson(const award::TBidderTotals& totals, double factor) {
  return "\"checked\": " + JsonNumber(totals.checked * factor) +
         ", \"after_discount\": " + JsonNumber(totals.after_discount * factor) +
         ", \"net\": " + JsonNumber(totals.net * factor) +
         ", \"gross\": " + JsonNumber(totals.gross * factor);
}

// In list order, as the lines' "bids" are; "rank_list" gives the order by rank.
void WriteBidders(std::ostream& out, const award::TPriceComparison& comparison) {
  const std::vector<award::TComparedBidder>& bidders = comparison.Bidders();
  const std::vector<award::TRankRow> ranks = comparison.RankList();
  std::vector<int> rank_of(bidders.size(), 0);
  for (const award::TRankRow& row : ranks) rank_of[static_cast<std::size_t>(row.bidder)] = row.rank;
  for (std::size_t b = 0; b < bidders.size(); ++b) {
    const award::TComparedBidder& compared = bidders[b];
    const award::t_Bieter_DB_VERSION_3100& bidder = compared.bidder;
    const float discount = bidder.NachlassProz;
    out << (b == 0 ? "" : ", ") << "{\"number\": " << static_cast<int>(bidder.BieterNrIntern)
        << ", \"id\": " << bidder.ID << ", \"name\": " << JsonString(bidder.Bietername.Get())
        << ", \"rank\": " << (rank_of[b] == 0 ? std::string("null") : std::to_string(rank_of[b]))
        << ", \"factor\": " << JsonNumber(compared.factor) << ", "
        << TotalsJson(compared.totals, compared.factor)
        << ", \"discount_percent\": " << JsonNumber(discount) << ", \"discount\": "
        << JsonNumber((compared.totals.checked - compared.totals.after_discount) * compared.factor)
        << ", \"unpriced\": " << compared.unpriced
        << ", \"percent\": " << Optional(comparison.TotalPercentOfReference(static_cast<int>(b)))
        << "}";
  }
  out << "], \"rank_list\": [";
  for (std::size_t r = 0; r < ranks.size(); ++r) {
    out << (r == 0 ? "" : ", ") << bidders[static_cast<std::size_t>(ranks[r].bidder)].bidder.ID;
  }
}

}  // namespace

void WriteCompareJson(std::ostream& out, const award::TPriceComparison& comparison) {
  const boq::TLVPosList& lv = comparison.Lv();
  const std::vector<CompareColumn> columns = CompareColumns(comparison, true);
  const award::TReferenceTotals& reference = comparison.ReferenceTotals();
  const std::optional<int> reference_bidder = comparison.ReferenceBidder();
  out << "{\"lv\": " << lv.FLv().FId << ", \"name\": " << JsonString(lv.FLv().Name.Get())
      << ", \"reference\": {\"mode\": " << static_cast<int>(comparison.Options().reference)
      << ", \"caption\": " << JsonString(award::ReferenceModeText(comparison.Options().reference))
      << ", \"bidder\": "
      << (reference_bidder
              ? std::to_string(
                    comparison.Bidders()[static_cast<std::size_t>(*reference_bidder)].bidder.ID)
              : std::string("null"))
      << ", \"checked\": " << JsonNumber(reference.checked)
      << ", \"after_discount\": " << JsonNumber(reference.after_discount)
      << ", \"gross\": " << JsonNumber(reference.gross)
      << "}, \"limit\": " << JsonNumber(comparison.Options().max_deviation)
      << ", \"min_share\": " << JsonNumber(comparison.Options().min_share)
      << ", \"with_contingency\": " << (comparison.Options().with_contingency ? "true" : "false")
      << ", \"bidders\": [";
  WriteBidders(out, comparison);
  out << "], \"pseudo_bids\": {";
  if (!comparison.Bidders().empty()) {
    out << "\"mean\": {" << TotalsJson(comparison.Mean().totals, 1.0) << "}, \"median\": {"
        << TotalsJson(comparison.Median().totals, 1.0) << "}, \"ideal\": {"
        << TotalsJson(comparison.Ideal().totals, 1.0) << "}";
  }
  out << "}, \"lines\": [";
  if (!comparison.Bidders().empty()) WriteLines(out, comparison, columns);
  out << "]}\n";
}

}  // namespace korvan::app
