#include "boq/qty/tb_lv_teilmenge.h"

#include "boq/vars/tb_variable.h"
#include "boq/vars/variable_codes.h"
#include "data/integrity/data_check.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::boq {

using data::KeyNumber;
using data::KeyNumber16;
using data::kNullId;
using data::kNullId16;
using data::RecordView;
using data::TDataCheck;
using data::TStdDb;
using data::TStdTB;

namespace {

constexpr int kDrawingKeyWidth = 6;

std::string Sort(uint16_t sort) {
  return KeyNumber(sort, data::kSmallIntKeyWidth);
}

// A source index holds the rows that have that source only.
int SourceKey(int32_t id, std::string key_string, std::string& key) {
  if (id == kNullId) {
    key.clear();
    return -1;
  }
  key = std::move(key_string);
  return static_cast<int>(key.size());
}

}  // namespace

TTbLvTeilmenge::TTbLvTeilmenge(TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbLvTeilmenge") {
  InitRecord();
}

void TTbLvTeilmenge::InitRecord() {
  TStdTB::InitRecord();
  t_LvTeilmenge_2700& row = Rec();
  row.ID = kNullId;
  row.IdBT = kNullId;
  row.IdLkt = kNullId;
  row.IdLVBeschr = kNullId;
  row.IdCad = {kNullId16, kNullId};
  row.IdAufmass = kNullId;
  row.PosKz = ' ';
}

std::string TTbLvTeilmenge::ItemKey(int32_t item_id) {
  return KeyNumber(item_id);
}

int TTbLvTeilmenge::GetKeyString(RecordView record, char index, std::string& key) const {
  const t_LvTeilmenge_2700 row = Of(record);
  switch (index) {
    case '1':
      key = KeyNumber(row.ID);
      break;
    case '2':
      return SourceKey(row.IdBT, KeyNumber(row.IdBT) + Sort(row.SzBT), key);
    case '3':
      return SourceKey(row.IdLkt, KeyNumber(row.IdLkt) + Sort(row.SzLkt), key);
    case '4':
      key = ItemKey(row.IdLVBeschr) + Sort(row.SzLVBeschr);
      break;
    case '5':
      return SourceKey(row.IdCad.IdEntity,
                       KeyNumber(row.IdCad.IdEntity) +
                           KeyNumber16(row.IdCad.IdDrawing, kDrawingKeyWidth) + Sort(row.SzCad),
                       key);
    case '6':
      return SourceKey(row.IdAufmass, KeyNumber(row.IdAufmass) + Sort(row.SzAufmass), key);
    default:
      key.clear();
      return -1;
  }
  return static_cast<int>(key.size());
}

std::string TTbLvTeilmenge::CurrentRecordToString() const {
  return "Teilmenge " + std::to_string(Rec().ID) + " (Nr. " + std::to_string(Rec().SzLVBeschr) +
         ") der Position " + std::to_string(Rec().IdLVBeschr);
}

void TTbLvTeilmenge::DoValidateRecord(TDataCheck& check) {
  t_LvTeilmenge_2700& row = Rec();
  check.SetAvaRecordID(row.ID);
  check.CheckItemForMandatory("Id", row.ID, kNullId);
  check.CheckItemForUniqueKey("Id", row.ID);
  check.CheckItemForCharSelector("PosKz", row.PosKz, ' ',
                                 std::string(" ") + std::string(kPosKzCodes) + '\0', kPosKzText);
  // A partial quantity whose item is gone is an orphan.
  int32_t item = row.IdLVBeschr;
  check.CheckItemForElementAsPrimaryKeyInTable("IdLVBeschr", item, kNullId, kLvDbType,
                                               kLvBeschrTableType, data::TRepair::kDelete);
}

int TTbLvTeilmenge::DeleteRec() {
  TTbVariable variables(Db());
  if (int result = variables.DeleteAllOf(Rec().ID, kOwnerLvPartialQty); result != storage::kOk) {
    return result;
  }
  return TStdTB::DeleteRec();
}

int TTbLvTeilmenge::DeleteAllOf(int32_t item_id) {
  if (item_id == kNullId) return storage::kOk;  // a null pattern would match every item
  return DeleteMatching(ItemKey(item_id), '4');
}

int TTbLvTeilmenge::ListOf(int32_t item_id, std::vector<t_LvTeilmenge_2700>& rows) {
  rows.clear();
  if (item_id == kNullId) return storage::kOk;
  std::vector<std::vector<uint8_t>> records;
  if (int result = GetBatch(ItemKey(item_id), '4', records); result != storage::kOk) return result;
  for (const std::vector<uint8_t>& record : records) rows.push_back(Of(record));
  return storage::kOk;
}

bool TTbLvTeilmenge::FindBySort(int32_t item_id, uint16_t sort) {
  if (item_id == kNullId) return false;
  return GetKey(ItemKey(item_id) + Sort(sort), '4');
}

}  // namespace korvan::boq
