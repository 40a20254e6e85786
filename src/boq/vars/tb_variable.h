#pragma once

#include <optional>
#include <string>
#include <vector>

#include "boq/lv/lv_table_types.h"
#include "boq/vars/variable_record.h"
#include "data/tables/std_tb.h"

namespace korvan::boq {

// The variables of the project's objects, kept in the LV database.
// Index "1": ID (unique); "2": IdBezug, KzBezug, Typ; "3": IdBezug, KzBezug, Name (20),
// CAD entity (11), CAD drawing (6): a name is one variable per owner and CAD entity;
// "4": IdBezug, KzBezug, SzBezug (the owner's variables in order).
class TTbVariable : public data::TTypedTB<t_Variable_2600> {
 public:
  static constexpr uint16_t kLayoutVersion = 1;

  // With `text_db`, deleting a variable also deletes its description lines there.
  explicit TTbVariable(data::TStdDb& db, data::TStdDb* text_db = nullptr,
                       char table_type = kVariableTableType);

  void InitRecord() override;
  char GetMaxIndex() const override { return '4'; }
  bool IsUniqueIndex(char index) const override { return index == '1' || index == '3'; }
  int GetKeyString(data::RecordView record, char index, std::string& key) const override;
  std::string CurrentRecordToString() const override;
  int Convert(data::RecordView old_record, std::vector<uint8_t>& new_record) override;
  using data::TStdTB::DoValidateRecord;
  void DoValidateRecord(data::TDataCheck& check) override;
  // Deletes the variable's description lines (when the text database is known), then the
  // variable. Area classification, cost approach and measurement formulas of a variable
  // are not kept by this installation yet, so nothing of them is left behind.
  int DeleteRec() override;

  // Makes a new variable of an owner with this name the current record, not yet written:
  // its id from the LV database's counter, its sort number behind the owner's other
  // variables, entered by hand. Every writer of new variables comes through here, so
  // that ids and order are given alike. 0 or the counter's kernel code.
  int NewVariable(int32_t owner, char owner_kind, const std::string& name);
  // Deletes every variable of an owner; 0 or the first failure's kernel code.
  int DeleteAllOf(int32_t owner, char owner_kind);
  // The variables of an owner in their order.
  std::vector<t_Variable_2600> ListOf(int32_t owner, char owner_kind);
  // Makes the variable of an owner with this name (and no CAD entity) current.
  bool FindByName(int32_t owner, char owner_kind, const std::string& name);
  // Whether the current variable holds a percentage.
  bool IsPercent() const;

  // The key pattern of an owner's variables in index "2" and "4".
  static std::string OwnerKey(int32_t owner, char owner_kind);

 private:
  data::TStdDb* text_db_;
};

}  // namespace korvan::boq
