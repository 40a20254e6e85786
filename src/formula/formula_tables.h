#pragma once

#include "data/tables/table_registry.h"

namespace korvan::formula {

// Enters the catalogue of numbered REB formulas (master data), the built-in list a new
// master-data database starts with, and its list "rebformel".
void RegisterFormulaTables(data::TTableRegistry& registry);

}  // namespace korvan::formula
