#pragma once

#include <cstdint>
#include <cstring>

#include "storage/key_file_header.h"
#include "storage/key_file_layout.h"

namespace korvan::storage {

// Order of (key, position) pairs: key bytes unsigned, then the positions compared as
// signed 32-bit numbers, which is how existing trees are ordered.
inline int ComparePairs(const uint8_t* key_a, uint32_t position_a, const uint8_t* key_b,
                        uint32_t position_b, int key_length) {
  if (const int c = std::memcmp(key_a, key_b, static_cast<size_t>(key_length)); c != 0) return c;
  const auto a = static_cast<int32_t>(position_a);
  const auto b = static_cast<int32_t>(position_b);
  return (a > b) - (a < b);
}

// Significant length of a search pattern: trailing pad bytes do not count, a pattern of
// pad bytes only has length 0 and matches every key.
inline int SignificantLength(const uint8_t* pattern, int key_length) {
  int length = key_length;
  while (length > 1 && pattern[length - 1] == kKeyPad) --length;
  if (length == 1 && pattern[0] == kKeyPad) length = 0;
  return length;
}

// One entry (child, position, key) of a format, held outside any node.
template <class Format>
struct EntryImage {
  using NodeNumber = typename Format::NodeNumber;
  static constexpr size_t kPositionOffset = offsetof(typename Format::EntryHead, position);
  static constexpr size_t kKeyOffset = sizeof(typename Format::EntryHead);

  uint8_t bytes[kKeyOffset + kMaxKeyFileKeyLength] = {};

  uint32_t child() const { return LoadLe<NodeNumber>(bytes); }
  void set_child(uint32_t node) { StoreLe<NodeNumber>(bytes, static_cast<NodeNumber>(node)); }
  uint32_t position() const { return LoadLe<uint32_t>(bytes + kPositionOffset); }
  void set_position(uint32_t position) { StoreLe<uint32_t>(bytes + kPositionOffset, position); }
  const uint8_t* key() const { return bytes + kKeyOffset; }
  uint8_t* key() { return bytes + kKeyOffset; }
};

// A node of a format inside a pinned cache buffer. Entries are numbered 1..count;
// child(0) is the leftmost child, child(i) the subtree right of entry i.
template <class Format>
class KeyNode {
 public:
  using NodeNumber = typename Format::NodeNumber;
  using Entry = EntryImage<Format>;
  static constexpr size_t kLeftmostOffset = offsetof(typename Format::NodeHead, leftmost_child);
  static constexpr size_t kEntriesOffset = sizeof(typename Format::NodeHead);

  KeyNode(uint8_t* block, const TreeShape& shape)
      : block_(block), entry_size_(shape.entry_size), key_length_(shape.key_length) {}

  int count() const { return LoadLe<uint16_t>(block_); }
  void set_count(int count) { StoreLe<uint16_t>(block_, static_cast<uint16_t>(count)); }

  uint32_t child(int i) const {
    return LoadLe<NodeNumber>(i == 0 ? block_ + kLeftmostOffset : entry(i));
  }
  void set_child(int i, uint32_t node) {
    StoreLe<NodeNumber>(i == 0 ? block_ + kLeftmostOffset : entry(i),
                        static_cast<NodeNumber>(node));
  }
  uint32_t position(int i) const { return LoadLe<uint32_t>(entry(i) + Entry::kPositionOffset); }
  const uint8_t* key(int i) const { return entry(i) + Entry::kKeyOffset; }

  int ComparePair(int i, const uint8_t* key, uint32_t position) const {
    return ComparePairs(this->key(i), this->position(i), key, position, key_length_);
  }
  int ComparePrefix(int i, const uint8_t* pattern, int length) const {
    return std::memcmp(key(i), pattern, static_cast<size_t>(length));
  }

  Entry LoadEntry(int i) const {
    Entry e;
    std::memcpy(e.bytes, entry(i), static_cast<size_t>(entry_size_));
    return e;
  }
  void StoreEntry(int i, const Entry& e) {
    std::memcpy(entry(i), e.bytes, static_cast<size_t>(entry_size_));
  }
  // Position and key of entry i from entry j of `from`; the child of entry i stays.
  void SetPositionAndKey(int i, const KeyNode& from, int j) {
    std::memcpy(entry(i) + Entry::kPositionOffset, from.entry(j) + Entry::kPositionOffset,
                static_cast<size_t>(entry_size_) - Entry::kPositionOffset);
  }
  // Entries `from`..`from`+n-1 of `source` (may be this node) to `to`..`to`+n-1.
  void CopyEntries(int to, const KeyNode& source, int from, int n) {
    if (n <= 0) return;
    std::memmove(entry(to), source.entry(from), static_cast<size_t>(n * entry_size_));
  }
  void MoveEntries(int to, int from, int n) { CopyEntries(to, *this, from, n); }
  // Zeroes n entry slots from `from` on, so that no stale entry stays behind.
  void ClearEntries(int from, int n) {
    if (n <= 0) return;
    std::memset(entry(from), 0, static_cast<size_t>(n * entry_size_));
  }
  void Clear() { std::memset(block_, 0, kBlockSize); }

  // Puts `e` at index i (1..count+1), shifting the entries from i on to the right.
  void InsertEntry(int i, const Entry& e) {
    MoveEntries(i + 1, i, count() - i + 1);
    StoreEntry(i, e);
    set_count(count() + 1);
  }
  // Removes entry i, shifting the following entries to the left.
  void RemoveEntry(int i) {
    const int n = count();
    MoveEntries(i, i + 1, n - i);
    ClearEntries(n, 1);
    set_count(n - 1);
  }

  // Number of entries smaller than (key, position); *found when the next entry is
  // the pair itself.
  int FindPair(const uint8_t* key, uint32_t position, bool* found) const {
    int low = 0;
    int high = count();
    while (low < high) {
      const int mid = (low + high) / 2;
      if (ComparePair(mid + 1, key, position) < 0) {
        low = mid + 1;
      } else {
        high = mid;
      }
    }
    *found = low < count() && ComparePair(low + 1, key, position) == 0;
    return low;
  }

  // Number of entries whose first `length` key bytes are below the pattern
  // (`or_equal`: below or equal).
  int CountBelowPrefix(const uint8_t* pattern, int length, bool or_equal) const {
    int low = 0;
    int high = count();
    while (low < high) {
      const int mid = (low + high) / 2;
      const int c = ComparePrefix(mid + 1, pattern, length);
      if (c < 0 || (or_equal && c == 0)) {
        low = mid + 1;
      } else {
        high = mid;
      }
    }
    return low;
  }

 private:
  uint8_t* entry(int i) const {
    return block_ + kEntriesOffset + static_cast<size_t>((i - 1) * entry_size_);
  }

  uint8_t* block_;
  int entry_size_;
  int key_length_;
};

}  // namespace korvan::storage
