#include <cstring>

#include "storage/btree.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

template <class Entry>
void CopyOut(const Entry& found, int key_length, KeyEntry& out) {
  out.position = found.position();
  std::memcpy(out.key, found.key(), static_cast<size_t>(key_length));
  std::memset(out.key + key_length, 0, sizeof out.key - static_cast<size_t>(key_length));
}

}  // namespace

template <class Format>
int BTree<Format>::FirstMatch(KeyEntry& entry, WalkHint& hint) {
  return FindMatch(entry, false, hint);
}

template <class Format>
int BTree<Format>::LastMatch(KeyEntry& entry, WalkHint& hint) {
  return FindMatch(entry, true, hint);
}

template <class Format>
int BTree<Format>::FindMatch(KeyEntry& entry, bool last, WalkHint& hint) {
  // A walk usually starts at the match: a match found in a leaf is where its first step
  // looks.
  hint = WalkHint{};
  if (const int rc = OpenHeader(); rc != kOk) return rc;
  if (header().root() == 0) return kKeyIndexEmpty;
  const int length = SignificantLength(entry.key, shape_.key_length);

  // On a hit look further left (first) or right (last) for an earlier or later one; on
  // a miss go where the search stopped.
  Entry result;
  WalkHint found_in;
  bool hit = false;
  uint32_t node = header().root();
  for (int depth = 0; node != 0; ++depth) {
    if (depth == kMaxTreeHeight) return kKeyFileCorrupt;
    int slot = 0;
    if (const int rc = PinNode(node, &slot); rc != kOk) return rc;
    const Node n = NodeAt(slot);
    int index = n.CountBelowPrefix(entry.key, length, last);
    const int candidate = last ? index : index + 1;
    if (candidate >= 1 && candidate <= n.count() &&
        n.ComparePrefix(candidate, entry.key, length) == 0) {
      result = n.LoadEntry(candidate);
      found_in = n.child(0) == 0 ? WalkHint{node, candidate} : WalkHint{};
      hit = true;
      index = last ? candidate : candidate - 1;
    }
    node = n.child(index);
    pins_.ReleaseLast();
  }
  if (const int rc = pins_.ReleaseAll(); rc != kOk) return rc;
  if (!hit) return kKeyNoMatch;
  hint = found_in;
  CopyOut(result, shape_.key_length, entry);
  return kOk;
}

template <class Format>
int BTree<Format>::Next(KeyEntry& cursor, WalkHint& hint) {
  return Step(cursor, true, hint);
}

template <class Format>
int BTree<Format>::Prev(KeyEntry& cursor, WalkHint& hint) {
  return Step(cursor, false, hint);
}

template <class Format>
int BTree<Format>::Step(KeyEntry& cursor, bool forward, WalkHint& hint) {
  if (const int rc = OpenHeader(); rc != kOk) return rc;
  if (header().root() == 0) {
    hint = WalkHint{};
    return kKeyIndexEmpty;
  }
  Entry result;
  if (StepInHintedLeaf(cursor, forward, hint, &result)) {
    if (const int rc = pins_.ReleaseAll(); rc != kOk) return rc;
    CopyOut(result, shape_.key_length, cursor);
    return kOk;
  }
  hint = WalkHint{};

  // Locate the cursor's exact pair, remembering the nearest ancestor entry on the side
  // we step to: it follows (precedes) the pair when the pair's node has nothing more.
  bool have_result = false;
  uint32_t node = header().root();
  for (int depth = 0; node != 0; ++depth) {
    if (depth == kMaxTreeHeight) return kKeyFileCorrupt;
    int slot = 0;
    if (const int rc = PinNode(node, &slot); rc != kOk) return rc;
    const Node n = NodeAt(slot);
    bool found = false;
    const int h = n.FindPair(cursor.key, cursor.position, &found);
    if (found) {
      const int k = h + 1;
      const uint32_t subtree = forward ? n.child(k) : n.child(k - 1);
      const int sibling = forward ? k + 1 : k - 1;
      WalkHint landed;
      if (subtree != 0) {
        pins_.ReleaseLast();
        if (const int rc = DescendToEdge(subtree, depth + 1, forward, &result, &landed);
            rc != kOk) {
          return rc;
        }
        have_result = true;
      } else if (sibling >= 1 && sibling <= n.count()) {
        result = n.LoadEntry(sibling);
        landed = WalkHint{node, sibling};
        have_result = true;
      }
      if (const int rc = pins_.ReleaseAll(); rc != kOk) return rc;
      if (!have_result) return kKeyNoMatch;
      // An entry that came from an ancestor lies in an inner node: no hint, and the next
      // step descends into the subtree beside it.
      hint = landed;
      CopyOut(result, shape_.key_length, cursor);
      return kOk;
    }
    if (forward && h < n.count()) {
      result = n.LoadEntry(h + 1);
      have_result = true;
    } else if (!forward && h >= 1) {
      result = n.LoadEntry(h);
      have_result = true;
    }
    node = n.child(h);
    pins_.ReleaseLast();
  }
  // The cursor's pair is gone: as if the end had been reached.
  pins_.ReleaseAll();
  return kKeyNoMatch;
}

