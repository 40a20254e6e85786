#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "data/integrity/integrity_log.h"
#include "data/tables/std_tb.h"

namespace korvan::data {

class TDataIntegrity;

// What becomes of a checked record. Later states outrank earlier ones: a record that
// one rule wants deleted is deleted whatever the others want.
enum class TDataCheckState { dcsDoNothing, dcsDoUpdate, dcsToClarify, dcsDoDelete };

// What a table wants done when one of its rules fails.
enum class TRepair {
  kSetDefault,  // reset the field to its default and write the record back
  kDelete,      // the record is an orphan: delete it
  kClarify,     // nothing can be decided automatically
};

// One rule applied to one field of the record being checked.
class TCheckItem {
 public:
  explicit TCheckItem(std::string_view property_name) : FPropertyName(property_name) {}
  virtual ~TCheckItem() = default;

  // Whether the field passes; `run` answers the look-ups rules need.
  virtual bool Passes(const TDataIntegrity& run) const = 0;
  // The finding when the field fails.
  virtual std::string Finding(const TDataIntegrity& run) const = 0;
  // The note for a reset to the default value.
  virtual std::string DefaultNote() const = 0;

  const std::string& PropertyName() const { return FPropertyName; }

 protected:
  std::string FPropertyName;
};

// The value must be the primary key (index "1") of a record of the target table,
// unless it is the default value.
class TCheckItemForElementAsPrimaryKeyInTable : public TCheckItem {
 public:
  TCheckItemForElementAsPrimaryKeyInTable(std::string_view name, int32_t data,
                                          int32_t default_value, char db_type, char ref_table)
      : TCheckItem(name),
        FData(data),
        FDataDefaultValue(default_value),
        FDBTyp(db_type),
        FRefTbClass(ref_table) {}
  bool Passes(const TDataIntegrity& run) const override;
  std::string Finding(const TDataIntegrity& run) const override;
  std::string DefaultNote() const override;

 private:
  int32_t FData;
  int32_t FDataDefaultValue;
  char FDBTyp;
  char FRefTbClass;  // the type letter of the target table
};

// An owner reference (an id with the owner's kind letter beside it) must agree with its
// kind: an unset id with an owner kind, or a set id whose owner record is missing, fails.
// A `ref_table` of '\0' stands for an owner kind whose table this installation does not
// keep; only the first rule applies then.
class TCheckItemForOwnerReference : public TCheckItem {
 public:
  TCheckItemForOwnerReference(std::string_view name, int32_t data, int32_t default_value,
                              char owner_kind, char db_type, char ref_table)
      : TCheckItem(name),
        FData(data),
        FDataDefaultValue(default_value),
        FOwnerKind(owner_kind),
        FDBTyp(db_type),
        FRefTbClass(ref_table) {}
  bool Passes(const TDataIntegrity& run) const override;
  std::string Finding(const TDataIntegrity& run) const override;
  std::string DefaultNote() const override { return ""; }

 private:
  bool HasOwnerKind() const { return FOwnerKind != '\0' && FOwnerKind != ' '; }

  int32_t FData;
  int32_t FDataDefaultValue;
  char FOwnerKind;
  char FDBTyp;
  char FRefTbClass;
};

// The code letter must be one of the allowed letters.
class TCheckItemForCharSelector : public TCheckItem {
 public:
  TCheckItemForCharSelector(std::string_view name, char data, char default_value,
                            std::string_view valid, std::string_view qeh_name)
      : TCheckItem(name),
        FData(data),
        FDataDefaultValue(default_value),
        FValidCharSelectors(valid),
        FQEHName(qeh_name) {}
  bool Passes(const TDataIntegrity& run) const override;
  std::string Finding(const TDataIntegrity& run) const override;
  std::string DefaultNote() const override;
  const std::string& Explanation() const { return FQEHName; }

 private:
  char FData;
  char FDataDefaultValue;
  std::string FValidCharSelectors;
  std::string FQEHName;
};

// The value must not stand in the field at `offset` of records of both tables (a record
// may belong to one of two kinds of owner, not to both).
class TCheckItemForElementInOneOfTables : public TCheckItem {
 public:
  TCheckItemForElementInOneOfTables(std::string_view name, int32_t data, char db_type,
                                    char first_table, char second_table, size_t offset,
                                    std::string_view qeh_name)
      : TCheckItem(name),
        FData(data),
        FDBTyp(db_type),
        FTables{first_table, second_table},
        FOffset(offset),
        FQEHName(qeh_name) {}
  bool Passes(const TDataIntegrity& run) const override;
  std::string Finding(const TDataIntegrity& run) const override;
  std::string DefaultNote() const override { return ""; }

 private:
  int32_t FData;
  char FDBTyp;
  char FTables[2];
  size_t FOffset;
  std::string FQEHName;
};

// The value must differ from the previous record's in key order.
class TCheckItemForUniqueKey : public TCheckItem {
 public:
  TCheckItemForUniqueKey(std::string_view name, int32_t data, std::optional<int32_t> pred)
      : TCheckItem(name), FData(data), FDataPred(pred) {}
  bool Passes(const TDataIntegrity& run) const override;
  std::string Finding(const TDataIntegrity& run) const override;
  std::string DefaultNote() const override { return ""; }

