#pragma once

#include "data/tables/table_registry.h"

namespace korvan::boq {

// Enters the tables of the bill of quantities with their data modules and dump formats:
// currencies and units of the master data, short and long texts and text complements of
// the text databases, and the tables of the LV database.
void RegisterBoqTables(data::TTableRegistry& registry);

}  // namespace korvan::boq
