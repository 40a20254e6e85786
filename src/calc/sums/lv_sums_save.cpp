#include "calc/sums/lv_sums_save.h"

#include "boq/model/lv_pos_list_io.h"

namespace korvan::calc {

TSumRunResult SaveWithSums(data::TStdDb& lv_db, data::TStdDb* text_db, boq::TLVPosList& list,
                           const boq::TAvaUiValueConverter& converter,
                           const boq::DescriptionRemoved& on_removed) {
  const TSumRunResult result = TBoqCtgyCalcSum(list, converter).Calculate();
  boq::SaveLvHeader(lv_db, list);
  boq::SaveLvPosList(lv_db, text_db, list, on_removed);
  return result;
}

TSumRunResult ResumStoredLv(data::TStdDb& lv_db, data::TStdDb* text_db, int32_t lv_id,
                            const boq::TAvaUiValueConverter& converter) {
  boq::TLVPosList list = boq::LoadLvPosList(lv_db, text_db, lv_id);
  return SaveWithSums(lv_db, text_db, list, converter);
}

const char* SumRunWarning(const TSumRunResult& result) {
  if (!result.entries_without_parent) return "";
  return "Warnung: Das LV hat Einträge ohne ihre Gruppe; ihre Beträge fehlen in den "
         "Gruppensummen.";
}

}  // namespace korvan::calc
