#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_set>
#include <vector>

#include "data/integrity/integrity_log.h"
#include "data/tables/std_db.h"
#include "data/tables/std_tb.h"
#include "data/tables/table_registry.h"

namespace korvan::data {

// One run of the integrity check over the tables of one or more databases: every
// record is tested against the rules its table declares in DoValidateRecord, what can
// be repaired is repaired (unless the run is a dry run), and every finding is logged.
// Before the tables of a database are walked, its files are checked (key tree, data
// blocks, free-space index); a database whose files are damaged is reported for a
// rebuild and its tables are not walked, since repairs through a damaged key file
// could only make things worse. Records whose type letter no table class is known for
// are counted per letter and logged as conflicts; they are left as they are.
class TDataIntegrity {
 public:
  using TNotifyEvent = std::function<void()>;
  // The table being checked, the records checked so far and the table's record count.
  using TProgressEvent = std::function<void(const TStdTB& table, int checked, int total)>;

  // The table name under which a database's records of unknown type letters are logged.
  static constexpr std::string_view kUnknownTablesName = "Unbekannte Tabellen";

  // `registry` knows the table classes whose rules are checked; records of letters it does
  // not know are counted and left alone.
  explicit TDataIntegrity(TTableRegistry registry);
  ~TDataIntegrity();
  TDataIntegrity(const TDataIntegrity&) = delete;
  TDataIntegrity& operator=(const TDataIntegrity&) = delete;

  // Adds an open database with the tables the registry knows for its type, or with the
  // given table objects (which must belong to `db`).
  void Add(TStdDb& db);
  void Add(TStdDb& db, std::vector<std::unique_ptr<TStdTB>> tables);
  void Clear();
  // Lets go of the databases and tables but keeps the log of the last run.
  void ReleaseTables() {
    FDatabases.clear();
    FLastTable = nullptr;
  }

  // Runs the check; the result is the number of problems (conflicts and errors).
  int Execute();

  bool OnlyTest() const { return FOnlyTest; }
  void SetOnlyTest(bool only_test) { FOnlyTest = only_test; }
  int ProblemCount() const { return FProblemCount; }
  int RecordsChecked() const { return FRecordsChecked; }

  std::vector<TStdTB*> GetTables() const;
  TStdTB* GetTable(size_t index) const;
  const std::vector<TDiLogItem>& GetLogItems() const { return FLogItems; }
  void SetLogItems(std::vector<TDiLogItem> items) { FLogItems = std::move(items); }
  void AddLogToStream(std::ostream& out) const { data::AddLogToStream(FLogItems, out); }
  std::filesystem::path AddLogToFile(const std::filesystem::path& folder) const {
    return data::AddLogToFile(FLogItems, folder);
  }

  // --- Rules -----------------------------------------------------------------------
  // Whether the value is the primary key (index "1", 11-character number) of a record
  // of `table_type` in the run's database of `db_type`. A run without such a database
  // cannot tell and answers true.
  bool CheckRecordElementAsPrimaryKeyInTable(int32_t value, char db_type, char table_type) const;
  // Whether some record of `table_type` in the run's database of `db_type` holds `value`
  // in its 32-bit field at byte `offset`. The field's values are read once per run (a
  // table without an index on the field would be walked per record otherwise). A run
  // without such a database or table answers false.
  bool CheckRecordFieldValueInTable(int32_t value, char db_type, char table_type,
                                    size_t offset) const;
  static bool CheckCharSelector(char value, std::string_view valid);
  static bool CheckUniqueKey(int32_t value, int32_t predecessor) { return value != predecessor; }
  static bool CheckMandatoryValue(int32_t value, int32_t default_value) {
    return value != default_value;
  }
  static bool CheckMandatoryValue(char value, char default_value) { return value != default_value; }
  // Whether the table's record count (data file) equals its primary-key count.
  bool CheckDBRecordCountDiff(TStdTB& table, int primary_keys, int* records) const;
  // The name of the run's database of a type ("" when none).
  std::string DatabaseName(char db_type) const;

  TNotifyEvent FOnStart;
  TNotifyEvent FOnEnd;
  TProgressEvent FOnProgress;

 private:
  struct Entry {
    TStdDb* db;
    std::vector<std::unique_ptr<TStdTB>> tables;
  };

  TStdDb* FindDatabase(char db_type) const;
  // False when the files of the database are damaged (logged); else the positions of
  // the live records of its data file.
  bool CheckFiles(TStdDb& db, std::vector<int32_t>& live_positions);
  void CheckTable(TStdTB& table);
  // Records of type letters for which neither the run nor the registry has a table
  // class: nothing can check them, so each letter is a finding, never a repair.
  void CheckUnknownTables(const Entry& entry, const std::vector<int32_t>& live_positions);
  bool KnowsTable(const Entry& entry, char table_type) const;

  using FieldKey = std::tuple<char, char, size_t>;  // database type, table type, offset
  const std::unordered_set<int32_t>& FieldValues(const FieldKey& key) const;

  TTableRegistry FRegistry;
  mutable std::map<FieldKey, std::unordered_set<int32_t>> FFieldValues;
  std::vector<Entry> FDatabases;
  std::vector<TDiLogItem> FLogItems;
  size_t FItemIndex = 0;
  TStdTB* FLastTable = nullptr;
  bool FOnlyTest = false;
  int FProblemCount = 0;
  int FRecordsChecked = 0;
};

}  // namespace korvan::data
