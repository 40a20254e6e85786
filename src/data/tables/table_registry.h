#pragma once

#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "data/records/field_descriptor.h"
#include "data/records/record_dump.h"
#include "data/tables/std_tb.h"

namespace korvan::data {

class TTableListModule;

// How the records of a table letter are shown in a dump: the layout, and the columns of
// the table's dump when it has one (else the record is shown field by field).
struct TableDumpFormat {
  const RecordLayout* layout = nullptr;
  std::span<const DumpColumn> columns;
};

// What filling a new table with its first rows did: a kernel code, and a report for the
// user (empty when there is nothing to say).
struct TInitialRowsResult {
  int result = 0;
  std::string report;
};

// What the program knows about its tables, filled by the libraries that own them (each
// through its own Register...Tables function) and composed once by the program:
// - table classes: (database type letter, record type letter) to a factory of the table
//   object, so that code that meets a record only in a data file (rebuild, recovery,
//   integrity check, undo) finds the class that builds its keys and declares its rules;
// - data modules: the lists the command line opens by name;
// - dump formats: how the records of a table letter are shown;
// - initial rows: what a table holds from the moment its database is created.
class TTableRegistry {
 public:
  using Factory = std::function<std::unique_ptr<TStdTB>(TStdDb&)>;
  using InitialRows = std::function<TInitialRowsResult(TStdDb&)>;
  using ModuleFactory = std::function<std::unique_ptr<TTableListModule>(TStdDb&)>;

  // Stands for every database type in Register.
  static constexpr char kAnyDbType = '*';

  // The factory of a table class whose constructor takes the database.
  template <class Table>
  static Factory FactoryOf() {
    return [](TStdDb& db) -> std::unique_ptr<TStdTB> { return std::make_unique<Table>(db); };
  }
  // The factory of a data module whose constructor takes the database.
  template <class Module>
  static ModuleFactory ModuleFactoryOf() {
    return [](TStdDb& db) -> std::unique_ptr<TTableListModule> {
      return std::make_unique<Module>(db);
    };
  }

  // Registers a table class for one database type or, with kAnyDbType, for all. A later
  // registration of the same pair replaces the earlier one.
  void Register(char db_type, char table_type, Factory factory);
  // Registers a data module under the name the command line knows it by ("waehrung"); a
  // later registration of the same name replaces the earlier one.
  void RegisterModule(std::string name, ModuleFactory factory);
  // Registers how the records of a table letter are dumped, in every database type.
  void RegisterDumpFormat(char table_type, const RecordLayout& layout,
                          std::span<const DumpColumn> columns = {});
  // The same for one database type: all 26 record letters are taken, so a letter can
  // stand for different records in different database types.
  void RegisterDumpFormat(char db_type, char table_type, const RecordLayout& layout,
                          std::span<const DumpColumn> columns = {});

  // Registers the rows a new database of `db_type` is filled with, in registration order.
  void RegisterInitialRows(char db_type, InitialRows fill);
  // Fills a database created just now with the rows registered for its type; stops at
  // the first failure. The reports of the fills, in order.
  TInitialRowsResult FillInitialRows(TStdDb& db) const;

  // The factory for a record type in a database type, or nullptr when none is known.
  const Factory* Find(char db_type, char table_type) const;
  // The record types registered for a database type, in letter order.
  std::vector<char> TablesOf(char db_type) const;
  // One table object per registered record type of the database's type.
  std::vector<std::unique_ptr<TStdTB>> CreateTables(TStdDb& db) const;

  // The module called `name`, or nullptr.
  const ModuleFactory* FindModule(std::string_view name) const;
  // The names of the modules, in the order they were registered.
  std::vector<std::string> ModuleNames() const;

  // The dump format of a table letter in a database type (kAnyDbType when the type is not
  // known): the one registered for that type, else the one for every type, else nullptr.
  const TableDumpFormat* FindDumpFormat(char db_type, char table_type) const;

 private:
  std::map<std::pair<char, char>, Factory> factories_;
  std::vector<std::pair<std::string, ModuleFactory>> modules_;
  std::map<std::pair<char, char>, TableDumpFormat> dump_formats_;
  std::vector<std::pair<char, InitialRows>> initial_rows_;
};

}  // namespace korvan::data
