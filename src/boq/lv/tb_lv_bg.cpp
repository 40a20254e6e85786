#include "boq/lv/tb_lv_bg.h"

#include "boq/lv/lv_entry_common.h"
#include "boq/lv/tb_beschr.h"
#include "data/records/money_fields.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::boq {

using data::KeyNumber;
using data::RecordView;
using data::TDataCheck;
using data::TStdDb;
using data::TStdTB;

TTbLvBg::TTbLvBg(TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbLvBg") {
  InitRecord();
}

void TTbLvBg::InitRecord() {
  TStdTB::InitRecord();
  data::SetCurrencyIds(kLvBgLayout, CurrentRecord(), data::kOwnerCurrencyId);
  InitCommonPart(Rec().LvBgBeschr1);
}

int TTbLvBg::GetKeyString(RecordView record, char index, std::string& key) const {
  if (index != '1') {
    key.clear();
    return -1;
  }
  key = KeyNumber(Of(record).LvBgBeschr1.ID);
  return static_cast<int>(key.size());
}

std::string TTbLvBg::CurrentRecordToString() const {
  return "Gruppe " + std::to_string(Rec().LvBgBeschr1.ID) + " \"" + Rec().LvBgBeschr1.OZ.Get() +
         "\"";
}

void TTbLvBg::DoValidateRecord(TDataCheck& check) {
  CheckCommonPart(check, Rec().LvBgBeschr1);
}

int TTbLvBg::DeleteRec() {
  TTbBeschr descriptions(Db());
  if (int result = descriptions.DeleteIfThere(Rec().LvBgBeschr1.IDBeschr); result != storage::kOk) {
    return result;
  }
  return TStdTB::DeleteRec();
}

}  // namespace korvan::boq
