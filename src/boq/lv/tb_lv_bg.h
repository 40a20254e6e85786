#pragma once

#include "boq/lv/lv_entry_records.h"
#include "boq/lv/lv_table_types.h"
#include "data/tables/std_tb.h"

namespace korvan::boq {

// The groups of the LVs. Index "1": ID (unique).
class TTbLvBg : public data::TTypedTB<t_LVBg_3000> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbLvBg(data::TStdDb& db, char table_type = kLvBgTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;
  // Deletes the group's description, then the group.
  int DeleteRec() override;
};

}  // namespace korvan::boq
