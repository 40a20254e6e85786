#pragma once

#include <cstdint>
#include <functional>

#include "boq/model/lv_pos_list.h"
#include "data/tables/std_db.h"

// Reading an LV into memory and writing it back. Failures of the databases are
// EStoredLvError (project_lvs.h) naming the database and what could not be done; a
// structure row whose group or item is missing names the row.
namespace korvan::boq {

// The language the texts of entries are kept in.
inline constexpr int16_t kEntryTextLanguage = 49;

// The LV `lv_id` with its entries in document order, their short texts, and with
// `long_texts` their long texts, from `text_db` (none: no texts).
TLVPosList LoadLvPosList(data::TStdDb& lv_db, data::TStdDb* text_db, int32_t lv_id,
                         bool long_texts = false);

// Writes the list back as the LV's entries: document order and the order within each
// group follow the list; new entries (id 0, null, or a temporary one below zero) get ids, entries
// with texts get a description; rows of the LV no longer in the list are deleted with their records
// and texts. Only records that differ from the stored ones are written, so a step's journal holds
// just the change. The list's ids are filled in.
// What layers above keep per description of an entry in databases of their own (the
// calculation's cost elements) is not reachable from here: `on_removed` is called with the
// description of every deleted entry and throws EStoredLvError when it cannot delete that.
using DescriptionRemoved = std::function<void(int32_t description)>;
void SaveLvPosList(data::TStdDb& lv_db, data::TStdDb* text_db, TLVPosList& list,
                   const DescriptionRemoved& on_removed = {});

// Writes the LV header of the list (mask, numbering settings) back.
void SaveLvHeader(data::TStdDb& lv_db, const TLVPosList& list);

}  // namespace korvan::boq
