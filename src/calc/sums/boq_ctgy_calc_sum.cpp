#include "calc/sums/boq_ctgy_calc_sum.h"

#include <array>
#include <cmath>
#include <cstring>
#include <unordered_map>
#include <utility>

#include "boq/lv/lv_codes.h"
#include "calc/sums/lv_parent_links.h"

namespace korvan::calc {

using boq::TLvPos;

namespace {

// Below this an amount or a percentage counts as zero.
constexpr double kZero = 0.0001;

bool IsZero(double value) {
  return std::fabs(value) < kZero;
}

// Alternative titles (A) and contingency titles without total (E) sum nothing.
bool SumsNothing(char title_kind) {
  return title_kind == 'A' || title_kind == 'E';
}

// Only entries of these title kinds reach the LV's totals (the billed total excepted).
bool ReachesLvTotals(char title_kind) {
  return title_kind == '\0' || title_kind == ' ' || title_kind == 'M';
}

bool IsUncontractedSupplement(const TLvPos& item) {
  const auto& common = item.LvBgBeschr;
  const char status = common.NachtrStatus;
  return common.KzNachtrag != 0 && common.IdVertrag == data::kNullId && status != '4' &&
         status != '5' && status != 'Z';
}

// Whether an entry's time effort counts: not for alternatives nor contingencies without total.
bool TimeCounts(const TLvPos& entry) {
  return entry.LvBgBeschr.ZZWahl <= 0 && entry.LvBgBeschr.Bedarf != 'E';
}

// An item's component totals. The description record of this installation keeps no
// estimated components, so the estimated ones stay 0; the awarded ones come from the item
// part, for items that get an awarded total at all.
void SetComponentTotals(TLvPos& item) {
  item.SGPAnteil.fill(0.0);
  item.VGPAnteil.fill(0.0);
  const auto& common = item.LvBgBeschr;
  if (common.Bedarf == 'E' || common.KzEntfaellt != 0) return;
  for (int i = 0; i < 6; ++i)
    item.VGPAnteil[i] = item.LvBeschr.FMenge * item.LvBeschr.EPAnteil[i].Betrag;
}

// What an entry adds to its group's carry-over lines: estimated, awarded, billed.
using CarryAmounts = std::array<double, 3>;

template <typename Record>
bool SameBytes(const Record& a, const Record& b) {
  return std::memcmp(&a, &b, sizeof(Record)) == 0;
}

// The index of every entry's group, -1 for an entry directly below the LV (or below a group
// the list does not hold).
std::vector<int> ParentIndexes(const boq::TLVPosList& list) {
  std::vector<int> parent(static_cast<std::size_t>(list.Count()), -1);
  std::unordered_map<int32_t, int> group_index;
  for (int i = 0; i < list.Count(); ++i) {
    const TLvPos& entry = list[i];
    const auto found = group_index.find(entry.Struktur.ZuBg);
    if (found != group_index.end()) parent[i] = found->second;
    if (entry.IsGroup()) group_index[entry.Struktur.IdBgBeschr] = i;
  }
  return parent;
}

}  // namespace

// What one entry adds to its group or to the LV: the undiscounted totals (…GP) and the
// sums after the entries' own discounts (…Sum).
struct TBoqCtgyCalcSum::Totals {
  double schaetz_gp = 0, einzelkosten_gp = 0, angebots_gp = 0, vergabe_gp = 0;
  double abrechnungs_gp = 0, deckung_gp = 0, not_contracted_gp = 0;
  double einzelkosten_sum = 0, angebots_sum = 0, vergabe_sum = 0, nachtr_sum = 0;
  double abrechnungs_sum = 0, not_contracted_sum = 0;
  double zeit_aufwand = 0;
  double anteil[6] = {};          // awarded components (VGPAnteil)
  double schaetz_anteil[6] = {};  // estimated components (SGPAnteil)

