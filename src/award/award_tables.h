#pragma once

#include "data/tables/table_registry.h"

namespace korvan::award {

// Enters the tables of bids (bidders and bid lines in the LV database) and of the price
// database (price levels and entries) with their dump formats, and the step of the LV's
// delete cascade that takes an LV's bidders with it.
void RegisterAwardTables(data::TTableRegistry& registry);

}  // namespace korvan::award
