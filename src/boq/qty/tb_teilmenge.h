#pragma once

#include <string>

#include "boq/lv/lv_table_types.h"
#include "boq/qty/teilmenge_record.h"
#include "data/tables/std_tb.h"

namespace korvan::boq {

// The partial quantities of the cost planning. They are kept in the LV database until the
// cost planning has a database of its own.
// Index "1": ID (unique); "2": IdLkt, SzLkt (a cost element's partial quantities);
// "3": IdLVBeschr, SzLVBeschr; "4": IdBT, SzBT. A row is entered in "3" and "4" only
// when it has that reference.
class TTbTeilmenge : public data::TTypedTB<t_Teilmenge_201501> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbTeilmenge(data::TStdDb& db, char table_type = kTeilmengeTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '4'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;
  // Deletes the partial quantity's own variables (owner kind "T"), then the row.
  int DeleteRec() override;
};

}  // namespace korvan::boq
