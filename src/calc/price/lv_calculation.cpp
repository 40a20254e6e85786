#include "calc/price/lv_calculation.h"

#include <cmath>

#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::calc {

using boq::TLvPos;

namespace {

// The sub-item that carries the cost elements entered per unit of the item.
constexpr int32_t kDirectSubItem = 1;

void Require(int result, const std::string& what) {
  if (result != storage::kOk) {
    throw ECalcError(what + " (Datenbankfehler " + std::to_string(result) + ")");
  }
}

// The average wage A of the project: the first work key that has one.
double BaseWage(data::TStdDb& project) {
  TTbBASP keys(project);
  for (bool found = keys.GetFirstKey("", '1'); found; found = keys.GetNextKey("", '1')) {
    const double wage = keys.Rec().MLA.Betrag;
    if (wage > 0.0) return wage;
  }
  return 0.0;
}

}  // namespace

bool TItemCosts::HasElements() const {
  for (double amount : direct) {
    if (amount != 0.0) return true;
  }
  return false;
}

TLvCalculation::TLvCalculation(data::TStdDb& project, data::TStdDb& master, int32_t lv,
                               bool copy_settings)
    : project_(project), master_(master), lv_(lv), surcharges_table_(project), lines_(project) {
  if (copy_settings) CopySettings();
  LoadSurcharges();
}

void TLvCalculation::CopySettings() {
  TTbZuR master_surcharges(master_);
  TTbMLohnR master_wage(master_);
  TTbBASR master_keys(master_);
  TTbMLohnP wage(project_);
  TTbBASP keys(project_);
  TTbEndsP ends(project_);
  const std::string failed = "Die Kalkulationseinstellungen des LV können nicht angelegt werden";
  if (master_surcharges.All().empty()) Require(master_surcharges.InitTable(), failed);
  Require(surcharges_table_.InitTable(lv_, master_surcharges), failed);
  Require(wage.InitTable(lv_, master_wage), failed);
  Require(keys.InitTable(master_keys), failed);
  Require(ends.InitTable(lv_, master_surcharges), failed);
}

void TLvCalculation::LoadSurcharges() {
  // An LV without its own settings yet is calculated with the master's.
  const bool own = !surcharges_table_.AllOf(lv_).empty();
  TTbZuR master_surcharges(master_);
  const auto rate = [&](char code) {
    const std::optional<double> percent = own ? surcharges_table_.Find(lv_, kKalkArtZuschlag, code)
                                              : master_surcharges.Find(kKalkArtZuschlag, code);
    return percent.value_or(0.0);
  };
  for (int i = 0; i < kResultCostTypes; ++i) {
    const auto type = static_cast<TResultIndex>(i);
    if (type != TResultIndex::kLohn) surcharges_[i] = rate(ZuCodeOf(ZuIndexOf(type)));
  }
  // The wage's percentage: the absolute wage surcharge over the average wage ASL.
  double base = BaseWage(project_);
  double social = 0.0;
  double incidental = 0.0;
  TTbMLohnP wage(project_);
  if (const std::optional<t_KpMLOHN> percentages = wage.Get(lv_)) {
    social = percentages->MLS;
    incidental = percentages->MLL;
  } else if (const std::optional<t_KrMLOHN> defaults = TTbMLohnR(master_).Get()) {
    social = defaults->MLS;
    incidental = defaults->MLL;
  }
  if (base == 0.0) {
    TTbBASR master_keys(master_);
    for (const t_KrBAS_729& key : master_keys.All()) {
      if (key.MLA.Betrag > 0.0 && base == 0.0) base = key.MLA.Betrag;
    }
  }
  const double asl = base + base * social / 100.0 + base * incidental / 100.0;
  const double absolute = base * rate('E') / 100.0 + asl * rate('I') / 100.0;
  surcharges_[static_cast<int>(TResultIndex::kLohn)] = asl == 0.0 ? 0.0 : absolute / asl * 100.0;
}

