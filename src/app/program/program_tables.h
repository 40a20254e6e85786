#pragma once

#include "data/tables/table_registry.h"

namespace korvan::app {

// The tables, data modules and dump formats of the whole program: every library's own
// registration, composed here and nowhere else. Built on first use.
const data::TTableRegistry& ProgramTables();

}  // namespace korvan::app
