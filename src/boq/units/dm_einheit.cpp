#include "boq/units/dm_einheit.h"

#include "data/component/dm_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::boq {

using data::KeyNumber16;
using data::ParseListInteger;
using data::TCData;
using data::TCDataRow;
using data::TStdDb;
using data::TStringList;
using data::TValueRule;

namespace {

using Kind = TValueRule::Kind;

enum Column {
  cIdLang,
  cIdEinheit,
  cSz,
  cBezeichnung,
  cEinheit,
  cPreisanteile,
  cNachkommastellen,
  cValFormat,
  cFN003,
  cFN004,
  kColumnCount
};

const std::vector<std::string>& Definitions() {
  static const std::vector<std::string> definitions = {
      "IdLang,I,0,50,6,N,0,1,0,1,0,,0,1,47201,,,,,,",
      "IdEinheit,I,1,50,6,N,0,1,0,1,0,,0,1,47202,,,,,,",
      "Sz,I,2,50,6,N,0,1,1,0,0,,0,1,47203,,,,,,",
      "Bezeichnung,N,3,160,40,N,0,1,1,0,0,,0,1,47204,,,,,,",
      "Einheit,N,4,60,6,N,0,1,1,0,0,,0,1,47205,,,,,,",
      "Preisanteile,G,5,50,1,N,0,1,1,0,0,,0,1,47206,,,,,,",
      "Nachkommastellen,I,6,50,1,N,0,1,1,0,0,,0,1,47207,,,,,,",
      "ValFormat,I,7,50,1,N,0,1,1,0,0,,0,1,47208,,,,,,",
      "FN003,N,8,40,3,N,0,1,1,0,0,,0,1,47209,,,,,,",
      "FN004,N,9,40,3,N,0,1,1,0,0,,0,1,47210,,,,,,",
  };
  return definitions;
}

const TValueRule kRules[kColumnCount] = {
    {.kind = Kind::Integer, .min = 0, .max = 32767},
    {.kind = Kind::Integer, .min = 1, .max = 32767},
    {.kind = Kind::Integer, .min = -32768, .max = 32767},
    {.kind = Kind::Text, .length = 40},
    {.kind = Kind::Text, .length = 6},
    {.kind = Kind::OneOf, .allowed = "123AB"},
    {.kind = Kind::Integer, .min = 0, .max = 9},
    {.kind = Kind::Integer, .min = 0, .max = static_cast<int64_t>(TValFormat::vfInFrc)},
    {.kind = Kind::Text, .length = 3},
    {.kind = Kind::Text, .length = 3},
};

int16_t Small(const std::string& value) {
  return static_cast<int16_t>(*ParseListInteger(value));
}

std::string KeyOf(int16_t id_lang, int16_t id_einheit) {
  return KeyNumber16(id_lang) + KeyNumber16(id_einheit);
}

}  // namespace

TdmEinheit::TdmEinheit(TStdDb& db)
    : TTableListModule(kCDataId, "Einheit", table_, kRules, "Einheit"), table_(db) {
  CData1.SetStruktur(Definitions());
}

void TdmEinheit::CData1C_OnGetStruktur(TCData&, int, TStringList& t) {
  t = Definitions();
}

void TdmEinheit::CData1C_OnStrukturLesen(TCData&, std::vector<TCDataRow>& rows, int& rmax, bool) {
  for (bool found = table_.GetFirstKey("", '1'); found; found = table_.GetNextKey()) {
    rows.push_back(TCDataRow{.Key = KeyOf(table_.Rec().IdLang, table_.Rec().IdEinheit)});
  }
  rmax = CheckedRowCount(static_cast<int>(rows.size()));
}

void TdmEinheit::CData1C_OnGetDaten(TCData& sender, int z, TStringList& t, bool&, char&, char&) {
  if (table_.GetKey(sender.GetKey(z), '1')) t = Values();
}

TStringList TdmEinheit::Values() const {
  const t_Einheit& r = table_.Rec();
  return {std::to_string(r.IdLang),
          std::to_string(r.IdEinheit),
          std::to_string(r.Sz),
          r.Bezeichnung.Get(),
          r.Einheit.Get(),
          r.Preisanteile == '\0' ? std::string() : std::string(1, r.Preisanteile),
          std::to_string(r.Nachkommastellen),
          std::to_string(static_cast<int>(DecodeValFormat(r.ValFormat))),
          r.FN003.Get(),
          r.FN004.Get()};
}

void TdmEinheit::Fill(const TStringList& t) {
  t_Einheit& r = table_.Rec();
  r.IdLang = Small(t[cIdLang]);
  r.IdEinheit = Small(t[cIdEinheit]);
  r.Sz = Small(t[cSz]);
  r.Bezeichnung.Set(t[cBezeichnung]);
  r.Einheit.Set(t[cEinheit]);
  r.Preisanteile = t[cPreisanteile].front();
  r.Nachkommastellen = static_cast<uint8_t>(*ParseListInteger(t[cNachkommastellen]));
  r.ValFormat = static_cast<uint8_t>(*ParseListInteger(t[cValFormat]));
  r.FN003.Set(t[cFN003]);
  r.FN004.Set(t[cFN004]);
}

// A new unit is German, numbered after the highest unit of that language.
void TdmEinheit::CData1C_OnInitData(TCData&, int, TStringList& t) {
  constexpr int16_t kGerman = 49;
  int next_id = 1;
  for (bool found = table_.GetFirstKey(KeyNumber16(kGerman), '1'); found;
       found = table_.GetNextKey()) {
    next_id = std::max(next_id, table_.Rec().IdEinheit + 1);
  }
  next_id = std::min(next_id, 32767);
  t = {std::to_string(kGerman),
       std::to_string(next_id),
       std::to_string(next_id * 10 % 32768),
       "",
       "",
       "1",
       "2",
       "1",
       "",
       ""};
}

std::string TdmEinheit::RowKey(const TStringList& t) const {
  return KeyOf(Small(t[cIdLang]), Small(t[cIdEinheit]));
}

std::string TdmEinheit::DuplicateText(const TStringList& t) const {
  return "Die Einheit " + t[cIdEinheit] + " der Sprache " + t[cIdLang] + " gibt es schon";
}

std::string TdmEinheit::RowName(const TStringList& t) const {
  return t[cEinheit];
}

}  // namespace korvan::boq
