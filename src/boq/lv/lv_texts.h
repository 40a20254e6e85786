#pragma once

#include <cstdint>
#include <vector>

#include "data/tables/std_db.h"

// The texts of an LV in the project's text database: they are kept apart from the LV
// database, so deleting an LV deletes them through this, beside its records.
namespace korvan::boq {

// The description ids of the LV's groups and items (those that have one), read from the
// LV database.
std::vector<int32_t> DescriptionsOf(data::TStdDb& lv_db, int32_t lv_id);

// Deletes from the text database the LV's own texts (its name lines "L" and the names of
// the unit-price components "1" to "6", its comment "C") and the short and long texts of
// the descriptions. 0 or the first failure's kernel code.
int DeleteLvTexts(data::TStdDb& text_db, int32_t lv_id, const std::vector<int32_t>& descriptions);

}  // namespace korvan::boq
