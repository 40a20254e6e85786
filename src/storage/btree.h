#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "storage/block_cache.h"
#include "storage/btree_walk_hint.h"
#include "storage/key_block_pins.h"
#include "storage/key_file.h"
#include "storage/key_file_header.h"
#include "storage/key_node.h"

namespace korvan::storage {

// The B-tree of one key file of one format, for the span of one operation: insertion
// by splitting and deletion by balancing or merging with a neighbour, in the recursive
// formulation of N. Wirth, written here as a walk down a pinned path and back up.
// Results are 0 or codes of result_codes.h; see key_file.h for the operations.
template <class Format>
class BTree {
 public:
  using Node = KeyNode<Format>;
  using Entry = EntryImage<Format>;

  // `pins` holds nothing yet, or only the header (block 0) in slot 0.
  explicit BTree(BlockPins& pins) : pins_(pins) {
    pins_.SetFatalNames(Format::kFatalCaption, Format::kStepPrefix);
  }

  int KeyLength(int* key_length);
  int Insert(const KeyEntry& entry);
  int Delete(const KeyEntry& entry);
  // `hint` is where the previous search or step of this registration ended; each of these
  // sets it to where it ends (see btree_walk_hint.h).
  int FirstMatch(KeyEntry& entry, WalkHint& hint);
  int LastMatch(KeyEntry& entry, WalkHint& hint);
  int Next(KeyEntry& cursor, WalkHint& hint);
  int Prev(KeyEntry& cursor, WalkHint& hint);
  int MatchesCount(const uint8_t* pattern, int significant_length, bool count_tilde,
                   uint32_t* count);
  int MatchesList(const uint8_t* pattern, int significant_length, bool count_tilde,
                  std::vector<uint32_t>* positions);
  int MatchEx(const uint8_t* pattern, int significant_length, uint32_t position, bool* found,
              uint8_t* key_out);

 private:
  // A node on the way down: its slot among the pins and the child taken from it.
  struct PathStep {
    int slot;
    int child;
  };
  using Path = std::array<PathStep, kMaxTreeHeight>;

  // Pins (unless pinned already) and checks the header; the header stays pinned for the
  // whole operation.
  int OpenHeader();
  KeyFileHeader<Format> header() const { return KeyFileHeader<Format>(pins_.data(0)); }
  // Pins node `node` after checking that it is an allocated node and that its count
  // lies in 1..M (4231 otherwise: such a node is never used).
  int PinNode(uint32_t node, int* slot);
  Node NodeAt(int slot) const { return Node(pins_.data(slot), shape_); }

  // Insert: splits full node `a` around the new entry at index h+1 into `a` and the
  // fresh node in `b_slot`; returns the entry that goes up.
  Entry Split(Node& a, int h, const Entry& item, int b_slot);

  // Delete: repairs the underflow of the child on path step `level` from its neighbour
  // in `neighbour_slot`; true when the two were merged (the parent lost an entry).
  template <class Allocator>
  bool RepairUnderflow(const PathStep& parent_step, const PathStep& child_step, int neighbour_slot,
                       Allocator& allocator);
  // The pinned neighbour that node `child_step` borrows from, chosen as in repair.
  int PinNeighbour(const PathStep& parent_step, int* slot);

  // First/last match: descends towards the leftmost or rightmost match.
  int FindMatch(KeyEntry& entry, bool last, WalkHint& hint);
  // Next/previous: the in-order neighbour of the cursor's pair.
  int Step(KeyEntry& cursor, bool forward, WalkHint& hint);
  // The step inside the hinted leaf, when the leaf qualifies; false to descend instead.
  bool StepInHintedLeaf(const KeyEntry& cursor, bool forward, WalkHint& hint, Entry* result);
  // The first (leftmost) or last entry of the subtree at `node`; *leaf receives the leaf
  // block that holds it and its index there.
  int DescendToEdge(uint32_t node, int depth, bool leftmost, Entry* result, WalkHint* leaf);

  // In-order walk over the entries matching the first `length` bytes of the pattern;
  // `visit(node, i)` returns false to stop.
  template <class Visit>
  int WalkMatches(uint32_t node, int depth, const uint8_t* pattern, int length, Visit& visit,
                  bool* stopped);
  int StartWalk(int significant_length, int* length);

  BlockPins& pins_;
  TreeShape shape_;
  uint64_t nodes_visited_ = 0;
  uint64_t visit_budget_ = 0;
};

}  // namespace korvan::storage
