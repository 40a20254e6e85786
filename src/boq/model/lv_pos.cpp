#include "boq/model/lv_pos.h"

#include <span>

#include "boq/lv/beschr_record.h"
#include "boq/lv/lv_entry_common.h"
#include "data/common/cp1252.h"
#include "data/records/money_fields.h"
#include "data/records/null_values.h"

namespace korvan::boq {

TLvPos NewLvPos(char kind) {
  // The defaults the group and item tables give a new record: ids unset, every amount in
  // the LV's currency.
  t_LVBg_3000 group{};
  data::SetCurrencyIds(kLvBgLayout, std::span(reinterpret_cast<uint8_t*>(&group), sizeof group),
                       data::kOwnerCurrencyId);
  t_LVBeschr_3000 item{};
  data::SetCurrencyIds(kLvBeschrLayout, std::span(reinterpret_cast<uint8_t*>(&item), sizeof item),
                       data::kOwnerCurrencyId);
  TLvPos entry;
  entry.LvBgBeschr = kind == 'B' ? group.LvBgBeschr1 : item.LvBgBeschr1;
  InitCommonPart(entry.LvBgBeschr);
  entry.LvBg = group.LvBg2;
  entry.LvBeschr = item.LvBeschr2;
  entry.LvBeschr.IdBezug = data::kNullId;
  entry.Struktur.IdLv = data::kNullId;
  entry.Struktur.IdBgBeschr = data::kNullId;
  entry.Struktur.ZuBg = data::kRootParentId;
  entry.Struktur.KzBgBeschr = kind;
  return entry;
}

std::string UnitProblem(std::string_view unit) {
  data::Cp1252Report report;
  const std::string stored = data::Utf8ToCp1252(unit, &report);
  if (!report.Exact()) return "Einheit \"" + std::string(unit) + "\": " + report.Describe();
  constexpr std::size_t kCapacity = sizeof(t_Beschr_DB_VERSION_201601::Einheit) - 1;
  if (stored.size() > kCapacity) {
    return "Einheit \"" + std::string(unit) + "\" ist zu lang (höchstens " +
           std::to_string(kCapacity) + " Zeichen)";
  }
  return {};
}

}  // namespace korvan::boq
