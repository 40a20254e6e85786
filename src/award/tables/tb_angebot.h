#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "award/tables/angebot_record.h"
#include "award/tables/award_table_types.h"
#include "data/tables/std_tb.h"

namespace korvan::award {

// The bid lines. Index "1": ID (unique); "2": IdBieter, IdLvBgBeschr, so that one bidder's
// lines are together and one line is found directly.
class TTbAngebot : public data::TTypedTB<t_Angebot_DB_VERSION_201501> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbAngebot(data::TStdDb& db, char table_type = kAngebotTableType);

  // Ids none, amounts 0 in the LV's currency, mark blank.
  void InitRecord() override;
  char GetMaxIndex() const override { return '2'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;

  bool Find(int32_t bidder, int32_t lv_line);
  // The lines of a bidder into `lines`; 0 or a kernel code.
  int LinesOf(int32_t bidder, std::vector<t_Angebot_DB_VERSION_201501>& lines);
  // Deletes every line of a bidder; 0 or the first kernel code.
  int DeleteAllOf(int32_t bidder);
};

}  // namespace korvan::award
