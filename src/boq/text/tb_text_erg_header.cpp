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

TTbTextErgHeader::TTbTextErgHeader(TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbTextErgHeader") {
  InitRecord();
}

void TTbTextErgHeader::InitRecord() {
  TStdTB::InitRecord();
  Rec().Id = kNullId;
  Rec().IdBezug = kNullId;
  Rec().KzBezug = 'L';
  Rec().IdBieter = kNullId;
  Rec().KnrArt = 'A';
  Rec().IdSme = kNullId;
  Rec().IdSmi = kNullId;
  Rec().IdApr = kNullId;
}

std::string TTbTextErgHeader::OwnerKey(int32_t id_bezug, char kz_bezug, int32_t id_bieter,
                                       int16_t id_lang) {
  return KeyNumber(id_bezug) + std::string(1, kz_bezug) + KeyNumber(id_bieter) +
         KeyNumber16(id_lang);
}

int TTbTextErgHeader::GetKeyString(RecordView record, char index, std::string& key) const {
  const t_TextErgHeader_201501 erg = Of(record);
  switch (index) {
    case '1':
      key = KeyNumber(erg.Id);
      break;
    case '2':
      key = OwnerKey(erg.IdBezug, erg.KzBezug, erg.IdBieter, erg.IdLang) + KeyNumber(erg.TErgStart);
      break;
    case '3':
      key = std::string(1, erg.KzBezug) + KeyNumber(erg.IdBieter) + KeyNumber(erg.IdBezug) +
            KeyNumber16(erg.IdLang) + KeyNumber(erg.TErgStart);
      break;
    default:
      key.clear();
      return -1;
  }
  return static_cast<int>(key.size());
}

std::string TTbTextErgHeader::CurrentRecordToString() const {
  return Printf("Textergänzung %d (%d%c, T%c%d)", Rec().Id, Rec().IdBezug, Rec().KzBezug,
                Rec().KnrArt, Rec().Knr);
}

int TTbTextErgHeader::DeleteRec() {
  TTbTextzeile lines(Db());
  if (int result = lines.DeleteLines(Rec().Id, 'E'); result != 0) return result;
  return TStdTB::DeleteRec();
}

int TTbTextErgHeader::DeleteOwner(int32_t id_bezug, char kz_bezug) {
  return DeleteMatching(KeyNumber(id_bezug) + std::string(1, kz_bezug), '2');
}

void TTbTextErgHeader::DoValidateRecord(TDataCheck& check) {
  check.SetAvaRecordID(Rec().Id);
  check.CheckItemForMandatory("Id", Rec().Id, kNullId);
  check.CheckItemForUniqueKey("Id", Rec().Id);
  check.CheckItemForMandatory("IdBezug", Rec().IdBezug, kNullId);
  check.CheckItemForCharSelector("KzBezug", Rec().KzBezug, Rec().KzBezug, "KL",
                                 "K=Kurztext zu Beschr, L=Langtext zu Beschr",
                                 data::TRepair::kClarify);
  check.CheckItemForCharSelector("KnrArt", Rec().KnrArt, 'A', "AB", "A=Auslober, B=Bieter");
}

}  // namespace korvan::boq
