#include "boq/lv/lv_tree_iterator.h"

#include <algorithm>

#include "boq/lv/project_lvs.h"
#include "data/common/result_code_text.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::boq {

std::vector<t_Struktur> TAvaLvTreeIterator::Children(int32_t group_id) {
  std::vector<std::vector<uint8_t>> records;
  const std::string pattern = data::KeyNumber(lv_id_) + data::KeyNumber(group_id);
  if (int result = table_.GetBatch(pattern, '4', records); result != storage::kOk) {
    throw EStoredLvError(table_.Db().BasePath() + "0: die Einträge unter der Gruppe " +
                         std::to_string(group_id) + " des LV " + std::to_string(lv_id_) +
                         " können nicht gelesen werden: " + data::ResultCodeText(result));
  }
  std::vector<t_Struktur> rows;
  rows.reserve(records.size());
  for (const std::vector<uint8_t>& record : records) rows.push_back(TTbStruktur::Of(record));
  return rows;
}

void TAvaLvTreeIterator::ForEach(int32_t group_id, TAvaLvTreeVisitor& visitor) {
  std::vector<int32_t> open_groups{group_id};
  Walk(Children(group_id), 0, open_groups, visitor);
}

void TAvaLvTreeIterator::Walk(const std::vector<t_Struktur>& children, int depth,
                              std::vector<int32_t>& open_groups, TAvaLvTreeVisitor& visitor) {
  for (const t_Struktur& row : children) {
    visitor.VisitRow(row, depth);
    if (row.KzBgBeschr != 'B') continue;
    const int32_t group_id = row.IdBgBeschr;  // a copy: the packed field is not aligned
    const std::vector<t_Struktur> own = Children(group_id);
    const bool has_child_groups = std::any_of(
        own.begin(), own.end(), [](const t_Struktur& r) { return r.KzBgBeschr == 'B'; });
    visitor.GroupStarts(row, has_child_groups);
    if (std::find(open_groups.begin(), open_groups.end(), group_id) == open_groups.end()) {
      open_groups.push_back(group_id);
      Walk(own, depth + 1, open_groups, visitor);
      open_groups.pop_back();
    }
    visitor.GroupEnds(row);
  }
}

}  // namespace korvan::boq
