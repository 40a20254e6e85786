#include "calc/price/item_calculation.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "data/records/null_values.h"

namespace korvan::calc {

using boq::TLvPos;
using boq::TLVPosList;
using data::t_WaeBetrag;

namespace {

// Below this an amount counts as zero.
constexpr double kAmountTolerance = 0.0001;

bool IsTextKind(char kind) {
  return std::string_view("AEFHTU").find(kind) != std::string_view::npos;
}

void ClearTotals(TLvPos& entry) {
  auto& common = entry.LvBgBeschr;
  for (t_WaeBetrag* total :
       {&common.SchaetzGP, &common.EinzelkostenGP, &common.AngebotsGP, &common.VergabeGP,
        &common.AbrechnungsGP, &common.NotContractedNachtragGP, &common.SchaetzGPDeckung}) {
    total->Betrag = 0.0;
  }
}

void ClearUnitPrices(TLvPos& entry) {
  auto& item = entry.LvBeschr;
  for (t_WaeBetrag* price : {&item.SchaetzEP, &item.EinzelkostenEP, &item.AngebotsEP,
                             &item.VergabeEP, &item.AbrechnungsEP}) {
    price->Betrag = 0.0;
  }
}

// Only basic items and additional items are priced; other alternatives keep no totals.
bool IsPriced(const TLvPos& entry) {
  if (entry.Kind() != 'L' && entry.Kind() != 'P') return false;
  return entry.LvBgBeschr.ZZWahl == 0 || entry.LvBgBeschr.NachtrStatus == 'Z';
}

bool IsUncontractedSupplement(const TLvPos& entry) {
  const auto& common = entry.LvBgBeschr;
  const char status = common.NachtrStatus;
  return common.KzNachtrag != 0 && common.IdVertrag == data::kNullId && status != '4' &&
         status != '5' && status != 'Z';
}

// What one entry adds to a surcharge item's base: the estimated total as it is, every
// other column less the entry's own discount.
void AddToBase(const TLvPos& from, bool surcharge_omitted, TLvPos& base) {
  const auto& source = from.LvBgBeschr;
  auto& target = base.LvBgBeschr;
  const double kept = 1.0 - source.NachlassProz / 100.0;
  target.SchaetzGP.Betrag += source.SchaetzGP.Betrag;
  target.EinzelkostenGP.Betrag += source.EinzelkostenGP.Betrag * kept;
  if (surcharge_omitted) return;
  target.VergabeGP.Betrag += source.VergabeGP.Betrag * kept;
  target.AngebotsGP.Betrag += source.AngebotsGP.Betrag * kept;
  target.AbrechnungsGP.Betrag += source.AbrechnungsGP.Betrag * kept;
}

// Kind A: the entries above up to the group start or the previous surcharge item; a
// surcharge item directly above is stepped over.
void CollectBaseA(const TLVPosList& list, int index, TLvPos& base, bool omitted) {
  for (int j = index - 1; j >= 0; --j) {
    const TLvPos& entry = list[j];
    if (entry.IsGroup()) break;
    if (IsSurchargeItem(entry)) {
      if (j == index - 1) continue;
      break;
    }
    AddToBase(entry, omitted, base);
  }
}

// Kind Z: past the Z items directly above, the entries up to the group start or the next
// surcharge item that are marked for surcharges or are sub-descriptions.
void CollectBaseZ(const TLVPosList& list, int index, TLvPos& base, bool omitted) {
  int j = index - 1;
  while (j >= 0 && list[j].Kind() != 'B' && list[j].LvBeschr.ZuschArt == 'Z') --j;
  for (; j >= 0; --j) {
    const TLvPos& entry = list[j];
    if (entry.IsGroup() || IsSurchargeItem(entry)) break;
    if (entry.LvBeschr.KzZuschl != 0 || entry.Kind() == 'U') AddToBase(entry, omitted, base);
  }
}

// Kind S: the entries the surcharge item refers to by quantity references.
void CollectBaseS(const TLVPosList& list, const TLvPos& surcharge, TLvPos& base, bool omitted) {
  for (const boq::TLvPosRef& ref : surcharge.RefIDs) {
    if (ref.Type != boq::kQuantityRefType) continue;
    const int j = list.SearchItemIndexByIdLvBgBeschr(ref.Id);
    if (j >= 0) AddToBase(list[j], omitted, base);
  }
}

}  // namespace

bool IsSurchargeItem(const TLvPos& entry) {
  if (entry.IsGroup()) return false;
  const char kind = entry.LvBeschr.ZuschArt;
  return kind == 'A' || kind == 'S' || kind == 'Z';
}

TItemCalculation::TItemCalculation(const boq::TAvaUiValueConverter& converter, int ep_decimals)
    : converter_(converter), amount_decimals_(converter.Settings().amount_decimals) {
  ep_decimals_ = std::max(ep_decimals, amount_decimals_);
}

double TItemCalculation::RoundAmount(double value) const {
  return converter_.RoundCurrencyValueEx(value, amount_decimals_, false);
}

double TItemCalculation::RoundUnitPrice(double value) const {
  return converter_.RoundCurrencyValueEx(value, ep_decimals_, false);
}

void TItemCalculation::CalculateAll(TLVPosList& list) const {
  for (int i = 0; i < list.Count(); ++i) Calculate(list, i);
}

void TItemCalculation::Calculate(TLVPosList& list, int index) const {
  TLvPos& entry = list[index];
  if (entry.IsGroup()) return;
  auto& item = entry.LvBeschr;
  auto& common = entry.LvBgBeschr;
  // The awarded components are counted; the highest one used is remembered.
  int highest = 0;
  for (int i = 0; i < 6; ++i) {
    if (std::fabs(item.EPAnteil[i].Betrag) >= kAmountTolerance) highest = i + 1;
  }
  item.AnzEPAnteile = static_cast<uint8_t>(std::max<int>(item.AnzEPAnteile, highest));
  if (item.AbrechnungsEP.Betrag == 0.0 || common.IdVertrag == data::kNullId) {
    item.AbrechnungsEP = item.VergabeEP;
  }
  ClearTotals(entry);
  if (IsTextKind(entry.Kind())) {
    ClearUnitPrices(entry);
    if (entry.Kind() != 'U') {
      item.KzFrMenge = 0;
      item.KzMengenlimit = 0;
      item.ReMenge = 0.0;
      item.VaMenge = 0.0;
    }
    return;
  }
  if (!IsPriced(entry)) return;
  for (t_WaeBetrag* price :
       {&item.SchaetzEP, &item.VergabeEP, &item.AngebotsEP, &item.AbrechnungsEP}) {
    price->Betrag = RoundUnitPrice(price->Betrag);
  }
  if (IsSurchargeItem(entry)) {
    CalculateSurcharge(list, index);
  } else {
    CalculateNormal(entry);
  }
}

void TItemCalculation::CalculateNormal(TLvPos& entry) const {
  auto& item = entry.LvBeschr;
  auto& common = entry.LvBgBeschr;
  if (common.Bedarf == 'E') return;  // a contingency item without total keeps its prices only
  const auto total = [&](t_WaeBetrag& gp, const t_WaeBetrag& ep, double quantity) {
    gp.Betrag = RoundAmount(quantity * ep.Betrag);
    gp.IdWaehrung = ep.IdWaehrung;
  };
  total(common.AbrechnungsGP, item.AbrechnungsEP, item.ReMenge);
  total(common.SchaetzGP, item.SchaetzEP, item.FMenge);
  if (common.KzEntfaellt == 0) {
    total(common.EinzelkostenGP, item.EinzelkostenEP, item.FMenge);
    total(common.AngebotsGP, item.AngebotsEP, item.FMenge);
    total(common.VergabeGP, item.VergabeEP, item.FMenge);
    if (IsUncontractedSupplement(entry)) common.NotContractedNachtragGP = common.VergabeGP;
  }
  common.SchaetzGPDeckung.Betrag =
      RoundAmount(common.SchaetzGP.Betrag * (common.Deckungsbeitrag / 100.0 + 1.0));
}

void TItemCalculation::CalculateSurcharge(TLVPosList& list, int index) const {
  TLvPos& entry = list[index];
  const bool omitted = entry.LvBgBeschr.KzEntfaellt != 0;
  switch (entry.LvBeschr.ZuschArt) {
    case 'A':
      CollectBaseA(list, index, entry, omitted);
      break;
    case 'Z':
      CollectBaseZ(list, index, entry, omitted);
      break;
    default:
      CollectBaseS(list, entry, entry, omitted);
      break;
  }
  auto& item = entry.LvBeschr;
  auto& common = entry.LvBgBeschr;
  const auto apply = [&](t_WaeBetrag& gp, const t_WaeBetrag& rate) {
    gp.Betrag = RoundAmount(gp.Betrag / 100.0 * rate.Betrag);
  };
  apply(common.SchaetzGP, item.SchaetzEP);
  apply(common.EinzelkostenGP, item.EinzelkostenEP);
  if (omitted) return;
  apply(common.AngebotsGP, item.AngebotsEP);
  apply(common.VergabeGP, item.VergabeEP);
  apply(common.AbrechnungsGP, item.AbrechnungsEP);
}

}  // namespace korvan::calc
