#pragma once

#include "boq/boq_tables.h"
#include "data/tables/data_tables.h"
#include "data/tables/table_registry.h"

namespace korvan::data::testing {

// The framework's tables and the stand-in tables the tests use.
inline TTableRegistry TestTables() {
  TTableRegistry registry;
  RegisterDataTables(registry);
  boq::RegisterBoqTables(registry);
  return registry;
}

}  // namespace korvan::data::testing
