#pragma once

#include <string>

#include "calc/tables/calc_table_types.h"
#include "calc/tables/kalk_records.h"
#include "data/tables/std_tb.h"

namespace korvan::calc {

// The values of the cost-type groups, in the master data (TTbKaGrR) and in the project
// (TTbKaGrP); one layout. Index "1": KZKA, ID (11, unique).
class TTbKaGrR : public data::TTypedTB<t_KrKAGR_729> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;
  explicit TTbKaGrR(data::TStdDb& db, char table_type = kKaGrTableType,
                    const char* name = "TTbKaGrR");

  // Values in the project's currency, ID null.
  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
};

class TTbKaGrP : public TTbKaGrR {
 public:
  explicit TTbKaGrP(data::TStdDb& db, char table_type = kKaGrTableType)
      : TTbKaGrR(db, table_type, "TTbKaGrP") {}
};

}  // namespace korvan::calc
