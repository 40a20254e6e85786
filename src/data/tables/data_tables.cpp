#include "data/tables/data_tables.h"

#include "data/records/framework_records.h"
#include "data/tables/tb_counter.h"
#include "data/tables/tb_db_info.h"

namespace korvan::data {

void RegisterDataTables(TTableRegistry& registry) {
  registry.Register(TTableRegistry::kAnyDbType, kDbInfoTableType,
                    TTableRegistry::FactoryOf<TTbDbInfo>());
  registry.Register(TTableRegistry::kAnyDbType, kCounterTableType,
                    TTableRegistry::FactoryOf<TTbCounter>());
  registry.RegisterDumpFormat(kCounterTableType, kCounterLayout);
  registry.RegisterDumpFormat(kDbInfoTableType, kDbInfoLayout);
}

}  // namespace korvan::data
