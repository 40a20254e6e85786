#pragma once

#include "data/tables/std_tb.h"
#include "data/units/currency_records.h"

namespace korvan::data {

// The table letter of the currencies in the databases that hold them.
inline constexpr char kWaehrungTableType = 'W';

// The currency table. Index "1": ID (width 11, unique); index "2": IdLand (width 11).
class TTbWaehrung : public TTypedTB<t_Waehrung> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbWaehrung(TStdDb& db, char table_type = kWaehrungTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '2'; }
  int GetKeyString(RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  // Integrity rules (see data_check.h).
  using TStdTB::DoValidateRecord;
  void DoValidateRecord(TDataCheck& check) override;
};

}  // namespace korvan::data
