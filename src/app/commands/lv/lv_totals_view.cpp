#include "app/commands/lv/lv_totals_view.h"

#include "app/cli/german_number.h"
#include "app/cli/json_text.h"

namespace korvan::app {

StoredTotals GroupTotals(const boq::TLvPos& group) {
  const auto& common = group.LvBgBeschr;
  const auto& part = group.LvBg;
  return {common.SchaetzGP.Betrag,     part.VergabeSumExclNachlass.Betrag,
          part.AngebotsSum.Betrag,     part.AbrechnungsSum.Betrag,
          part.EinzelkostenSum.Betrag, part.VergabeSum.Betrag,
          common.NachlassProz,         part.SummePsch.Betrag};
}

StoredTotals LvTotals(const boq::t_Lv_DB_VERSION_3100& lv) {
  return {lv.SchaetzSum.Betrag,  lv.Summe.Betrag,           lv.AngebotsSum.Betrag,
          lv.Abgerechnet.Betrag, lv.EinzelkostenSum.Betrag, lv.VergabeSum.Betrag,
          lv.NachlassProz,       lv.SummePsch.Betrag};
}

std::string TotalsJson(const StoredTotals& t) {
  return "{\"estimate\": " + JsonNumber(t.estimate) + ", \"award\": " + JsonNumber(t.award) +
         ", \"bid\": " + JsonNumber(t.bid) + ", \"billing\": " + JsonNumber(t.billing) +
         ", \"direct_costs\": " + JsonNumber(t.direct_costs) +
         ", \"after_discount\": " + JsonNumber(t.after_discount) +
         ", \"discount\": " + JsonNumber(t.discount) + ", \"lump_sum\": " + JsonNumber(t.lump_sum) +
         "}";
}

std::string TotalsText(const StoredTotals& t) {
  std::string text;
  if (t.award != 0.0 || t.after_discount != 0.0)
    text += "  Vergabe " + GermanFigure(t.award, "%.2f");
  if (t.discount != 0.0) text += ", Nachlass " + GermanFigure(t.discount, "%g") + " %";
  if (t.lump_sum != 0.0) text += ", pauschal " + GermanFigure(t.lump_sum, "%.2f");
  if (t.after_discount != t.award)
    text += ", nach Nachlass " + GermanFigure(t.after_discount, "%.2f");
  return text;
}

std::string QuantityText(const boq::TLvPos& entry, double quantity, const boq::TUnitList& units,
                         const boq::TAvaUiValueConverter& converter) {
  const boq::t_Einheit* unit = units.Of(entry.UnitId, entry.Unit);
  if (unit == nullptr) return converter.QtyToString(quantity, 3);
  return converter.QtyToStringFmt(quantity, unit->Nachkommastellen,
                                  boq::DecodeValFormat(unit->ValFormat));
}

}  // namespace korvan::app
