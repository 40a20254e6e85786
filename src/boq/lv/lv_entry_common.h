#pragma once

#include "boq/lv/lv_entry_records.h"
#include "data/integrity/data_check.h"

// What the group and the item table do alike with the common part of their records.
namespace korvan::boq {

// The defaults of the common part: ids unset, every amount in the LV's currency. The
// record's bytes must be zero before.
void InitCommonPart(t_LvBgBeschr_3000& common);

// The integrity rules of the common part, for a record of the table `own_table`: its
// codes, its description, and whether a structure row places it in an LV.
void CheckCommonPart(data::TDataCheck& check, t_LvBgBeschr_3000& common);

}  // namespace korvan::boq
