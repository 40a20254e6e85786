#include "data/data_integrity.h"

#include <algorithm>

#include "data/data_check.h"
#include "data/table_key.h"
#include "storage/data_file_check.h"
#include "storage/db_error_translate.h"
#include "storage/db_kernel.h"
#include "storage/key_tree_check.h"
#include "storage/result_codes.h"

namespace korvan::data {
namespace {

std::string DataFileName(const TStdDb& db) {
  return db.BasePath() + "0";
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

bool TDataIntegrity::CheckDBRecordCountDiff(TStdTB& table, int primary_keys, int* records) const {
  int32_t count = 0;
  const int result = table.Db().RecordCount(table.TableType(), &count);
  *records = result == storage::kOk ? count : -1;
  return *records == primary_keys;
}

bool TDataIntegrity::CheckFiles(TStdDb& db) {
  std::vector<std::string> problems;
  if (const int flushed = db.Flush(); flushed != storage::kOk) {
    problems.push_back("Flush: " + KernelText(flushed));
  }
  for (std::string& problem : storage::CheckKeyFile(db.Handle())) {
    problems.push_back("Schlüsseldatei: " + std::move(problem));
  }
  for (std::string& problem : storage::CheckDataFile(db.Handle()).problems) {
    problems.push_back("Datendatei: " + std::move(problem));
  }
  if (problems.empty()) return true;
  TDiLogItem& item = FLogItems.emplace_back();
  item.FDatabaseName = DataFileName(db);
  item.FTableName = "Dateien";
  for (std::string& problem : problems) {
    item.FDISubItems.push_back(ErrorItem(std::move(problem), "Datenbank muss neu aufgebaut werden",
                                         "Tabellen nicht geprüft"));
  }
  return false;
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
    if (!CheckFiles(*entry.db)) continue;
    for (const auto& table : entry.tables) CheckTable(*table);
    if (!FOnlyTest) entry.db->Flush();
  }
  for (const TDiLogItem& item : FLogItems) FProblemCount += item.ProblemCount();
  if (FOnEnd) FOnEnd();
  return FProblemCount;
}

}  // namespace korvan::data
