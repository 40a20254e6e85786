#include "calc/tables/tb_aupos.h"

#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::calc {

using data::KeyNumber;
using data::RecordView;

TTbAUPos::TTbAUPos(data::TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbAUPos") {
  InitRecord();
}

void TTbAUPos::InitRecord() {
  TStdTB::InitRecord();
  t_KpAUPos_729& line = Rec();
  line.IDBES = line.IDUPOS = line.IDKA = data::kNullId;
  line.IDMAT = line.IDLIEF = data::kNullId;
  line.MATMF = line.ZEITMF = line.RSVMF = line.RSVWF = line.SOKOMF = line.SOKOWF = 1.0;
  line.MLTLF = 1.0;
  for (data::t_WaeBetrag* amount :
       {&line.RSVWMAN, &line.SOKOWMAN, &line.MLAVRMAN, &line.MLBSMAN, &line.FWMAN}) {
    amount->IdWaehrung = data::kOwnerCurrencyId;
  }
}

std::string TTbAUPos::ItemKey(int32_t id_beschr) {
  return KeyNumber(id_beschr);
}

int TTbAUPos::GetKeyString(RecordView record, char index, std::string& key) const {
  if (index != '1') {
    key.clear();
    return -1;
  }
  const t_KpAUPos_729 line = Of(record);
  key = KeyNumber(line.IDBES) + KeyNumber(line.IDUPOS) + std::string(1, line.KZKOART);
  return static_cast<int>(key.size());
}

std::string TTbAUPos::CurrentRecordToString() const {
  return "Kostenansatz " + std::to_string(Rec().IDBES) + "/" + std::to_string(Rec().IDUPOS) + " " +
         Rec().KZKOART;
}

std::vector<t_KpAUPos_729> TTbAUPos::LinesOf(int32_t id_beschr) {
  std::vector<t_KpAUPos_729> lines;
  if (id_beschr == data::kNullId) return lines;
  std::vector<std::vector<uint8_t>> records;
  if (GetBatch(ItemKey(id_beschr), '1', records) != storage::kOk) return lines;
  for (const std::vector<uint8_t>& record : records) lines.push_back(Of(record));
  return lines;
}

int TTbAUPos::DeleteAllOf(int32_t id_beschr) {
  if (id_beschr == data::kNullId) return storage::kOk;
  return DeleteMatching(ItemKey(id_beschr), '1');
}

TTbUPos::TTbUPos(data::TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbUPos") {
  InitRecord();
}

void TTbUPos::InitRecord() {
  TStdTB::InitRecord();
  Rec().IDBES = Rec().IDUPOS = Rec().STLBBTLG = data::kNullId;
  Rec().KZUPOS = ' ';
  Rec().MENGE = 1.0;
}

int TTbUPos::GetKeyString(RecordView record, char index, std::string& key) const {
  if (index != '1') {
    key.clear();
    return -1;
  }
  const t_KpUPos sub_item = Of(record);
  key = KeyNumber(sub_item.IDBES) + KeyNumber(sub_item.IDUPOS);
  return static_cast<int>(key.size());
}

std::string TTbUPos::CurrentRecordToString() const {
  return "Unterposition " + std::to_string(Rec().IDBES) + "/" + std::to_string(Rec().IDUPOS);
}

int TTbUPos::DeleteAllOf(int32_t id_beschr) {
  if (id_beschr == data::kNullId) return storage::kOk;
  return DeleteMatching(KeyNumber(id_beschr), '1');
}

}  // namespace korvan::calc
