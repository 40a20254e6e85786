#pragma once

#include "data/tables/table_registry.h"

namespace korvan::data {

// Enters the framework's own tables, which every database carries (its version record and
// its id counters), with their dump formats.
void RegisterDataTables(TTableRegistry& registry);

}  // namespace korvan::data
