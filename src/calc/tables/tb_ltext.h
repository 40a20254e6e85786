#pragma once

#include <string>
#include <vector>

#include "calc/tables/calc_table_types.h"
#include "calc/tables/item_calc_records.h"
#include "data/tables/std_tb.h"

namespace korvan::calc {

// The long texts of the sub-items, one record a line: a fixed part and the line's bytes in
// the same record. Index "1": IDBES, IDUPOS, IDZEILE (unique).
class TTbLText : public data::TTypedTB<t_KpLTEXT> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;
  explicit TTbLText(data::TStdDb& db, char table_type = kLTextTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  // The fixed part plus LENTEXT bytes.
  int RecordLength(data::RecordView record) const override;
  std::string CurrentRecordToString() const override;

  // The lines of a sub-item's long text in line order; empty without a text.
  std::vector<std::string> LinesOf(int32_t id_beschr, int32_t id_upos);
  // Replaces the sub-item's long text by `lines` (numbered from 1); 0 or the kernel code.
  int ReplaceLines(int32_t id_beschr, int32_t id_upos, const std::vector<std::string>& lines);
  // Deletes the sub-item's long text; 0 or the kernel code.
  int DeleteLines(int32_t id_beschr, int32_t id_upos);
  // Deletes the long texts of every sub-item of an item description; 0 or the kernel code.
  int DeleteAllOf(int32_t id_beschr);

 private:
  std::string TextOf(data::RecordView record) const;
};

}  // namespace korvan::calc
