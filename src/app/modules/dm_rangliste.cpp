#include "app/modules/dm_rangliste.h"

#include <algorithm>

#include "app/cli/german_number.h"
#include "app/commands/bid/bid_lv.h"

namespace korvan::app {
namespace {

using data::TCData;
using data::TCDataRow;
using data::TStringList;

const std::vector<std::string>& Definitions() {
  static const std::vector<std::string> definitions = {
      "Rang,I,0,50,3,N,0,1,0,1,0,,0,1,48201,,,,,,",
      "Nr,I,1,40,3,N,0,1,0,1,0,,0,1,48202,,,,,,",
      "Bieter,N,2,220,40,N,0,1,0,1,0,,0,1,48203,,,,,,",
      "Geprueft,W,3,120,16,N,2,1,0,1,0,,0,1,48204,,,,,,",
      "NachNL,W,4,120,16,N,2,1,0,1,0,,0,1,48205,,,,,,",
      "Brutto,W,5,120,16,N,2,1,0,1,0,,0,1,48206,,,,,,",
      "Status,N,6,60,2,N,0,1,0,1,0,,0,1,48207,,,,,,",
  };
  return definitions;
}

}  // namespace

TdmRangliste::TdmRangliste(std::string data_dir, std::string project, int32_t lv_id)
    : TSTDdataModule(kCDataId, "Rangliste"),
      data_dir_(std::move(data_dir)),
      project_(std::move(project)),
      lv_id_(lv_id) {
  CData1.SetStruktur(Definitions());
}

void TdmRangliste::CData1C_OnGetStruktur(TCData&, int, TStringList& t) {
  t = Definitions();
}

std::vector<TdmRangliste::Line> TdmRangliste::Read() {
  BidLv target(data_dir_, project_, std::to_string(lv_id_), false);
  std::vector<award::t_Bieter_DB_VERSION_3100> bidders = target.CurrentBidders();
  const std::vector<int> ranks = award::RankByTotal(bidders);
  const calc::TItemCalculation rounding = target.Rounding();
  std::vector<std::pair<int, Line>> ranked;
  for (size_t i = 0; i < bidders.size(); ++i) {
    const award::TBidderTotals totals = award::ComputeBidderSums(bidders[i], rounding);
    const int number = bidders[i].BieterNrIntern;
    Line line{number,
              totals.checked,
              {ranks[i] == 0 ? "-" : std::to_string(ranks[i]), std::to_string(number),
               bidders[i].Bietername.Get(), GermanMoney(totals.checked),
               GermanMoney(totals.after_discount), GermanMoney(totals.gross),
               award::BidderStatusText(bidders[i].Status)}};
    // Bidders without prices (rank 0) come last.
    ranked.emplace_back(ranks[i] == 0 ? INT32_MAX : ranks[i], std::move(line));
  }
  std::stable_sort(ranked.begin(), ranked.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<Line> lines;
  for (auto& [rank, line] : ranked) lines.push_back(std::move(line));
  return lines;
}

void TdmRangliste::CData1C_OnStrukturLesen(TCData&, std::vector<TCDataRow>& rows, int& rmax, bool) {
  try {
    lines_ = Read();
  } catch (const std::runtime_error& error) {
    last_error_ = error.what();
    rmax = -1;
    return;
  }
  for (const Line& line : lines_) {
    rows.push_back(TCDataRow{.Key = std::to_string(line.number), .Level = 1});
  }
  rmax = static_cast<int>(rows.size());
}

void TdmRangliste::CData1C_OnGetDaten(TCData&, int z, TStringList& t, bool&, char&, char&) {
  if (const Line* line = LineOf(z)) t = line->cells;
}

const TdmRangliste::Line* TdmRangliste::LineOf(int z) const {
  if (z < 1 || z > static_cast<int>(lines_.size())) return nullptr;
  return &lines_[static_cast<size_t>(z - 1)];
}

int TdmRangliste::BidderNumberOf(int z) const {
  const Line* line = LineOf(z);
  return line == nullptr ? 0 : line->number;
}

double TdmRangliste::CheckedTotalOf(int z) const {
  const Line* line = LineOf(z);
  return line == nullptr ? 0.0 : line->checked;
}

}  // namespace korvan::app
