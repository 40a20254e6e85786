#pragma once

#include <cstdint>
#include <vector>

#include "data/tables/std_db.h"

namespace korvan::boq {

// Deletes what an LV item keeps of quantities beside its record: its partial quantities
// (each with its own variables), its variables and its markup partial quantities.
// 0 or the first failure's kernel code.
int DeleteItemQuantities(data::TStdDb& lv_db, int32_t item_id);

// The ids of the variables of an LV's items and of their partial quantities, whose
// description lines live in the text database.
std::vector<int32_t> VariablesOfLv(data::TStdDb& lv_db, int32_t lv_id);

}  // namespace korvan::boq
