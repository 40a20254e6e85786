#pragma once

#include <string>
#include <vector>

#include "calc/tables/aupos_record.h"
#include "calc/tables/calc_table_types.h"
#include "calc/tables/kalk_records.h"
#include "data/tables/std_tb.h"

namespace korvan::calc {

// The cost approach lines of the items. Index "1": IDBES, IDUPOS, KZKOART (a sub-item may
// hold several lines of one cost type, so the index is not unique).
class TTbAUPos : public data::TTypedTB<t_KpAUPos_729> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;
  explicit TTbAUPos(data::TStdDb& db, char table_type = kAUPosTableType);

  // Ids null, factors 1, amounts in the LV's currency.
  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  bool IsUniqueIndex(char) const override { return false; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;

  // The lines of an item description, in key order.
  std::vector<t_KpAUPos_729> LinesOf(int32_t id_beschr);
  // Deletes every line of an item description; 0 or the kernel code.
  int DeleteAllOf(int32_t id_beschr);

  static std::string ItemKey(int32_t id_beschr);
};

// The sub-items of the items. Index "1": IDBES, IDUPOS (unique).
class TTbUPos : public data::TTypedTB<t_KpUPos> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;
  explicit TTbUPos(data::TStdDb& db, char table_type = kUPosTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;

  int DeleteAllOf(int32_t id_beschr);
};

}  // namespace korvan::calc
