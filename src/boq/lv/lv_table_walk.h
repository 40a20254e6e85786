#pragma once

#include <string_view>

#include "data/tables/std_tb.h"

namespace korvan::boq {

// Deletes, through the table's own DeleteRec (with its cascade), every record of index
// `index` whose key matches `pattern`. The records are gathered first, so that the
// deletes do not disturb the walk. 0 or the first failure's kernel code.
int DeleteMatching(data::TStdTB& table, std::string_view pattern, char index);

}  // namespace korvan::boq
