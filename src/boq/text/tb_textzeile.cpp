#include "boq/text/tb_textzeile.h"

#include <algorithm>
#include <limits>

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
constexpr int kFixedLength = static_cast<int>(sizeof(t_TextZeile));
}

TTbTextzeile::TTbTextzeile(TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbTextzeile") {
  InitRecord();
}

void TTbTextzeile::InitRecord() {
  TStdTB::InitRecord();
  Rec().IdHeader = kNullId;
  Rec().KzHeader = 'T';
  Rec().KzTyp = 'R';
  Rec().Zeile = 1;
  Rec().LENTEXT = 0;
}

std::string TTbTextzeile::LinesKey(int32_t id_header, char kz_header, char kz_typ) {
  std::string key = KeyNumber(id_header) + std::string(1, kz_header);
  if (kz_typ != '\0') key += kz_typ;
  return key;
}

std::string TTbTextzeile::LineKey(int32_t id_header, char kz_header, char kz_typ, int16_t zeile) {
  return LinesKey(id_header, kz_header, kz_typ) + KeyNumber16(zeile);
}

int TTbTextzeile::GetKeyString(RecordView record, char index, std::string& key) const {
  const t_TextZeile line = Of(record);
  if (index != '1') {
    key.clear();
    return -1;
  }
  key = LineKey(line.IdHeader, line.KzHeader, line.KzTyp, line.Zeile);
  return static_cast<int>(key.size());
}

int TTbTextzeile::RecordLength(RecordView record) const {
  // A damaged length gives a length the stored slot cannot match, so the read names it.
  const int32_t text_length = Of(record).LENTEXT;
  if (text_length < 0) return kFixedLength - 1;
  return kFixedLength + std::min(text_length, std::numeric_limits<int>::max() - kFixedLength);
}

std::string TTbTextzeile::Text() const {
  const std::vector<uint8_t>& record = CurrentRecord();
  const size_t available = record.size() > sizeof(t_TextZeile) ? record.size() - kFixedLength : 0;
  const size_t length = std::min<size_t>(std::max(Rec().LENTEXT, 0), available);
  return std::string(reinterpret_cast<const char*>(record.data()) + kFixedLength, length);
}

void TTbTextzeile::SetText(std::string_view bytes) {
  std::vector<uint8_t>& record = CurrentRecord();
  record.resize(kFixedLength + bytes.size());
  std::copy(bytes.begin(), bytes.end(), record.begin() + kFixedLength);
  Rec().LENTEXT = static_cast<int32_t>(bytes.size());
}

std::string TTbTextzeile::CurrentRecordToString() const {
  return Printf("Textzeile %d%c%c Zeile %d", Rec().IdHeader, Rec().KzHeader, Rec().KzTyp,
                Rec().Zeile);
}

void TTbTextzeile::DoValidateRecord(TDataCheck& check) {
  check.SetAvaRecordID(Rec().IdHeader);
  check.CheckItemForMandatory("IdHeader", Rec().IdHeader, kNullId);
  check.CheckItemForCharSelector("KzHeader", Rec().KzHeader, Rec().KzHeader, "TEL",
                                 "T=Text, E=Ergänzungstext, L=Leistungscode",
                                 data::TRepair::kClarify);
  check.CheckItemForCharSelector("KzTyp", Rec().KzTyp, Rec().KzTyp, "TFR",
                                 "T=Text, F=Format, R=RTF", data::TRepair::kClarify);
}

int TTbTextzeile::DeleteLines(int32_t id_header, char kz_header) {
  return DeleteMatching(LinesKey(id_header, kz_header));
}

}  // namespace korvan::boq
