#pragma once

#include <cstdint>
#include <vector>

#include "data/tables/std_db.h"

namespace korvan::calc {

// Deletes the sub-items, their long texts and the cost approach lines of one item description (an
// entry removed from its LV). 0 or the first failure's kernel code.
int DeleteItemCalculation(data::TStdDb& project, int32_t description);

// Deletes what the calculation keeps of an LV in the project's DB_KP: its surcharges,
// average wage and end-sum settings, and the sub-items, long texts and cost approach lines of the
// descriptions of its entries. 0 or the first failure's kernel code.
int DeleteLvCalculation(data::TStdDb& project, int32_t lv,
                        const std::vector<int32_t>& descriptions);

}  // namespace korvan::calc
