#include "data/tables/table_registry.h"

#include <algorithm>
#include <set>

namespace korvan::data {

void TTableRegistry::Register(char db_type, char table_type, Factory factory) {
  factories_[{db_type, table_type}] = std::move(factory);
}

void TTableRegistry::RegisterModule(std::string name, ModuleFactory factory) {
  const auto same = [&](const auto& entry) { return entry.first == name; };
  if (auto found = std::find_if(modules_.begin(), modules_.end(), same); found != modules_.end()) {
    found->second = std::move(factory);
    return;
  }
  modules_.emplace_back(std::move(name), std::move(factory));
}

void TTableRegistry::RegisterDumpFormat(char table_type, const RecordLayout& layout,
                                        std::span<const DumpColumn> columns) {
  RegisterDumpFormat(kAnyDbType, table_type, layout, columns);
}

void TTableRegistry::RegisterDumpFormat(char db_type, char table_type, const RecordLayout& layout,
                                        std::span<const DumpColumn> columns) {
  dump_formats_[{db_type, table_type}] = TableDumpFormat{&layout, columns};
}

void TTableRegistry::RegisterInitialRows(char db_type, InitialRows fill) {
  initial_rows_.emplace_back(db_type, std::move(fill));
}

TInitialRowsResult TTableRegistry::FillInitialRows(TStdDb& db) const {
  TInitialRowsResult all;
  for (const auto& [db_type, fill] : initial_rows_) {
    if (db_type != db.DbType()) continue;
    TInitialRowsResult filled = fill(db);
    if (!filled.report.empty()) all.report += (all.report.empty() ? "" : "\n") + filled.report;
    if (filled.result != 0) {
      all.result = filled.result;
      break;
    }
  }
  return all;
}

const TTableRegistry::Factory* TTableRegistry::Find(char db_type, char table_type) const {
  if (auto found = factories_.find({db_type, table_type}); found != factories_.end()) {
    return &found->second;
  }
  if (auto found = factories_.find({kAnyDbType, table_type}); found != factories_.end()) {
    return &found->second;
  }
  return nullptr;
}

std::vector<char> TTableRegistry::TablesOf(char db_type) const {
  std::set<char> letters;
  for (const auto& [key, factory] : factories_) {
    if (key.first == db_type || key.first == kAnyDbType) letters.insert(key.second);
  }
  return {letters.begin(), letters.end()};
}

std::vector<std::unique_ptr<TStdTB>> TTableRegistry::CreateTables(TStdDb& db) const {
  std::vector<std::unique_ptr<TStdTB>> tables;
  for (char letter : TablesOf(db.DbType())) tables.push_back((*Find(db.DbType(), letter))(db));
  return tables;
}

const TTableRegistry::ModuleFactory* TTableRegistry::FindModule(std::string_view name) const {
  for (const auto& [module_name, factory] : modules_) {
    if (module_name == name) return &factory;
  }
  return nullptr;
}

std::vector<std::string> TTableRegistry::ModuleNames() const {
  std::vector<std::string> names;
  for (const auto& entry : modules_) names.push_back(entry.first);
  return names;
}

const TableDumpFormat* TTableRegistry::FindDumpFormat(char db_type, char table_type) const {
  for (const char type : {db_type, kAnyDbType}) {
    const auto found = dump_formats_.find({type, table_type});
    if (found != dump_formats_.end()) return &found->second;
  }
  return nullptr;
}

}  // namespace korvan::data
