#include "app/modules/dm_preisspiegel.h"

#include <algorithm>

#include "app/cli/german_number.h"
#include "app/commands/bid/bid_lv.h"
#include "app/commands/compare/compare_columns.h"
#include "award/compare/price_comparison.h"
#include "boq/model/lv_entry_totals.h"

namespace korvan::app {
namespace {

using data::TCData;
using data::TCDataRow;
using data::TStringList;

// A column of a bid, captioned with its name; a comma would end the definition's field.
std::string BidColumnDefinition(std::string name, int column) {
  std::replace(name.begin(), name.end(), ',', ' ');
  return name + ",W," + std::to_string(column) + ",120,16,N,2,1,0,1,0,,0,1,,,,,,,";
}

}  // namespace

TdmPreisspiegel::TdmPreisspiegel(std::string data_dir, std::string project, int32_t lv_id,
                                 double max_deviation)
    : TSTDdataModule(kCDataId, "Preisspiegel"),
      data_dir_(std::move(data_dir)),
      project_(std::move(project)),
      lv_id_(lv_id),
      max_deviation_(max_deviation) {}

bool TdmPreisspiegel::Loaded() {
  try {
    Read();
    CData1.SetStruktur(definitions_);
  } catch (const std::runtime_error& error) {
    last_error_ = error.what();
    return false;
  }
  return TSTDdataModule::Loaded();
}

bool TdmPreisspiegel::Remark(double max_deviation) {
  max_deviation_ = max_deviation;
  try {
    Read();
  } catch (const std::runtime_error& error) {
    last_error_ = error.what();
    return false;
  }
  return CData1.ListOperation(0, data::loReload) == data::TListOpResult::Done;
}

void TdmPreisspiegel::Read() {
  BidLv target(data_dir_, project_, std::to_string(lv_id_), false);
  award::TCompareOptions options;
  options.max_deviation = max_deviation_;
  award::TPriceComparison comparison(target.Bidders(), target.List(), options);
  comparison.Run(target.Bidders().Bidders());
  const std::vector<CompareColumn> columns = CompareColumns(comparison, false);
  definitions_ = {"OZ,N,0,100,20,N,0,1,0,1,0,,0,1,48001,,,,,,",
                  "Kurztext,N,1,260,70,N,0,1,0,1,0,,0,1,48003,,,,,,"};
  for (size_t c = 0; c < columns.size(); ++c) {
    definitions_.push_back(
        BidColumnDefinition(columns[c].name, kFirstBidColumn + static_cast<int>(c)));
  }
  const boq::TLVPosList& list = target.List();
  const std::vector<boq::TLvEntryFigures> figures = boq::EstimatedFigures(list, nullptr);
  lines_.clear();
  for (int i = 0; i < list.Count(); ++i) {
    if (!IsComparedLine(comparison, i)) continue;
    Line line{figures[static_cast<size_t>(i)].depth,
              list[i].Kind(),
              {list[i].LvBgBeschr.OZ.Get(), list[i].ShortText},
              {false, false}};
    for (const CompareColumn& column : columns) {
      const CompareValue value = LineValue(comparison, column, i);
      line.cells.push_back(GermanMoney(value.total));
      line.deviates.push_back(value.deviates);
    }
    lines_.push_back(std::move(line));
  }
  Line total{1, 'S', {"", "Summe geprüft"}, {false, false}};
  totals_.clear();
  for (const CompareColumn& column : columns) {
    const CompareValue value = TotalValue(comparison, column);
    total.cells.push_back(GermanMoney(value.total));
    total.deviates.push_back(false);
    if (column.kind == CompareColumnKind::kBidder) totals_.emplace_back(column.name, value.total);
  }
  lines_.push_back(std::move(total));
  reference_ = ReferenceCaption(comparison);
}

void TdmPreisspiegel::CData1C_OnGetStruktur(TCData&, int, TStringList& t) {
  t = definitions_;
}

void TdmPreisspiegel::CData1C_OnStrukturLesen(TCData&, std::vector<TCDataRow>& rows, int& rmax,
                                              bool) {
  for (size_t i = 0; i < lines_.size(); ++i) {
    rows.push_back(
        TCDataRow{.Key = std::to_string(i + 1), .ZArt = lines_[i].kind, .Level = lines_[i].level});
  }
  rmax = static_cast<int>(rows.size());
}

void TdmPreisspiegel::CData1C_OnGetDaten(TCData&, int z, TStringList& t, bool&, char&, char& zart) {
  if (z < 1 || z > static_cast<int>(lines_.size())) return;
  t = lines_[static_cast<size_t>(z - 1)].cells;
  zart = lines_[static_cast<size_t>(z - 1)].kind;
}

bool TdmPreisspiegel::Deviates(int z, int column) const {
  if (z < 1 || z > static_cast<int>(lines_.size())) return false;
  const std::vector<bool>& deviates = lines_[static_cast<size_t>(z - 1)].deviates;
  return column >= 0 && column < static_cast<int>(deviates.size()) &&
         deviates[static_cast<size_t>(column)];
}

}  // namespace korvan::app
