#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "storage/cache_usage_error.h"

namespace korvan::storage {

// Bookkeeping of one buffer of the random-access cache.
struct TRacBufferIndex {
  uint64_t Index = 0;      // block number held
  uint32_t UsedCount = 0;  // callers holding the block
  bool DirtyFlag = false;
  uint32_t BlockNo = 0;    // the buffer's slot in the block memory
  uint64_t TimeStamp = 0;  // last access
  // Neighbours in the age list; see TRacAgeList.
  TRacBufferIndex* older = nullptr;
  TRacBufferIndex* newer = nullptr;
  bool in_age_list = false;
};

// The buffers of a cache by block number. Small caches search an unsorted list
// linearly, which beats bisection for a handful of entries; large ones keep the list
// sorted (write-back goes in block order) and find blocks through a hash index, since a
// bisection over tens of thousands of entries costs more than the B-tree work it serves.
class TRacList {
 public:
  struct Item {
    uint64_t key;
    TRacBufferIndex* entry;
  };

  virtual ~TRacList() = default;
  // The entry holding `block`, or nullptr.
  virtual TRacBufferIndex* Find(uint64_t block) const = 0;
  // Adds an entry under its Index.
  virtual void Add(TRacBufferIndex* entry) = 0;
  // Removes an entry; throws "Bufferindex not found" when it is not listed.
  virtual void Remove(const TRacBufferIndex* entry) = 0;
  // Sets entry->Index to `block` and moves the entry to its new place.
  virtual void ChangeIndex(TRacBufferIndex* entry, uint64_t block) = 0;

  const std::vector<Item>& items() const { return FItems; }
  size_t size() const { return FItems.size(); }

 protected:
  [[noreturn]] static void ThrowNotFound();
  std::vector<Item> FItems;
};

class TRacSortedList final : public TRacList {
 public:
  TRacBufferIndex* Find(uint64_t block) const override;
  void Add(TRacBufferIndex* entry) override;
  void Remove(const TRacBufferIndex* entry) override;
  void ChangeIndex(TRacBufferIndex* entry, uint64_t block) override;

 private:
  // Position of the first item whose key is not below `block`.
  size_t LowerBound(uint64_t block) const;
  size_t PositionOf(const TRacBufferIndex* entry) const;

  std::unordered_map<uint64_t, TRacBufferIndex*> by_block_;
};

class TRacUnSortedList final : public TRacList {
 public:
  TRacBufferIndex* Find(uint64_t block) const override;
  void Add(TRacBufferIndex* entry) override;
  void Remove(const TRacBufferIndex* entry) override;
  void ChangeIndex(TRacBufferIndex* entry, uint64_t block) override;

 private:
  size_t PositionOf(const TRacBufferIndex* entry) const;
};

// Up to this many buffers a cache uses unsorted lists.
inline constexpr int kRacSortedListThreshold = 32;
std::unique_ptr<TRacList> MakeRacList(int block_count);

// The buffers that may be given up for another block, oldest time stamp first. An entry
// joins at the young end exactly when it is stamped, and time stamps only grow, so the
// list is always in time-stamp order without ever being sorted: the eviction victim is
// the oldest entry, found in constant time.
class TRacAgeList {
 public:
  void PushNewest(TRacBufferIndex* entry);
  void Remove(TRacBufferIndex* entry);
  TRacBufferIndex* Oldest() const { return oldest_; }
  size_t size() const { return size_; }

 private:
  TRacBufferIndex* oldest_ = nullptr;
  TRacBufferIndex* newest_ = nullptr;
  size_t size_ = 0;
};

}  // namespace korvan::storage
