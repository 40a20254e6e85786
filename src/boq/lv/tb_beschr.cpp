#include "boq/lv/tb_beschr.h"

#include "data/integrity/data_check.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::boq {

using data::KeyNumber;
using data::kNullId;
using data::RecordView;
using data::TDataCheck;
using data::TStdDb;
using data::TStdTB;

TTbBeschr::TTbBeschr(TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbBeschr") {
  InitRecord();
}

void TTbBeschr::InitRecord() {
  TStdTB::InitRecord();
  Rec().Id = kNullId;
  Rec().IdEinheit = data::kNullId16;
}

int TTbBeschr::GetKeyString(RecordView record, char index, std::string& key) const {
  if (index != '1') {
    key.clear();
    return -1;
  }
  key = KeyNumber(Of(record).Id);
  return static_cast<int>(key.size());
}

std::string TTbBeschr::CurrentRecordToString() const {
  return "Beschreibung " + std::to_string(Rec().Id);
}

void TTbBeschr::DoValidateRecord(TDataCheck& check) {
  check.SetAvaRecordID(Rec().Id);
  check.CheckItemForMandatory("Id", Rec().Id, kNullId);
  check.CheckItemForUniqueKey("Id", Rec().Id);
}

int TTbBeschr::DeleteIfThere(int32_t id) {
  if (id == kNullId || !GetKey(KeyNumber(id), '1')) return storage::kOk;
  return DeleteRec();
}

}  // namespace korvan::boq
