#include "calc/price/price_columns.h"

#include <array>

#include "boq/units/value_converter.h"
#include "data/records/null_values.h"

namespace korvan::calc {

using boq::TLvPos;
using data::t_WaeBetrag;

namespace {

constexpr std::array<std::string_view, 5> kNames = {"schaetz", "einzelkosten", "angebot",
                                                    "abrechnung", "vergabe"};
// The order in which the targets of a copy are written.
constexpr std::array<TPriceColumn, 5> kCopyOrder = {
    TPriceColumn::kSchaetz, TPriceColumn::kEinzelkosten, TPriceColumn::kAngebot,
    TPriceColumn::kAbrechnung, TPriceColumn::kVergabe};

void ClearAwardedComponents(TLvPos& entry) {
  for (t_WaeBetrag& component : entry.LvBeschr.EPAnteil) component.Betrag = 0.0;
}

}  // namespace

std::optional<TPriceColumn> PriceColumnOf(std::string_view name) {
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    if (name == kNames[i] || (name.size() == 1 && name[0] == static_cast<char>('0' + i))) {
      return static_cast<TPriceColumn>(i);
    }
  }
  return std::nullopt;
}

std::string_view PriceColumnName(TPriceColumn column) {
  return kNames[static_cast<std::size_t>(column)];
}

t_WaeBetrag& UnitPrice(TLvPos& entry, TPriceColumn column) {
  auto& item = entry.LvBeschr;
  switch (column) {
    case TPriceColumn::kSchaetz:
      return item.SchaetzEP;
    case TPriceColumn::kEinzelkosten:
      return item.EinzelkostenEP;
    case TPriceColumn::kAngebot:
      return item.AngebotsEP;
    case TPriceColumn::kAbrechnung:
      return item.AbrechnungsEP;
    case TPriceColumn::kVergabe:
      break;
  }
  return item.VergabeEP;
}

t_WaeBetrag& Total(TLvPos& entry, TPriceColumn column) {
  auto& common = entry.LvBgBeschr;
  switch (column) {
    case TPriceColumn::kSchaetz:
      return common.SchaetzGP;
    case TPriceColumn::kEinzelkosten:
      return common.EinzelkostenGP;
    case TPriceColumn::kAngebot:
      return common.AngebotsGP;
    case TPriceColumn::kAbrechnung:
      return common.AbrechnungsGP;
    case TPriceColumn::kVergabe:
      break;
  }
  return common.VergabeGP;
}

void CopyPriceColumns(TLvPos& entry, TPriceColumn source, unsigned targets) {
  for (TPriceColumn target : kCopyOrder) {
    if ((targets & (1u << static_cast<unsigned>(target))) == 0 || target == source) continue;
    UnitPrice(entry, target) = UnitPrice(entry, source);
    if (target == TPriceColumn::kVergabe && source == TPriceColumn::kSchaetz) {
      ClearAwardedComponents(entry);
    }
  }
}

bool PricesLocked(const TLvPos& entry) {
  return entry.LvBgBeschr.IdVertrag != data::kNullId && entry.LvBeschr.VergabeEP.Betrag != 0.0;
}

bool DeletePrices(TLvPos& entry, TPriceColumn column, bool components_only) {
  if (PricesLocked(entry) || column == TPriceColumn::kAbrechnung) return false;
  if (column == TPriceColumn::kVergabe) {
    ClearAwardedComponents(entry);
    if (!components_only) entry.LvBeschr.VergabeEP.Betrag = 0.0;
    return true;
  }
  if (!components_only) UnitPrice(entry, column).Betrag = 0.0;
  return true;
}

}  // namespace korvan::calc

namespace korvan::calc {

void FactorisePrices(TLvPos& entry, double factor, const boq::TAvaUiValueConverter& converter) {
  for (t_WaeBetrag* amount : {&entry.LvBeschr.SchaetzEP, &entry.LvBgBeschr.SchaetzGP}) {
    amount->Betrag = converter.RoundCurrencyValueEx(amount->Betrag * factor, 2, false);
  }
}

}  // namespace korvan::calc
