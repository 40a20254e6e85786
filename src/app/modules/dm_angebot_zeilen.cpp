#include "app/modules/dm_angebot_zeilen.h"

#include <cmath>
#include <memory>

#include "app/cli/german_number.h"
#include "app/commands/bid/bid_lv.h"
#include "app/commands/lv/lv_totals_view.h"
#include "award/bid/bid_columns.h"
#include "boq/model/lv_entry_totals.h"

namespace korvan::app {
namespace {

using data::TCData;
using data::TCDataRow;
using data::TStringList;

bool Priced(const award::TdmAngebot& bid, int line) {
  return bid.Lv()[line].IsGroup() || bid.IsPriced(line);
}

std::string Percent(float value) {
  return std::fabs(value) < 0.0001F ? std::string() : GermanFigure(value, "%.2f");
}

std::string AmountOrEmpty(double value) {
  return std::fabs(value) < 0.0001 ? std::string() : GermanMoney(value);
}

// The cells of LV line `i` of the bid in the order of award::TBidColumn.
std::vector<std::string> CellsOf(const award::TdmAngebot& bid, int i, BidLv& target) {
  const boq::TLvPos& entry = bid.Lv()[i];
  const award::TAO& line = bid.FAList()[static_cast<size_t>(i)];
  const auto& record = line.Angebot;
  std::vector<std::string> cells(award::kBidColumnCount);
  cells[award::bcOz] = entry.LvBgBeschr.OZ.Get();
  cells[award::bcKurztext] = entry.ShortText;
  if (!line.Kommentar.empty()) cells[award::bcKommentar] = line.Kommentar.front();
  if (record.Kennz != ' ' && record.Kennz != '\0') cells[award::bcAnmerkung] = {record.Kennz};
  if (!Priced(bid, i)) return cells;
  if (entry.IsGroup()) {
    cells[award::bcGp] = GermanMoney(record.GP.Betrag);
    cells[award::bcNachlassProz] = Percent(record.NachlassProz);
    cells[award::bcGpNachNl] = GermanMoney(record.GPnachNL.Betrag);
    cells[award::bcPauschal] = AmountOrEmpty(record.GPPsch.Betrag);
    return cells;
  }
  const boq::TAvaUiValueConverter& converter = target.Converter();
  const boq::TUnitList& units = target.Project().Units();
  cells[award::bcMenge] = QuantityText(entry, record.AMenge, units, converter);
  cells[award::bcEinheit] = entry.Unit;
  cells[award::bcEp] = GermanMoney(record.EP.Betrag);
  cells[award::bcGp] = GermanMoney(record.GP.Betrag);
  cells[award::bcNachlassProz] = Percent(record.NachlassProz);
  cells[award::bcGpNachNl] = GermanMoney(record.GPnachNL.Betrag);
  cells[award::bcLvMenge] = QuantityText(entry, bid.LvBidQuantity(i), units, converter);
  return cells;
}

}  // namespace

TdmAngebotZeilen::TdmAngebotZeilen(std::string data_dir, std::string project, int32_t lv_id,
                                   int bidder)
    : TSTDdataModule(kCDataId, "Angebot"),
      data_dir_(std::move(data_dir)),
      project_(std::move(project)),
      lv_id_(lv_id),
      bidder_(bidder) {
  CData1.SetStruktur(award::BidColumnDefinitions());
}

void TdmAngebotZeilen::CData1C_OnGetStruktur(TCData&, int, TStringList& t) {
  t = award::BidColumnDefinitions();
}

void TdmAngebotZeilen::Read() {
  BidLv target(data_dir_, project_, std::to_string(lv_id_), false);
  std::unique_ptr<award::TdmAngebot> bid =
      target.Bidders().OpenBid(target.Bidder(std::to_string(bidder_)));
  bid->ReadTexts();
  bid->Recalculate();
  award::t_Bieter_DB_VERSION_3100 bidder = bid->Bidder();
  bidder_name_ = bidder.Bietername.Get();
  totals_ = award::ComputeBidderSums(bidder, bid->Rounding());
  const int16_t currency = target.List().FLv().IdWae;
  currency_ = target.Project().CurrencySymbol(
      currency != data::kOwnerCurrencyId ? currency : target.Project().Currency());
  const std::vector<boq::TLvEntryFigures> figures = boq::EstimatedFigures(bid->Lv(), nullptr);
  lines_.clear();
  for (int i = 0; i < bid->Lv().Count(); ++i) {
    lines_.push_back(
        {bid->Lv()[i].Kind(), figures[static_cast<size_t>(i)].depth, CellsOf(*bid, i, target)});
  }
}

void TdmAngebotZeilen::CData1C_OnStrukturLesen(TCData&, std::vector<TCDataRow>& rows, int& rmax,
                                               bool) {
  try {
    Read();
  } catch (const std::runtime_error& error) {
    last_error_ = error.what();
    rmax = -1;
    return;
  }
  for (size_t i = 0; i < lines_.size(); ++i) {
    rows.push_back(
        TCDataRow{.Key = std::to_string(i + 1), .ZArt = lines_[i].kind, .Level = lines_[i].level});
  }
  rmax = static_cast<int>(rows.size());
}

void TdmAngebotZeilen::CData1C_OnGetDaten(TCData&, int z, TStringList& t, bool&, char&,
                                          char& zart) {
  if (z < 1 || z > static_cast<int>(lines_.size())) return;
  const Line& line = lines_[static_cast<size_t>(z - 1)];
  t = line.cells;
  zart = line.kind;
}

std::string TdmAngebotZeilen::TotalsText() const {
  const std::string unit = " " + currency_;
  std::string text = "Geprüft " + GermanMoney(totals_.checked) + unit + " · Summe ./. NL " +
                     GermanMoney(totals_.after_discount) + unit;
  if (std::fabs(totals_.lump_sum) >= 0.0001) {
    text += " · Pauschal " + GermanMoney(totals_.lump_sum) + unit;
  }
  return text + " · Netto " + GermanMoney(totals_.net) + unit + " · MwSt " +
         GermanMoney(totals_.vat) + unit + " · Brutto " + GermanMoney(totals_.gross) + unit;
}

}  // namespace korvan::app
