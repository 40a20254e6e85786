#pragma once

#include <optional>
#include <string_view>

#include "boq/units/currency_records.h"
#include "data/tables/std_tb.h"

namespace korvan::boq {

// The table letter of the project exchange rates in the project's global database
// (DB_GlobData).
inline constexpr char kPrjWaeFaktorTableType = 'F';

// A project's own exchange rates: for a project number and a currency (by its country
// number), rates valid from a date. Index "1": PrjNr (20) + IdLand (11) + Datum (11),
// unique.
class TTbPrjWaeFaktor : public data::TTypedTB<t_PrjWaeFaktor> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbPrjWaeFaktor(data::TStdDb& db, char table_type = kPrjWaeFaktorTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;

  // The rate of a currency that is valid on `date` (an integer date): the one with the
  // latest Datum not after it.
  std::optional<t_PrjWaeFaktor> RateOn(std::string_view prj_nr, int32_t id_land, int32_t date);
};

}  // namespace korvan::boq
