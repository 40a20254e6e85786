#pragma once

#include <string>

#include "boq/lv/lv_record.h"
#include "boq/lv/lv_table_types.h"
#include "data/tables/std_tb.h"

namespace korvan::boq {

// The LV header table. Index "1": FId (unique); "2": SzPrj; "3": SzPrj, Zeilenart, FId
// (the LVs of the project in order, with their line kind).
class TTbLV : public data::TTypedTB<t_Lv_DB_VERSION_3100> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbLV(data::TStdDb& db, char table_type = kLvTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '3'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;
  // Deletes the LV's dependent records first (hierarchy rows, then the structure rows
  // with their groups and items), then the header, then the LV's BIM import folder.
  int DeleteRec() override;

  // Reads the LV by its id; false when there is none.
  bool FindLv(int32_t id);
  // What SetDBState did.
  enum class TSetStateResult { kNotFound, kUnchanged, kUpdated, kFailed };
  // Writes a new DBState for the LV `id` only when it differs from the stored one.
  TSetStateResult SetDBState(int32_t id, TDBLVState state);

  // The folder a BIM import of the LV keeps its files in, below the project folder.
  static std::string BimImportFolder(const std::string& project_dir, int32_t lv_id);
};

}  // namespace korvan::boq