template <class Format>
bool BTree<Format>::StepInHintedLeaf(const KeyEntry& cursor, bool forward, WalkHint& hint,
                                     Entry* result) {
  if (hint.block == 0) return false;
  // PinNode refuses blocks that are not allocated nodes or whose count is out of range:
  // a node freed since (by this process or another), or one past the highest node.
  int slot = 0;
  if (PinNode(hint.block, &slot) != kOk) return false;
  const Node n = NodeAt(slot);
  int index = hint.index;
  if (index < 1 || index > n.count() || n.ComparePair(index, cursor.key, cursor.position) != 0) {
    // The pair may have moved inside the leaf (or the cursor to another entry of it).
    bool found = false;
    index = n.FindPair(cursor.key, cursor.position, &found) + 1;
    if (!found) index = 0;
  }
  const int neighbour = forward ? index + 1 : index - 1;
  const bool usable = n.child(0) == 0 && index != 0 && neighbour >= 1 && neighbour <= n.count();
  if (usable) {
    *result = n.LoadEntry(neighbour);
    hint.index = neighbour;
  }
  pins_.ReleaseLast();
  return usable;
}

template <class Format>
int BTree<Format>::DescendToEdge(uint32_t node, int depth, bool leftmost, Entry* result,
                                 WalkHint* leaf) {
  for (; node != 0; ++depth) {
    if (depth >= kMaxTreeHeight) return kKeyFileCorrupt;
    int slot = 0;
    if (const int rc = PinNode(node, &slot); rc != kOk) return rc;
    const Node n = NodeAt(slot);
    const int edge = leftmost ? 0 : n.count();
    const int index = leftmost ? 1 : n.count();
    *result = n.LoadEntry(index);
    *leaf = WalkHint{node, index};
    node = n.child(edge);
    pins_.ReleaseLast();
  }
  return kOk;
}

template int BTree<KeyFileV3>::FirstMatch(KeyEntry& entry, WalkHint& hint);
template int BTree<KeyFileV2>::FirstMatch(KeyEntry& entry, WalkHint& hint);
template int BTree<KeyFileV3>::LastMatch(KeyEntry& entry, WalkHint& hint);
template int BTree<KeyFileV2>::LastMatch(KeyEntry& entry, WalkHint& hint);
template int BTree<KeyFileV3>::Next(KeyEntry& cursor, WalkHint& hint);
template int BTree<KeyFileV2>::Next(KeyEntry& cursor, WalkHint& hint);
template int BTree<KeyFileV3>::Prev(KeyEntry& cursor, WalkHint& hint);
template int BTree<KeyFileV2>::Prev(KeyEntry& cursor, WalkHint& hint);

}  // namespace korvan::storage
