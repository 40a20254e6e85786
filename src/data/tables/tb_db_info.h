#pragma once

#include "data/records/framework_records.h"
#include "data/tables/std_tb.h"

namespace korvan::data {

inline constexpr char kDbInfoTableType = 'V';

// The one record per database that tells the data version of its contents and when the
// database was created. One index with an empty key string.
class TTbDbInfo : public TTypedTB<t_DbInfo> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbDbInfo(TStdDb& db, char table_type = kDbInfoTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(RecordView record, char index, std::string& key) const override;
  // Integrity rules (see data_check.h).
  using TStdTB::DoValidateRecord;
  void DoValidateRecord(TDataCheck& check) override;

  // The stored version information; false when the database has none yet.
  bool ReadVersion(t_VersionInfo& info);
  // Stores the data version (creating the record with today's date when needed).
  int WriteVersion(int32_t version);
  // Whether the database holds data of an older version than the program's (a database
  // without version information counts as older).
  bool IsToConvert(int32_t program_version);
};

}  // namespace korvan::data
