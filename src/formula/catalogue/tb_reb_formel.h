#pragma once

#include <optional>
#include <string>
#include <vector>

#include "data/tables/std_tb.h"
#include "formula/catalogue/reb_formel_record.h"
#include "formula/catalogue/reb_formel_row.h"

namespace korvan::formula {

// Record letter of the formula catalogue in the master data.
inline constexpr char kRebFormelTableType = 'R';

// The catalogue of numbered REB formulas. Index "1": the formula number zero-padded to
// three digits (unique), so "4" and "004" are one formula.
class TTbRebFormel : public data::TTypedTB<t_REBFormel> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  explicit TTbRebFormel(data::TStdDb& db, char table_type = kRebFormelTableType);

  char GetMaxIndex() const override { return '1'; }
  bool IsUniqueIndex(char index) const override { return index == '1'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;

  // Makes the formula with this number current.
  bool FindNr(std::string_view nr);
  // Every formula in number order.
  std::vector<TRebFormelRow> All();

  static TRebFormelRow RowOf(const t_REBFormel& record);
};

// The catalogue table as a source of formulas for the interpreter.
class TRebFormelTableSource : public TRebFormelSource {
 public:
  explicit TRebFormelTableSource(TTbRebFormel& table) : table_(table) {}
  std::optional<TRebFormelRow> Find(std::string_view nr) override;

 private:
  TTbRebFormel& table_;
};

}  // namespace korvan::formula
