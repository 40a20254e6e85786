#pragma once

#include <cstdint>

#include "data/tables/std_db.h"
#include "exchange/gaeb_import/gaeb_import.h"

namespace korvan::exchange {

// Stores an imported LV as a new LV of the project: its header (created with the defaults
// of a new LV, then the file's values), its entries with their texts in `text_db` (none:
// no texts) and its GAEB header record. The list's ids are filled in; returns the LV's
// id. EStoredLvError when a database refuses; the caller holds the journal step that
// takes back what was written up to then.
int32_t StoreImportedLv(data::TStdDb& lv_db, data::TStdDb* text_db, TGaebImport& import);

}  // namespace korvan::exchange
