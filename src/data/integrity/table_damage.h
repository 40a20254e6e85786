#pragma once

#include <string>

#include "data/tables/std_tb.h"

namespace korvan::data {

// Why a walk over the table's primary index did not show the whole table, in German,
// naming the database, the file and the position of the damage; "" when it did: the walk
// ended without a failure and found as many records as the data file holds of the table.
// `records_walked` is how many records the walk found.
std::string DescribeTableDamage(const TStdTB& table, int records_walked);

}  // namespace korvan::data
