#pragma once

#include <string>

#include "boq/lv/lv_record.h"
#include "boq/model/lv_pos.h"
#include "boq/units/unit_list.h"
#include "boq/units/value_converter.h"

// The totals the sum run keeps for a group or for the LV, as commands show them.
namespace korvan::app {

// "award": the awarded total before the entry's own discount or lump sum;
// "after_discount": after it; `discount` in percent.
struct StoredTotals {
  double estimate, award, bid, billing, direct_costs, after_discount, discount, lump_sum;
};

StoredTotals GroupTotals(const boq::TLvPos& group);
StoredTotals LvTotals(const boq::t_Lv_DB_VERSION_3100& lv);
// {"estimate": …, "award": …, "bid": …, "billing": …, "direct_costs": …, "after_discount": …,
// "discount": …, "lump_sum": …}
std::string TotalsJson(const StoredTotals& totals);
// "  Vergabe 1.000,00, Nachlass 5 %, nach Nachlass 950,00"; empty without awarded totals.
std::string TotalsText(const StoredTotals& totals);

// A quantity as the entry's unit writes it: its decimals and notation; a unit the unit
// list does not hold gets three decimals.
std::string QuantityText(const boq::TLvPos& entry, double quantity, const boq::TUnitList& units,
                         const boq::TAvaUiValueConverter& converter);

}  // namespace korvan::app
