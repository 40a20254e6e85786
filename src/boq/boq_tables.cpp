#include "boq/boq_tables.h"

#include "boq/units/currency_records.h"
#include "boq/units/dm_einheit.h"
#include "boq/units/dm_waehrung.h"
#include "boq/units/tb_einheit.h"
#include "boq/units/tb_waehrung.h"
#include "boq/units/unit_record.h"

namespace korvan::boq {
namespace {

// The master-data database (DB_Stamm) keeps currencies and units.
constexpr char kStammDbType = 'E';

}  // namespace

void RegisterBoqTables(data::TTableRegistry& registry) {
  using Registry = data::TTableRegistry;
  registry.Register(kStammDbType, kWaehrungTableType, Registry::FactoryOf<TTbWaehrung>());
  registry.Register(kStammDbType, kEinheitTableType, Registry::FactoryOf<TTbEinheit>());
  registry.RegisterModule("waehrung", Registry::ModuleFactoryOf<TdmWaehrung>());
  registry.RegisterModule("einheit", Registry::ModuleFactoryOf<TdmEinheit>());
  registry.RegisterDumpFormat(kWaehrungTableType, kWaehrungLayout);
  registry.RegisterDumpFormat(kEinheitTableType, kEinheitLayout);
}

}  // namespace korvan::boq
