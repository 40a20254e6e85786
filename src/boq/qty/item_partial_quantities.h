#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "boq/model/lv_pos.h"
#include "boq/qty/lv_teilmenge_record.h"
#include "data/tables/std_db.h"

// The partial quantities of one item as people edit them: numbered by their sort number
// below the item. Failures of the database are EStoredLvError naming the database.
namespace korvan::boq {

// The most characters a partial quantity's source text holds.
inline constexpr std::size_t kSourceCapacity = 50;

// Adds a partial quantity with contract and forecast quantity `qty` and the source text
// `source` behind the item's others, and marks the item's quantity as coming from its
// partial quantities. Answers the new partial quantity's number.
uint16_t AddPartialQuantity(data::TStdDb& lv_db, TLvPos& item, double qty,
                            const std::string& source);
// Gives partial quantity `number` of the item contract and forecast quantity `qty`;
// false when the item has no such partial quantity.
bool SetPartialQuantity(data::TStdDb& lv_db, const TLvPos& item, uint16_t number, double qty);
// Deletes partial quantity `number` of the item with its variables; false when the item
// has no such partial quantity.
bool RemovePartialQuantity(data::TStdDb& lv_db, const TLvPos& item, uint16_t number);

// The partial quantities of an item in their order.
std::vector<t_LvTeilmenge_2700> PartialQuantitiesOf(data::TStdDb& lv_db, int32_t item_id);
// The partial quantities of every item of the LV database by item id, read in one walk.
std::map<int32_t, std::vector<t_LvTeilmenge_2700>> AllPartialQuantities(data::TStdDb& lv_db);

}  // namespace korvan::boq
