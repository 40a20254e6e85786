#include "boq/model/lv_tree_walk.h"

#include <map>
#include <vector>

namespace korvan::boq {
namespace {

using Children = std::map<int32_t, std::vector<int>>;

void Walk(const TLVPosList& list, const Children& children, int32_t group_id, int depth,
          TLvTreeVisitor& visitor) {
  const auto found = children.find(group_id);
  if (found == children.end()) return;
  for (int index : found->second) {
    const TLvPos& entry = list[index];
    visitor.VisitRow(entry, index, depth);
    if (!entry.IsGroup()) continue;
    const int32_t id = entry.Struktur.IdBgBeschr;
    bool has_child_groups = false;
    if (const auto own = children.find(id); own != children.end()) {
      for (int child : own->second) has_child_groups = has_child_groups || list[child].IsGroup();
    }
    visitor.GroupStarts(entry, has_child_groups);
    // A group naming itself as its parent would never end.
    if (id != group_id) Walk(list, children, id, depth + 1, visitor);
    visitor.GroupEnds(entry);
  }
}

}  // namespace

void ForEach(const TLVPosList& list, int32_t group_id, TLvTreeVisitor& visitor) {
  Children children;
  for (int i = 0; i < list.Count(); ++i) children[list[i].Struktur.ZuBg].push_back(i);
  Walk(list, children, group_id, 0, visitor);
}

}  // namespace korvan::boq
