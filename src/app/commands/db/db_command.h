#pragma once

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

#include "app/cli/command.h"

namespace korvan::data {
class TTableRegistry;
}

namespace korvan::app {

// `korvan db <operation> <base>`: the storage maintenance tool. It works on the two
// files of one database, "<base>0" (data) and "<base>1" (keys), and so takes no data
// directory.
class DbCommand : public Command {
 public:
  std::string Name() const override { return "db"; }
  std::string Summary() const override {
    return "legt eine Datenbank (Daten- und Schlüsseldatei) an, zeigt, prüft und bearbeitet sie";
  }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  using Operation = int (DbCommand::*)(Streams&);
  CLI::App& AddOperation(CLI::App& app, const std::string& name, const std::string& summary,
                         Operation operation);

  int Create(Streams& streams);
  int Info(Streams& streams);
  int Dump(Streams& streams);
  int Keys(Streams& streams);
  int Check(Streams& streams);
  int Shell(Streams& streams);

  std::vector<std::pair<CLI::App*, Operation>> operations_;
  std::string base_path_;
  std::string type_;
  int key_length_ = 0;
  std::string table_;  // dump: the type letter of the one table to print
};

// The work of the operations; each returns the exit code and throws CommandError when
// the files cannot be used at all.
int RunDbCreate(const std::string& base_path, char db_type, int key_length, Streams& streams);
int RunDbInfo(const std::string& base_path, Streams& streams);
int RunDbDump(const std::string& base_path, Streams& streams);
// The records of one table (its type letter), in the dump format `tables` knows for it,
// else field by field (db_dump_table.cpp).
int RunDbDumpTable(const std::string& base_path, char table_type,
                   const data::TTableRegistry& tables, Streams& streams);
int RunDbKeys(const std::string& base_path, Streams& streams);
int RunDbCheck(const std::string& base_path, Streams& streams);
int RunDbShell(const std::string& base_path, std::istream& in, Streams& streams);

}  // namespace korvan::app
