#include "data/c_data_rows.h"

#include <algorithm>

namespace korvan::data {

void TCDataRows::Insert(int z, TCDataRow row) {
  rows_.insert(rows_.begin() + (z - 1), std::move(row));
}

void TCDataRows::Remove(int z) {
  rows_.erase(rows_.begin() + (z - 1));
}

int TCDataRows::MoveRows(const std::vector<int>& rows, int target) {
  std::vector<TCDataRow> moved;
  std::vector<TCDataRow> kept;
  int kept_before_target = 0;
  size_t next = 0;
  for (int z = 1; z <= Count(); ++z) {
    if (next < rows.size() && rows[next] == z) {
      moved.push_back(std::move((*this)[z]));
      ++next;
      continue;
    }
    if (z < target) ++kept_before_target;
    kept.push_back(std::move((*this)[z]));
  }
  kept.insert(kept.begin() + kept_before_target, std::make_move_iterator(moved.begin()),
              std::make_move_iterator(moved.end()));
  rows_ = std::move(kept);
  return kept_before_target + 1;
}

void TCDataRows::Reorder(const std::vector<int>& order) {
  std::vector<TCDataRow> sorted;
  sorted.reserve(order.size());
  for (int z : order) sorted.push_back(std::move((*this)[z]));
  rows_ = std::move(sorted);
}

int TCDataRows::ZeileFromKey(const std::string& key) const {
  auto it = std::find_if(rows_.begin(), rows_.end(),
                         [&](const TCDataRow& row) { return row.Key == key; });
  return it == rows_.end() ? 0 : static_cast<int>(it - rows_.begin()) + 1;
}

std::vector<int> TCDataRows::MarkedRows() const {
  std::vector<int> marked;
  for (int z = 1; z <= Count(); ++z) {
    if ((*this)[z].Markiert) marked.push_back(z);
  }
  return marked;
}

}  // namespace korvan::data
