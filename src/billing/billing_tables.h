#pragma once

#include "data/tables/table_registry.h"

namespace korvan::billing {

// Enters the tables of billing (contracts in the billing database) with their dump formats.
void RegisterBillingTables(data::TTableRegistry& registry);

}  // namespace korvan::billing
