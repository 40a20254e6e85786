#pragma once

#include "boq/lv/lv_entry_records.h"
#include "boq/lv/lv_table_types.h"
#include "data/tables/std_tb.h"

namespace korvan::boq {

// The items and text entries of the LVs. Index "1": ID (unique).
class TTbLvBeschr : public data::TTypedTB<t_LVBeschr_3000> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbLvBeschr(data::TStdDb& db, char table_type = kLvBeschrTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;
  // The item alone; its description stays (it may be a catalog's).
  int DeleteRec() override { return DeleteRecEx(false); }
  // Deletes what hangs on the item, its description too when `with_description`, then
  // the item.
  int DeleteRecEx(bool with_description);
};

}  // namespace korvan::boq
