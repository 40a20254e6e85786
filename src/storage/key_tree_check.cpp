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
      Report("der Kopf ist nicht lesbar (" + std::to_string(rc) + ")");
      return;
    }
    if (const int rc = header().Validate(&shape_); rc != kOk) {
      Report("der Kopf ist unbrauchbar (" + std::to_string(rc) + ")");
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
  static std::string NodeName(uint32_t node) { return "Knoten " + std::to_string(node); }

  // In-order walk: node counts, leaf depth and the order of all pairs.
  void CheckSubtree(uint32_t node, int depth) {
    if (Full()) return;
    if (depth >= kMaxTreeHeight) {
      Report("der Baum ist tiefer als " + std::to_string(kMaxTreeHeight) + " Ebenen");
      return;
    }
    if (!header().IsNodeNumber(node)) {
      Report(NodeName(node) + " ist im Baum verknüpft, aber nicht belegt");
      return;
    }
    if (!tree_nodes_.insert(node).second) {
      Report(NodeName(node) + " ist mehrfach im Baum verknüpft");
      return;
    }
    int slot = 0;
    if (const int rc = pins_.Read(node, &slot); rc != kOk) {
      Report(NodeName(node) + " ist nicht lesbar (" + std::to_string(rc) + ")");
      return;
    }
    const Node n(pins_.data(slot), shape_);
    const int count = n.count();
    if (count > shape_.max_entries || count < 1) {
      Report(NodeName(node) + " enthält " + std::to_string(count) + " Einträge (erlaubt 1.." +
             std::to_string(shape_.max_entries) + ")");
      pins_.ReleaseLast();
      return;
    }
    const bool leaf = n.child(0) == 0;
    if (leaf) {
      if (leaf_depth_ < 0) leaf_depth_ = depth;
      if (leaf_depth_ != depth) {
        Report(NodeName(node) + " ist ein Blatt in Tiefe " + std::to_string(depth) +
               ", andere Blätter liegen in Tiefe " + std::to_string(leaf_depth_));
      }
    }
    for (int i = 0; i <= count && !Full(); ++i) {
      const uint32_t child = n.child(i);
      if ((child == 0) != leaf) {
        Report(NodeName(node) + " mischt leere und belegte Verweise auf Kinder");
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
      Report(NodeName(node) + ", Eintrag " + std::to_string(i) +
             " steht außerhalb der Schlüsselfolge");
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
        Report("die Freiliste führt zu " + NodeName(node) + " jenseits des höchsten Knotens " +
               std::to_string(highest));
        break;
      }
      if (!free_nodes.insert(node).second) {
        Report("die Freiliste läuft im Kreis bei " + NodeName(node));
        break;
      }
      if (tree_nodes_.count(node) != 0) Report(NodeName(node) + " ist frei, aber im Baum");
      int slot = 0;
      if (const int rc = pins_.Read(node, &slot); rc != kOk) {
        Report("freier " + NodeName(node) + " ist nicht lesbar (" + std::to_string(rc) + ")");
        break;
      }
      const uint8_t* data = pins_.data(slot);
      if (LoadLe<uint16_t>(data) != 0) Report("freier " + NodeName(node) + " enthält Einträge");
      node = LoadLe<uint32_t>(data + offsetof(KeyNodeHeadV3, leftmost_child));
      pins_.ReleaseLast();
    }
    // Every node up to the highest is either in the tree or free. Only counted when the
    // node numbers seen can account for all of them, so that a corrupt highest-node
    // counter cannot make this loop run for billions of steps.
    const uint64_t accounted = tree_nodes_.size() + free_nodes.size();
    if (accounted < highest) {
      Report(std::to_string(highest - accounted) + " von " + std::to_string(highest) +
             " Knoten sind weder im Baum noch frei");
    }
  }

  void CheckBitmap() {
    for (uint32_t node = 1; node <= Format::kMaxNode && !Full(); ++node) {
      const bool in_use = header().NodeInUse(node);
      const bool in_tree = tree_nodes_.count(node) != 0;
      if (in_use && !in_tree)
        Report(NodeName(node) + " ist als belegt markiert, aber nicht im Baum");
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
      problems.push_back("der Kopf ist nicht lesbar (" + std::to_string(rc) + ")");
      return problems;
    }
    version = pins.data(slot)[0];
  }
  if (version == KeyFileV3::kVersion) {
    TreeChecker<KeyFileV3>(*cache, problems).Run();
  } else if (version == KeyFileV2::kVersion) {
    TreeChecker<KeyFileV2>(*cache, problems).Run();
  } else {
    problems.push_back("unbekannte Version der Schlüsseldatei " + std::to_string(version));
  }
  return problems;
}

}  // namespace korvan::storage
