#pragma once

#include "data/tables/table_registry.h"

namespace korvan::formula {

// Enters the catalogue of numbered REB formulas (master data) and the built-in list a new
// master-data database starts with.
void RegisterFormulaTables(data::TTableRegistry& registry);

}  // namespace korvan::formula
