#include "calc/sums/lv_parent_links.h"

#include <vector>

#include "data/records/null_values.h"

namespace korvan::calc {

bool RebuildParentLinks(boq::TLVPosList& list) {
  struct OpenGroup {
    int depth;
    int32_t id;
  };
  std::vector<OpenGroup> open;  // the groups whose range the walk is in, deepest last
  bool changed = false;
  for (boq::TLvPos& entry : list.Entries()) {
    if (!entry.IsGroup() && !entry.IsQuantityItem()) continue;
    const int depth = list.FOzMask().GetOzLevel(entry.Oz()) - 1;
    while (!open.empty() && open.back().depth >= depth) open.pop_back();
    const bool has_parent = !open.empty() && open.back().depth == depth - 1;
    const int32_t parent = has_parent ? open.back().id : data::kRootParentId;
    changed |= entry.Struktur.ZuBg != parent;
    entry.Struktur.ZuBg = parent;
    if (entry.IsGroup()) open.push_back({depth, entry.Struktur.IdBgBeschr});
  }
  return changed;
}

}  // namespace korvan::calc
