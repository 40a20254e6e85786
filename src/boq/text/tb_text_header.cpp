#include "boq/text/tb_text_header.h"

#include <cstddef>
#include <vector>

#include "boq/lv/lv_entry_records.h"
#include "boq/lv/lv_table_types.h"
#include "boq/text/tb_text_erg_header.h"
#include "boq/text/tb_textzeile.h"
#include "data/common/message_format.h"
#include "data/integrity/data_check.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"

namespace korvan::boq {

using data::KeyNumber;
using data::KeyNumber16;
using data::kNullId;
using data::Printf;
using data::RecordView;
using data::TDataCheck;
using data::TStdDb;
using data::TStdTB;

namespace {

constexpr char kKinds[] = "KLVDHIJZNBUOGC";
// The explanation as the integrity check shows it, the misspelling of G included.
constexpr char kKindsExplained[] =
    "K=Kurztext zu Beschr, L=Langtext zu Beschr, V=Vertrag, D=Notiz an der Adresse,H=Hinweis1 "
    "zu KE, I=Hinweis2 zu KE, J=Bemerkung am Vertrag, Z=Zusatztext Lkt,N=Nachtragsbegründung, "
    "B=zusätzl. Text zum Bieter, U=Unterpositionslangtext ,O=Langtext an der Lokalität,G=GEAB "
    "Projekt Beschreibung am importierten LV,C=Kommentar am LV";

// The kinds whose texts may have complements.
bool HasComplements(char kz_bezug) {
  return kz_bezug == 'K' || kz_bezug == 'L';
}

}  // namespace

TTbTextHeader::TTbTextHeader(TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbTextHeader") {
  InitRecord();
}

void TTbTextHeader::InitRecord() {
  TStdTB::InitRecord();
  Rec().Id = kNullId;
  Rec().IdBezug = kNullId;
  Rec().KzBezug = 'L';
  Rec().RandUnit = 'Z';
}

std::string TTbTextHeader::OwnerKey(int32_t id_bezug, char kz_bezug, int16_t id_lang) {
  return KeyNumber(id_bezug) + std::string(1, kz_bezug) + KeyNumber16(id_lang);
}

int TTbTextHeader::GetKeyString(RecordView record, char index, std::string& key) const {
  const t_Textheader header = Of(record);
  switch (index) {
    case '1':
      key = KeyNumber(header.Id);
      break;
    case '2':
      key = OwnerKey(header.IdBezug, header.KzBezug, header.IdLang);
      break;
    default:
      key.clear();
      return -1;
  }
  return static_cast<int>(key.size());
}

std::string TTbTextHeader::CurrentRecordToString() const {
  return Printf("Langtext %d (%d%c Sprache %d)", Rec().Id, Rec().IdBezug, Rec().KzBezug,
                Rec().IdLang);
}

int TTbTextHeader::DeleteRec() {
  TTbTextzeile lines(Db());
  for (char kz_header : {'T', 'L'}) {
    if (int result = lines.DeleteLines(Rec().Id, kz_header); result != 0) return result;
  }
  if (HasComplements(Rec().KzBezug)) {
    // The complements of this text: every bidder's, of this header's language.
    TTbTextErgHeader complements(Db());
    const std::string pattern = KeyNumber(Rec().IdBezug) + std::string(1, Rec().KzBezug);
    std::vector<int32_t> ids;
    for (bool more = complements.GetFirstKey(pattern, '2'); more;
         more = complements.GetNextKey(pattern, '2')) {
      if (complements.Rec().IdLang == Rec().IdLang) ids.push_back(complements.Rec().Id);
    }
    for (int32_t id : ids) {
      if (!complements.GetKey(KeyNumber(id), '1')) continue;
      if (int result = complements.DeleteRec(); result != 0) return result;
    }
  }
  return TStdTB::DeleteRec();
}

int TTbTextHeader::DeleteOwner(int32_t id_bezug, char kz_bezug) {
  return DeleteMatching(KeyNumber(id_bezug) + std::string(1, kz_bezug), '2');
}

void TTbTextHeader::DoValidateRecord(TDataCheck& check) {
  check.SetAvaRecordID(Rec().Id);
  check.CheckItemForMandatory("Id", Rec().Id, kNullId);
  check.CheckItemForUniqueKey("Id", Rec().Id);
  check.CheckItemForMandatory("IdBezug", Rec().IdBezug, kNullId);
  check.CheckItemForCharSelector("KzBezug", Rec().KzBezug, Rec().KzBezug, kKinds, kKindsExplained,
                                 data::TRepair::kClarify);
  check.CheckItemForCharSelector("RandUnit", Rec().RandUnit, 'Z', "MZ", "M=mm x 100, Z=Zeichen");
  // The short and long texts of a description whose description is gone are reported, not
  // deleted: the text may be all that is left of an entry lost to damage.
  if (Rec().KzBezug == 'K' || Rec().KzBezug == 'L') {
    check.CheckItemForElementAsPrimaryKeyInTable("IdBezug", Rec().IdBezug, kNullId, kLvDbType,
                                                 kBeschrTableType, data::TRepair::kClarify);
    // A description belongs to one entry: a group or an item, never both.
    constexpr size_t kDescriptionField =
        offsetof(t_LVBg_3000, LvBgBeschr1) + offsetof(t_LvBgBeschr_3000, IDBeschr);
    static_assert(kDescriptionField ==
                  offsetof(t_LVBeschr_3000, LvBgBeschr1) + offsetof(t_LvBgBeschr_3000, IDBeschr));
    check.CheckItemForElementInOneOfTables("IdBezug", Rec().IdBezug, kLvDbType, kLvBgTableType,
                                           kLvBeschrTableType, kDescriptionField,
                                           "- DS in beiden Hierarchietabellen enthalten -");
  }
}

}  // namespace korvan::boq
