#include "boq/model/lv_entry_totals.h"

#include <cmath>
#include <unordered_map>

#include "boq/lv/lv_codes.h"
#include "data/records/null_values.h"

namespace korvan::boq {
namespace {

double Cents(double value) {
  return std::round(value * 100.0) / 100.0;
}

// Contingency items without total, and alternatives that are not additional items,
// count nothing.
bool CountsTowardsTotal(const TLvPos& entry) {
  const t_LvBgBeschr_3000& common = entry.LvBgBeschr;
  if (common.Bedarf == 'E') return false;
  return common.ZZWahl <= 0 || common.NachtrStatus == 'Z';
}

TLvEntryFigures ItemFigures(const TLvPos& entry, TLvPriceKind kind) {
  TLvEntryFigures figures;
  if (!entry.IsQuantityItem()) return figures;
  figures.quantity = entry.LvBeschr.FMenge;
  if (entry.Kind() == 'U') return figures;  // a sub-description's prices are cleared
  // Copied one by one: the packed record's amounts are not aligned for a reference.
  const double award = entry.LvBeschr.VergabeEP.Betrag;
  const double estimate = entry.LvBeschr.SchaetzEP.Betrag;
  figures.unit_price = kind == TLvPriceKind::kAward ? award : estimate;
  figures.total = CountsTowardsTotal(entry) ? Cents(*figures.quantity * *figures.unit_price) : 0.0;
  return figures;
}

}  // namespace

TLvPriceKind PriceKindOfStatus(char status) {
  return IsAwardedStatus(status) ? TLvPriceKind::kAward : TLvPriceKind::kEstimate;
}

std::vector<TLvEntryFigures> PriceFigures(const TLVPosList& list, TLvPriceKind kind,
                                          double* lv_total) {
  std::vector<TLvEntryFigures> figures(static_cast<std::size_t>(list.Count()));
  std::unordered_map<int32_t, int> index_of_group;
  std::vector<int> parent(figures.size(), -1);
  for (int i = 0; i < list.Count(); ++i) {
    const TLvPos& entry = list[i];
    figures[i] = ItemFigures(entry, kind);
    if (entry.IsGroup()) {
      figures[i].total = 0.0;
      index_of_group[entry.Struktur.IdBgBeschr] = i;
    }
    const auto found = index_of_group.find(entry.Struktur.ZuBg);
    if (found != index_of_group.end() && found->second != i) {
      parent[i] = found->second;
      figures[i].depth = figures[found->second].depth + 1;
    }
  }
  double top = 0.0;
  // Children follow their group, so walking backwards finishes each group before its own.
  for (int i = list.Count() - 1; i >= 0; --i) {
    const double own = figures[i].total.value_or(0.0);
    if (parent[i] >= 0) {
      *figures[parent[i]].total += own;
    } else {
      top += own;
    }
  }
  if (lv_total != nullptr) *lv_total = Cents(top);
  return figures;
}

}  // namespace korvan::boq