 private:
  int32_t FData;
  std::optional<int32_t> FDataPred;  // empty for the first record of the walk
};

// The value must not be the default.
class TCheckItemForMandatoryInt : public TCheckItem {
 public:
  TCheckItemForMandatoryInt(std::string_view name, int32_t data, int32_t default_value)
      : TCheckItem(name), FData(data), FDataDefault(default_value) {}
  bool Passes(const TDataIntegrity& run) const override;
  std::string Finding(const TDataIntegrity& run) const override;
  std::string DefaultNote() const override;

 private:
  int32_t FData;
  int32_t FDataDefault;
};

class TCheckItemForMandatoryChar : public TCheckItem {
 public:
  TCheckItemForMandatoryChar(std::string_view name, char data, char default_value)
      : TCheckItem(name), FData(data), FDataDefault(default_value) {}
  bool Passes(const TDataIntegrity& run) const override;
  std::string Finding(const TDataIntegrity& run) const override;
  std::string DefaultNote() const override;

 private:
  char FData;
  char FDataDefault;
};

// The context of one record while its table's rules run (`DoValidateRecord`): the
// rules report failures here, the table says what it wants done, and ExitRecord does
// it and logs it.
class TDataCheck {
 public:
  TDataCheck(TDataIntegrity& run, TDiLogItem& log_item);

  // Starts the checks of the table's current record.
  void EnterRecord(TStdTB& table);
  // Acts on the state (write back, delete, or note) and logs the record's findings.
  void ExitRecord();

  // --- Rules; each returns whether the field passed -------------------------------
  // A failing code letter is reset to `default_value` unless `repair` says otherwise.
  bool CheckItemForCharSelector(std::string_view name, char& field, char default_value,
                                std::string_view valid, std::string_view qeh_name,
                                TRepair repair = TRepair::kSetDefault);
  bool CheckItemForMandatory(std::string_view name, int32_t value, int32_t default_value,
                             TRepair repair = TRepair::kClarify);
  bool CheckItemForMandatory(std::string_view name, char value, char default_value,
                             TRepair repair = TRepair::kClarify);
  // A reference that names no record of the target table is reset to its default (or
  // the record is deleted as an orphan, with TRepair::kDelete).
  bool CheckItemForElementAsPrimaryKeyInTable(std::string_view name, int32_t& field,
                                              int32_t default_value, char db_type, char ref_table,
                                              TRepair repair = TRepair::kSetDefault);
  // A value that stands in the field at `offset` of records of both tables is a finding
  // with `qeh_name` as its explanation; nothing is repaired.
  bool CheckItemForElementInOneOfTables(std::string_view name, int32_t value, char db_type,
                                        char first_table, char second_table, size_t offset,
                                        std::string_view qeh_name);
  // An owner reference and its kind (see TCheckItemForOwnerReference); a record whose
  // owner is missing is an orphan and deleted, an unset id with a kind is left to clarify.
  bool CheckItemForOwnerReference(std::string_view name, int32_t value, int32_t default_value,
                                  char owner_kind, char db_type, char ref_table);
  // Compares with the value the same rule saw in the previous record of the walk.
  bool CheckItemForUniqueKey(std::string_view name, int32_t value,
                             TRepair repair = TRepair::kClarify);

  // Table lines: "%d Record(s) untersucht" and the record-count difference.
  void RecordCount2Log(int records);
  void RecordCountDiff2Log(int records, int primary_keys);

  TStdTB& AvaRecord() const { return *FAvaRecord; }
  int32_t AvaRecordID() const { return FAvaRecordID; }
  // The identity logged as "ID=%d" (default: the record's data-file position).
  void SetAvaRecordID(int32_t id) { FAvaRecordID = id; }
  void SetAvaRecordComment(std::string comment) { FAvaRecordComment = std::move(comment); }
  TDataCheckState DataCheckState() const { return FDataCheckState; }
  void RaiseDataCheckState(TDataCheckState state);
  bool StopTableScan() const { return FStopTableScan; }
  void SetStopTableScan(bool stop) { FStopTableScan = stop; }
  int RecordCounter() const { return FRecordCounter; }

 private:
  // Notes a failed rule and what follows from it.
  void Failed(const TCheckItem& item, TRepair repair);
  void Act(TDiSubLogItem& entry);

  TDataIntegrity& FDI;
  TDiLogItem& FLogItem;
  TStdTB* FAvaRecord = nullptr;
  bool FStopTableScan = false;
  TDiSubLogItem FDiSubLogItem;
  int32_t FAvaRecordID = 0;
  std::string FAvaRecordComment;
  TDataCheckState FDataCheckState = TDataCheckState::dcsDoNothing;
  int FRecordCounter = 0;
  std::map<std::string, int32_t, std::less<>> FPredecessors;  // per unique-key rule
};

}  // namespace korvan::data
