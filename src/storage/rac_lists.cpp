#include "storage/rac_lists.h"

#include <algorithm>

namespace korvan::storage {

void TRacList::ThrowNotFound() {
  throw CacheUsageError("Bufferindex not found");
}

size_t TRacSortedList::LowerBound(uint64_t block) const {
  // Bisection without data-dependent branches: the halving steps compile to conditional
  // moves, so lookups of scattered blocks do not pay for mispredicted jumps.
  if (FItems.empty()) return 0;
  const Item* base = FItems.data();
  size_t count = FItems.size();
  while (count > 1) {
    const size_t half = count / 2;
    base = base[half].key < block ? base + half : base;
    count -= half;
  }
  return static_cast<size_t>(base - FItems.data()) + (base->key < block ? 1 : 0);
}

TRacBufferIndex* TRacSortedList::Find(uint64_t block) const {
  const auto found = by_block_.find(block);
  return found == by_block_.end() ? nullptr : found->second;
}

size_t TRacSortedList::PositionOf(const TRacBufferIndex* entry) const {
  const size_t pos = LowerBound(entry->Index);
  if (pos == FItems.size() || FItems[pos].entry != entry) ThrowNotFound();
  return pos;
}

void TRacSortedList::Add(TRacBufferIndex* entry) {
  const size_t pos = LowerBound(entry->Index);
  FItems.insert(FItems.begin() + static_cast<std::ptrdiff_t>(pos), Item{entry->Index, entry});
  by_block_[entry->Index] = entry;
}

void TRacSortedList::Remove(const TRacBufferIndex* entry) {
  FItems.erase(FItems.begin() + static_cast<std::ptrdiff_t>(PositionOf(entry)));
  by_block_.erase(entry->Index);
}

void TRacSortedList::ChangeIndex(TRacBufferIndex* entry, uint64_t block) {
  // Shift only the items between the old and the new place instead of removing and
  // inserting, which would move everything behind both places.
  const auto from = FItems.begin() + static_cast<std::ptrdiff_t>(PositionOf(entry));
  const auto to = FItems.begin() + static_cast<std::ptrdiff_t>(LowerBound(block));
  by_block_.erase(entry->Index);
  by_block_[block] = entry;
  entry->Index = block;
  if (to > from) {
    std::rotate(from, from + 1, to);
    (to - 1)->key = block;
  } else {
    std::rotate(to, from, from + 1);
    to->key = block;
  }
}

TRacBufferIndex* TRacUnSortedList::Find(uint64_t block) const {
  for (const Item& item : FItems) {
    if (item.key == block) return item.entry;
  }
  return nullptr;
}

size_t TRacUnSortedList::PositionOf(const TRacBufferIndex* entry) const {
  for (size_t i = 0; i < FItems.size(); ++i) {
    if (FItems[i].entry == entry) return i;
  }
  ThrowNotFound();
}

void TRacUnSortedList::Add(TRacBufferIndex* entry) {
  FItems.push_back({entry->Index, entry});
}

void TRacUnSortedList::Remove(const TRacBufferIndex* entry) {
  FItems[PositionOf(entry)] = FItems.back();
  FItems.pop_back();
}

void TRacUnSortedList::ChangeIndex(TRacBufferIndex* entry, uint64_t block) {
  FItems[PositionOf(entry)].key = block;
  entry->Index = block;
}

std::unique_ptr<TRacList> MakeRacList(int block_count) {
  if (block_count <= kRacSortedListThreshold) return std::make_unique<TRacUnSortedList>();
  return std::make_unique<TRacSortedList>();
}

void TRacAgeList::PushNewest(TRacBufferIndex* entry) {
  entry->older = newest_;
  entry->newer = nullptr;
  if (newest_ != nullptr) {
    newest_->newer = entry;
  } else {
    oldest_ = entry;
  }
  newest_ = entry;
  entry->in_age_list = true;
  ++size_;
}

void TRacAgeList::Remove(TRacBufferIndex* entry) {
  if (entry->older != nullptr) {
    entry->older->newer = entry->newer;
  } else {
    oldest_ = entry->newer;
  }
  if (entry->newer != nullptr) {
    entry->newer->older = entry->older;
  } else {
    newest_ = entry->older;
  }
  entry->older = entry->newer = nullptr;
  entry->in_age_list = false;
  --size_;
}

}  // namespace korvan::storage
