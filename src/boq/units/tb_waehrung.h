#pragma once

#include "boq/units/currency_records.h"
#include "data/tables/std_tb.h"

namespace korvan::boq {

// The table letter of the currencies in the databases that hold them.
inline constexpr char kWaehrungTableType = 'W';

// The currency table. Index "1": ID (width 11, unique); index "2": IdLand (width 11).
class TTbWaehrung : public data::TTypedTB<t_Waehrung> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbWaehrung(data::TStdDb& db, char table_type = kWaehrungTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '2'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  // Integrity rules (see data_check.h).
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;
};

}  // namespace korvan::boq
