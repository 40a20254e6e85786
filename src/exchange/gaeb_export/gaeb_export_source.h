#pragma once

#include <cstdint>
#include <string>

#include "data/tables/std_db.h"
#include "exchange/gaeb_export/gaeb_export.h"

namespace korvan::exchange {

// What the export of the LV `lv_id` reads from the project's databases: the LV with its
// short texts and, with `long_texts`, its long texts from `text_db` (none: no texts), and
// its GAEB header record. EStoredLvError when the LV cannot be read.
TGaebExportSource LoadGaebExportSource(data::TStdDb& lv_db, data::TStdDb* text_db, int32_t lv_id,
                                       const std::string& project_name, bool long_texts);

}  // namespace korvan::exchange
