#include "boq/lv/tb_struktur.h"

#include "boq/lv/lv_codes.h"
#include "boq/lv/tb_lv_beschr.h"
#include "boq/lv/tb_lv_bg.h"
#include "data/integrity/data_check.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::boq {

using data::KeyNumber;
using data::kNullId;
using data::kRootParentId;
using data::RecordView;
using data::TDataCheck;
using data::TRepair;
using data::TStdDb;
using data::TStdTB;

namespace {

// The placement part of indexes 3 and 4: parent group and item with their sort numbers.
std::string Placement(const t_Struktur& row) {
  return KeyNumber(row.ZuBg) + KeyNumber(row.SzBg) + KeyNumber(row.ZuPos) + KeyNumber(row.SzPos);
}

}  // namespace

TTbStruktur::TTbStruktur(TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbStruktur") {
  InitRecord();
}

void TTbStruktur::InitRecord() {
  TStdTB::InitRecord();
  Rec().IdLv = kNullId;
  Rec().IdBgBeschr = kNullId;
  Rec().KzBgBeschr = kKindItem;
}

char TTbStruktur::EntryTableOf(char kind) {
  return kind == kKindGroup ? kLvBgTableType : kLvBeschrTableType;
}

int TTbStruktur::GetKeyString(RecordView record, char index, std::string& key) const {
  const t_Struktur row = Of(record);
  switch (index) {
    case '1':
      key = KeyNumber(row.IdBgBeschr);
      break;
    case '2':
      key = KeyNumber(row.IdLv) + KeyNumber(row.SzLv);
      break;
    case '3':
      key = KeyNumber(row.IdLv) + std::string(1, row.KzBgBeschr == '\0' ? '0' : row.KzBgBeschr) +
            Placement(row);
      break;
    case '4':
      key = KeyNumber(row.IdLv) + Placement(row);
      break;
    default:
      key.clear();
      return -1;
  }
  return static_cast<int>(key.size());
}

std::string TTbStruktur::CurrentRecordToString() const {
  return "Eintrag " + std::to_string(Rec().IdBgBeschr) + " (" + std::string(1, Rec().KzBgBeschr) +
         ") von LV " + std::to_string(Rec().IdLv);
}

void TTbStruktur::DoValidateRecord(TDataCheck& check) {
  t_Struktur& row = Rec();
  check.SetAvaRecordID(row.IdBgBeschr);
  if (row.ZuBg == kRootParentId) {
    check.SetAvaRecordComment(CurrentRecordToString() + "\n      " + std::string(kRootParentHint));
  }
  check.CheckItemForUniqueKey("IdBgBeschr", row.IdBgBeschr);
  // A row without its LV, its parent or its record is an orphan.
  check.CheckItemForMandatory("IdLv", row.IdLv, kNullId, TRepair::kDelete);
  check.CheckItemForElementAsPrimaryKeyInTable("IdLv", row.IdLv, kNullId, kLvDbType, kLvTableType,
                                               TRepair::kDelete);
  check.CheckItemForCharSelector("KzBgBeschr", row.KzBgBeschr, kKindItem, kKzBgBeschrCodes,
                                 kKzBgBeschrText, TRepair::kClarify);
  check.CheckItemForElementAsPrimaryKeyInTable("ZuBg", row.ZuBg, kRootParentId, kLvDbType,
                                               kLvBgTableType, TRepair::kDelete);
  if (row.ZuPos != kNullId) {
    check.CheckItemForElementAsPrimaryKeyInTable("ZuPos", row.ZuPos, 0, kLvDbType,
                                                 kLvBeschrTableType, TRepair::kDelete);
  }
  check.CheckItemForMandatory("IdBgBeschr", row.IdBgBeschr, kNullId, TRepair::kDelete);
  check.CheckItemForElementAsPrimaryKeyInTable("IdBgBeschr", row.IdBgBeschr, kNullId, kLvDbType,
                                               EntryTableOf(row.KzBgBeschr), TRepair::kDelete);
}

int TTbStruktur::DeleteRec() {
  const int32_t id = Rec().IdBgBeschr;
  if (id != kNullId) {
    const std::string key = KeyNumber(id);
    if (Rec().KzBgBeschr == kKindGroup) {
      TTbLvBg groups(Db());
      if (groups.GetKey(key, '1')) {
        if (int result = groups.DeleteRec(); result != storage::kOk) return result;
      }
    } else {
      // The description belongs to the LV's entry; a catalog keeps its own.
      TTbLvBeschr items(Db());
      if (items.GetKey(key, '1')) {
        if (int result = items.DeleteRecEx(true); result != storage::kOk) return result;
      }
    }
  }
  return TStdTB::DeleteRec();
}

int TTbStruktur::DeleteAllOf(int32_t lv_id) {
  if (lv_id == kNullId) return storage::kOk;  // a null pattern would match every LV
  return DeleteMatching(KeyNumber(lv_id), '2');
}

int TTbStruktur::CountOf(int32_t lv_id, uint32_t* count) {
  std::vector<std::string> keys;
  std::vector<int32_t> positions;
  *count = 0;
  if (lv_id == kNullId) return storage::kOk;
  if (int result = GetKeyBatch(KeyNumber(lv_id), '2', keys, positions); result != storage::kOk) {
    return result;
  }
  *count = static_cast<uint32_t>(keys.size());
  return storage::kOk;
}

}  // namespace korvan::boq
