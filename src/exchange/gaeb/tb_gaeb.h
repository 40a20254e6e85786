#pragma once

#include <string>

#include "data/tables/std_tb.h"
#include "exchange/gaeb/gaeb_record.h"

namespace korvan::exchange {

// The table letter of the GAEB header records in the LV database; it differs from every
// other table letter so that dumps know it alone.
inline constexpr char kGaebTableType = 'X';

// The GAEB header record of each LV, at most one. Index "1": IdLv, unique.
class TTbGaeb : public data::TTypedTB<t_Gaeb_DB_VERSION_201401> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbGaeb(data::TStdDb& db, char table_type = kGaebTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;

  // Reads the record of the LV; false when it has none.
  bool FindLv(int32_t id_lv);
  // Deletes the record of the LV when it has one; a kernel code.
  int DeleteOfLv(int32_t id_lv);
};

}  // namespace korvan::exchange
