#include "calc/tables/lv_calc_delete.h"

#include "calc/tables/tb_aupos.h"
#include "calc/tables/tb_ends.h"
#include "calc/tables/tb_ltext.h"
#include "calc/tables/tb_mittellohn.h"
#include "calc/tables/tb_zuschlag.h"
#include "storage/result_codes.h"

namespace korvan::calc {

int DeleteItemCalculation(data::TStdDb& project, int32_t description) {
  TTbAUPos lines(project);
  if (int result = lines.DeleteAllOf(description); result != storage::kOk) return result;
  TTbLText long_texts(project);
  if (int result = long_texts.DeleteAllOf(description); result != storage::kOk) return result;
  TTbUPos sub_items(project);
  return sub_items.DeleteAllOf(description);
}

int DeleteLvCalculation(data::TStdDb& project, int32_t lv,
                        const std::vector<int32_t>& descriptions) {
  for (int32_t description : descriptions) {
    if (int result = DeleteItemCalculation(project, description); result != storage::kOk) {
      return result;
    }
  }
  TTbZuP surcharges(project);
  if (int result = surcharges.DeleteAllOf(lv); result != storage::kOk) return result;
  TTbMLohnP wage(project);
  if (int result = wage.DeleteAllOf(lv); result != storage::kOk) return result;
  TTbEndsP ends(project);
  return ends.DeleteAllOf(lv);
}

}  // namespace korvan::calc
