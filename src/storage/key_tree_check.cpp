#include "storage/key_tree_check.h"

#include <cstring>
#include <unordered_set>

#include "storage/block_cache.h"
#include "storage/cache_usage_error.h"
#include "storage/key_block_pins.h"
#include "storage/key_file_header.h"
#include "storage/key_node.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

constexpr size_t kMaxProblems = 50;

template <class Format>
class TreeChecker {
 public:
  using Node = KeyNode<Format>;
  using Entry = EntryImage<Format>;

  TreeChecker(FileCache& cache, std::vector<std::string>& problems)
      : pins_(cache, Format::kFatalCaption, Format::kStepPrefix), problems_(problems) {}

  void Run() {
    int slot = 0;
    if (const int rc = pins_.Read(0, &slot); rc != kOk) {
      Report("the header cannot be read (" + std::to_string(rc) + ")");
      return;
    }
    if (const int rc = header().Validate(&shape_); rc != kOk) {
      Report("the header is unusable (" + std::to_string(rc) + ")");
      return;
    }
    if (const uint32_t root = header().root(); root != 0) {
      CheckSubtree(root, 0);
    }
    CheckAllocation();
  }

 private:
  KeyFileHeader<Format> header() const { return KeyFileHeader<Format>(pins_.data(0)); }

  bool Full() const { return problems_.size() >= kMaxProblems; }
  void Report(std::string problem) {
    if (!Full()) problems_.push_back(std::move(problem));
  }
  static std::string NodeName(uint32_t node) { return "node " + std::to_string(node); }

  // In-order walk: node counts, leaf depth and the order of all pairs.
  void CheckSubtree(uint32_t node, int depth) {
    if (Full()) return;
    if (depth >= kMaxTreeHeight) {
      Report("the tree is deeper than " + std::to_string(kMaxTreeHeight) + " levels");
      return;
    }
    if (!header().IsNodeNumber(node)) {
      Report(NodeName(node) + " is linked into the tree but not allocated");
      return;
    }
    if (!tree_nodes_.insert(node).second) {
      Report(NodeName(node) + " is linked into the tree more than once");
      return;
    }
    int slot = 0;
    if (const int rc = pins_.Read(node, &slot); rc != kOk) {
      Report(NodeName(node) + " cannot be read (" + std::to_string(rc) + ")");
      return;
    }
    const Node n(pins_.data(slot), shape_);
    const int count = n.count();
    if (count > shape_.max_entries || count < 1) {
      Report(NodeName(node) + " holds " + std::to_string(count) + " entries (allowed 1.." +
             std::to_string(shape_.max_entries) + ")");
      pins_.ReleaseLast();
      return;
    }
    const bool leaf = n.child(0) == 0;
    if (leaf) {
      if (leaf_depth_ < 0) leaf_depth_ = depth;
      if (leaf_depth_ != depth) {
        Report(NodeName(node) + " is a leaf at depth " + std::to_string(depth) +
               ", other leaves are at depth " + std::to_string(leaf_depth_));
      }
    }
    for (int i = 0; i <= count && !Full(); ++i) {
      const uint32_t child = n.child(i);
      if ((child == 0) != leaf) {
        Report(NodeName(node) + " mixes empty and non-empty child links");
      } else if (child != 0) {
        CheckSubtree(child, depth + 1);
      }
      if (i < count) CheckOrder(n, i + 1, node);
    }
    pins_.ReleaseLast();
  }

  void CheckOrder(const Node& n, int i, uint32_t node) {
    if (have_previous_ && ComparePairs(previous_.key(), previous_.position(), n.key(i),
                                       n.position(i), shape_.key_length) >= 0) {
      Report(NodeName(node) + " entry " + std::to_string(i) + " is out of key order");
    }
    previous_ = n.LoadEntry(i);
    have_previous_ = true;
  }

  void CheckAllocation() {
    if constexpr (Format::kVersion == 3) {
      CheckFreeList();
    } else {
      CheckBitmap();
    }
  }

  void CheckFreeList() {
    const uint32_t highest = header().highest_node();
    std::unordered_set<uint32_t> free_nodes;
    for (uint32_t node = header().free_head(); node != 0 && !Full();) {
      if (node > highest) {
        Report("the free list leads to " + NodeName(node) + " beyond the highest node " +
               std::to_string(highest));
        break;
      }
      if (!free_nodes.insert(node).second) {
        Report("the free list runs in a circle at " + NodeName(node));
        break;
      }
      if (tree_nodes_.count(node) != 0) Report(NodeName(node) + " is free but in the tree");
      int slot = 0;
      if (const int rc = pins_.Read(node, &slot); rc != kOk) {
        Report("free " + NodeName(node) + " cannot be read (" + std::to_string(rc) + ")");
        break;
      }
      const uint8_t* data = pins_.data(slot);
      if (LoadLe<uint16_t>(data) != 0) Report("free " + NodeName(node) + " has entries");
      node = LoadLe<uint32_t>(data + offsetof(KeyNodeHeadV3, leftmost_child));
      pins_.ReleaseLast();
    }
    // Every node up to the highest is either in the tree or free. Only counted when the
    // node numbers seen can account for all of them, so that a corrupt highest-node
    // counter cannot make this loop run for billions of steps.
    const uint64_t accounted = tree_nodes_.size() + free_nodes.size();
    if (accounted < highest) {
      Report(std::to_string(highest - accounted) + " of " + std::to_string(highest) +
             " nodes are neither in the tree nor free");
    }
  }

  void CheckBitmap() {
    for (uint32_t node = 1; node <= Format::kMaxNode && !Full(); ++node) {
      const bool in_use = header().NodeInUse(node);
      const bool in_tree = tree_nodes_.count(node) != 0;
      if (in_use && !in_tree) Report(NodeName(node) + " is marked in use but not in the tree");
    }
    // Tree nodes whose bit is clear were reported during the walk.
  }

  BlockPins pins_;
  std::vector<std::string>& problems_;
  TreeShape shape_;
  std::unordered_set<uint32_t> tree_nodes_;
  int leaf_depth_ = -1;
  Entry previous_;
  bool have_previous_ = false;
};

}  // namespace

std::vector<std::string> CheckKeyFile(int registration) {
  FileCache* cache = BlockCache::Instance().Find(registration);
  if (cache == nullptr) throw CacheUsageError("Key file not registered with the cache");
  std::vector<std::string> problems;
  uint8_t version = 0;
  {
    BlockPins pins(*cache, KeyFileV3::kFatalCaption, KeyFileV3::kStepPrefix);
    int slot = 0;
    if (const int rc = pins.Read(0, &slot); rc != kOk) {
      problems.push_back("the header cannot be read (" + std::to_string(rc) + ")");
      return problems;
    }
    version = pins.data(slot)[0];
  }
  if (version == KeyFileV3::kVersion) {
    TreeChecker<KeyFileV3>(*cache, problems).Run();
  } else if (version == KeyFileV2::kVersion) {
    TreeChecker<KeyFileV2>(*cache, problems).Run();
  } else {
    problems.push_back("unknown key file version " + std::to_string(version));
  }
  return problems;
}

}  // namespace korvan::storage