  void Add(const Totals& other) {
    schaetz_gp += other.schaetz_gp;
    einzelkosten_gp += other.einzelkosten_gp;
    angebots_gp += other.angebots_gp;
    vergabe_gp += other.vergabe_gp;
    abrechnungs_gp += other.abrechnungs_gp;
    deckung_gp += other.deckung_gp;
    not_contracted_gp += other.not_contracted_gp;
    einzelkosten_sum += other.einzelkosten_sum;
    angebots_sum += other.angebots_sum;
    vergabe_sum += other.vergabe_sum;
    nachtr_sum += other.nachtr_sum;
    abrechnungs_sum += other.abrechnungs_sum;
    not_contracted_sum += other.not_contracted_sum;
    zeit_aufwand += other.zeit_aufwand;
    for (int i = 0; i < 6; ++i) {
      anteil[i] += other.anteil[i];
      schaetz_anteil[i] += other.schaetz_anteil[i];
    }
  }
};

TBoqCtgyCalcSum::TBoqCtgyCalcSum(boq::TLVPosList& list, const boq::TAvaUiValueConverter& converter,
                                 bool only_marked)
    : list_(list),
      converter_(converter),
      calculation_(converter, list.FLv().EPGenauigkeit),
      only_marked_(only_marked) {}

double TBoqCtgyCalcSum::LessPercent(double amount, double percent) const {
  return converter_.CurrencyBrutto(amount, -percent);
}

bool TBoqCtgyCalcSum::Counts(const TLvPos& item) const {
  if (item.Kind() != 'L' && item.Kind() != 'P') return false;
  return !(only_marked_ && any_marked_) || item.LvBgBeschr.markiert != 0;
}

bool TBoqCtgyCalcSum::PassesContract(const TLvPos& item) const {
  return contract_ == data::kNullId || item.LvBgBeschr.IdVertrag == contract_;
}

TBoqCtgyCalcSum::Totals TBoqCtgyCalcSum::ItemTotals(const TLvPos& item) const {
  Totals t;
  if (!Counts(item)) return t;
  const auto& common = item.LvBgBeschr;
  const double kept = 1.0 - common.NachlassProz / 100.0;
  t.schaetz_gp = common.SchaetzGP.Betrag;
  for (int i = 0; i < 6; ++i) t.schaetz_anteil[i] = item.SGPAnteil[i];
  t.einzelkosten_gp = common.EinzelkostenGP.Betrag;
  t.angebots_gp = common.AngebotsGP.Betrag;
  t.einzelkosten_sum = common.EinzelkostenGP.Betrag * kept;
  t.angebots_sum = Round(common.AngebotsGP.Betrag * kept);
  const bool in_contract = PassesContract(item);
  if (common.KzEntfaellt == 0 && in_contract) {
    t.vergabe_gp = common.VergabeGP.Betrag;
    for (int i = 0; i < 6; ++i) t.anteil[i] = item.VGPAnteil[i];
    t.vergabe_sum = Round(common.VergabeGP.Betrag * kept);
  }
  if (item.IsSupplement() && in_contract) t.nachtr_sum = Round(common.VergabeGP.Betrag * kept);
  if (IsUncontractedSupplement(item) && !IsZero(common.NotContractedNachtragGP.Betrag)) {
    t.not_contracted_gp = common.NotContractedNachtragGP.Betrag;
    t.not_contracted_sum = common.NotContractedNachtragGP.Betrag * kept;
  }
  t.deckung_gp = common.SchaetzGPDeckung.Betrag;
  t.abrechnungs_gp = common.AbrechnungsGP.Betrag;
  t.abrechnungs_sum = Round(common.AbrechnungsGP.Betrag * kept);
  if (TimeCounts(item)) t.zeit_aufwand = common.ZeitAufwand;
  return t;
}

// Writes the children's totals into the group, applies its discount or lump sum and
// answers what the group adds to its parent.
TBoqCtgyCalcSum::Totals TBoqCtgyCalcSum::FinishGroup(TLvPos& group, const Totals& sum) const {
  auto& common = group.LvBgBeschr;
  auto& part = group.LvBg;
  const bool empty = SumsNothing(common.Titelart);
  const Totals t = empty ? Totals{} : sum;
  common.SchaetzGP.Betrag = Round(t.schaetz_gp);
  common.EinzelkostenGP.Betrag = Round(t.einzelkosten_gp);
  common.AngebotsGP.Betrag = Round(t.angebots_gp);
  common.VergabeGP.Betrag = Round(t.vergabe_gp);
  common.AbrechnungsGP.Betrag = Round(t.abrechnungs_gp);
  common.SchaetzGPDeckung.Betrag = Round(t.deckung_gp);
  common.NotContractedNachtragGP.Betrag = Round(t.not_contracted_gp);
  common.ZeitAufwand = t.zeit_aufwand;
  part.EinzelkostenSum.Betrag = Round(t.einzelkosten_sum);
  part.AngebotsSum.Betrag = Round(t.angebots_sum);
  part.VergabeSum.Betrag = Round(t.vergabe_sum);
  part.NachtrSum.Betrag = Round(t.nachtr_sum);
  part.AbrechnungsSum.Betrag = Round(t.abrechnungs_sum);
  part.NotContractedNachtragSum.Betrag = Round(t.not_contracted_sum);
  for (int i = 0; i < 6; ++i) part.GPAnteil[i].Betrag = Round(t.anteil[i]);
  for (int i = 0; i < 6; ++i) {
    group.VGPAnteil[i] = t.anteil[i];
    group.SGPAnteil[i] = t.schaetz_anteil[i];
  }
  part.VergabeSumExclNachlass = part.VergabeSum;
  if (empty) return {};
  ApplyGroupDiscount(group);
  Totals up;
  up.schaetz_gp = common.SchaetzGP.Betrag;
  up.einzelkosten_gp = common.EinzelkostenGP.Betrag;
  up.angebots_gp = common.AngebotsGP.Betrag;
  up.vergabe_gp = common.VergabeGP.Betrag;
  up.abrechnungs_gp = common.AbrechnungsGP.Betrag;
  up.deckung_gp = common.SchaetzGPDeckung.Betrag;
  up.not_contracted_gp = common.NotContractedNachtragGP.Betrag;
  up.einzelkosten_sum = part.EinzelkostenSum.Betrag;
  up.angebots_sum = part.AngebotsSum.Betrag;
  up.vergabe_sum = part.VergabeSum.Betrag;
  up.nachtr_sum = part.NachtrSum.Betrag;
  up.abrechnungs_sum = part.AbrechnungsSum.Betrag;
  up.not_contracted_sum = part.NotContractedNachtragSum.Betrag;
  if (TimeCounts(group)) up.zeit_aufwand = common.ZeitAufwand;
  for (int i = 0; i < 6; ++i) {
    up.anteil[i] = part.GPAnteil[i].Betrag;
    up.schaetz_anteil[i] = group.SGPAnteil[i];
  }
  return up;
}

// A percentage wins over an absolute discount, either over a lump sum; the absolute
// amount comes off each of the sums in full (the system has always done so).
void TBoqCtgyCalcSum::ApplyGroupDiscount(TLvPos& group) const {
  auto& part = group.LvBg;
  data::t_WaeBetrag* sums[] = {&part.EinzelkostenSum, &part.AngebotsSum,
                               &part.VergabeSum,      &part.NachtrSum,
                               &part.AbrechnungsSum,  &part.NotContractedNachtragSum};
  const double percent = group.LvBgBeschr.NachlassProz;
  const double absolute = part.NachlassAbs.Betrag;
  if (!IsZero(percent)) {
    for (data::t_WaeBetrag* sum : sums) sum->Betrag = LessPercent(sum->Betrag, percent);
    part.SummePsch.Betrag = 0.0;
  } else if (!IsZero(absolute)) {
    for (data::t_WaeBetrag* sum : sums) sum->Betrag = Round(sum->Betrag - absolute);
    part.SummePsch.Betrag = 0.0;
  } else {
    if (!IsZero(part.SummePsch.Betrag)) part.VergabeSum = part.SummePsch;
    if (!IsZero(part.PauschalAbrechnungsSum.Betrag))
      part.AbrechnungsSum = part.PauschalAbrechnungsSum;
  }
}

void TBoqCtgyCalcSum::SetLvTotals(const Totals& top, const Totals& billed) {
  boq::t_Lv_DB_VERSION_3100 lv = list_.FLv();
  lv.SchaetzSum.Betrag = Round(top.schaetz_gp);
  lv.VergabeSum.Betrag = Round(top.vergabe_sum);
  lv.EinzelkostenSum.Betrag = Round(top.einzelkosten_sum);
  lv.AngebotsSum.Betrag = Round(top.angebots_sum);
  lv.NachtragsSum.Betrag = Round(top.nachtr_sum);
  lv.SchaetzGPDeckung.Betrag = Round(top.deckung_gp);
  lv.ZeitAufwand = top.zeit_aufwand;
  lv.Abgerechnet.Betrag = Round(billed.abrechnungs_sum);
  const bool contracted = boq::IsAwardedStatus(lv.Status);
  lv.NotContractedNachtrag.Betrag = contracted ? Round(top.not_contracted_gp) : 0.0;
  lv.NotContractedNachtragInclNachlass.Betrag = contracted ? Round(top.not_contracted_sum) : 0.0;
  lv.Summe = lv.VergabeSum;
  list_.RefreshLvProperties(lv);
}

void TBoqCtgyCalcSum::ApplyLvDiscount() {
  boq::t_Lv_DB_VERSION_3100 lv = list_.FLv();
  const double percent = lv.NachlassProz;
  const double absolute = lv.NachlassAbs.Betrag;
  if (!IsZero(lv.SummePsch.Betrag) && IsZero(lv.VergabeSum.Betrag)) {
    lv.VergabeSum = lv.SummePsch;
  } else if (!IsZero(percent)) {
    for (data::t_WaeBetrag* sum : {&lv.EinzelkostenSum, &lv.AngebotsSum, &lv.VergabeSum,
                                   &lv.NachtragsSum, &lv.NotContractedNachtragInclNachlass}) {
      sum->Betrag = LessPercent(sum->Betrag, percent);
    }
    lv.SummePsch.Betrag = 0.0;
  } else if (!IsZero(absolute)) {
    for (data::t_WaeBetrag* sum : {&lv.EinzelkostenSum, &lv.AngebotsSum, &lv.VergabeSum,
                                   &lv.NotContractedNachtragInclNachlass}) {
      sum->Betrag = Round(sum->Betrag - absolute);
    }
    // Supplements are only reduced when there are any: the discount never makes them negative.
    if (lv.NachtragsSum.Betrag > kZero)
      lv.NachtragsSum.Betrag = Round(lv.NachtragsSum.Betrag - absolute);
    lv.SummePsch.Betrag = 0.0;
  }
  lv.SumNachNL = lv.VergabeSum;
  lv.VergabeSumInclNachlass = lv.VergabeSum;
  list_.RefreshLvProperties(lv);
}

// The carry-overs run in document order, so they take a walk of their own after the groups
// are summed: each counted item gets its group's totals up to and including itself.
void TBoqCtgyCalcSum::SetCarryOvers(const std::vector<int>& parent,
                                    const std::vector<CarryAmounts>& carried) {
  std::vector<CarryAmounts> so_far(carried.size());
  for (int i = 0; i < list_.Count(); ++i) {
    TLvPos& entry = list_[i];
    entry.Schaetzuebertrag = entry.VergabeUebertrag = entry.AbrechnungsUebertrag = 0.0;
    const int p = parent[i];
    if (p < 0) continue;
    CarryAmounts& group = so_far[p];
    for (std::size_t k = 0; k < group.size(); ++k) group[k] += carried[i][k];
    if (entry.IsGroup() || !Counts(entry)) continue;
    entry.Schaetzuebertrag = Round(group[0]);
    if (entry.LvBgBeschr.KzEntfaellt == 0 && PassesContract(entry))
      entry.VergabeUebertrag = Round(group[1]);
    entry.AbrechnungsUebertrag = Round(group[2]);
  }
}

TSumRunResult TBoqCtgyCalcSum::Calculate(int32_t contract) {
  contract_ = contract == 0 ? data::kNullId : contract;
  TSumRunResult result;
  const int count = list_.Count();
  std::vector<char> changed(static_cast<std::size_t>(count), 0);
  any_marked_ = false;
  for (const TLvPos& entry : list_.Entries()) any_marked_ |= entry.LvBgBeschr.markiert != 0;
  result.entries_without_parent = list_.HasEntriesWithoutParentGroup();
  {
    std::vector<std::pair<int32_t, char>> tree_before;
    tree_before.reserve(static_cast<std::size_t>(count));
    for (const TLvPos& entry : list_.Entries())
      tree_before.emplace_back(entry.Struktur.ZuBg, entry.LvBgBeschr.Titelart);
    RebuildParentLinks(list_);
    list_.RefreshGroupKinds();
    for (int i = 0; i < count; ++i) {
      changed[i] =
          tree_before[i] != std::pair(list_[i].Struktur.ZuBg, list_[i].LvBgBeschr.Titelart);
    }
  }
  // Surcharge items take their base from the entries above them: items go in document order.
  for (int i = 0; i < count; ++i) {
    if (list_[i].IsGroup()) continue;
    const boq::t_LvBgBeschr_3000 common = list_[i].LvBgBeschr;
    const boq::t_LvBeschr2_DB_VERSION_201401 part = list_[i].LvBeschr;
    calculation_.Calculate(list_, i);
    SetComponentTotals(list_[i]);
    changed[i] |= !SameBytes(common, list_[i].LvBgBeschr) || !SameBytes(part, list_[i].LvBeschr);
  }
  const std::vector<int> parent = ParentIndexes(list_);
  // Children follow their group, so one walk from the end finishes every group before its
  // parent: each entry adds itself to the running sum of its parent.
  std::vector<Totals> running(static_cast<std::size_t>(count));
  std::vector<CarryAmounts> carried(static_cast<std::size_t>(count));
  Totals top, billed;
  for (int i = count - 1; i >= 0; --i) {
    TLvPos& entry = list_[i];
    const int p = parent[i];
    const boq::t_LvBgBeschr_3000 common = entry.LvBgBeschr;
    const boq::t_LvBg2_DB_VERSION_201401 group_part = entry.LvBg;
    Totals own;
    if (entry.IsGroup()) {
      own = FinishGroup(entry, running[i]);
    } else if (p >= 0 && SumsNothing(list_[p].LvBgBeschr.Titelart)) {
      continue;
    } else {
      own = ItemTotals(entry);
      if (p >= 0 && Counts(entry)) entry.LvBgBeschr.Titelart = list_[p].LvBgBeschr.Titelart;
    }
    changed[i] |= !SameBytes(common, entry.LvBgBeschr) || !SameBytes(group_part, entry.LvBg);
    carried[i] = {own.schaetz_gp, own.vergabe_sum, own.abrechnungs_sum};
    if (p >= 0) {
      running[p].Add(own);
    } else if (entry.Struktur.ZuBg == data::kRootParentId) {
      if (ReachesLvTotals(entry.LvBgBeschr.Titelart)) top.Add(own);
      billed.abrechnungs_sum += own.abrechnungs_sum;
    }
  }
  SetCarryOvers(parent, carried);
  SetLvTotals(top, billed);
  if (list_.FLv().Zeilenart == '9') ApplyLvDiscount();
  for (int i = 0; i < count; ++i) {
    if (!changed[i]) continue;
    list_.Changed(i, boq::TModelChangedReason::crCost);
    ++result.changed_entries;
  }
  return result;
}

}  // namespace korvan::calc
