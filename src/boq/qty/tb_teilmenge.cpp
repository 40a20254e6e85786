#include "boq/qty/tb_teilmenge.h"

#include "boq/vars/tb_variable.h"
#include "boq/vars/variable_codes.h"
#include "data/integrity/data_check.h"
#include "data/records/money_fields.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::boq {

using data::KeyNumber;
using data::kNullId;
using data::kNullId16;
using data::RecordView;
using data::TDataCheck;
using data::TStdDb;
using data::TStdTB;

namespace {


int ReferenceKey(int32_t id, uint16_t sort, std::string& key) {
  key = KeyNumber(id) + KeyNumber(sort, data::kSmallIntKeyWidth);
  return static_cast<int>(key.size());
}

}  // namespace

TTbTeilmenge::TTbTeilmenge(TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbTeilmenge") {
  InitRecord();
}

void TTbTeilmenge::InitRecord() {
  TStdTB::InitRecord();
  data::SetCurrencyIds(kTeilmengeLayout, CurrentRecord(), data::kOwnerCurrencyId);
  t_Teilmenge_201501& row = Rec();
  row.ID = kNullId;
  row.IdBT = kNullId;
  row.IdLkt = kNullId;
  row.IdLVBeschr = kNullId;
  row.IdCAD = {kNullId16, kNullId};
  row.Bedarf = ' ';
}

int TTbTeilmenge::GetKeyString(RecordView record, char index, std::string& key) const {
  const t_Teilmenge_201501 row = Of(record);
  switch (index) {
    case '1':
      key = KeyNumber(row.ID);
      return static_cast<int>(key.size());
    case '2':
      return ReferenceKey(row.IdLkt, row.SzLkt, key);
    case '3':
      if (row.IdLVBeschr == kNullId) break;
      return ReferenceKey(row.IdLVBeschr, row.SzLVBeschr, key);
    case '4':
      if (row.IdBT == kNullId) break;
      return ReferenceKey(row.IdBT, row.SzBT, key);
    default:
      break;
  }
  key.clear();
  return -1;
}

std::string TTbTeilmenge::CurrentRecordToString() const {
  return "Kostenplanungs-Teilmenge " + std::to_string(Rec().ID);
}

void TTbTeilmenge::DoValidateRecord(TDataCheck& check) {
  t_Teilmenge_201501& row = Rec();
  check.SetAvaRecordID(row.ID);
  check.CheckItemForMandatory("Id", row.ID, kNullId);
  check.CheckItemForUniqueKey("Id", row.ID);
  int32_t item = row.IdLVBeschr;
  check.CheckItemForElementAsPrimaryKeyInTable("IdLVBeschr", item, kNullId, kLvDbType,
                                               kLvBeschrTableType);
  row.IdLVBeschr = item;
}

int TTbTeilmenge::DeleteRec() {
  TTbVariable variables(Db());
  if (int result = variables.DeleteAllOf(Rec().ID, kOwnerPartialQty); result != storage::kOk) {
    return result;
  }
  return TStdTB::DeleteRec();
}

}  // namespace korvan::boq
