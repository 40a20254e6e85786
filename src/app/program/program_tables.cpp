#include "app/program/program_tables.h"

#include "award/award_tables.h"
#include "billing/billing_tables.h"
#include "boq/boq_tables.h"
#include "calc/tables/calc_tables.h"
#include "data/tables/data_tables.h"
#include "exchange/exchange_tables.h"
#include "formula/formula_tables.h"

namespace korvan::app {
namespace {

// Each library enters what it owns, in layer order; a library that adds tables adds its
// call here.
data::TTableRegistry ComposeProgramTables() {
  data::TTableRegistry registry;
  data::RegisterDataTables(registry);
  boq::RegisterBoqTables(registry);
  formula::RegisterFormulaTables(registry);
  calc::RegisterCalcTables(registry);
  award::RegisterAwardTables(registry);
  billing::RegisterBillingTables(registry);
  exchange::RegisterExchangeTables(registry);
  return registry;
}

}  // namespace

const data::TTableRegistry& ProgramTables() {
  static const data::TTableRegistry registry = ComposeProgramTables();
  return registry;
}

}  // namespace korvan::app
