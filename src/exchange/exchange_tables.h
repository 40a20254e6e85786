#pragma once

#include "data/tables/table_registry.h"

namespace korvan::exchange {

// Enters the tables of data exchange: the GAEB header record of each LV in the LV
// database, which is deleted with its LV.
void RegisterExchangeTables(data::TTableRegistry& registry);

}  // namespace korvan::exchange
