#pragma once

#include "boq/lv/beschr_record.h"
#include "boq/lv/lv_table_types.h"
#include "data/tables/std_tb.h"

namespace korvan::boq {

// The descriptions of LV entries (and of catalog entries). Index "1": Id (unique).
class TTbBeschr : public data::TTypedTB<t_Beschr_DB_VERSION_201601> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbBeschr(data::TStdDb& db, char table_type = kBeschrTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;

  // Deletes the description `id` when there is one (none for the null id). 0 or a
  // kernel code.
  int DeleteIfThere(int32_t id);
};

}  // namespace korvan::boq
