#include "storage/btree.h"
#include "storage/key_node_allocator.h"
#include "storage/result_codes.h"

namespace korvan::storage {

template <class Format>
int BTree<Format>::Insert(const KeyEntry& entry) {
  if (const int rc = OpenHeader(); rc != kOk) return rc;
  const int max_entries = shape_.max_entries;

  // Down to the leaf where the pair belongs, pinning the path.
  Path path;
  int depth = 0;
  for (uint32_t node = header().root(); node != 0;) {
    if (depth == kMaxTreeHeight) return kKeyFileCorrupt;
    int slot = 0;
    if (const int rc = PinNode(node, &slot); rc != kOk) return rc;
    bool found = false;
    const Node n = NodeAt(slot);
    const int h = n.FindPair(entry.key, entry.position, &found);
    if (found) return kKeyDuplicate;
    path[depth++] = PathStep{slot, h};
    node = n.child(h);
  }

  // Every full node from the leaf up splits; when all of them do (or the tree is
  // empty) a new root is needed as well.
  int splits = 0;
  while (splits < depth && NodeAt(path[depth - 1 - splits].slot).count() == max_entries) ++splits;
  NodeAllocator<Format> allocator(pins_, 0);
  if (const int rc = allocator.Reserve(splits + (splits == depth ? 1 : 0)); rc != kOk) return rc;

  // Everything is pinned: from here on the tree changes.
  allocator.Commit();
  Entry item;
  item.set_position(entry.position);
  std::memcpy(item.key(), entry.key, static_cast<size_t>(shape_.key_length));
  int level = depth - 1;
  for (; level >= 0; --level) {
    const PathStep step = path[level];
    Node a = NodeAt(step.slot);
    if (a.count() < max_entries) {
      a.InsertEntry(step.child + 1, item);
      pins_.MarkChanged(step.slot, "InsertEntry", "InsertEntry");
      break;
    }
    const int b_slot = allocator.Take();
    item = Split(a, step.child, item, b_slot);
    pins_.MarkChanged(step.slot, "NodeSplit1", "NodeSplit2");
    pins_.MarkChanged(b_slot, "NodeSplit1", "NodeSplit2");
  }
  if (level < 0) {
    // The root split (or the tree was empty): a new root above it.
    const int root_slot = allocator.Take();
    Node root = NodeAt(root_slot);
    root.set_child(0, header().root());
    root.InsertEntry(1, item);
    pins_.MarkChanged(root_slot, "KeyInsert3", "KeyInsert4");
    header().set_root(pins_.block(root_slot));
    pins_.MarkChanged(0, "KeyInsert1", "KeyInsert2");
  }
  const int rc = pins_.ReleaseAll();
  if (rc == kOk && allocator.nearly_full()) return kKeyFileNearlyFull;
  return rc;
}

template <class Format>
typename BTree<Format>::Entry BTree<Format>::Split(Node& a, int h, const Entry& item, int b_slot) {
  const int m = shape_.max_entries;
  const int half = shape_.half_entries;
  Node b = NodeAt(b_slot);
  Entry up;
  if (h > half) {
    // Entry H+1 goes up; the new node takes H+2..h, the new entry, then h+1..M.
    up = a.LoadEntry(half + 1);
    b.CopyEntries(1, a, half + 2, h - half - 1);
    b.StoreEntry(h - half, item);
    b.CopyEntries(h - half + 1, a, h + 1, m - h);
  } else if (h < half) {
    // Entry H goes up; the new entry joins the old node at h+1.
    b.CopyEntries(1, a, half + 1, m - half);
    up = a.LoadEntry(half);
    a.MoveEntries(h + 2, h + 1, half - 1 - h);
    a.StoreEntry(h + 1, item);
  } else {
    // The new entry itself goes up.
    b.CopyEntries(1, a, half + 1, m - half);
    up = item;
  }
  a.ClearEntries(half + 1, m - half);
  a.set_count(half);
  b.set_count(m - half);
  b.set_child(0, up.child());
  up.set_child(pins_.block(b_slot));
  return up;
}

template int BTree<KeyFileV3>::Insert(const KeyEntry& entry);
template int BTree<KeyFileV2>::Insert(const KeyEntry& entry);

}  // namespace korvan::storage
