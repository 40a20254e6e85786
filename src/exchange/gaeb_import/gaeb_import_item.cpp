// Items of an imported file: flags, quantities, unit and the prices of the phase, read
// into the record fields the export writes them from.
#include <string>

#include "exchange/gaeb/gaeb_price_fields.h"
#include "exchange/gaeb/gaeb_values.h"
#include "exchange/gaeb_export/gaeb_phase_rules.h"
#include "exchange/gaeb_import/gaeb_import_context.h"

namespace korvan::exchange::gaeb_import {
namespace {

constexpr int kMaxComponents = 6;

// "m²" and "m³" are kept as "m2" and "m3": the stored unit has no such characters.
std::string UnitOf(std::string unit) {
  for (const auto& [from, to] : {std::pair<std::string, std::string>{"\xC2\xB2", "2"},
                                 std::pair<std::string, std::string>{"\xC2\xB3", "3"}}) {
    for (size_t at = unit.find(from); at != std::string::npos; at = unit.find(from, at)) {
      unit.replace(at, from.size(), to);
    }
  }
  return unit;
}

void ReadAlternative(TImportContext& context, const TGaebElement& item, boq::TLvPos& entry) {
  const std::optional<int> group = context.TakeInteger(item, "ALNGroupNo", 1, 999);
  const std::optional<int> serial = context.TakeInteger(item, "ALNSerNo", 0, 9);
  if (group) entry.LvBgBeschr.ZZGruppe = static_cast<int16_t>(*group);
  if (serial) entry.LvBgBeschr.ZZWahl = static_cast<int16_t>(*serial);
}

void ReadFlags(TImportContext& context, const TGaebElement& item, boq::TLvPos& entry) {
  boq::t_LvBgBeschr_3000& common = entry.LvBgBeschr;
  boq::t_LvBeschr2_DB_VERSION_201401& part = entry.LvBeschr;
  ReadAlternative(context, item, entry);
  if (const std::optional<std::string> provis = context.TakeText(item, "Provis")) {
    const std::optional<TProvis> kind = ProvisOf(*provis);
    if (kind) {
      common.Bedarf = *kind == TProvis::WithoutTotal ? 'E' : 'M';
    } else {
      context.ReadBad(item.Child("Provis")->line, "Provis",
                      "Provis \"" + *provis + "\": erwartet WithTotal oder WithoutTotal");
    }
  }
  part.LumpSumItem = context.TakeYes(item, "LumpSumItem") ? 1 : 0;
  common.KzEntfaellt = context.TakeYes(item, "NotAppl") ? 1 : 0;
  part.HourIt = context.TakeYes(item, "HourIt") ? 1 : 0;
  part.KzSchwerpunktPos = context.TakeYes(item, "KeyIt") ? 1 : 0;
  part.KzZuschl = context.TakeYes(item, "MarkupIt") ? 1 : 0;
  part.KzFrMenge = context.TakeYes(item, "QtyTBD") ? 1 : 0;
  // The change-order number is the LV's: an item names it when the BoQ does not.
  if (const std::optional<int> number = context.TakeInteger(item, "CONo", 1, 999)) {
    boq::t_Lv_DB_VERSION_3100 lv = context.Result().lv.FLv();
    if (lv.CONo == 0) {
      lv.CONo = *number;
      context.Result().lv.RefreshLvProperties(lv);
    }
  }
  if (const std::optional<std::string> status = context.TakeText(item, "COStatus")) {
    if (const std::optional<char> code = COStatusOf(*status)) {
      common.KzNachtrag = 1;
      common.NachtrStatus = *code;
    } else {
      context.ReadBad(item.Child("COStatus")->line, "COStatus",
                      "COStatus \"" + *status + "\" ist kein Nachtragsstatus");
    }
  }
}

void ReadQuantity(TImportContext& context, const TGaebElement& item, boq::TLvPos& entry) {
  if (const std::optional<double> quantity = context.TakeDecimal(item, "Qty")) {
    entry.LvBeschr.FMenge = *quantity;
  }
  if (const std::optional<double> forecast = context.TakeDecimal(item, "PredQty")) {
    entry.LvBeschr.VaMenge = *forecast;
  }
  if (const std::optional<std::string> unit = context.TakeText(item, "QU")) {
    const std::string own = UnitOf(*unit);
    if (const std::string problem = boq::UnitProblem(own); !problem.empty()) {
      context.Warn(item.Child("QU")->line, problem);
    }
    entry.Unit = own;
    entry.UnitChanged = true;
  }
}

// An item with quantity and unit price but no total counts nothing. Where the phase's
// schema cannot say why (no NotAppl), the LV keeps it as omitted, the one mark that
// makes it count nothing without adding to the file.
void MarkWithoutTotal(TImportContext& context, const TGaebElement& item, boq::TLvPos& entry,
                      bool without_total) {
  const boq::t_LvBgBeschr_3000& common = entry.LvBgBeschr;
  if (!without_total || entry.Kind() == 'U' || entry.LvBeschr.FMenge == 0.0) return;
  if (common.Bedarf == 'E' || common.KzEntfaellt != 0 || common.ZZGruppe > 0) return;
  if (PhaseRules(context.Result().phase).not_appl) return;
  entry.LvBgBeschr.KzEntfaellt = 1;
  context.Hint(item.line,
               "Position mit Menge und Einheitspreis, aber ohne Gesamtbetrag (IT): "
               "zählt nicht zur Summe und wird als entfallend gelesen");
}

void ReadPrices(TImportContext& context, const TGaebElement& item, boq::TLvPos& entry) {
  const std::optional<double> unit_price = context.TakeDecimal(item, "UP");
  const std::optional<double> total = context.TakeDecimal(item, "IT");
  int components = 0;
  for (int i = 1; i <= kMaxComponents; ++i) {
    const std::optional<double> value = context.TakeDecimal(item, "UPComp" + std::to_string(i));
    if (!value) continue;
    entry.LvBeschr.EPAnteil[static_cast<size_t>(i - 1)].Betrag = *value;
    components = i;
  }
  entry.LvBeschr.AnzEPAnteile = static_cast<uint8_t>(components);
  const TUPKind kind = context.PriceKind();
  data::t_WaeBetrag* up_field = UnitPriceField(entry.LvBeschr, kind);
  if (up_field == nullptr) return;
  // A file with a total but no unit price (or a zero one): the total stands as the price.
  double price = unit_price.value_or(0.0);
  if (price == 0.0 && total) price = *total;
  up_field->Betrag = price;
  if (total) TotalField(entry.LvBgBeschr, kind)->Betrag = *total;
  MarkWithoutTotal(context, item, entry, unit_price.has_value() && !total);
  // An alternative bid is the bid and the award price the client may take.
  if (context.Result().phase == kPhaseAlternative &&
      context.Options().price_kind == TUPKind::upkNONE) {
    entry.LvBeschr.VergabeEP.Betrag = price;
    if (total) entry.LvBgBeschr.VergabeGP.Betrag = *total;
  }
}

}  // namespace

void ReadItemValues(TImportContext& context, const TGaebElement& item, boq::TLvPos& entry) {
  ReadFlags(context, item, entry);
  ReadQuantity(context, item, entry);
  ReadPrices(context, item, entry);
  // Bidder's details the LV keeps nowhere: said so by ReportUnused.
}

}  // namespace korvan::exchange::gaeb_import
