#include "boq/qty/item_quantities.h"

#include "boq/lv/lv_codes.h"
#include "boq/lv/tb_struktur.h"
#include "boq/qty/tb_lv_teilmenge.h"
#include "boq/qty/tb_markup_sub_qty.h"
#include "boq/vars/tb_variable.h"
#include "boq/vars/variable_codes.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::boq {

int DeleteItemQuantities(data::TStdDb& lv_db, int32_t item_id) {
  TTbLvTeilmenge partial_quantities(lv_db);
  if (int result = partial_quantities.DeleteAllOf(item_id); result != storage::kOk) return result;
  TTbVariable variables(lv_db);
  if (int result = variables.DeleteAllOf(item_id, kOwnerLvItem); result != storage::kOk) {
    return result;
  }
  TTbMarkupSubQty markups(lv_db);
  return markups.DeleteAllOf(kMarkupOwnerItem, item_id);
}

std::vector<int32_t> VariablesOfItem(data::TStdDb& lv_db, int32_t item_id) {
  std::vector<int32_t> ids;
  if (item_id == data::kNullId) return ids;
  TTbVariable variables(lv_db);
  const auto collect = [&](int32_t owner, char owner_kind) {
    for (const t_Variable_2600& variable : variables.ListOf(owner, owner_kind)) {
      ids.push_back(int32_t{variable.ID});  // a packed field binds no reference
    }
  };
  collect(item_id, kOwnerLvItem);
  TTbLvTeilmenge partial_quantities(lv_db);
  std::vector<t_LvTeilmenge_2700> own;
  if (partial_quantities.ListOf(item_id, own) != storage::kOk) return ids;
  for (const t_LvTeilmenge_2700& partial_quantity : own) {
    collect(partial_quantity.ID, kOwnerLvPartialQty);
  }
  return ids;
}

std::vector<int32_t> VariablesOfLv(data::TStdDb& lv_db, int32_t lv_id) {
  std::vector<int32_t> ids;
  if (lv_id == data::kNullId) return ids;
  TTbStruktur entries(lv_db);
  std::vector<std::vector<uint8_t>> rows;
  if (entries.GetBatch(data::KeyNumber(lv_id), '2', rows) != storage::kOk) return ids;
  for (const std::vector<uint8_t>& row : rows) {
    const t_Struktur entry = TTbStruktur::Of(row);
    if (entry.KzBgBeschr == kKindGroup) continue;
    for (const int32_t id : VariablesOfItem(lv_db, entry.IdBgBeschr)) ids.push_back(id);
  }
  return ids;
}

}  // namespace korvan::boq
