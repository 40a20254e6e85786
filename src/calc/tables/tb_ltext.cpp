#include "calc/tables/tb_ltext.h"

#include <algorithm>
#include <limits>

#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::calc {

using data::KeyNumber;
using data::RecordView;

namespace {

constexpr int kFixedLength = static_cast<int>(sizeof(t_KpLTEXT));

std::string SubItemKey(int32_t id_beschr, int32_t id_upos) {
  return KeyNumber(id_beschr) + KeyNumber(id_upos);
}

}  // namespace

TTbLText::TTbLText(data::TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbLText") {
  InitRecord();
}

void TTbLText::InitRecord() {
  TStdTB::InitRecord();
  Rec().IDBES = Rec().IDUPOS = data::kNullId;
  Rec().IDZEILE = 1;
  Rec().LENTEXT = 0;
}

int TTbLText::GetKeyString(RecordView record, char index, std::string& key) const {
  if (index != '1') {
    key.clear();
    return -1;
  }
  const t_KpLTEXT line = Of(record);
  key = SubItemKey(line.IDBES, line.IDUPOS) + KeyNumber(line.IDZEILE);
  return static_cast<int>(key.size());
}

int TTbLText::RecordLength(RecordView record) const {
  // A damaged length gives a length the stored slot cannot match, so the read names it.
  const int32_t text_length = Of(record).LENTEXT;
  if (text_length < 0) return kFixedLength - 1;
  return kFixedLength + std::min(text_length, std::numeric_limits<int>::max() - kFixedLength);
}

std::string TTbLText::CurrentRecordToString() const {
  return "Unterpositions-Langtext " + std::to_string(Rec().IDBES) + "/" +
         std::to_string(Rec().IDUPOS) + " Zeile " + std::to_string(Rec().IDZEILE);
}

std::string TTbLText::TextOf(RecordView record) const {
  const size_t available = record.size() > sizeof(t_KpLTEXT) ? record.size() - kFixedLength : 0;
  const size_t length = std::min<size_t>(std::max(Of(record).LENTEXT, 0), available);
  return std::string(reinterpret_cast<const char*>(record.data()) + kFixedLength, length);
}

std::vector<std::string> TTbLText::LinesOf(int32_t id_beschr, int32_t id_upos) {
  std::vector<std::string> lines;
  if (id_beschr == data::kNullId) return lines;
  std::vector<std::vector<uint8_t>> records;
  if (GetBatch(SubItemKey(id_beschr, id_upos), '1', records) != storage::kOk) return lines;
  for (const std::vector<uint8_t>& record : records) lines.push_back(TextOf(record));
  return lines;
}

int TTbLText::ReplaceLines(int32_t id_beschr, int32_t id_upos,
                           const std::vector<std::string>& lines) {
  if (int result = DeleteLines(id_beschr, id_upos); result != storage::kOk) return result;
  int32_t number = 1;
  for (const std::string& text : lines) {
    InitRecord();
    Rec().IDBES = id_beschr;
    Rec().IDUPOS = id_upos;
    Rec().IDZEILE = number++;
    std::vector<uint8_t>& record = CurrentRecord();
    record.resize(kFixedLength + text.size());
    std::copy(text.begin(), text.end(), record.begin() + kFixedLength);
    Rec().LENTEXT = static_cast<int32_t>(text.size());
    if (int result = UpDateRec(); result != storage::kOk) return result;
  }
  return storage::kOk;
}

int TTbLText::DeleteLines(int32_t id_beschr, int32_t id_upos) {
  if (id_beschr == data::kNullId) return storage::kOk;
  return DeleteMatching(SubItemKey(id_beschr, id_upos), '1');
}

int TTbLText::DeleteAllOf(int32_t id_beschr) {
  if (id_beschr == data::kNullId) return storage::kOk;
  return DeleteMatching(KeyNumber(id_beschr), '1');
}

}  // namespace korvan::calc
