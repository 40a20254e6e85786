#include "data/tables/table_registry.h"

#include <set>

#include "data/tables/tb_counter.h"
#include "data/tables/tb_db_info.h"
#include "data/units/tb_einheit.h"
#include "data/units/tb_waehrung.h"

namespace korvan::data {

void TTableRegistry::Register(char db_type, char table_type, Factory factory) {
  factories_[{db_type, table_type}] = std::move(factory);
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

namespace {

template <class Table>
TTableRegistry::Factory FactoryOf() {
  return [](TStdDb& db) -> std::unique_ptr<TStdTB> { return std::make_unique<Table>(db); };
}

// The master-data database (DB_Stamm) keeps currencies and units.
constexpr char kStammDbType = 'E';

}  // namespace

TTableRegistry StandardTableRegistry() {
  TTableRegistry registry;
  // Every database carries its version record and its id counters.
  registry.Register(TTableRegistry::kAnyDbType, kDbInfoTableType, FactoryOf<TTbDbInfo>());
  registry.Register(TTableRegistry::kAnyDbType, kCounterTableType, FactoryOf<TTbCounter>());
  registry.Register(kStammDbType, kWaehrungTableType, FactoryOf<TTbWaehrung>());
  registry.Register(kStammDbType, kEinheitTableType, FactoryOf<TTbEinheit>());
  return registry;
}

}  // namespace korvan::data
