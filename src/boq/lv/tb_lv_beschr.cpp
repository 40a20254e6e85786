#include "boq/lv/tb_lv_beschr.h"

#include "boq/lv/lv_codes.h"
#include "boq/lv/lv_entry_common.h"
#include "boq/lv/tb_beschr.h"
#include "boq/qty/item_quantities.h"
#include "data/integrity/data_check.h"
#include "data/records/money_fields.h"
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

TTbLvBeschr::TTbLvBeschr(TStdDb& db, char table_type)
    : TTypedTB(db, table_type, kLayoutVersion, "TTbLvBeschr") {
  InitRecord();
}

void TTbLvBeschr::InitRecord() {
  TStdTB::InitRecord();
  data::SetCurrencyIds(kLvBeschrLayout, CurrentRecord(), data::kOwnerCurrencyId);
  InitCommonPart(Rec().LvBgBeschr1);
  Rec().LvBeschr2.IdBezug = kNullId;
}

int TTbLvBeschr::GetKeyString(RecordView record, char index, std::string& key) const {
  if (index != '1') {
    key.clear();
    return -1;
  }
  key = KeyNumber(Of(record).LvBgBeschr1.ID);
  return static_cast<int>(key.size());
}

std::string TTbLvBeschr::CurrentRecordToString() const {
  return "Position " + std::to_string(Rec().LvBgBeschr1.ID) + " \"" + Rec().LvBgBeschr1.OZ.Get() +
         "\"";
}

void TTbLvBeschr::DoValidateRecord(TDataCheck& check) {
  CheckCommonPart(check, Rec().LvBgBeschr1);
  check.CheckItemForCharSelector("ZuschArt", Rec().LvBeschr2.ZuschArt, '\0',
                                 std::string(kZuschArtCodes) + '\0', kZuschArtText);
  // The field lies unaligned in the packed record; the rule works on a copy.
  int32_t reference = Rec().LvBeschr2.IdBezug;
  check.CheckItemForElementAsPrimaryKeyInTable("IdBezug", reference, kNullId, kLvDbType,
                                               kLvBeschrTableType);
  Rec().LvBeschr2.IdBezug = reference;
}

int TTbLvBeschr::DeleteRecEx(bool with_description) {
  const int32_t description = Rec().LvBgBeschr1.IDBeschr;
  // What hangs on the item goes first: its partial quantities (with their own variables),
  // its variables and its markup partial quantities. Measurement rows and quantity
  // formulas join here with their tables.
  if (int result = DeleteItemQuantities(Db(), Rec().LvBgBeschr1.ID); result != storage::kOk) {
    return result;
  }
  if (with_description && description != kNullId) {
    TTbBeschr descriptions(Db());
    if (int result = descriptions.DeleteIfThere(description); result != storage::kOk) {
      return result;
    }
  }
  return TStdTB::DeleteRec();
}

}  // namespace korvan::boq