TItemCosts TLvCalculation::CostsOf(int32_t id_beschr) {
  TItemCosts costs;
  costs.surcharge = surcharges_;
  TTbUPos sub_items(project_);
  for (const t_KpAUPos_729& line : lines_.LinesOf(id_beschr)) {
    const std::optional<TResultIndex> type = ResultIndexOfLineKind(line.KZKOART);
    if (!type) continue;
    double per_unit = 1.0;  // the sub-item's quantity per unit of the item
    if (sub_items.GetKey(data::KeyNumber(line.IDBES) + data::KeyNumber(line.IDUPOS), '1')) {
      per_unit = sub_items.Rec().MENGE;
    }
    costs.direct[static_cast<int>(*type)] += line.FMMAN * line.FWMAN.Betrag * per_unit;
    if (*type == TResultIndex::kLohn) costs.wage_hours += line.ZEITMMAN * per_unit;
  }
  for (int i = 0; i < kResultCostTypes; ++i) {
    costs.price[i] = costs.direct[i] * (1.0 + costs.surcharge[i] / 100.0);
    costs.direct_total += costs.direct[i];
    costs.price_total += costs.price[i];
  }
  return costs;
}

std::string TLvCalculation::DirectSubItem(int32_t id_beschr) {
  TTbUPos sub_items(project_);
  const std::string key = data::KeyNumber(id_beschr) + data::KeyNumber(kDirectSubItem);
  if (!sub_items.GetKey(key, '1')) {
    sub_items.InitRecord();
    sub_items.Rec().IDBES = id_beschr;
    sub_items.Rec().IDUPOS = kDirectSubItem;
    Require(sub_items.UpDateRec(), "Das Kostenelement kann nicht gespeichert werden");
  }
  return key;
}

void TLvCalculation::SetCostElement(int32_t id_beschr, TResultIndex type, double amount) {
  const std::string failed = "Das Kostenelement kann nicht gespeichert werden";
  const std::string sub_item_key = DirectSubItem(id_beschr);
  const char kind = LineKindOf(type);
  const std::string line_key = sub_item_key + std::string(1, kind);
  if (lines_.GetKey(line_key, '1')) {
    if (amount == 0.0) {
      Require(lines_.DeleteRec(), failed);
      return;
    }
  } else {
    if (amount == 0.0) return;
    lines_.InitRecord();
    lines_.Rec().IDBES = id_beschr;
    lines_.Rec().IDUPOS = kDirectSubItem;
    lines_.Rec().KZKOART = kind;
  }
  // Quantity and value entered by hand: one unit at the amount.
  t_KpAUPos_729& line = lines_.Rec();
  line.FMMAN = 1.0;
  line.FWMAN.Betrag = amount;
  line.BEZMAN.Set(std::string(CostTypeName(type)));
  Require(lines_.UpDateRec(), failed);
}

void TLvCalculation::SetWageHours(int32_t id_beschr, double hours) {
  const std::string failed = "Die Lohnstunden können nicht gespeichert werden";
  const char kind = LineKindOf(TResultIndex::kLohn);
  const std::string line_key = DirectSubItem(id_beschr) + std::string(1, kind);
  if (!lines_.GetKey(line_key, '1')) {
    if (hours == 0.0) return;
    lines_.InitRecord();
    lines_.Rec().IDBES = id_beschr;
    lines_.Rec().IDUPOS = kDirectSubItem;
    lines_.Rec().KZKOART = kind;
    lines_.Rec().FMMAN = 1.0;
    lines_.Rec().BEZMAN.Set(std::string(CostTypeName(TResultIndex::kLohn)));
  } else if (hours == 0.0 && lines_.Rec().FWMAN.Betrag == 0.0) {
    Require(lines_.DeleteRec(), failed);
    return;
  }
  lines_.Rec().KZLOHNMENGE = 'A';  // the hours are entered by hand
  lines_.Rec().ZEITMMAN = hours;
  Require(lines_.UpDateRec(), failed);
}

bool TLvCalculation::UpdateCalculatedPrice(TLvPos& entry, const TItemCalculation& calculation) {
  if (!entry.IsQuantityItem()) return false;
  const TItemCosts costs = CostsOf(entry.LvBgBeschr.IDBeschr);
  if (!costs.HasElements()) return false;
  entry.LvBeschr.EinzelkostenEP.Betrag = calculation.RoundUnitPrice(costs.direct_total);
  entry.LvBeschr.AngebotsEP.Betrag = calculation.RoundUnitPrice(costs.price_total);
  return true;
}

void TLvCalculation::UpdateCalculatedPrices(boq::TLVPosList& list,
                                            const TItemCalculation& calculation,
                                            const std::function<void(int, int)>& progress) {
  for (int i = 0; i < list.Count(); ++i) {
    if (progress) progress(i, list.Count());
    if (UpdateCalculatedPrice(list[i], calculation)) {
      list.Changed(i, boq::TModelChangedReason::crCost);
    }
  }
  calculation.CalculateAll(list);
  if (progress) progress(list.Count(), list.Count());
}

}  // namespace korvan::calc
