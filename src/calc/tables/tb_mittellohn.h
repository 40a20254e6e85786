#pragma once

#include <optional>
#include <string>

#include "calc/tables/calc_table_types.h"
#include "calc/tables/kalk_records.h"
#include "data/tables/std_tb.h"

namespace korvan::calc {

// The master percentages of the average wage: one row. Index "1": a constant key.
class TTbMLohnR : public data::TTypedTB<t_KrMLOHN> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;
  explicit TTbMLohnR(data::TStdDb& db, char table_type = kMLohnTableType);

  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override { return "Mittellohn"; }

  std::optional<t_KrMLOHN> Get();
};

// The average-wage percentages of one LV. Index "1": IDLV (unique).
class TTbMLohnP : public data::TTypedTB<t_KpMLOHN> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;
  explicit TTbMLohnP(data::TStdDb& db, char table_type = kMLohnTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;

  // Copies the master row to the LV unless the LV has one; 0 or the kernel code.
  int InitTable(int32_t lv, TTbMLohnR& master);
  std::optional<t_KpMLOHN> Get(int32_t lv);
  int DeleteAllOf(int32_t lv);
};

}  // namespace korvan::calc
