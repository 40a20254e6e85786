#pragma once

#include "boq/lv/lv_table_types.h"
#include "boq/lv/struktur_record.h"
#include "data/tables/std_tb.h"

namespace korvan::boq {

// The tree and order of the entries of the LVs, one row per entry.
// Index "1": IdBgBeschr (unique); "2": IdLv, SzLv (document order); "3": IdLv,
// KzBgBeschr ("0" when empty), ZuBg, SzBg, ZuPos, SzPos (children per kind); "4": IdLv,
// ZuBg, SzBg, ZuPos, SzPos (children of a group, and within an item its dependents).
class TTbStruktur : public data::TTypedTB<t_Struktur> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbStruktur(data::TStdDb& db, char table_type = kStrukturTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '4'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;
  // Deletes the row's group (kind "B") or item (every other kind) with its description,
  // then the row.
  int DeleteRec() override;

  // Deletes every row of the LV `lv_id` with its group or item. 0 or a kernel code.
  int DeleteAllOf(int32_t lv_id);
  // The number of entries of an LV.
  int CountOf(int32_t lv_id, uint32_t* count);

  // The table letter of the record an entry of kind `kind` keeps its data in.
  static char EntryTableOf(char kind);
};

}  // namespace korvan::boq
