#include "data/integrity/data_check.h"

#include <algorithm>
#include <cstdio>

#include "data/common/message_format.h"
#include "data/integrity/data_integrity.h"
#include "storage/result_codes.h"

namespace korvan::data {

// --- Check items -------------------------------------------------------------------

bool TCheckItemForElementAsPrimaryKeyInTable::Passes(const TDataIntegrity& run) const {
  return FData == FDataDefaultValue ||
         run.CheckRecordElementAsPrimaryKeyInTable(FData, FDBTyp, FRefTbClass);
}

std::string TCheckItemForElementAsPrimaryKeyInTable::Finding(const TDataIntegrity& run) const {
  return Printf("ForeignKey: %s=%d nicht vorhanden in %s - %s", FPropertyName.c_str(), FData,
                run.DatabaseName(FDBTyp).c_str(), std::string(1, FRefTbClass).c_str());
}

std::string TCheckItemForElementAsPrimaryKeyInTable::DefaultNote() const {
  return Printf("%s -> set to default (%d) ", FPropertyName.c_str(), FDataDefaultValue);
}

bool TCheckItemForElementInOneOfTables::Passes(const TDataIntegrity& run) const {
  return !run.CheckRecordFieldValueInTable(FData, FDBTyp, FTables[0], FOffset) ||
         !run.CheckRecordFieldValueInTable(FData, FDBTyp, FTables[1], FOffset);
}

std::string TCheckItemForElementInOneOfTables::Finding(const TDataIntegrity& run) const {
  return Printf("ForeignKey: %s=%d in %s - %c und %c %s", FPropertyName.c_str(), FData,
                run.DatabaseName(FDBTyp).c_str(), FTables[0], FTables[1], FQEHName.c_str());
}

bool TCheckItemForOwnerReference::Passes(const TDataIntegrity& run) const {
  if (FData == FDataDefaultValue) return !HasOwnerKind();
  return FRefTbClass == '\0' ||
         run.CheckRecordElementAsPrimaryKeyInTable(FData, FDBTyp, FRefTbClass);
}

std::string TCheckItemForOwnerReference::Finding(const TDataIntegrity&) const {
  if (FData == FDataDefaultValue) {
    return Printf("ForeignKey: %s=%d ist DefaultValue. Hat aber einen Bezug(%s).",
                  FPropertyName.c_str(), FData, Letter(FOwnerKind).c_str());
  }
  return Printf("ForeignKey: %s=%d ist nicht DefaultValue. Hat aber keinen Bezug.",
                FPropertyName.c_str(), FData);
}

bool TCheckItemForCharSelector::Passes(const TDataIntegrity&) const {
  return TDataIntegrity::CheckCharSelector(FData, FValidCharSelectors);
}

std::string TCheckItemForCharSelector::Finding(const TDataIntegrity&) const {
  return Printf("CharSelektor: %s='%s'($%x) not allowed", FPropertyName.c_str(),
                Letter(FData).c_str(), Code(FData));
}

std::string TCheckItemForCharSelector::DefaultNote() const {
  return Printf("%s -> set to default '%s'($%x) ", FPropertyName.c_str(),
                Letter(FDataDefaultValue).c_str(), Code(FDataDefaultValue));
}

bool TCheckItemForUniqueKey::Passes(const TDataIntegrity&) const {
  return !FDataPred || TDataIntegrity::CheckUniqueKey(FData, *FDataPred);
}

std::string TCheckItemForUniqueKey::Finding(const TDataIntegrity&) const {
  return Printf("UniqueKey: %s is not unique: %d", FPropertyName.c_str(), FData);
}

bool TCheckItemForMandatoryInt::Passes(const TDataIntegrity&) const {
  return TDataIntegrity::CheckMandatoryValue(FData, FDataDefault);
}

std::string TCheckItemForMandatoryInt::Finding(const TDataIntegrity&) const {
  return Printf("MandatoryValue: %s is default: %d", FPropertyName.c_str(), FData);
}

std::string TCheckItemForMandatoryInt::DefaultNote() const {
  return Printf("%s -> set to default (%d) ", FPropertyName.c_str(), FDataDefault);
}

bool TCheckItemForMandatoryChar::Passes(const TDataIntegrity&) const {
  return TDataIntegrity::CheckMandatoryValue(FData, FDataDefault);
}

std::string TCheckItemForMandatoryChar::Finding(const TDataIntegrity&) const {
  return Printf("MandatoryValue: %s is default: '%s'($%x)", FPropertyName.c_str(),
                Letter(FData).c_str(), Code(FData));
}

std::string TCheckItemForMandatoryChar::DefaultNote() const {
  return Printf("%s -> set to default '%s'($%x) ", FPropertyName.c_str(),
                Letter(FDataDefault).c_str(), Code(FDataDefault));
}

// --- TDataCheck --------------------------------------------------------------------

TDataCheck::TDataCheck(TDataIntegrity& run, TDiLogItem& log_item) : FDI(run), FLogItem(log_item) {}

void TDataCheck::EnterRecord(TStdTB& table) {
  FAvaRecord = &table;
  FDiSubLogItem = TDiSubLogItem{};
  FAvaRecordID = table.CurrentRecordPos();
  FAvaRecordComment = table.CurrentRecordToString();
  FDataCheckState = TDataCheckState::dcsDoNothing;
  ++FRecordCounter;
}

void TDataCheck::RaiseDataCheckState(TDataCheckState state) {
  FDataCheckState = std::max(FDataCheckState, state);
}

void TDataCheck::Failed(const TCheckItem& item, TRepair repair) {
  FDiSubLogItem.FProperties.push_back(item.Finding(FDI));
  FDiSubLogItem.FKind = std::max(FDiSubLogItem.FKind, TLogKind::lkHint);
  switch (repair) {
    case TRepair::kSetDefault:
      FDiSubLogItem.FConclusion += item.DefaultNote();
      RaiseDataCheckState(TDataCheckState::dcsDoUpdate);
      break;
    case TRepair::kDelete:
      FDiSubLogItem.FConclusion += "- record is deletable ";
      RaiseDataCheckState(TDataCheckState::dcsDoDelete);
      break;
    case TRepair::kClarify:
      RaiseDataCheckState(TDataCheckState::dcsToClarify);
      break;
  }
}

bool TDataCheck::CheckItemForCharSelector(std::string_view name, char& field, char default_value,
                                          std::string_view valid, std::string_view qeh_name,
                                          TRepair repair) {
  const TCheckItemForCharSelector item(name, field, default_value, valid, qeh_name);
  if (item.Passes(FDI)) return true;
  Failed(item, repair);
  if (!item.Explanation().empty()) FDiSubLogItem.FProperties.push_back(item.Explanation());
  if (repair == TRepair::kSetDefault) field = default_value;
  return false;
}

bool TDataCheck::CheckItemForMandatory(std::string_view name, int32_t value, int32_t default_value,
                                       TRepair repair) {
  const TCheckItemForMandatoryInt item(name, value, default_value);
  if (item.Passes(FDI)) return true;
  // The default is what is wrong: it cannot be the repair.
  Failed(item, repair == TRepair::kSetDefault ? TRepair::kClarify : repair);
  return false;
}

bool TDataCheck::CheckItemForMandatory(std::string_view name, char value, char default_value,
                                       TRepair repair) {
  const TCheckItemForMandatoryChar item(name, value, default_value);
  if (item.Passes(FDI)) return true;
  Failed(item, repair == TRepair::kSetDefault ? TRepair::kClarify : repair);
  return false;
}

bool TDataCheck::CheckItemForElementAsPrimaryKeyInTable(std::string_view name, int32_t& field,
                                                        int32_t default_value, char db_type,
                                                        char ref_table, TRepair repair) {
  const TCheckItemForElementAsPrimaryKeyInTable item(name, field, default_value, db_type,
                                                     ref_table);
  if (item.Passes(FDI)) return true;
  Failed(item, repair);
  if (repair == TRepair::kSetDefault) field = default_value;
  return false;
}

bool TDataCheck::CheckItemForElementInOneOfTables(std::string_view name, int32_t value,
                                                  char db_type, char first_table, char second_table,
                                                  size_t offset, std::string_view qeh_name) {
  const TCheckItemForElementInOneOfTables item(name, value, db_type, first_table, second_table,
                                               offset, qeh_name);
  if (item.Passes(FDI)) return true;
  Failed(item, TRepair::kClarify);
  return false;
}

bool TDataCheck::CheckItemForOwnerReference(std::string_view name, int32_t value,
                                            int32_t default_value, char owner_kind, char db_type,
                                            char ref_table) {
  const TCheckItemForOwnerReference item(name, value, default_value, owner_kind, db_type,
                                         ref_table);
  if (item.Passes(FDI)) return true;
  Failed(item, value == default_value ? TRepair::kClarify : TRepair::kDelete);
  return false;
}

bool TDataCheck::CheckItemForUniqueKey(std::string_view name, int32_t value, TRepair repair) {
  std::optional<int32_t> predecessor;
  auto found = FPredecessors.find(name);
  if (found != FPredecessors.end()) predecessor = found->second;
  FPredecessors[std::string(name)] = value;
  const TCheckItemForUniqueKey item(name, value, predecessor);
  if (item.Passes(FDI)) return true;
  Failed(item, repair == TRepair::kSetDefault ? TRepair::kClarify : repair);
  return false;
}

void TDataCheck::RecordCount2Log(int records) {
  FLogItem.FRecordCountResult.push_back(Printf("    %d Record(s) untersucht", records));
}

void TDataCheck::RecordCountDiff2Log(int records, int primary_keys) {
  FLogItem.FRecordCountResult.push_back(
      Printf("    RecordCount: %d - PrimaryKeysCount: %d", records, primary_keys));
  FLogItem.FRecordCountResult.push_back("    Aktion: RecordCountDifferenz: Abbruch!");
  FLogItem.FRecordCountDiffers = true;
}

void TDataCheck::Act(TDiSubLogItem& entry) {
  TStdTB& table = *FAvaRecord;
  switch (FDataCheckState) {
    case TDataCheckState::dcsDoNothing:
      return;
    case TDataCheckState::dcsDoUpdate:
      entry.FKind = TLogKind::lkConflict;
      if (FDI.OnlyTest()) {
        entry.FAction = "Nur Trockenlauf - Datensatz nicht geschrieben";
      } else if (table.UpDateRec() == storage::kOk) {
        entry.FAction = "Datensatz neu geschrieben";
      } else {
        entry.FKind = TLogKind::lkError;
        entry.FAction = "Fehler bei Datensatz-Update";
      }
      return;
    case TDataCheckState::dcsDoDelete:
      entry.FKind = TLogKind::lkConflict;
      if (FDI.OnlyTest()) {
        entry.FAction = "Nur Trockenlauf - Datensatz nicht gelöscht";
      } else if (table.DeleteRec() == storage::kOk) {
        entry.FAction = "Datensatz gelöscht";
      } else {
        entry.FKind = TLogKind::lkError;
        entry.FAction = "Fehler bei Datensatz-Löschen";
      }
      return;
    case TDataCheckState::dcsToClarify:
      entry.FKind = TLogKind::lkConflict;
      entry.FAction = "Datensatzkonflikt ist zu klären";
      return;
  }
}

void TDataCheck::ExitRecord() {
  if (FDataCheckState == TDataCheckState::dcsDoNothing && FDiSubLogItem.FProperties.empty()) {
    return;
  }
  TDiSubLogItem entry = std::move(FDiSubLogItem);
  entry.FData = Printf("ID=%d", FAvaRecordID);
  if (!FAvaRecordComment.empty())
    entry.FProperties.insert(entry.FProperties.begin(), FAvaRecordComment);
  Act(entry);
  FLogItem.FDISubItems.push_back(std::move(entry));
}

}  // namespace korvan::data
