#include <algorithm>
#include <cstring>

#include "storage/btree.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

constexpr uint8_t kFreeSpaceKeyMark = '~';

}  // namespace

template <class Format>
int BTree<Format>::StartWalk(int significant_length, int* length) {
  if (const int rc = OpenHeader(); rc != kOk) return rc;
  *length = std::clamp(significant_length, 0, shape_.key_length);
  // In a sound tree every node is visited at most once; more visits than there are
  // nodes means the pointers of a corrupt file lead in circles.
  if constexpr (Format::kVersion == 3) {
    visit_budget_ = std::max<uint64_t>(header().highest_node(), 1);
  } else {
    visit_budget_ = Format::kMaxNode;
  }
  nodes_visited_ = 0;
  return kOk;
}

template <class Format>
template <class Visit>
int BTree<Format>::WalkMatches(uint32_t node, int depth, const uint8_t* pattern, int length,
                               Visit& visit, bool* stopped) {
  if (depth == kMaxTreeHeight || ++nodes_visited_ > visit_budget_) return kKeyFileCorrupt;
  int slot = 0;
  if (const int rc = PinNode(node, &slot); rc != kOk) return rc;
  const Node n = NodeAt(slot);
  // Entries below the pattern and their left subtrees cannot match; the subtree left of
  // the first entry that is not below may.
  const int below = n.CountBelowPrefix(pattern, length, false);
  int rc = kOk;
  if (const uint32_t child = n.child(below); child != 0) {
    rc = WalkMatches(child, depth + 1, pattern, length, visit, stopped);
  }
  for (int i = below + 1; rc == kOk && !*stopped && i <= n.count(); ++i) {
    if (n.ComparePrefix(i, pattern, length) != 0) break;
    if (!visit(n, i)) {
      *stopped = true;
      break;
    }
    if (const uint32_t child = n.child(i); child != 0) {
      rc = WalkMatches(child, depth + 1, pattern, length, visit, stopped);
    }
  }
  pins_.ReleaseLast();
  return rc;
}

template <class Format>
int BTree<Format>::MatchesCount(const uint8_t* pattern, int significant_length, bool count_tilde,
                                uint32_t* count) {
  *count = 0;
  int length = 0;
  if (const int rc = StartWalk(significant_length, &length); rc != kOk) return rc;
  uint32_t matches = 0;
  auto visit = [&](const Node& n, int i) {
    if (count_tilde || n.key(i)[0] != kFreeSpaceKeyMark) ++matches;
    return true;
  };
  bool stopped = false;
  if (const uint32_t root = header().root(); root != 0) {
    if (const int rc = WalkMatches(root, 0, pattern, length, visit, &stopped); rc != kOk) return rc;
  }
  *count = matches;
  return pins_.ReleaseAll();
}

template <class Format>
int BTree<Format>::MatchesList(const uint8_t* pattern, int significant_length, bool count_tilde,
                               std::vector<uint32_t>* positions) {
  int length = 0;
  if (const int rc = StartWalk(significant_length, &length); rc != kOk) return rc;
  std::vector<uint32_t> found;
  auto visit = [&](const Node& n, int i) {
    if (count_tilde || n.key(i)[0] != kFreeSpaceKeyMark) found.push_back(n.position(i));
    return true;
  };
  bool stopped = false;
  if (const uint32_t root = header().root(); root != 0) {
    if (const int rc = WalkMatches(root, 0, pattern, length, visit, &stopped); rc != kOk) return rc;
  }
  positions->insert(positions->end(), found.begin(), found.end());
  return pins_.ReleaseAll();
}

template <class Format>
int BTree<Format>::MatchEx(const uint8_t* pattern, int significant_length, uint32_t position,
                           bool* found, uint8_t* key_out) {
  *found = false;
  int length = 0;
  if (const int rc = StartWalk(significant_length, &length); rc != kOk) return rc;
  auto visit = [&](const Node& n, int i) {
    if (n.position(i) != position) return true;
    *found = true;
    std::memcpy(key_out, n.key(i), static_cast<size_t>(shape_.key_length));
    std::memset(key_out + shape_.key_length, 0,
                static_cast<size_t>(kMaxKeyLength - shape_.key_length));
    return false;
  };
  bool stopped = false;
  if (const uint32_t root = header().root(); root != 0) {
    if (const int rc = WalkMatches(root, 0, pattern, length, visit, &stopped); rc != kOk) {
      *found = false;
      return rc;
    }
  }
  return pins_.ReleaseAll();
}

template int BTree<KeyFileV3>::MatchesCount(const uint8_t*, int, bool, uint32_t*);
template int BTree<KeyFileV2>::MatchesCount(const uint8_t*, int, bool, uint32_t*);
template int BTree<KeyFileV3>::MatchesList(const uint8_t*, int, bool, std::vector<uint32_t>*);
template int BTree<KeyFileV2>::MatchesList(const uint8_t*, int, bool, std::vector<uint32_t>*);
template int BTree<KeyFileV3>::MatchEx(const uint8_t*, int, uint32_t, bool*, uint8_t*);
template int BTree<KeyFileV2>::MatchEx(const uint8_t*, int, uint32_t, bool*, uint8_t*);

}  // namespace korvan::storage
