#pragma once

#include <iosfwd>

#include "boq/model/lv_pos.h"
#include "calc/price/lv_calculation.h"

namespace korvan::app {

// An item's calculation as `calc item` shows it: the cost elements by cost type with
// their surcharges, the five unit prices and their totals; as text or as one JSON object.
void PrintItemCalculation(std::ostream& out, int32_t lv, boq::TLvPos& item,
                          const calc::TItemCosts& costs, bool json);

}  // namespace korvan::app
