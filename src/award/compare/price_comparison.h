#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "award/bid/bid_line.h"
#include "award/bid/bidder_sums.h"
#include "award/bid/dm_angebot.h"
#include "award/bid/dm_bieter.h"
#include "award/compare/compare_options.h"
#include "award/tables/bieter_record.h"
#include "boq/model/lv_pos_list.h"

// The price comparison (Preisspiegel) of an LV's bids: every bid read once, then per line
// the mean, median and ideal bids, the highest and lowest price, the 100 % reference, the
// percentages against it, the deviation marks and the items each bidder left unpriced.
namespace korvan::award {

// One bidder's values on one LV line in the display currency (times its currency factor).
struct TBidCell {
  double up = 0.0;                    // EP
  double total = 0.0;                 // GP
  double total_after_discount = 0.0;  // GPnachNL
  double stated_total = 0.0;          // an item's total stated without quantity
  float discount = 0.0F;              // NachlassProz of the line, in percent
  char mark = kMarkNone;
};

struct TComparedBidder {
  t_Bieter_DB_VERSION_3100 bidder{};  // with the sums its lines give now
  TBidderTotals totals;               // in the bid's currency
  double factor = 1.0;                // to the display currency
  int unpriced = 0;                   // priced items it left at EP 0
};

// A bid the comparison forms (mean, median, ideal): its lines and its sums.
struct TPseudoBid {
  TAngebotList lines;
  t_Bieter_DB_VERSION_3100 bidder{};
  TBidderTotals totals;
};

// The bidder-level sums that count as 100 %.
struct TReferenceTotals {
  double checked = 0.0;
  double after_discount = 0.0;
  double gross = 0.0;
};

// One row of the rank list ("Rangliste"): the index into Bidders() and its rank (0: no
// prices).
struct TRankRow {
  int bidder = 0;
  int rank = 0;
};

class TPriceComparison {
 public:
  TPriceComparison(TdmBieter& bidders, const boq::TLVPosList& lv, TCompareOptions options = {});

  // Compares the bidders `selected` (of this LV, in list order): each bid is opened and
  // recomputed once. EBidError when a bid cannot be read.
  void Run(const std::vector<t_Bieter_DB_VERSION_3100>& selected);

  const boq::TLVPosList& Lv() const { return lv_; }
  const TCompareOptions& Options() const { return options_; }
  const calc::TItemCalculation& Rounding() const { return worker_->Rounding(); }
  // Whether a line carries a price in a bid (a priced item).
  bool IsPriced(int line) const { return worker_->IsPriced(line); }

  const std::vector<TComparedBidder>& Bidders() const { return bidders_; }
  const TBidCell& Cell(int line, int bidder) const {
    return cells_[static_cast<std::size_t>(line) * bidders_.size() +
                  static_cast<std::size_t>(bidder)];
  }
  const TPseudoBid& Mean() const { return mean_; }
  const TPseudoBid& Median() const { return median_; }
  const TPseudoBid& Ideal() const { return ideal_; }
  const TAngebotList& Highest() const { return highest_; }
  const TAngebotList& Lowest() const { return lowest_; }
  const TAngebotList& Reference() const { return reference_; }
  const TReferenceTotals& ReferenceTotals() const { return reference_totals_; }
  // The bidder (index into Bidders()) taken as reference in modes 0 to 2.
  std::optional<int> ReferenceBidder() const { return reference_bidder_; }

  // A line's price against the reference line: GP / reference GP × 100, or EP / reference
  // EP × 100 when the reference has no GP; nothing unless above 0.
  std::optional<double> PercentOfReference(int line, double up, double total) const;
  // A bidder's checked total against the reference's; nothing unless above 0.
  std::optional<double> TotalPercentOfReference(int bidder) const;
  // Whether a bidder's line deviates from the mean by more than the marking threshold.
  bool Deviates(int line, int bidder) const;
  // Whether the comparison shows a line: groups always, items when their mean total
  // reaches the minimum share of the mean bid's total.
  bool Shows(int line) const;
  // The bidders by rank (cheapest first, bidders without prices last), list order within a
  // rank.
  std::vector<TRankRow> RankList() const;

 private:
  void ReadBids(const std::vector<t_Bieter_DB_VERSION_3100>& selected);
  TPseudoBid NewPseudoBid(const char* name);
  void StorePseudoBid(TPseudoBid& bid);
  void FormMean();
  void FormMedian();
  void FormIdealAndExtremes();
  void ChooseReference();
  void FormReferenceLines();

  const boq::TLVPosList& lv_;
  TCompareOptions options_;
  std::unique_ptr<TdmAngebot> worker_;  // opens each bid in turn, and the pseudo-bids
  t_Bieter_DB_VERSION_3100 template_{};
  std::vector<TComparedBidder> bidders_;
  std::vector<TBidCell> cells_;  // line by line, one per bidder
  TPseudoBid mean_;
  TPseudoBid median_;
  TPseudoBid ideal_;
  TAngebotList highest_;
  TAngebotList lowest_;
  TAngebotList reference_;
  TReferenceTotals reference_totals_;
  std::optional<int> reference_bidder_;
};

// The bidders a comparison takes: those marked in the bidder list, or all when none is.
std::vector<t_Bieter_DB_VERSION_3100> MarkedOrAll(
    const std::vector<t_Bieter_DB_VERSION_3100>& bidders);

// A bidder's currency factor to the display currency; 1 when none is set.
double CurrencyFactorOf(const t_Bieter_DB_VERSION_3100& bidder);

}  // namespace korvan::award
