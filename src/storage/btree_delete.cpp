#include "storage/btree.h"
#include "storage/key_node_allocator.h"
#include "storage/result_codes.h"

namespace korvan::storage {

template <class Format>
int BTree<Format>::Delete(const KeyEntry& entry) {
  if (const int rc = OpenHeader(); rc != kOk) return rc;
  if (header().root() == 0) return kKeyIndexEmpty;
  const int limit = shape_.underflow_limit;

  // Down to the pair and, when it sits in an inner node, on down to its in-order
  // predecessor (the last entry of the rightmost leaf of its left subtree).
  Path path;
  int depth = 0;
  int found_level = -1;
  int found_index = 0;
  for (uint32_t node = header().root(); node != 0;) {
    if (depth == kMaxTreeHeight) return kKeyFileCorrupt;
    int slot = 0;
    if (const int rc = PinNode(node, &slot); rc != kOk) return rc;
    const Node n = NodeAt(slot);
    int child = n.count();
    if (found_level < 0) {
      bool found = false;
      child = n.FindPair(entry.key, entry.position, &found);
      if (found) {
        found_level = depth;
        found_index = child + 1;
      }
    }
    path[depth++] = PathStep{slot, child};
    node = n.child(child);
  }
  if (found_level < 0) return kKeyNotFoundOnDelete;

  // Pin the neighbour of every node that may underflow: the leaf loses one entry, and
  // each merge takes one entry from the parent.
  std::array<int, kMaxTreeHeight> neighbours{};
  int remaining = NodeAt(path[depth - 1].slot).count() - 1;
  for (int level = depth - 1; level >= 1 && remaining < limit; --level) {
    if (const int rc = PinNeighbour(path[level - 1], &neighbours[level]); rc != kOk) return rc;
    remaining = NodeAt(path[level - 1].slot).count() - 1;
  }

  // Everything is pinned: from here on the tree changes.
  NodeAllocator<Format> allocator(pins_, 0);
  const int leaf_slot = path[depth - 1].slot;
  Node leaf = NodeAt(leaf_slot);
  if (found_level == depth - 1) {
    leaf.RemoveEntry(found_index);
  } else {
    const int found_slot = path[found_level].slot;
    NodeAt(found_slot).SetPositionAndKey(found_index, leaf, leaf.count());
    pins_.MarkChanged(found_slot, "PullUpEntry1", "DeleteEntry3");
    leaf.RemoveEntry(leaf.count());
  }
  pins_.MarkChanged(leaf_slot, "DeleteEntry1", "DeleteEntry2");

  for (int level = depth - 1; level >= 1; --level) {
    if (NodeAt(path[level].slot).count() >= limit) break;
    if (!RepairUnderflow(path[level - 1], path[level], neighbours[level], allocator)) break;
  }

  // A root left without entries gives way to its only child.
  Node root = NodeAt(path[0].slot);
  if (root.count() == 0) {
    header().set_root(root.child(0));
    pins_.MarkChanged(0, "KeyDelete1", "KeyDelete2");
    allocator.Free(path[0].slot);
  }
  return pins_.ReleaseAll();
}

template <class Format>
int BTree<Format>::PinNeighbour(const PathStep& parent_step, int* slot) {
  const Node parent = NodeAt(parent_step.slot);
  const int s = parent_step.child;
  const uint32_t neighbour = s < parent.count() ? parent.child(s + 1) : parent.child(s - 1);
  return PinNode(neighbour, slot);
}

template <class Format>
template <class Allocator>
bool BTree<Format>::RepairUnderflow(const PathStep& parent_step, const PathStep& child_step,
                                    int neighbour_slot, Allocator& allocator) {
  Node p = NodeAt(parent_step.slot);
  Node c = NodeAt(child_step.slot);
  Node b = NodeAt(neighbour_slot);
  const int s = parent_step.child;
  const int mb = b.count();
  const int mc = c.count();
  const int k = (mb - shape_.underflow_limit) / 2;

  if (s < p.count()) {
    // Right neighbour b, separated from c by parent entry s+1.
    const int separator = s + 1;
    c.SetPositionAndKey(mc + 1, p, separator);
    c.set_child(mc + 1, b.child(0));
    if (k > 0) {
      // Balance: the separator and k-1 entries of b come over, b's k-th goes up.
      c.CopyEntries(mc + 2, b, 1, k - 1);
      c.set_count(mc + k);
      p.SetPositionAndKey(separator, b, k);
      b.set_child(0, b.child(k));
      b.MoveEntries(1, k + 1, mb - k);
      b.ClearEntries(mb - k + 1, k);
      b.set_count(mb - k);
      pins_.MarkChanged(child_step.slot, "RechtsAusgleichen1", "RechtsAusgleichen2");
      pins_.MarkChanged(neighbour_slot, "RechtsAusgleichen3", "RechtsAusgleichen4");
      pins_.MarkChanged(parent_step.slot, "UnterLauf", "UnterLauf");
      return false;
    }
    // Merge: the separator and all of b join c; b is freed.
    c.CopyEntries(mc + 2, b, 1, mb);
    c.set_count(mc + 1 + mb);
    p.RemoveEntry(separator);
    pins_.MarkChanged(child_step.slot, "RechtsZusammenLegen1", "RechtsZusammenLegen2");
    pins_.MarkChanged(parent_step.slot, "RechtsZusammenLegen3", "UnterLauf");
    allocator.Free(neighbour_slot);
    return true;
  }

  // c is the parent's last child: left neighbour b, separated by parent entry s.
  const int separator = s;
  if (k > 0) {
    // Balance: the separator and k-1 entries of b come over, b's entry mb-k+1 goes up.
    c.MoveEntries(k + 1, 1, mc);
    c.SetPositionAndKey(k, p, separator);
    c.set_child(k, c.child(0));
    c.CopyEntries(1, b, mb - k + 2, k - 1);
    c.set_child(0, b.child(mb - k + 1));
    c.set_count(mc + k);
    p.SetPositionAndKey(separator, b, mb - k + 1);
    b.ClearEntries(mb - k + 1, k);
    b.set_count(mb - k);
    pins_.MarkChanged(child_step.slot, "LinksAusgleichen1", "LinksAusgleichen2");
    pins_.MarkChanged(neighbour_slot, "LinksAusgleichen3", "LinksAusgleichen4");
    pins_.MarkChanged(parent_step.slot, "UnterLauf", "UnterLauf");
    return false;
  }
  // Merge: the separator and all of c join b; c is freed.
  b.SetPositionAndKey(mb + 1, p, separator);
  b.set_child(mb + 1, c.child(0));
  b.CopyEntries(mb + 2, c, 1, mc);
  b.set_count(mb + 1 + mc);
  p.RemoveEntry(separator);
  pins_.MarkChanged(neighbour_slot, "LinksZusammenLegen1", "LinksZusammenLegen2");
  pins_.MarkChanged(parent_step.slot, "LinksZusammenLegen3", "UnterLauf");
  allocator.Free(child_step.slot);
  return true;
}

template int BTree<KeyFileV3>::Delete(const KeyEntry& entry);
template int BTree<KeyFileV2>::Delete(const KeyEntry& entry);

}  // namespace korvan::storage
