#pragma once

#include <string>

#include "boq/lv/lv_table_types.h"
#include "boq/qty/markup_sub_qty_record.h"
#include "data/tables/std_tb.h"

namespace korvan::boq {

// The markup partial quantities (surcharges and roundings on partial quantities).
// Index "1": ID (unique); "2": KzBezug, IDBezug, SzBezug (an owner's rows in order).
class TTbMarkupSubQty : public data::TTypedTB<t_MarkupSubQty> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbMarkupSubQty(data::TStdDb& db, char table_type = kMarkupSubQtyTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '2'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;

  // Deletes every row of an owner; 0 or the first failure's kernel code.
  int DeleteAllOf(char owner_kind, int32_t owner);
  // The key pattern of an owner's rows in index "2".
  static std::string OwnerKey(char owner_kind, int32_t owner);
};

}  // namespace korvan::boq
