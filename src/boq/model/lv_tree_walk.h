#pragma once

#include <cstdint>

#include "boq/model/lv_pos_list.h"

// Walking an LV as a tree: the children of a group in their order, groups recursively.
namespace korvan::boq {

class TLvTreeVisitor {
 public:
  virtual ~TLvTreeVisitor() = default;
  // Every entry, groups before their children.
  virtual void VisitRow(const TLvPos& entry, int index, int depth) = 0;
  // A group's children follow; `has_child_groups` when some of them are groups.
  virtual void GroupStarts(const TLvPos& group, bool has_child_groups) = 0;
  virtual void GroupEnds(const TLvPos& group) = 0;
};

// Visits the children of the group `group_id` (the root: kRootParentId) in list order,
// each group's subtree in between its start and end.
void ForEach(const TLVPosList& list, int32_t group_id, TLvTreeVisitor& visitor);

}  // namespace korvan::boq
