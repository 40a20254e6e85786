#pragma once

#include <optional>
#include <string>

#include "calc/tables/calc_table_types.h"
#include "calc/tables/kalk_records.h"
#include "calc/tables/tb_zuschlag.h"
#include "data/tables/std_tb.h"

namespace korvan::calc {

// The end-sum settings of the LVs. Index "1": IDLV (unique).
class TTbEndsP : public data::TTypedTB<t_KpENDS> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;
  explicit TTbEndsP(data::TStdDb& db, char table_type = kEndsTableType);

  // IDLV and IDUMLLV null, every percentage 0.
  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;

  // Creates the LV's record unless it has one, its percentages from the master rows of
  // kind E (M, R, S, G, B, F, K, L, N, O, P; a missing row gives 0); 0 or the code.
  int InitTable(int32_t lv, TTbZuR& master);
  // The record InitTable would create, without writing it.
  t_KpENDS DefaultsFor(int32_t lv, TTbZuR& master);
  std::optional<t_KpENDS> Get(int32_t lv);
  // Writes the LV's record (which must exist) with the values of `values`; 0 or the code.
  int Put(const t_KpENDS& values);
  int DeleteAllOf(int32_t lv);
};

}  // namespace korvan::calc
