#pragma once

#include <cstdint>

#include "boq/model/lv_pos_list.h"
#include "boq/model/lv_pos_list_io.h"
#include "boq/units/value_converter.h"
#include "calc/sums/boq_ctgy_calc_sum.h"
#include "data/tables/std_db.h"

// Every change of an LV's prices or quantities is saved through here, so that no stored
// LV holds totals that its items contradict.
namespace korvan::calc {

// Runs the sum over `list` (item calculation included) and writes the LV back: its header
// with the LV's totals and every entry whose record differs from the stored one.
// EStoredLvError when the LV cannot be written (the caller's journal step takes back what
// was written). `on_removed` is told the description of every entry deleted (SaveLvPosList).
TSumRunResult SaveWithSums(data::TStdDb& lv_db, data::TStdDb* text_db, boq::TLVPosList& list,
                           const boq::TAvaUiValueConverter& converter,
                           const boq::DescriptionRemoved& on_removed = {});

// The same for an LV as it is stored: loaded, summed and written back.
TSumRunResult ResumStoredLv(data::TStdDb& lv_db, data::TStdDb* text_db, int32_t lv_id,
                            const boq::TAvaUiValueConverter& converter);

// The sum run's warning for entries without their group (empty when there is none).
const char* SumRunWarning(const TSumRunResult& result);

}  // namespace korvan::calc
