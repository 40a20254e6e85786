#pragma once

#include "data/tables/table_registry.h"

namespace korvan::calc {

// Enters the calculation tables: the master tables of DB_KR with their default rows
// (the surcharges), the project tables of DB_KP and the sub-item catalogue of DB_UP.
void RegisterCalcTables(data::TTableRegistry& registry);

}  // namespace korvan::calc
