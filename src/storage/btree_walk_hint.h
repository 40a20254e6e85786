#pragma once

#include <cstdint>

namespace korvan::storage {

// Where the last search or in-order step (KeyFirstMatch, KeyLastMatch, KeyNext, KeyPrev)
// on a key file ended: the leaf block that holds the entry it returned and that entry's
// index there. The next step from that entry first looks into this leaf instead of
// descending from the root.
//
// It is only a place to look, never trusted: the step pins the block through the cache
// like any other node and uses it only when it is an allocated node with a valid count,
// a leaf, and holds the cursor's exact pair with a neighbour on the side of the step. In
// a sound tree an allocated node with entries is part of the tree (freed nodes are
// zeroed), a pair lives in exactly one node, and the neighbour of a pair inside a leaf is
// its in-order neighbour; so the answer is the one a descent through the same cached
// blocks gives, however the tree changed since the hint was taken, in this process or in
// another one. Changes made through the registration drop the hint all the same, so that
// a walk after a change starts from the root.
struct WalkHint {
  uint32_t block = 0;  // 0: no hint (block 0 is the header, never a node)
  int index = 0;       // 1-based index of the returned entry in `block`
};

}  // namespace korvan::storage
