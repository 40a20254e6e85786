#pragma once

#include "boq/units/unit_record.h"
#include "data/tables/std_tb.h"

namespace korvan::boq {

inline constexpr char kEinheitTableType = 'E';

// The unit table. Index "1": IdLang + IdEinheit (width 6 each, unique); index "2":
// IdLang + Sz (width 6 each), the units of a language in sort order.
class TTbEinheit : public data::TTypedTB<t_Einheit> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbEinheit(data::TStdDb& db, char table_type = kEinheitTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '2'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  // Integrity rules (see data_check.h).
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;
};

}  // namespace korvan::boq
