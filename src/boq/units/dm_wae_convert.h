#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "boq/units/value_converter.h"
#include "data/records/field_descriptor.h"
#include "data/tables/std_db.h"
#include "data/tables/table_registry.h"

namespace korvan::boq {

// What a conversion did, for the protocol file and the user.
struct TWaeConvertReport {
  int64_t tables = 0;              // tables that have amounts
  int64_t records = 0;             // records rewritten
  int64_t amounts = 0;             // amounts converted
  std::vector<std::string> lines;  // per database and table; amounts left as they were
};

// The one-off conversion of every stored amount of a project into another currency.
// Which fields are amounts comes from the tables' registrations: every field of type
// t_WaeBetrag (alone, in arrays, in nested layouts) of the layout registered for a table
// letter, so tables registered later are converted without a change here; integer
// fields named "IdWae" or "IdWaehrung" are the currency of their record and are set to
// the target. Each amount
// is converted with the value converter into the target currency (rounded to its
// decimals when the project rounds amounts) and gets the target's id; amounts marked
// never to be converted (-2) stay, and so does an amount whose currency the currency
// table does not hold (named in the report). The caller brackets the run in one undo
// step.
class TdmWaeConvert {
 public:
  // Called while a database is converted: records done of the table's records.
  using Progress = std::function<void(const std::string& database, int64_t done, int64_t total)>;

  TdmWaeConvert(const data::TTableRegistry& tables, const TAvaUiValueConverter& converter,
                int32_t target_currency);

  // Converts the records of every registered table of `db`. 0, or the kernel code of the
  // write that failed (the report names the record).
  int ConvertDatabase(data::TStdDb& db, const Progress& progress, TWaeConvertReport& report);

  // The offsets of the amounts of a layout, from the start of the record.
  static std::vector<uint32_t> AmountOffsets(const data::RecordLayout& layout);

  // A field that names the currency of a record as a whole ("IdWae", "IdWaehrung": the
  // LV header's currency, a bidder's or contract's): it takes the new currency with the
  // amounts, so that the LV records which currency it is in now.
  struct TCurrencyIdField {
    uint32_t offset;
    uint32_t size;  // 2 or 4 bytes
    bool operator==(const TCurrencyIdField&) const = default;
  };
  static std::vector<TCurrencyIdField> CurrencyIdFields(const data::RecordLayout& layout);

 private:
  struct TFields {
    std::vector<uint32_t> amounts;
    std::vector<TCurrencyIdField> currency_ids;
  };
  int ConvertTable(data::TStdTB& table, const TFields& fields, const Progress& progress,
                   TWaeConvertReport& report);
  bool ConvertRecord(data::TStdTB& table, const TFields& fields, TWaeConvertReport& report);
  bool SetCurrencyIds(std::vector<uint8_t>& record, const TFields& fields) const;

  const data::TTableRegistry& tables_;
  const TAvaUiValueConverter& converter_;
  int32_t target_;
};

// Appends a run to the protocol file ("WaeKonv.LOG" in the project folder): a line
// "[date time] User: u  Machine: m - from - to", then the report's lines and a summary.
// False when the file cannot be written.
bool AppendWaeConvertLog(const std::string& file, const std::string& user,
                         const std::string& machine, const std::string& from, const std::string& to,
                         const TWaeConvertReport& report);

}  // namespace korvan::boq
