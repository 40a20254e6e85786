#include "data/component/c_data_rows.h"

#include <algorithm>
#include <cstdint>
#include <numeric>

namespace korvan::data {

void TCDataRows::Insert(int z, TCDataRow row) {
  rows_.insert(rows_.begin() + (z - 1), std::move(row));
}

void TCDataRows::Remove(int z) {
  rows_.erase(rows_.begin() + (z - 1));
}

int TCDataRows::MoveRows(const std::vector<int>& rows, int target) {
  const std::vector<int> order = BlockMoveOrder(Count(), rows, target);
  Reorder(order);
  if (rows.empty()) return target;
  const auto first = std::find(order.begin(), order.end(), rows.front());
  return static_cast<int>(first - order.begin()) + 1;
}

void TCDataRows::Reorder(const std::vector<int>& order) {
  std::vector<TCDataRow> sorted;
  sorted.reserve(order.size());
  for (int z : order) sorted.push_back(std::move((*this)[z]));
  rows_ = std::move(sorted);
}

void TCDataRows::Move(int from, int to) {
  const auto first = rows_.begin();
  if (from < to) {
    std::rotate(first + (from - 1), first + from, first + to);
  } else if (from > to) {
    std::rotate(first + (to - 1), first + (from - 1), first + from);
  }
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

std::vector<int> BlockMoveOrder(int count, const std::vector<int>& rows, int target) {
  std::vector<int> kept;
  int kept_before_target = 0;
  size_t next = 0;
  for (int z = 1; z <= count; ++z) {
    if (next < rows.size() && rows[next] == z) {
      ++next;
      continue;
    }
    if (z < target) ++kept_before_target;
    kept.push_back(z);
  }
  kept.insert(kept.begin() + kept_before_target, rows.begin(), rows.end());
  return kept;
}

// A longest ascending run by patience sorting: tails[k] is the position in `order` that
// ends the best run of length k + 1 found so far, parent[] links each run back.
std::vector<int> RowsOutOfOrder(const std::vector<int>& order) {
  std::vector<size_t> tails;
  std::vector<size_t> parent(order.size(), SIZE_MAX);
  for (size_t i = 0; i < order.size(); ++i) {
    const auto at = std::lower_bound(tails.begin(), tails.end(), order[i],
                                     [&](size_t t, int value) { return order[t] < value; });
    if (at != tails.begin()) parent[i] = *(at - 1);
    if (at == tails.end()) {
      tails.push_back(i);
    } else {
      *at = i;
    }
  }
  std::vector<bool> stays(order.size(), false);
  for (size_t i = tails.empty() ? SIZE_MAX : tails.back(); i != SIZE_MAX; i = parent[i]) {
    stays[i] = true;
  }
  std::vector<int> moving;
  for (size_t i = 0; i < order.size(); ++i) {
    if (!stays[i]) moving.push_back(order[i]);
  }
  std::sort(moving.begin(), moving.end());
  return moving;
}

// Each moving row, in the order of its new position, is put right behind the row that
// will precede it (or first). A row so placed is never separated from its predecessor
// again, and the rows that stay keep their order, so the end result is `order`.
std::vector<TRowMove> SingleMoves(const std::vector<int>& order, const std::vector<int>& moving) {
  const size_t count = order.size();
  std::vector<size_t> new_index(count + 1, 0);
  for (size_t i = 0; i < count; ++i) new_index[static_cast<size_t>(order[i])] = i;
  std::vector<int> by_new_index = moving;
  std::sort(by_new_index.begin(), by_new_index.end(), [&](int a, int b) {
    return new_index[static_cast<size_t>(a)] < new_index[static_cast<size_t>(b)];
  });
  std::vector<int> current(count);
  std::iota(current.begin(), current.end(), 1);
  const auto index_of = [&](int row) {
    return static_cast<size_t>(std::find(current.begin(), current.end(), row) - current.begin());
  };
  std::vector<TRowMove> moves;
  for (int row : by_new_index) {
    const size_t from = index_of(row);
    current.erase(current.begin() + static_cast<long>(from));
    const size_t wanted = new_index[static_cast<size_t>(row)];
    const size_t to = wanted == 0 ? 0 : index_of(order[wanted - 1]) + 1;
    current.insert(current.begin() + static_cast<long>(to), row);
    if (from != to) moves.push_back({static_cast<int>(from) + 1, static_cast<int>(to) + 1});
  }
  return moves;
}

}  // namespace korvan::data
