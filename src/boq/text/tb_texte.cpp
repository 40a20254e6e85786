#include "boq/text/tb_texte.h"

#include "data/common/cp1252.h"
#include "data/common/message_format.h"
#include "data/integrity/data_check.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"

namespace korvan::boq {

using data::KeyNumber;
using data::KeyNumber16;
using data::kNullId;
using data::kNullId16;
using data::Printf;
using data::RecordView;
using data::TDataCheck;
using data::TStdDb;
using data::TStdTB;

namespace {

// The reference kinds as the integrity check explains them.
constexpr char kKinds[] = "LKOVPARIFBDMYTJXZHU123456";
constexpr char kKindsExplained[] =
    "L=Lv-Bez.,K=Kurztext auch für BGs!, O=Lokalität, V=Variable, P=Prüfbemerkung, "
    "A=Abzugsbezeichnung,R=Rechnung, I=Info Lkt, F=Info KE, B=Angebotsprüfungskommentar, "
    "D=Dokumentenbezeichnung,M=Aufmass Bemerkung, Y=Buchung, T=LvTeilmenge, J=Vertrag, X=Abzug "
    "Kommentar, Z=Kontoauszug,H=Hierarchiebezeichnung, U=Entity-Typ,1=EP-Anteilbez.1,"
    "2=EP-Anteilbez.2,3=EP-Anteilbez.3,4=EP-Anteilbez.4,5=EP-Anteilbez.5,6=EP-Anteilbez.6";

std::string TextKey(int32_t id_bezug, char kz_bezug, int16_t id_lang) {
  return TTbTexte::OwnerKey(id_bezug, kz_bezug) + KeyNumber16(id_lang);
}

}  // namespace

TTbTexte::TTbTexte(TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbTexte") {
  InitRecord();
}

void TTbTexte::InitRecord() {
  TStdTB::InitRecord();
  Rec().IdBezug = kNullId;
  Rec().KzBezug = 'K';
  Rec().IdLang = 0;
  Rec().Zeile = 1;
}

std::string TTbTexte::OwnerKey(int32_t id_bezug, char kz_bezug) {
  return KeyNumber(id_bezug) + std::string(1, kz_bezug);
}

int TTbTexte::GetKeyString(RecordView record, char index, std::string& key) const {
  const t_Texte line = Of(record);
  if (index != '1') {
    key.clear();
    return -1;
  }
  key = TextKey(line.IdBezug, line.KzBezug, line.IdLang) + KeyNumber16(line.Zeile);
  return static_cast<int>(key.size());
}

std::string TTbTexte::CurrentRecordToString() const {
  return Printf("Kurztext %d%c Sprache %d Zeile %d", Rec().IdBezug, Rec().KzBezug, Rec().IdLang,
                Rec().Zeile);
}

void TTbTexte::DoValidateRecord(TDataCheck& check) {
  check.SetAvaRecordID(Rec().IdBezug);
  check.CheckItemForMandatory("IdBezug", Rec().IdBezug, kNullId);
  check.CheckItemForCharSelector("KzBezug", Rec().KzBezug, Rec().KzBezug, kKinds, kKindsExplained,
                                 data::TRepair::kClarify);
}

std::vector<std::string> TTbTexte::ReadLines(int32_t id_bezug, char kz_bezug, int16_t id_lang) {
  std::vector<std::string> lines;
  const std::string pattern = TextKey(id_bezug, kz_bezug, id_lang);
  for (bool found = GetFirstKey(pattern); found; found = GetNextKey(pattern)) {
    lines.push_back(Rec().Text.Get());
  }
  return lines;
}

TShortTextResult TTbTexte::WriteLines(int32_t id_bezug, char kz_bezug, int16_t id_lang,
                                      const std::vector<std::string>& lines) {
  std::vector<std::string> stored;
  for (size_t i = 0; i < lines.size(); ++i) {
    data::Cp1252Report report;
    stored.push_back(data::Utf8ToCp1252(lines[i], &report));
    if (!report.Exact()) {
      return {0, Printf("Zeile %zu: ", i + 1) + report.Describe()};
    }
    if (stored.back().size() > static_cast<size_t>(kLineCapacity)) {
      return {0, Printf("Zeile %zu hat %zu Zeichen, höchstens %d passen", i + 1,
                        stored.back().size(), kLineCapacity)};
    }
  }
  if (int result = DeleteMatching(TextKey(id_bezug, kz_bezug, id_lang)); result != 0) {
    return {result, {}};
  }
  for (size_t i = 0; i < lines.size(); ++i) {
    InitRecord();
    Rec().IdBezug = id_bezug;
    Rec().KzBezug = kz_bezug;
    Rec().IdLang = id_lang;
    Rec().Zeile = static_cast<int16_t>(i + 1);
    Rec().Text.SetRaw(stored[i]);
    if (int result = UpDateRec(); result != 0) return {result, {}};
  }
  return {};
}

int TTbTexte::DeleteOwner(int32_t id_bezug, char kz_bezug) {
  return DeleteMatching(OwnerKey(id_bezug, kz_bezug));
}

}  // namespace korvan::boq
