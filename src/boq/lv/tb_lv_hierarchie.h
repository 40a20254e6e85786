#pragma once

#include "boq/lv/hierarchie_record.h"
#include "boq/lv/lv_table_types.h"
#include "data/tables/std_tb.h"

namespace korvan::boq {

// The levels of the LVs' OZ structures. Index "1": IdLv, SzLv (unique).
class TTbLvHierarchie : public data::TTypedTB<t_Hierarchie_DB_VERSION_201401> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbLvHierarchie(data::TStdDb& db, char table_type = kHierarchieTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;

  // Deletes every level of the LV `lv_id`. 0 or a kernel code.
  int DeleteAllOf(int32_t lv_id);
};

}  // namespace korvan::boq
