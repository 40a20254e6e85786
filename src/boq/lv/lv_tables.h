#pragma once

#include "data/tables/table_registry.h"

namespace korvan::boq {

// Enters the tables of the LV database (header, levels, structure, groups, items,
// descriptions) with their dump formats.
void RegisterLvTables(data::TTableRegistry& registry);

}  // namespace korvan::boq
