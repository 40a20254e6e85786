#pragma once

#include <array>
#include <cstdint>

#include "storage/key_block_pins.h"
#include "storage/key_file_header.h"
#include "storage/key_file_layout.h"

namespace korvan::storage {

// Hands out and takes back the nodes of one tree. An operation reserves the nodes it
// may need before it changes anything (Reserve pins them, so every refusal comes while
// the file is untouched), then takes them one by one. Version 3 keeps a free list
// threaded through the freed nodes and a highest-node counter, version 2 a bitmap in
// the header.
template <class Format>
class NodeAllocator {
 public:
  static constexpr int kMaxReserved = kMaxTreeHeight + 1;

  NodeAllocator(BlockPins& pins, int header_slot)
      : pins_(pins), header_slot_(header_slot), header_(pins.data(header_slot)) {}

  // Pins `count` nodes for the coming change. 4226 when version 2 has no node left,
  // 4231 when the free list is broken.
  int Reserve(int count);
  // Records the reserved nodes as allocated in the header (call once changes begin).
  void Commit();
  // The slot of the next reserved node, zero-filled.
  int Take();
  // Whether a node handed out lies in the last part of what the file may hold: the
  // insert succeeds, but the caller reports 4225.
  bool nearly_full() const { return nearly_full_; }

  // Gives back the pinned node in `slot`; it must no longer be reachable.
  void Free(int slot);

 private:
  BlockPins& pins_;
  int header_slot_;
  KeyFileHeader<Format> header_;
  std::array<int, kMaxReserved> reserved_{};
  int reserved_count_ = 0;
  int taken_ = 0;
  bool nearly_full_ = false;
  uint32_t next_free_head_ = 0;  // version 3: the free list after the reservation
  uint32_t next_highest_ = 0;    // version 3: the highest node after the reservation
};

template <>
int NodeAllocator<KeyFileV3>::Reserve(int count);
template <>
void NodeAllocator<KeyFileV3>::Commit();
template <>
void NodeAllocator<KeyFileV3>::Free(int slot);
template <>
int NodeAllocator<KeyFileV2>::Reserve(int count);
template <>
void NodeAllocator<KeyFileV2>::Commit();
template <>
void NodeAllocator<KeyFileV2>::Free(int slot);

}  // namespace korvan::storage
