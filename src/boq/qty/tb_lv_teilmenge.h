#pragma once

#include <string>
#include <vector>

#include "boq/lv/lv_table_types.h"
#include "boq/qty/lv_teilmenge_record.h"
#include "data/tables/std_tb.h"

namespace korvan::boq {

// The partial quantities of the LV items.
// Index "1": ID (unique); "2": IdBT, SzBT; "3": IdLkt, SzLkt; "4": IdLVBeschr,
// SzLVBeschr (an item's partial quantities in order); "5": CAD entity, CAD drawing,
// SzCad; "6": IdAufmass, SzAufmass. A row is entered in "2", "3", "5" and "6" only
// when it has that source.
class TTbLvTeilmenge : public data::TTypedTB<t_LvTeilmenge_2700> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbLvTeilmenge(data::TStdDb& db, char table_type = kLvTeilmengeTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '6'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;
  // Deletes the partial quantity's own variables (owner kind "M"), then the row.
  int DeleteRec() override;

  // Deletes every partial quantity of an item; 0 or the first failure's kernel code.
  int DeleteAllOf(int32_t item_id);
  // The partial quantities of an item by sort number; 0 or a kernel code.
  int ListOf(int32_t item_id, std::vector<t_LvTeilmenge_2700>& rows);
  // Makes the partial quantity of an item with this sort number current.
  bool FindBySort(int32_t item_id, uint16_t sort);

  // The key pattern of an item's partial quantities in index "4".
  static std::string ItemKey(int32_t item_id);
};

}  // namespace korvan::boq
