#include "formula/catalogue/dm_reb_formel.h"

#include <algorithm>
#include <optional>

#include "data/component/dm_values.h"

namespace korvan::formula {

using data::TCData;
using data::TCDataRow;
using data::TStringList;
using data::TValueRule;

namespace {

using Kind = TValueRule::Kind;

enum Column { cFormelNr, cBezeichnung, cFormel, cSpaltentext, kColumnCount };

const std::vector<std::string>& Definitions() {
  static const std::vector<std::string> definitions = {
      "FormelNr,I,0,50,3,N,0,1,0,1,0,,0,1,,,,,,,",
      "Bezeichnung,N,1,200,50,N,0,1,1,0,0,,0,1,,,,,,,",
      "Formel,N,2,300,255,N,0,1,1,0,0,,0,1,,,,,,,",
      "Spaltentext,N,3,200,100,N,0,1,1,0,0,,0,1,,,,,,,",
  };
  return definitions;
}

const TValueRule kRules[kColumnCount] = {
    {.kind = Kind::Integer, .min = 0, .max = 999},
    {.kind = Kind::Text, .length = 50},
    {.kind = Kind::Text, .length = 255},
    {.kind = Kind::Text, .length = 100},
};

// A number the list has checked: the catalogue's key of it.
std::string KeyOfNumber(const std::string& nr) {
  return CatalogueKeyOf(std::to_string(*data::ParseListInteger(nr))).value_or(nr);
}

}  // namespace

TdmRebFormel::TdmRebFormel(data::TStdDb& db)
    : TTableListModule(kCDataId, "REBFormel", table_, kRules, "Formel"), table_(db) {
  CData1.SetStruktur(Definitions());
}

void TdmRebFormel::CData1C_OnGetStruktur(TCData&, int, TStringList& t) {
  t = Definitions();
}

void TdmRebFormel::CData1C_OnStrukturLesen(TCData&, std::vector<TCDataRow>& rows, int& rmax, bool) {
  std::string key;
  for (bool found = table_.GetFirstKey("", '1'); found; found = table_.GetNextKey()) {
    table_.GetKeyString(table_.CurrentRecord(), '1', key);
    rows.push_back(TCDataRow{.Key = key});
  }
  rmax = CheckedRowCount(static_cast<int>(rows.size()));
}

void TdmRebFormel::CData1C_OnGetDaten(TCData& sender, int z, TStringList& t, bool&, char&, char&) {
  if (!table_.GetKey(sender.GetKey(z), '1')) return;
  const TRebFormelRow row = TTbRebFormel::RowOf(table_.Rec());
  t = {row.nr, row.bezeichnung, row.formel, row.spaltentext};
}

// A new formula takes the number after the highest one.
void TdmRebFormel::CData1C_OnInitData(TCData&, int, TStringList& t) {
  int next = 0;
  for (bool found = table_.GetFirstKey("", '1'); found; found = table_.GetNextKey()) {
    const std::optional<int64_t> nr = data::ParseListInteger(table_.Rec().FormelNr.Get());
    if (nr) next = std::max<int>(next, static_cast<int>(*nr) + 1);
  }
  t = {std::to_string(std::min(next, 999)), "", "", ""};
}

std::string TdmRebFormel::RowKey(const TStringList& t) const {
  return KeyOfNumber(t[cFormelNr]);
}

std::string TdmRebFormel::DuplicateText(const TStringList& t) const {
  return "Die Formel " + t[cFormelNr] + " gibt es schon";
}

std::string TdmRebFormel::RowName(const TStringList& t) const {
  return t[cFormelNr] + " " + t[cBezeichnung];
}

void TdmRebFormel::Fill(const TStringList& t) {
  t_REBFormel& r = table_.Rec();
  r.FormelNr.Set(std::to_string(*data::ParseListInteger(t[cFormelNr])));
  r.Bezeichnung.Set(t[cBezeichnung]);
  r.Formel.Set(t[cFormel]);
  r.Spaltentext.Set(t[cSpaltentext]);
}

}  // namespace korvan::formula
