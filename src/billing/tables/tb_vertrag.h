#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "billing/tables/billing_table_types.h"
#include "billing/tables/vertrag_record.h"
#include "data/tables/std_tb.h"

namespace korvan::billing {

// The contracts of all projects. Index "1": ID (unique); "2": IdProjekt, IdLv, ID, so that
// a project's contracts come together, those of one LV in the order they were made.
class TTbVertrag : public data::TTypedTB<TVertrag> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbVertrag(data::TStdDb& db, char table_type = kVertragTableType);

  // Ids none, a main contract dated today in the LV's currency, the gross sum from the
  // sum after discount, billing by invoice, warranty counted in "Monate".
  void InitRecord() override;
  char GetMaxIndex() const override { return '2'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;

  // Prepares a new contract in the current record: a new id; 0 or a kernel code. The
  // caller fills it and writes it with UpDateRec.
  int NewVertrag(int32_t project, int32_t lv);
  bool Find(int32_t id);
  // The contracts of a project (of one LV when `lv` is set), in the order of the index.
  std::vector<TVertrag> ListOfProject(int32_t project, std::optional<int32_t> lv = std::nullopt);
};

}  // namespace korvan::billing
