#include "formula/formula_tables.h"

#include "formula/catalogue/builtin_reb_formeln.h"
#include "formula/catalogue/dm_reb_formel.h"
#include "formula/catalogue/tb_reb_formel.h"

namespace korvan::formula {
namespace {

// The master-data database (DB_Stamm) keeps the catalogue for all projects.
constexpr char kStammDbType = 'E';

}  // namespace

// The catalogue's letter is also that of a calculation master table (in DB_KR); dump
// formats are known by letter alone, so none is registered for it.
void RegisterFormulaTables(data::TTableRegistry& registry) {
  using Registry = data::TTableRegistry;
  registry.Register(kStammDbType, kRebFormelTableType, Registry::FactoryOf<TTbRebFormel>());
  registry.RegisterInitialRows(kStammDbType, FillBuiltInRebFormelRows);
  registry.RegisterModule("rebformel", Registry::ModuleFactoryOf<TdmRebFormel>());
}

}  // namespace korvan::formula
