#include "boq/qty/tb_markup_sub_qty.h"

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

TTbMarkupSubQty::TTbMarkupSubQty(TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbMarkupSubQty") {
  InitRecord();
}

void TTbMarkupSubQty::InitRecord() {
  TStdTB::InitRecord();
  Rec().ID = kNullId;
  Rec().KzBezug = kMarkupOwnerItem;
  Rec().IDBezug = kNullId;
  Rec().IdRef = kNullId;
}

std::string TTbMarkupSubQty::OwnerKey(char owner_kind, int32_t owner) {
  return std::string(1, owner_kind) + KeyNumber(owner);
}

int TTbMarkupSubQty::GetKeyString(RecordView record, char index, std::string& key) const {
  const t_MarkupSubQty row = Of(record);
  switch (index) {
    case '1':
      key = KeyNumber(row.ID);
      break;
    case '2':
      key = OwnerKey(row.KzBezug, row.IDBezug) + KeyNumber(row.SzBezug, data::kSmallIntKeyWidth);
      break;
    default:
      key.clear();
      return -1;
  }
  return static_cast<int>(key.size());
}

std::string TTbMarkupSubQty::CurrentRecordToString() const {
  return "Zuschlagsteilmenge " + std::to_string(Rec().ID);
}

void TTbMarkupSubQty::DoValidateRecord(TDataCheck& check) {
  t_MarkupSubQty& row = Rec();
  check.SetAvaRecordID(row.ID);
  check.CheckItemForMandatory("Id", row.ID, kNullId);
  check.CheckItemForUniqueKey("Id", row.ID);
  if (row.KzBezug == kMarkupOwnerItem) {
    int32_t owner = row.IDBezug;
    check.CheckItemForElementAsPrimaryKeyInTable("IDBezug", owner, kNullId, kLvDbType,
                                                 kLvBeschrTableType, data::TRepair::kDelete);
  }
}

int TTbMarkupSubQty::DeleteAllOf(char owner_kind, int32_t owner) {
  if (owner == kNullId) return storage::kOk;  // a null pattern would match every owner
  return DeleteMatching(OwnerKey(owner_kind, owner), '2');
}

}  // namespace korvan::boq
