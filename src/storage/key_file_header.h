#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "storage/key_file.h"
#include "storage/key_file_layout.h"
#include "storage/result_codes.h"

namespace korvan::storage {

// The dimensions of one tree, taken from its header.
struct TreeShape {
  int key_length = 0;
  int max_entries = 0;      // M
  int half_entries = 0;     // H = M div 2: where a full node splits
  int underflow_limit = 0;  // T: a node below it is refilled from a neighbour
  int entry_size = 0;
};

// 45 % of the maximum, rounded to nearest with halves away from zero (as MulDiv does).
// A smaller limit than H leaves nodes room to shrink before they need a neighbour.
constexpr int UnderflowLimit(int max_entries) {
  return (max_entries * 45 + 50) / 100;
}

// Block 0 of a key file of one format, read and written in place in a cache buffer.
template <class Format>
class KeyFileHeader {
 public:
  using Header = typename Format::Header;
  using NodeNumber = typename Format::NodeNumber;

  explicit KeyFileHeader(uint8_t* block) : block_(block) {}

  // An empty tree of the given key length (12..90, checked by the caller).
  static void Initialize(uint8_t* block, int key_length) {
    std::memset(block, 0, kBlockSize);
    const int max_entries = MaxEntriesFor<Format>(key_length);
    block[0] = Format::kVersion;
    if constexpr (Format::kVersion == 3) block[offsetof(Header, constant_two)] = 2;
    block[Format::kKeyLengthOffset] = static_cast<uint8_t>(key_length);
    StoreLe<uint16_t>(block + Format::kMaxEntriesOffset, static_cast<uint16_t>(max_entries));
    StoreLe<uint16_t>(block + Format::kHalfEntriesOffset, static_cast<uint16_t>(max_entries / 2));
  }

  // 0 and the shape when the header belongs to this format and is consistent; 4231 for
  // a header of another version, 4224 for an unusable key length or node size.
  int Validate(TreeShape* shape) const {
    if (block_[0] != Format::kVersion) return kKeyFileCorrupt;
    if constexpr (Format::kVersion == 3) {
      if (block_[offsetof(Header, constant_two)] != 2) return kKeyFileCorrupt;
    }
    const int key_length = block_[Format::kKeyLengthOffset];
    if (key_length < kMinKeyFileKeyLength || key_length > kMaxKeyFileKeyLength) {
      return kKeyLengthOutOfRange;
    }
    const int max_entries = LoadLe<uint16_t>(block_ + Format::kMaxEntriesOffset);
    const int half_entries = LoadLe<uint16_t>(block_ + Format::kHalfEntriesOffset);
    // The node size follows from the key length; any other value would let entries run
    // past the end of a block.
    if (max_entries != MaxEntriesFor<Format>(key_length) || half_entries != max_entries / 2) {
      return kKeyLengthOutOfRange;
    }
    if (!IsNodeNumber(root()) && root() != 0) return kKeyFileCorrupt;
    shape->key_length = key_length;
    shape->max_entries = max_entries;
    shape->half_entries = half_entries;
    shape->underflow_limit = UnderflowLimit(max_entries);
    shape->entry_size = key_length + static_cast<int>(sizeof(typename Format::EntryHead));
    return kOk;
  }

  uint32_t root() const { return LoadLe<NodeNumber>(block_ + Format::kRootOffset); }
  void set_root(uint32_t node) {
    StoreLe<NodeNumber>(block_ + Format::kRootOffset, static_cast<NodeNumber>(node));
  }

  // Whether `node` may be a node of the tree: allocated and not the header.
  bool IsNodeNumber(uint32_t node) const {
    if (node == 0) return false;
    if constexpr (Format::kVersion == 3) {
      return node <= highest_node();
    } else {
      return node <= Format::kMaxNode && NodeInUse(node);
    }
  }

  uint32_t highest_node() const requires(Format::kVersion == 3) {
    return LoadLe<uint32_t>(block_ + offsetof(Header, highest_node));
  }
  void set_highest_node(uint32_t node) requires(Format::kVersion == 3) {
    StoreLe<uint32_t>(block_ + offsetof(Header, highest_node), node);
  }
  uint32_t free_head() const requires(Format::kVersion == 3) {
    return LoadLe<uint32_t>(block_ + offsetof(Header, free_head));
  }
  void set_free_head(uint32_t node) requires(Format::kVersion == 3) {
    StoreLe<uint32_t>(block_ + offsetof(Header, free_head), node);
  }

  // Version 2 allocation bitmap; `node` in 1..16320.
  bool NodeInUse(uint32_t node) const requires(Format::kVersion == 2) {
    return (BitmapByte(node) & BitOf(node)) != 0;
  }
  void SetNodeInUse(uint32_t node, bool in_use) requires(Format::kVersion == 2) {
    uint8_t& byte = block_[Format::kBitmapOffset + (node - 1) / 8];
    byte = static_cast<uint8_t>(in_use ? (byte | BitOf(node)) : (byte & ~BitOf(node)));
  }
  uint8_t BitmapByte(uint32_t node) const requires(Format::kVersion == 2) {
    return block_[Format::kBitmapOffset + (node - 1) / 8];
  }

 private:
  static uint8_t BitOf(uint32_t node) { return static_cast<uint8_t>(1u << ((node - 1) % 8)); }

  uint8_t* block_;
};

}  // namespace korvan::storage
