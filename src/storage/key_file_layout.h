#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "storage/block_cache.h"

// On-disk layout of key files, versions 3 and 2. Block 0 is the header, every other
// block is one B-tree node; all numbers are little-endian. The structs below only
// document and pin down the layout (sizes and offsets); the code reads and writes the
// fields with LoadLe/StoreLe at their offsetof, so no block is ever accessed through a
// pointer of a struct type.
namespace korvan::storage {

static_assert(std::endian::native == std::endian::little,
              "key files are stored little-endian and read in place");

#pragma pack(push, 1)

struct KeyFileHeaderV3 {
  uint8_t version;        // 3
  uint8_t constant_two;   // always 2
  uint32_t highest_node;  // highest node number allocated so far
  uint32_t free_head;     // first node of the free list, 0 = empty
  uint8_t key_length;     // 12..90
  uint16_t max_entries;   // 2042 div (key length + 8)
  uint16_t half_entries;  // max_entries div 2
  uint32_t root;          // 0 = empty tree
  // Sharing between processes (key_file_sharing.h); zero in files that never had a
  // writer since these fields were added, which reads as "closed cleanly".
  uint64_t open_writers;  // bit s: the writer holding slot s has changed something
  uint64_t change_stamp;  // counts the changes written back by any process
  uint8_t zero[2013];
};
static_assert(sizeof(KeyFileHeaderV3) == kBlockSize);
static_assert(offsetof(KeyFileHeaderV3, constant_two) == 1);
static_assert(offsetof(KeyFileHeaderV3, highest_node) == 2);
static_assert(offsetof(KeyFileHeaderV3, free_head) == 6);
static_assert(offsetof(KeyFileHeaderV3, key_length) == 10);
static_assert(offsetof(KeyFileHeaderV3, max_entries) == 11);
static_assert(offsetof(KeyFileHeaderV3, half_entries) == 13);
static_assert(offsetof(KeyFileHeaderV3, root) == 15);
static_assert(offsetof(KeyFileHeaderV3, open_writers) == 19);
static_assert(offsetof(KeyFileHeaderV3, change_stamp) == 27);
static_assert(offsetof(KeyFileHeaderV3, zero) == 35);

// Start of a version 3 node; a freed node has count 0 and the next free node in
// leftmost_child.
struct KeyNodeHeadV3 {
  uint16_t count;
  uint32_t leftmost_child;  // 0 = leaf
};
static_assert(sizeof(KeyNodeHeadV3) == 6);
static_assert(offsetof(KeyNodeHeadV3, leftmost_child) == 2);

// Start of a version 3 entry; the key bytes follow.
struct KeyEntryHeadV3 {
  uint32_t child;  // subtree to the right of the entry
  uint32_t position;
};
static_assert(sizeof(KeyEntryHeadV3) == 8);
static_assert(offsetof(KeyEntryHeadV3, position) == 4);

struct KeyFileHeaderV2 {
  uint8_t version;  // 2
  uint8_t key_length;
  uint16_t max_entries;  // 2044 div (key length + 6)
  uint16_t half_entries;
  uint16_t root;
  uint8_t bitmap[2040];  // bit j of byte i set: node i * 8 + j + 1 is in use
};
static_assert(sizeof(KeyFileHeaderV2) == kBlockSize);
static_assert(offsetof(KeyFileHeaderV2, key_length) == 1);
static_assert(offsetof(KeyFileHeaderV2, max_entries) == 2);
static_assert(offsetof(KeyFileHeaderV2, half_entries) == 4);
static_assert(offsetof(KeyFileHeaderV2, root) == 6);
static_assert(offsetof(KeyFileHeaderV2, bitmap) == 8);

struct KeyNodeHeadV2 {
  uint16_t count;
  uint16_t leftmost_child;
};
static_assert(sizeof(KeyNodeHeadV2) == 4);
static_assert(offsetof(KeyNodeHeadV2, leftmost_child) == 2);

struct KeyEntryHeadV2 {
  uint16_t child;
  uint32_t position;
};
static_assert(sizeof(KeyEntryHeadV2) == 6);
static_assert(offsetof(KeyEntryHeadV2, position) == 2);

#pragma pack(pop)

template <typename T>
inline T LoadLe(const uint8_t* bytes) {
  T value;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

template <typename T>
inline void StoreLe(uint8_t* bytes, T value) {
  std::memcpy(bytes, &value, sizeof value);
}

// The two formats as traits of one B-tree implementation.
struct KeyFileV3 {
  static constexpr uint8_t kVersion = 3;
  using Header = KeyFileHeaderV3;
  using NodeNumber = uint32_t;
  using NodeHead = KeyNodeHeadV3;
  using EntryHead = KeyEntryHeadV3;
  static constexpr size_t kKeyLengthOffset = offsetof(Header, key_length);
  static constexpr size_t kMaxEntriesOffset = offsetof(Header, max_entries);
  static constexpr size_t kHalfEntriesOffset = offsetof(Header, half_entries);
  static constexpr size_t kRootOffset = offsetof(Header, root);
  static constexpr const char* kFatalCaption = "Database Index Error";
  static constexpr const char* kStepPrefix = "x";
};

struct KeyFileV2 {
  static constexpr uint8_t kVersion = 2;
  using Header = KeyFileHeaderV2;
  using NodeNumber = uint16_t;
  using NodeHead = KeyNodeHeadV2;
  using EntryHead = KeyEntryHeadV2;
  static constexpr size_t kKeyLengthOffset = offsetof(Header, key_length);
  static constexpr size_t kMaxEntriesOffset = offsetof(Header, max_entries);
  static constexpr size_t kHalfEntriesOffset = offsetof(Header, half_entries);
  static constexpr size_t kRootOffset = offsetof(Header, root);
  static constexpr const char* kFatalCaption = "FatalError";
  static constexpr const char* kStepPrefix = "";
  static constexpr size_t kBitmapOffset = offsetof(Header, bitmap);
  static constexpr size_t kBitmapBytes = sizeof(Header::bitmap);
  static constexpr uint32_t kMaxNode = kBitmapBytes * 8;  // 16320
};

// Entries per node: the space after the node head divided by the entry size.
template <class Format>
constexpr int MaxEntriesFor(int key_length) {
  return (kBlockSize - static_cast<int>(sizeof(typename Format::NodeHead))) /
         (key_length + static_cast<int>(sizeof(typename Format::EntryHead)));
}
static_assert(MaxEntriesFor<KeyFileV3>(83) == 22);  // 2042 div 91
static_assert(MaxEntriesFor<KeyFileV2>(90) == 21);  // 2044 div 96

// Version 3 node numbers. The file may not grow past 2 GB: the limit is compared as a
// real number (see the allocator), the nearly-full mark lies one block-count below it,
// and a node above kV3LastNode can never have been allocated legally.
inline constexpr double kV3NodeLimit = (2147483647.0 - kBlockSize) / kBlockSize;
inline constexpr uint32_t kV3NearlyFullNode = 1046527;
inline constexpr uint32_t kV3LastNode = 1048574;

// Deeper trees cannot arise from the algorithm (a node holds at least 20 entries); a
// walk deeper than this is following a cycle or a corrupt pointer.
inline constexpr int kMaxTreeHeight = 64;

}  // namespace korvan::storage
