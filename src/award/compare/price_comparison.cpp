#include "award/compare/price_comparison.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "data/records/null_values.h"

namespace korvan::award {
namespace {

constexpr double kTolerance = 0.0001;
// Where the searches for a lowest price start; a value still there was never found.
constexpr double kNotFound = 2147483647.0;

bool IsZero(double value) {
  return std::fabs(value) < kTolerance;
}

// A line whose EP 0 is meant (not offered, or included elsewhere) counts in the mean.
bool IsDeliberateZero(char mark) {
  return mark == 'X' || mark == kMarkInOther;
}

t_Angebot_DB_VERSION_201501& Rec(TAngebotList& lines, int line) {
  return lines[static_cast<std::size_t>(line)].Angebot;
}

const t_Angebot_DB_VERSION_201501& Rec(const TAngebotList& lines, int line) {
  return lines[static_cast<std::size_t>(line)].Angebot;
}

TBidCell CellOf(const t_Angebot_DB_VERSION_201501& line, bool group, double factor) {
  TBidCell cell;
  cell.up = line.EP.Betrag * factor;
  cell.total = line.GP.Betrag * factor;
  cell.total_after_discount = line.GPnachNL.Betrag * factor;
  if (!group) cell.stated_total = StatedTotalWithoutQuantity(line) * factor;
  cell.discount = line.NachlassProz;
  cell.mark = line.Kennz;
  return cell;
}

}  // namespace

std::vector<t_Bieter_DB_VERSION_3100> MarkedOrAll(
    const std::vector<t_Bieter_DB_VERSION_3100>& bidders) {
  std::vector<t_Bieter_DB_VERSION_3100> marked;
  std::copy_if(bidders.begin(), bidders.end(), std::back_inserter(marked),
               [](const t_Bieter_DB_VERSION_3100& bidder) { return bidder.markiert != 0; });
  return marked.empty() ? bidders : marked;
}

double CurrencyFactorOf(const t_Bieter_DB_VERSION_3100& bidder) {
  const double factor = bidder.Waehrungsfaktor;
  return factor > 0.0 ? factor : 1.0;
}

TPriceComparison::TPriceComparison(TdmBieter& bidders, const boq::TLVPosList& lv,
                                   TCompareOptions options)
    : lv_(lv), options_(options) {
  template_.ID = data::kNullId;
  template_.IDLv = lv.FLv().FId;
  template_.IdWaehrung = -1;
  template_.Waehrungsfaktor = 1.0;
  const double vat = lv.FLv().Ust;
  template_.USt = static_cast<float>(vat < 0.0 ? -1.0 : vat);
  TBidSettings settings = bidders.Settings();
  settings.contingency_in_totals = settings.contingency_in_totals || options.with_contingency;
  worker_ = bidders.OpenBid(template_, settings);
}

void TPriceComparison::Run(const std::vector<t_Bieter_DB_VERSION_3100>& selected) {
  ReadBids(selected);
  mean_ = {};
  median_ = {};
  ideal_ = {};
  highest_.clear();
  lowest_.clear();
  reference_.clear();
  reference_totals_ = {};
  reference_bidder_.reset();
  if (bidders_.empty()) return;
  ChooseReference();
  FormMean();
  FormMedian();
  FormIdealAndExtremes();
  FormReferenceLines();
}

void TPriceComparison::ReadBids(const std::vector<t_Bieter_DB_VERSION_3100>& selected) {
  const std::size_t count = selected.size();
  const int lines = lv_.Count();
  bidders_.assign(count, {});
  cells_.assign(static_cast<std::size_t>(lines) * count, {});
  for (std::size_t b = 0; b < count; ++b) {
    worker_->Open(selected[b]);
    worker_->Recalculate();
    TComparedBidder& compared = bidders_[b];
    compared.bidder = worker_->Bidder();
    compared.totals = ComputeBidderSums(compared.bidder, worker_->Rounding());
    compared.factor = CurrencyFactorOf(compared.bidder);
    const TAngebotList& bid = worker_->FAList();
    for (int i = 0; i < lines; ++i) {
      TBidCell& cell = cells_[static_cast<std::size_t>(i) * count + b];
      cell = CellOf(Rec(bid, i), lv_[i].IsGroup(), compared.factor);
      if (worker_->IsPriced(i) && IsZero(cell.up)) ++compared.unpriced;
    }
  }
}

TPseudoBid TPriceComparison::NewPseudoBid(const char* name) {
  t_Bieter_DB_VERSION_3100 record = template_;
  record.Bietername.Set(name);
  worker_->Open(record);
  return TPseudoBid{};
}

void TPriceComparison::StorePseudoBid(TPseudoBid& bid) {
  bid.lines = worker_->FAList();
  bid.bidder = worker_->Bidder();
  bid.totals = ComputeBidderSums(bid.bidder, worker_->Rounding());
}

void TPriceComparison::ChooseReference() {
  const TReferenceMode mode = options_.reference;
  const bool lowest = mode == TReferenceMode::kCheapest || mode == TReferenceMode::kIdeal;
  const bool highest =
      mode == TReferenceMode::kMostExpensive || mode == TReferenceMode::kHighestPerLine;
  if (lowest || highest) {
    TReferenceTotals found{kNotFound, kNotFound, kNotFound};
    if (highest) found = {0.0, 0.0, 0.0};
    auto better = [&](double candidate, double current) {
      return lowest ? candidate < current : candidate > current;
    };
    for (std::size_t b = 0; b < bidders_.size(); ++b) {
      const TComparedBidder& bidder = bidders_[b];
      const double checked = bidder.totals.checked * bidder.factor;
      if (checked <= 0.0) continue;  // a bid without prices is no reference
      if (better(checked, found.checked)) {
        found.checked = checked;
        if (mode != TReferenceMode::kIdeal && mode != TReferenceMode::kHighestPerLine) {
          reference_bidder_ = static_cast<int>(b);
        }
      }
      found.after_discount =
          better(bidder.totals.after_discount * bidder.factor, found.after_discount)
              ? bidder.totals.after_discount * bidder.factor
              : found.after_discount;
      found.gross = better(bidder.totals.gross * bidder.factor, found.gross)
                        ? bidder.totals.gross * bidder.factor
                        : found.gross;
    }
    if (found.checked == kNotFound) found = {};
    reference_totals_ = found;
    return;
  }
  if (mode == TReferenceMode::kFirstBidder) {
    reference_bidder_ = 0;
    const TComparedBidder& first = bidders_.front();
    reference_totals_ = {first.totals.checked * first.factor,
                         first.totals.after_discount * first.factor,
                         first.totals.gross * first.factor};
  } else if (mode == TReferenceMode::kEstimate) {
    const boq::t_Lv_DB_VERSION_3100& header = lv_.FLv();
    reference_totals_ = {header.SchaetzSum.Betrag, header.SchaetzSum.Betrag,
                         header.SchaetzSumBrutto.Betrag};
  }
  // The mean's totals are known once it is formed.
}

void TPriceComparison::FormMean() {
  const std::size_t count = bidders_.size();
  mean_ = NewPseudoBid("Mittelwerte");
  TAngebotList& lines = worker_->FAList();
  bool any_discount = false;
  for (int i = 0; i < lv_.Count(); ++i) {
    if (lv_[i].IsGroup()) continue;
    double sum = 0.0;
    int counted = 0;
    for (std::size_t b = 0; b < count; ++b) {
      const TBidCell& cell = Cell(i, static_cast<int>(b));
      if (cell.discount > 0.0F) any_discount = true;
      if (IsZero(cell.up) && !IsDeliberateZero(cell.mark)) continue;
      sum += cell.up * (1.0 - cell.discount / 100.0);
      ++counted;
    }
    Rec(lines, i).EP.Betrag = counted == 0 ? 0.0 : sum / counted;
  }
  worker_->Recalculate();
  if (any_discount) {
    // The mean line carries the discount that brings it to the bidders' mean after discount.
    for (int i = lv_.Count() - 1; i >= 0; --i) {
      if (lv_[i].IsGroup()) continue;
      double after = 0.0;
      double percents = 0.0;
      for (std::size_t b = 0; b < count; ++b) {
        const TBidCell& cell = Cell(i, static_cast<int>(b));
        after += cell.total_after_discount;
        percents += cell.discount;
      }
      t_Angebot_DB_VERSION_201501& line = Rec(lines, i);
      const double own = line.GPnachNL.Betrag;
      if (percents > 0.0 && !IsZero(own)) {
        line.NachlassProz = static_cast<float>((own - after / count) / own * 100.0);
      }
    }
    worker_->Recalculate();
  }
  double discount = 0.0;
  for (const TComparedBidder& bidder : bidders_) {
    discount += (bidder.totals.checked - bidder.totals.after_discount) * bidder.factor;
  }
  worker_->Bidder().NachlassAbs.Betrag = worker_->Rounding().RoundAmount(discount / count);
  StorePseudoBid(mean_);
  if (options_.reference == TReferenceMode::kMean) {
    reference_totals_ = {mean_.totals.checked, mean_.totals.after_discount, mean_.totals.gross};
  }
}

void TPriceComparison::FormMedian() {
  const std::size_t count = bidders_.size();
  median_ = NewPseudoBid("Medianwerte");
  TAngebotList& lines = worker_->FAList();
  std::vector<int64_t> thousandths;
  thousandths.reserve(count);
  for (int i = 0; i < lv_.Count(); ++i) {
    if (lv_[i].IsGroup()) continue;
    thousandths.clear();
    for (std::size_t b = 0; b < count; ++b) {
      const double up = Cell(i, static_cast<int>(b)).up;
      if (!IsZero(up)) thousandths.push_back(static_cast<int64_t>(up * 1000.0));
    }
    if (thousandths.empty()) continue;
    std::sort(thousandths.begin(), thousandths.end());
    const std::size_t c = thousandths.size();
    const double middle = c % 2 == 1 ? static_cast<double>(thousandths[c / 2])
                                     : (static_cast<double>(thousandths[c / 2 - 1]) +
                                        static_cast<double>(thousandths[c / 2])) /
                                           2.0;
    Rec(lines, i).EP.Betrag = middle / 1000.0;
  }
  worker_->Recalculate();
  StorePseudoBid(median_);
}

void TPriceComparison::FormIdealAndExtremes() {
  const std::size_t count = bidders_.size();
  ideal_ = NewPseudoBid("Idealangebot");
  TAngebotList& lines = worker_->FAList();
  highest_ = lines;
  lowest_ = lines;
  std::vector<double> lowest_total(static_cast<std::size_t>(lv_.Count()), kNotFound);
  for (int i = 0; i < lv_.Count(); ++i) {
    const bool group = lv_[i].IsGroup();
    double low_up = kNotFound;
    double high_up = 0.0;
    double min_up = std::numeric_limits<double>::max();
    double low_total = kNotFound;
    double high_total = 0.0;
    double min_total = kNotFound;
    for (std::size_t b = 0; b < count; ++b) {
      const TBidCell& cell = Cell(i, static_cast<int>(b));
      if (!group && !IsZero(cell.up)) {
        if (cell.up < low_up) {
          low_up = cell.up;
          Rec(lines, i).NachlassProz = cell.discount;
          SetStatedTotalWithoutQuantity(Rec(lines, i), cell.stated_total);
        }
        high_up = std::max(high_up, cell.up);
        min_up = std::min(min_up, cell.up);
      }
      if (group || !IsZero(cell.total)) {
        low_total = std::min(low_total, cell.total);
        high_total = std::max(high_total, cell.total);
        min_total = std::min(min_total, cell.total);
      }
    }
    const bool up_found = low_up != kNotFound;
    Rec(lines, i).EP.Betrag = up_found ? low_up : 0.0;
    Rec(highest_, i).EP.Betrag = high_up;
    Rec(lowest_, i).EP.Betrag = up_found ? min_up : 0.0;
    Rec(highest_, i).GP.Betrag = high_total;
    Rec(lowest_, i).GP.Betrag = min_total == kNotFound ? 0.0 : min_total;
    lowest_total[static_cast<std::size_t>(i)] = low_total;
  }
  worker_->Recalculate();
  for (int i = 0; i < lv_.Count(); ++i) {
    const double low = lowest_total[static_cast<std::size_t>(i)];
    if (lv_[i].IsGroup() || !IsPriced(i)) continue;
    t_Angebot_DB_VERSION_201501& line = Rec(lines, i);
    line.GP.Betrag = low == kNotFound ? 0.0 : low;
    line.GPnachNL.Betrag =
        worker_->Rounding().RoundAmount(line.GP.Betrag * (1.0 - line.NachlassProz / 100.0));
  }
  worker_->BuildGroupSums();
  worker_->WriteBidderSums();
  StorePseudoBid(ideal_);
}

void TPriceComparison::FormReferenceLines() {
  const TReferenceMode mode = options_.reference;
  if (mode == TReferenceMode::kMean) {
    reference_ = mean_.lines;
    return;
  }
  reference_ = ideal_.lines;
  const bool of_bidder = mode == TReferenceMode::kCheapest ||
                         mode == TReferenceMode::kMostExpensive ||
                         mode == TReferenceMode::kFirstBidder;
  for (int i = 0; i < lv_.Count(); ++i) {
    t_Angebot_DB_VERSION_201501& line = Rec(reference_, i);
    if (of_bidder) {
      const TBidCell cell = reference_bidder_ ? Cell(i, *reference_bidder_) : TBidCell{};
      line.EP.Betrag = cell.up;
      line.GP.Betrag = cell.total;
    } else if (mode == TReferenceMode::kHighestPerLine) {
      line.EP.Betrag = Rec(highest_, i).EP.Betrag;
      line.GP.Betrag = Rec(highest_, i).GP.Betrag;
    } else if (mode == TReferenceMode::kEstimate) {
      line.EP.Betrag = lv_[i].IsGroup() ? 0.0 : double{lv_[i].LvBeschr.SchaetzEP.Betrag};
      line.GP.Betrag = lv_[i].LvBgBeschr.SchaetzGP.Betrag;
    }
  }
}

std::optional<double> TPriceComparison::PercentOfReference(int line, double up,
                                                           double total) const {
  if (reference_.empty()) return std::nullopt;
  const t_Angebot_DB_VERSION_201501& reference = Rec(reference_, line);
  double percent = 0.0;
  if (reference.GP.Betrag > 0.0) {
    percent = total / reference.GP.Betrag * 100.0;
  } else if (reference.EP.Betrag > 0.0) {
    percent = up / reference.EP.Betrag * 100.0;
  }
  if (percent <= 0.0) return std::nullopt;
  return percent;
}

std::optional<double> TPriceComparison::TotalPercentOfReference(int bidder) const {
  const TComparedBidder& compared = bidders_[static_cast<std::size_t>(bidder)];
  if (reference_totals_.checked <= 0.0) return std::nullopt;
  const double percent =
      compared.totals.checked * compared.factor / reference_totals_.checked * 100.0;
  if (percent <= 0.0) return std::nullopt;
  return percent;
}

bool TPriceComparison::Deviates(int line, int bidder) const {
  if (options_.max_deviation <= 0.0 || mean_.lines.empty()) return false;
  const double mean = Rec(mean_.lines, line).GP.Betrag;
  if (IsZero(mean)) return false;
  const double deviation = std::fabs(100.0 - Cell(line, bidder).total / mean * 100.0);
  return deviation > options_.max_deviation;
}

bool TPriceComparison::Shows(int line) const {
  if (options_.min_share <= 0.0 || lv_[line].IsGroup() || mean_.lines.empty()) return true;
  return Rec(mean_.lines, line).GP.Betrag >= mean_.totals.checked * options_.min_share / 100.0;
}

std::vector<TRankRow> TPriceComparison::RankList() const {
  std::vector<t_Bieter_DB_VERSION_3100> records;
  records.reserve(bidders_.size());
  for (const TComparedBidder& compared : bidders_) {
    t_Bieter_DB_VERSION_3100 converted = compared.bidder;
    // Ranks compare amounts in one currency.
    converted.SummeNachNL.Betrag = compared.totals.after_discount * compared.factor;
    converted.SummePsch.Betrag = compared.totals.lump_sum * compared.factor;
    records.push_back(converted);
  }
  const std::vector<int> ranks = RankByTotal(records);
  std::vector<TRankRow> rows;
  for (std::size_t b = 0; b < bidders_.size(); ++b) rows.push_back({static_cast<int>(b), ranks[b]});
  std::stable_sort(rows.begin(), rows.end(), [](const TRankRow& a, const TRankRow& b) {
    if ((a.rank == 0) != (b.rank == 0)) return b.rank == 0;
    return a.rank < b.rank;
  });
  return rows;
}

}  // namespace korvan::award
