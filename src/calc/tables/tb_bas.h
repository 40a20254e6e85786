#pragma once

#include <string>
#include <vector>

#include "calc/tables/calc_table_types.h"
#include "calc/tables/kalk_records.h"
#include "data/tables/std_tb.h"

namespace korvan::calc {

// The master work keys (wage groups). Index "1": ID (10, unique).
class TTbBASR : public data::TTypedTB<t_KrBAS_729> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;
  explicit TTbBASR(data::TStdDb& db, char table_type = kBasTableType);

  // A new work key: ID the blank code, MLA in the project's currency, ZUWG 0.
  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;

  std::vector<t_KrBAS_729> All();
};

// The project's work keys (the record carries no LV: they serve every LV of the
// project). Index "1": ID (10, unique).
class TTbBASP : public data::TTypedTB<t_KpBAS_729> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;
  explicit TTbBASP(data::TStdDb& db, char table_type = kBasTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;

  // Copies every master work key unless the project has one already; 0 or the code.
  int InitTable(TTbBASR& master);
};

}  // namespace korvan::calc
