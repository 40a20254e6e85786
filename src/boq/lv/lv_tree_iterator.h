#pragma once

#include <cstdint>
#include <vector>

#include "boq/lv/struktur_record.h"
#include "boq/lv/tb_struktur.h"

// Walking an LV's tree in its structure table, without loading the LV: the children of a
// group come in their order from index "4" (LV, parent group, place in the group).
namespace korvan::boq {

class TAvaLvTreeVisitor {
 public:
  virtual ~TAvaLvTreeVisitor() = default;
  // Every row, a group before its children; `depth` 0 for the children of the start group.
  virtual void VisitRow(const t_Struktur& row, int depth) = 0;
  // A group's children follow; `has_child_groups` when some of them are groups.
  virtual void GroupStarts(const t_Struktur& group, bool has_child_groups) = 0;
  virtual void GroupEnds(const t_Struktur& group) = 0;
};

class TAvaLvTreeIterator {
 public:
  TAvaLvTreeIterator(TTbStruktur& table, int32_t lv_id) : table_(table), lv_id_(lv_id) {}

  // The rows whose parent group is `group_id` (kRootParentId: the top level), in order.
  // EStoredLvError (naming the database) when the table cannot be read.
  std::vector<t_Struktur> Children(int32_t group_id);
  // Visits the children of `group_id` and, between each group's start and end, its
  // subtree. A group that stands below itself (a damaged tree) is visited, not entered.
  void ForEach(int32_t group_id, TAvaLvTreeVisitor& visitor);

 private:
  void Walk(const std::vector<t_Struktur>& children, int depth, std::vector<int32_t>& open_groups,
            TAvaLvTreeVisitor& visitor);

  TTbStruktur& table_;
  int32_t lv_id_;
};

}  // namespace korvan::boq
