#pragma once

#include <cstdint>
#include <vector>

#include "data/tables/std_db.h"

namespace korvan::boq {

// Deletes what an LV item keeps of quantities beside its record: its partial quantities
// (each with its own variables), its variables and its markup partial quantities.
// 0 or the first failure's kernel code.
int DeleteItemQuantities(data::TStdDb& lv_db, int32_t item_id);

// The ids of the variables of an LV item and of its partial quantities, whose
// description lines live in the text database: whoever deletes the item and has the text
// database at hand asks before and deletes their lines after.
std::vector<int32_t> VariablesOfItem(data::TStdDb& lv_db, int32_t item_id);

// The same for every item of an LV.
std::vector<int32_t> VariablesOfLv(data::TStdDb& lv_db, int32_t lv_id);

}  // namespace korvan::boq
