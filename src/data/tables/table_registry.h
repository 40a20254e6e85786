#pragma once

#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "data/tables/std_tb.h"

namespace korvan::data {

// Which table classes live in which database types, so that code that meets a record
// only in a data file (rebuild, recovery, integrity check) can find the class that
// builds its keys and declares its rules: (database type letter, record type letter)
// to a factory of the table object.
class TTableRegistry {
 public:
  using Factory = std::function<std::unique_ptr<TStdTB>(TStdDb&)>;

  // Stands for every database type in Register.
  static constexpr char kAnyDbType = '*';

  // Registers a table class for one database type or, with kAnyDbType, for all. A later
  // registration of the same pair replaces the earlier one.
  void Register(char db_type, char table_type, Factory factory);

  // The factory for a record type in a database type, or nullptr when none is known.
  const Factory* Find(char db_type, char table_type) const;
  // The record types registered for a database type, in letter order.
  std::vector<char> TablesOf(char db_type) const;
  // One table object per registered record type of the database's type.
  std::vector<std::unique_ptr<TStdTB>> CreateTables(TStdDb& db) const;

 private:
  std::map<std::pair<char, char>, Factory> factories_;
};

// The table classes of the program. New table classes are added here.
TTableRegistry StandardTableRegistry();

}  // namespace korvan::data
