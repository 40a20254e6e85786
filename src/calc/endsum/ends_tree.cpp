#include "calc/endsum/ends_tree.h"

#include <map>

namespace korvan::calc {
namespace {

bool CountsForEndSum(const boq::TLvPos& entry) {
  const char kind = entry.Kind();
  return (kind == 'L' || kind == 'P') && entry.LvBgBeschr.ZZWahl == 0 &&
         entry.LvBgBeschr.Bedarf != 'E' && entry.LvBgBeschr.KzEntfaellt == 0;
}

void AddItem(TEndsNode& node, const boq::TLvPos& item, TLvCalculation& costs,
             const boq::TAvaUiValueConverter& converter) {
  const double quantity = item.LvBeschr.FMenge;
  const TItemCosts per_unit = costs.CostsOf(item.LvBgBeschr.IDBeschr);
  if (per_unit.HasElements()) {
    node.dMengeLohn += converter.RoundQtyValue(per_unit.wage_hours, 3) * quantity;
    for (int k = 0; k < kResultCostTypes; ++k) {
      node.ekt[static_cast<size_t>(k)] += per_unit.direct[static_cast<size_t>(k)] * quantity;
    }
  } else if (item.LvBeschr.AngebotsEP.Betrag != 0.0) {
    node.dFestpreis += item.LvBeschr.AngebotsEP.Betrag * quantity;
  }
}

}  // namespace

std::unique_ptr<TEndsNode> BuildEndsTree(const boq::TLVPosList& list, TLvCalculation& costs,
                                         const boq::TAvaUiValueConverter& converter) {
  auto root = std::make_unique<TEndsNode>();
  // Groups come before what they hold, so a parent's node is there when it is needed.
  std::map<int32_t, TEndsNode*> groups;
  const auto node_of = [&](int32_t parent) -> TEndsNode& {
    const auto found = groups.find(parent);
    return found == groups.end() ? *root : *found->second;
  };
  for (const boq::TLvPos& entry : list.Entries()) {
    if (entry.IsGroup()) {
      auto node = std::make_unique<TEndsNode>();
      node->idBg = entry.Struktur.IdBgBeschr;
      groups[node->idBg] = &node_of(entry.Struktur.ZuBg).AddItem(std::move(node));
    } else if (CountsForEndSum(entry)) {
      AddItem(node_of(entry.Struktur.ZuBg), entry, costs, converter);
    }
  }
  return root;
}

}  // namespace korvan::calc
