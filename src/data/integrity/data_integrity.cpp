#include "data/integrity/data_integrity.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>

#include "data/common/message_format.h"
#include "data/integrity/data_check.h"
#include "data/tables/table_key.h"
#include "storage/data_file_check.h"
#include "storage/db_error_translate.h"
#include "storage/db_kernel.h"
#include "storage/db_kernel_exception.h"
#include "storage/file/file_names.h"
#include "storage/key_tree_check.h"
#include "storage/result_codes.h"

namespace korvan::data {
namespace {

std::string DataFileName(const TStdDb& db) {
  return storage::DataFileName(db.BasePath());
}

TDiSubLogItem ErrorItem(std::string data, std::string conclusion, std::string action) {
  TDiSubLogItem item;
  item.FKind = TLogKind::lkError;
  item.FData = std::move(data);
  item.FConclusion = std::move(conclusion);
  item.FAction = std::move(action);
  return item;
}

std::string KernelText(int code) {
  return std::to_string(code) + " " + storage::TDBErrorTranslate().GetErrorString(code);
}

}  // namespace

TDataIntegrity::TDataIntegrity(TTableRegistry registry) : FRegistry(std::move(registry)) {}

TDataIntegrity::~TDataIntegrity() = default;

void TDataIntegrity::Add(TStdDb& db) {
  Add(db, FRegistry.CreateTables(db));
}

void TDataIntegrity::Add(TStdDb& db, std::vector<std::unique_ptr<TStdTB>> tables) {
  FDatabases.push_back(Entry{&db, std::move(tables)});
}

void TDataIntegrity::Clear() {
  FDatabases.clear();
  FLogItems.clear();
  FProblemCount = 0;
  FRecordsChecked = 0;
  FItemIndex = 0;
  FLastTable = nullptr;
}

std::vector<TStdTB*> TDataIntegrity::GetTables() const {
  std::vector<TStdTB*> tables;
  for (const Entry& entry : FDatabases) {
    for (const auto& table : entry.tables) tables.push_back(table.get());
  }
  return tables;
}

TStdTB* TDataIntegrity::GetTable(size_t index) const {
  const std::vector<TStdTB*> tables = GetTables();
  return index < tables.size() ? tables[index] : nullptr;
}

TStdDb* TDataIntegrity::FindDatabase(char db_type) const {
  for (const Entry& entry : FDatabases) {
    if (entry.db->DbType() == db_type) return entry.db;
  }
  return nullptr;
}

std::string TDataIntegrity::DatabaseName(char db_type) const {
  const TStdDb* db = FindDatabase(db_type);
  return db ? db->Name() : std::string();
}

bool TDataIntegrity::CheckCharSelector(char value, std::string_view valid) {
  return valid.find(value) != std::string_view::npos;
}

bool TDataIntegrity::CheckRecordElementAsPrimaryKeyInTable(int32_t value, char db_type,
                                                           char table_type) const {
  const TStdDb* db = FindDatabase(db_type);
  if (db == nullptr || !db->IsOpen()) return true;
  storage::KeyEntry entry =
      MakeKeyEntry(BuildKeyPattern(table_type, '1', KeyNumber(value), db->KeyLength()));
  uint32_t position = 0;
  return storage::iDK_KeyFirstMatch(db->Handle(), entry, &position) == storage::kOk;
}

bool TDataIntegrity::CheckRecordFieldValueInTable(int32_t value, char db_type, char table_type,
                                                  size_t offset) const {
  return FieldValues({db_type, table_type, offset}).contains(value);
}

const std::unordered_set<int32_t>& TDataIntegrity::FieldValues(const FieldKey& key) const {
  const auto known = FFieldValues.find(key);
  if (known != FFieldValues.end()) return known->second;
  std::unordered_set<int32_t>& values = FFieldValues[key];
  const auto [db_type, table_type, offset] = key;
  for (const Entry& entry : FDatabases) {
    if (entry.db->DbType() != db_type) continue;
    for (const std::unique_ptr<TStdTB>& table : entry.tables) {
      if (table->TableType() != table_type) continue;
      std::vector<std::vector<uint8_t>> records;
      if (table->GetBatch("", '1', records) != storage::kOk) continue;
      for (const std::vector<uint8_t>& record : records) {
        if (record.size() < offset + sizeof(int32_t)) continue;
        int32_t field = 0;
        std::memcpy(&field, record.data() + offset, sizeof field);
        values.insert(field);
      }
    }
  }
  return values;
}

bool TDataIntegrity::CheckDBRecordCountDiff(TStdTB& table, int primary_keys, int* records) const {
  int32_t count = 0;
  const int result = table.Db().RecordCount(table.TableType(), &count);
  *records = result == storage::kOk ? count : -1;
  return *records == primary_keys;
}

bool TDataIntegrity::CheckFiles(TStdDb& db, std::vector<int32_t>& live_positions) {
  std::vector<std::string> problems;
  if (const int flushed = db.Flush(); flushed != storage::kOk) {
    problems.push_back("Flush: " + KernelText(flushed));
  }
  for (std::string& problem : storage::CheckKeyFile(db.Handle())) {
    problems.push_back("Schlüsseldatei: " + std::move(problem));
  }
  storage::DataFileReport data_file = storage::CheckDataFile(db.Handle());
  for (std::string& problem : data_file.problems) {
    problems.push_back("Datendatei: " + std::move(problem));
  }
  if (problems.empty()) {
    live_positions.clear();
    for (const storage::DataFileBlock& block : data_file.blocks) {
      if (block.live) live_positions.push_back(block.position);
    }
    return true;
  }
  TDiLogItem& item = FLogItems.emplace_back();
  item.FDatabaseName = DataFileName(db);
  item.FTableName = "Dateien";
  for (std::string& problem : problems) {
    item.FDISubItems.push_back(ErrorItem(std::move(problem), "Datenbank muss neu aufgebaut werden",
                                         "Tabellen nicht geprüft"));
  }
  return false;
}

bool TDataIntegrity::KnowsTable(const Entry& entry, char table_type) const {
  const bool in_run = std::any_of(entry.tables.begin(), entry.tables.end(), [&](const auto& table) {
    return table->TableType() == table_type;
  });
  return in_run || FRegistry.Find(entry.db->DbType(), table_type) != nullptr;
}

void TDataIntegrity::CheckUnknownTables(const Entry& entry,
                                        const std::vector<int32_t>& live_positions) {
  std::map<char, int> unknown;  // records per type letter
  std::vector<TDiSubLogItem> unreadable;
  for (int32_t position : live_positions) {
    storage::TDbCoreHeader core{};
    int32_t length = sizeof core;
    try {
      storage::iDK_RecordRead(entry.db->Handle(), position, &core, &length, true);
    } catch (const storage::EDbKernelException& error) {
      unreadable.push_back(ErrorItem("Position=" + std::to_string(position),
                                     std::string("Datensatz nicht lesbar: ") + error.what(),
                                     "Datensatz nicht geprüft"));
      continue;
    }
    if (length == sizeof core && !KnowsTable(entry, core.RecTyp)) ++unknown[core.RecTyp];
  }
  if (unknown.empty() && unreadable.empty()) return;
  TDiLogItem& item = FLogItems.emplace_back();
  item.FDatabaseName = DataFileName(*entry.db);
  item.FTableName = std::string(kUnknownTablesName);
  item.FDISubItems = std::move(unreadable);
  for (const auto& [letter, records] : unknown) {
    TDiSubLogItem& finding = item.FDISubItems.emplace_back();
    finding.FKind = TLogKind::lkConflict;
    finding.FData = Printf("RecTyp='%s'($%x)", Letter(letter).c_str(), Code(letter));
    finding.FProperties.push_back(
        Printf("UnknownTable: RecTyp='%s'($%x) has no table class: %d Record(s)",
               Letter(letter).c_str(), Code(letter), records));
    finding.FConclusion = "Datensätze nicht prüfbar";
    // Without its class a record's keys and rules are unknown, but the record may be
    // data of a newer program version: deleting it could lose what nobody can restore.
    finding.FAction = "Datensätze unverändert belassen";
  }
}

void TDataIntegrity::CheckTable(TStdTB& table) {
  FLastTable = &table;
  TDiLogItem& item = FLogItems.emplace_back();
  item.FDatabaseName = DataFileName(table.Db());
  item.FTableName = table.TableName();
  TDataCheck check(*this, item);

  // The walk goes by the positions of the primary keys, collected first, so that
  // records written back or deleted on the way cannot disturb it.
  std::vector<std::string> keys;
  std::vector<int32_t> positions;
  if (const int walked = table.GetKeyBatch("", table.UniqueIndex(), keys, positions);
      walked != storage::kOk) {
    item.FDISubItems.push_back(ErrorItem(
        "Schlüssel", "Schlüssel nicht lesbar: " + KernelText(walked), "Tabelle nicht geprüft"));
    return;
  }
  const int total = static_cast<int>(positions.size());
  int records = 0;
  if (!CheckDBRecordCountDiff(table, total, &records)) {
    check.RecordCountDiff2Log(records, total);
    return;
  }
  for (int32_t position : positions) {
    if (FOnProgress) FOnProgress(table, check.RecordCounter(), total);
    if (!table.GetRec(position)) {
      item.FDISubItems.push_back(ErrorItem("Position=" + std::to_string(position),
                                           "Datensatz nicht lesbar: " + table.LastErrorText(),
                                           "Datensatz nicht geprüft"));
      continue;
    }
    check.EnterRecord(table);
    table.DoValidateRecord(check);
    check.ExitRecord();
    if (check.StopTableScan()) break;
  }
  check.RecordCount2Log(check.RecordCounter());
  FRecordsChecked += check.RecordCounter();
}

int TDataIntegrity::Execute() {
  FLogItems.clear();
  FProblemCount = 0;
  FRecordsChecked = 0;
  if (FOnStart) FOnStart();
  for (FItemIndex = 0; FItemIndex < FDatabases.size(); ++FItemIndex) {
    Entry& entry = FDatabases[FItemIndex];
    if (!entry.db->IsOpen()) {
      TDiLogItem& item = FLogItems.emplace_back();
      item.FDatabaseName = DataFileName(*entry.db);
      item.FTableName = "Dateien";
      item.FDISubItems.push_back(ErrorItem("nicht geöffnet", "Datenbank muss neu aufgebaut werden",
                                           "Tabellen nicht geprüft"));
      continue;
    }
    std::vector<int32_t> live_positions;
    if (!CheckFiles(*entry.db, live_positions)) continue;
    for (const auto& table : entry.tables) CheckTable(*table);
    CheckUnknownTables(entry, live_positions);
    if (!FOnlyTest) entry.db->Flush();
  }
  for (const TDiLogItem& item : FLogItems) FProblemCount += item.ProblemCount();
  if (FOnEnd) FOnEnd();
  return FProblemCount;
}

}  // namespace korvan::data
