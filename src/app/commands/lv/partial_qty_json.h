#pragma once

#include <string>
#include <vector>

#include "boq/qty/lv_teilmenge_record.h"

namespace korvan::app {

// The partial quantities of an item as `lv show --json` and `lv qty list --json` give
// them: [{"nr": N, "qty": Q, "forecast": P, "source": "..."|null}, ...].
std::string PartialQtyJson(const std::vector<boq::t_LvTeilmenge_2700>& rows);

}  // namespace korvan::app
