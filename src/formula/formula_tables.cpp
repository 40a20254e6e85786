#include "formula/formula_tables.h"

#include "formula/catalogue/builtin_reb_formeln.h"
#include "formula/catalogue/dm_reb_formel.h"
#include "formula/catalogue/reb_formel_record.h"
#include "formula/catalogue/tb_reb_formel.h"

namespace korvan::formula {
namespace {

// The master-data database (DB_Stamm) keeps the catalogue for all projects.
constexpr char kStammDbType = 'E';

}  // namespace

void RegisterFormulaTables(data::TTableRegistry& registry) {
  using Registry = data::TTableRegistry;
  registry.Register(kStammDbType, kRebFormelTableType, Registry::FactoryOf<TTbRebFormel>());
  registry.RegisterInitialRows(kStammDbType, FillBuiltInRebFormelRows);
  registry.RegisterModule("rebformel", Registry::ModuleFactoryOf<TdmRebFormel>());
  // The letter also stands for a calculation master table, so the format is kept to
  // DB_Stamm.
  registry.RegisterDumpFormat(kStammDbType, kRebFormelTableType, kRebFormelLayout);
}

}  // namespace korvan::formula
