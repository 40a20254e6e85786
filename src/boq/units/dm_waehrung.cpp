#include "boq/units/dm_waehrung.h"

#include <limits>

#include "data/component/dm_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::boq {

using data::FormatJaNein;
using data::FormatListReal;
using data::KeyNumber;
using data::ParseJaNein;
using data::ParseListInteger;
using data::ParseListReal;
using data::TCData;
using data::TCDataRow;
using data::TStdDb;
using data::TStringList;
using data::TValueRule;

namespace {

using Kind = TValueRule::Kind;
constexpr int64_t kInt32Max = std::numeric_limits<int32_t>::max();

enum Column {
  cID,
  cLand,
  cBez,
  cSymbol,
  cFaktor,
  cNachkomma,
  cBasis,
  cLandKz,
  cNachkomma2,
  cIdLand,
  kColumnCount
};

const std::vector<std::string>& Definitions() {
  static const std::vector<std::string> definitions = {
      "ID,I,0,60,11,N,0,1,0,1,0,,0,1,47101,,,,,,",
      "Land,N,1,160,55,N,0,1,1,0,0,,0,1,47102,,,,,,",
      "Bez,N,2,160,55,N,0,1,1,0,0,,0,1,47103,,,,,,",
      "Symbol,N,3,60,4,N,0,1,1,0,0,,0,1,47104,,,,,,",
      "Faktor,R,4,90,14,N,6,1,1,0,0,,1,1,47105,,,,,,",
      "Nachkomma,I,5,50,2,N,0,1,1,0,0,,0,1,47106,,,,,,",
      "kzBasis,G,6,50,1,N,0,1,1,0,0,,0,1,47107,,,,,,",
      "kzLand,G,7,50,1,N,0,1,1,0,0,,0,1,47108,,,,,,",
      "Nachkomma2,I,8,50,2,N,0,1,1,0,0,,0,1,47109,,,,,,",
      "IdLand,I,9,60,11,N,0,1,1,0,0,,0,1,47110,,,,,,",
  };
  return definitions;
}

const TValueRule kRules[kColumnCount] = {
    {.kind = Kind::Integer, .min = 1, .max = kInt32Max},
    {.kind = Kind::Text, .length = 55},
    {.kind = Kind::Text, .length = 55},
    {.kind = Kind::Text, .length = 4},
    {.kind = Kind::Real},
    {.kind = Kind::Integer, .min = 0, .max = 10},
    {.kind = Kind::JaNein},
    {.kind = Kind::JaNein},
    {.kind = Kind::Integer, .min = 0, .max = 10},
    {.kind = Kind::Integer, .min = 0, .max = kInt32Max},
};

int32_t IdOf(const TStringList& t) {
  return static_cast<int32_t>(*ParseListInteger(t[cID]));
}

}  // namespace

TdmWaehrung::TdmWaehrung(TStdDb& db)
    : TTableListModule(kCDataId, "Waehrung", table_, kRules, "Währung"), table_(db) {
  CData1.SetStruktur(Definitions());
}

void TdmWaehrung::CData1C_OnGetStruktur(TCData&, int, TStringList& t) {
  t = Definitions();
}

void TdmWaehrung::CData1C_OnStrukturLesen(TCData&, std::vector<TCDataRow>& rows, int& rmax, bool) {
  for (bool found = table_.GetFirstKey("", '1'); found; found = table_.GetNextKey()) {
    rows.push_back(TCDataRow{.Key = KeyNumber(table_.Rec().ID)});
  }
  rmax = CheckedRowCount(static_cast<int>(rows.size()));
}

void TdmWaehrung::CData1C_OnGetDaten(TCData& sender, int z, TStringList& t, bool&, char&, char&) {
  if (table_.GetKey(sender.GetKey(z), '1')) t = Values();
}

TStringList TdmWaehrung::Values() const {
  const t_Waehrung& r = table_.Rec();
  return {std::to_string(r.ID),
          r.Land.Get(),
          r.Bez.Get(),
          r.Symbol.Get(),
          FormatListReal(r.Faktor),
          std::to_string(r.Nachkomma),
          FormatJaNein(r.kzBasis != 0),
          FormatJaNein(r.kzLand != 0),
          std::to_string(r.Nachkomma2),
          std::to_string(r.IdLand)};
}

void TdmWaehrung::Fill(const TStringList& t) {
  t_Waehrung& r = table_.Rec();
  r.ID = IdOf(t);
  r.Land.Set(t[cLand]);
  r.Bez.Set(t[cBez]);
  r.Symbol.Set(t[cSymbol]);
  r.Faktor = *ParseListReal(t[cFaktor]);
  r.Nachkomma = static_cast<int32_t>(*ParseListInteger(t[cNachkomma]));
  r.kzBasis = *ParseJaNein(t[cBasis]) ? 1 : 0;
  r.kzLand = *ParseJaNein(t[cLandKz]) ? 1 : 0;
  r.Nachkomma2 = static_cast<int32_t>(*ParseListInteger(t[cNachkomma2]));
  r.IdLand = static_cast<int32_t>(*ParseListInteger(t[cIdLand]));
}

void TdmWaehrung::CData1C_OnInitData(TCData&, int, TStringList& t) {
  int32_t next_id = 1;
  for (bool found = table_.GetFirstKey("", '1'); found; found = table_.GetNextKey()) {
    if (table_.Rec().ID < kEuroCurrencyId) next_id = std::max(next_id, table_.Rec().ID + 1);
  }
  t = {std::to_string(next_id), "", "", "", "1", "2", "N", "N", "2", "0"};
}

std::string TdmWaehrung::RowKey(const TStringList& t) const {
  return KeyNumber(IdOf(t));
}

std::string TdmWaehrung::DuplicateText(const TStringList& t) const {
  return "Die Währung mit der ID " + t[cID] + " gibt es schon";
}

std::string TdmWaehrung::RowName(const TStringList& t) const {
  return t[cSymbol];
}

}  // namespace korvan::boq
