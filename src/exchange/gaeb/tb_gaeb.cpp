#include "exchange/gaeb/tb_gaeb.h"

#include "storage/result_codes.h"

#include "data/common/message_format.h"
#include "data/integrity/data_check.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"

namespace korvan::exchange {

using data::KeyNumber;

TTbGaeb::TTbGaeb(data::TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbGaeb") {
  InitRecord();
}

void TTbGaeb::InitRecord() {
  TStdTB::InitRecord();
  Rec().IdLv = data::kNullId;
}

int TTbGaeb::GetKeyString(data::RecordView record, char index, std::string& key) const {
  if (index != '1') {
    key.clear();
    return -1;
  }
  key = KeyNumber(Of(record).IdLv);
  return static_cast<int>(key.size());
}

std::string TTbGaeb::CurrentRecordToString() const {
  return data::Printf("GAEB-Angaben des LV %d", Rec().IdLv);
}

void TTbGaeb::DoValidateRecord(data::TDataCheck& check) {
  check.SetAvaRecordID(Rec().IdLv);
  check.CheckItemForMandatory("IdLv", Rec().IdLv, data::kNullId);
}

bool TTbGaeb::FindLv(int32_t id_lv) {
  return GetKey(KeyNumber(id_lv), '1');
}

int TTbGaeb::DeleteOfLv(int32_t id_lv) {
  return FindLv(id_lv) ? DeleteRec() : storage::kOk;
}

}  // namespace korvan::exchange
