#pragma once

#include "data/tables/table_registry.h"

namespace korvan::calc {

// Enters the calculation tables: the master tables of DB_KR with their default rows
// (the surcharges), and the project tables of DB_KP.
void RegisterCalcTables(data::TTableRegistry& registry);

}  // namespace korvan::calc
