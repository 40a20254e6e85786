#include "boq/units/unit_list.h"

#include "boq/lv/project_lvs.h"
#include "boq/units/tb_einheit.h"
#include "data/common/result_code_text.h"
#include "data/records/null_values.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::boq {

TUnitList TUnitList::Load(data::TStdDb& master_db, int16_t language) {
  TTbEinheit table(master_db);
  std::vector<std::vector<uint8_t>> records;
  if (int result = table.GetBatch(data::KeyNumber16(language), '1', records);
      result != storage::kOk) {
    throw EStoredLvError(master_db.BasePath() + "0: die Einheiten können nicht gelesen werden: " +
                         data::ResultCodeText(result));
  }
  TUnitList list;
  for (const std::vector<uint8_t>& record : records) list.Add(TTbEinheit::Of(record));
  return list;
}

const t_Einheit* TUnitList::FindSymbol(std::string_view symbol) const {
  if (symbol.empty()) return nullptr;
  for (const t_Einheit& unit : units_) {
    if (unit.Einheit.Get() == symbol) return &unit;
  }
  return nullptr;
}

const t_Einheit* TUnitList::FindId(int16_t id) const {
  if (id == data::kNullId16) return nullptr;
  for (const t_Einheit& unit : units_) {
    if (unit.IdEinheit == id) return &unit;
  }
  return nullptr;
}

const t_Einheit* TUnitList::Of(int16_t id, std::string_view symbol) const {
  const t_Einheit* unit = FindId(id);
  return unit != nullptr ? unit : FindSymbol(symbol);
}

}  // namespace korvan::boq
