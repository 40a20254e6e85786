#include "boq/lv/tb_lv_hierarchie.h"

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

TTbLvHierarchie::TTbLvHierarchie(TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbLvHierarchie") {
  InitRecord();
}

void TTbLvHierarchie::InitRecord() {
  TStdTB::InitRecord();
  Rec().IdLv = kNullId;
  Rec().SzLv = kNullId;
  Rec().Num = 1;
  Rec().Alignment = static_cast<uint8_t>(TBoQBkdnAligment::bbaLeft);
}

int TTbLvHierarchie::GetKeyString(RecordView record, char index, std::string& key) const {
  if (index != '1') {
    key.clear();
    return -1;
  }
  const t_Hierarchie_DB_VERSION_201401 level = Of(record);
  key = KeyNumber(level.IdLv) + KeyNumber(level.SzLv);
  return static_cast<int>(key.size());
}

std::string TTbLvHierarchie::CurrentRecordToString() const {
  return "Stufe " + std::to_string(Rec().SzLv) + " von LV " + std::to_string(Rec().IdLv);
}

void TTbLvHierarchie::DoValidateRecord(TDataCheck& check) {
  check.SetAvaRecordID(Rec().SzLv);
  // A level of an LV that is gone belongs to nobody.
  check.CheckItemForElementAsPrimaryKeyInTable("IdLv", Rec().IdLv, kNullId, kLvDbType, kLvTableType,
                                               data::TRepair::kDelete);
  check.CheckItemForMandatory("IdLv", Rec().IdLv, kNullId, data::TRepair::kDelete);
}

// The texts of a level (reference "H" with the level number) go with it once the text
// tables are there.
int TTbLvHierarchie::DeleteAllOf(int32_t lv_id) {
  if (lv_id == kNullId) return storage::kOk;  // a null pattern would match every LV
  return DeleteMatching(KeyNumber(lv_id), '1');
}

}  // namespace korvan::boq
