#pragma once

#include <optional>
#include <string>
#include <vector>

#include "calc/tables/calc_table_types.h"
#include "calc/tables/kalk_records.h"
#include "data/tables/std_tb.h"

namespace korvan::calc {

// The master surcharge percentages per calculation kind and cost type.
// Index "1": KZKALKART, KZKA (unique).
class TTbZuR : public data::TTypedTB<t_KrZU> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;
  explicit TTbZuR(data::TStdDb& db, char table_type = kZuTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;

  // Writes the default rows (cost_types.h) that are not there yet; 0 or the kernel code.
  int InitTable();
  std::vector<t_KrZU> All();
  // The percentage of a kind and cost type, or nullopt when there is no row.
  std::optional<double> Find(char kalk_art, char kza);
};

// The surcharge percentages of one LV. Index "1": IDLV, KZKALKART, KZKA (unique).
class TTbZuP : public data::TTypedTB<t_KpZU> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;
  explicit TTbZuP(data::TStdDb& db, char table_type = kZuTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;

  // Copies every master row to the LV unless the LV has a row already; 0 or the code.
  int InitTable(int32_t lv, TTbZuR& master);
  std::vector<t_KpZU> AllOf(int32_t lv);
  std::optional<double> Find(int32_t lv, char kalk_art, char kza);
  // Sets (inserts or updates) a percentage of the LV; 0 or the kernel code.
  int Set(int32_t lv, char kalk_art, char kza, double percent);
  int DeleteAllOf(int32_t lv);
};

}  // namespace korvan::calc
