#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "billing/tables/abzug_record.h"
#include "billing/tables/billing_table_types.h"
#include "data/tables/std_tb.h"

namespace korvan::billing {

// The deductions of contracts and invoices. Index "1": ID (unique); "2": KzBezug, IDBezug,
// ID, so that an owner's deductions come together in the order they were made.
class TTbAbzug : public data::TTypedTB<TAbzug> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbAbzug(data::TStdDb& db, char table_type = kAbzugTableType);

  // Ids none, a net deduction among the other deductions, in the owner's currency.
  void InitRecord() override;
  char GetMaxIndex() const override { return '2'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;

  // Prepares a new deduction of an owner in the current record: a new id; 0 or a kernel
  // code. The caller fills it and writes it with UpDateRec.
  int NewAbzug(char owner_kind, int32_t owner);
  bool Find(int32_t id);
  // An owner's deductions in the order they were made.
  std::vector<TAbzug> ListOf(char owner_kind, int32_t owner);
};

}  // namespace korvan::billing
