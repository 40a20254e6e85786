// In-order walks (KeyNext / KeyPrev) from random cursors, interleaved with inserts and
// deletes made through the walking registration and through a second registration of
// the same file standing for another process, compared with an ordered-set model after
// every step.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <ostream>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "storage/block_cache.h"
#include "storage/cache_monitoring.h"
#include "storage/key_file.h"
#include "storage/key_file_test_support.h"
#include "storage/key_tree_check.h"
#include "storage/result_codes.h"
#include "testing/temp_dir.h"

namespace korvan::storage {
namespace {

struct Pair {
  std::string key;  // all key_length bytes
  int32_t position = 0;
  // Key bytes unsigned (char_traits<char> compares like memcmp), then signed position.
  bool operator<(const Pair& other) const {
    if (const int c = key.compare(other.key); c != 0) return c < 0;
    return position < other.position;
  }
  bool operator==(const Pair& other) const = default;
};

void PrintTo(const Pair& pair, std::ostream* out) {
  std::string text = pair.key;
  while (!text.empty() && text.back() == '\x04') text.pop_back();
  *out << '"' << text << "\"/" << pair.position;
}

// One key file registered twice, each registration with its own cache, as two processes
// sharing the file would have it. A change made through one reaches the other only
// through the file: the writer writes its changed blocks back and the reader drops what
// it has cached (closes and opens its registration again, as the lock file does under
// its mutex before every operation).
class SharedKeyFile {
 public:
  static constexpr int kOwn = 38;
  static constexpr int kOther = 39;

  SharedKeyFile(int own_blocks, int other_blocks, bool monitoring = false)
      : path_(dir_.File("walk.Q30")) {
    fds_[0] = ::open(path_.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0644);
    fds_[1] = ::open(path_.c_str(), O_RDWR);
    if (fds_[0] < 0 || fds_[1] < 0) throw std::runtime_error("cannot open " + path_);
    blocks_[0] = own_blocks;
    blocks_[1] = other_blocks;
    CacheSettings settings;
    settings.monitoring = monitoring;
    BlockCache::Instance().Configure(settings);
    Register(kOwn);
    Register(kOther);
    BlockCache::Instance().Configure(CacheSettings{});
  }
  ~SharedKeyFile() {
    BlockCache::Instance().Close(kOwn);
    BlockCache::Instance().Close(kOther);
    ::close(fds_[0]);
    ::close(fds_[1]);
  }
  SharedKeyFile(const SharedKeyFile&) = delete;
  SharedKeyFile& operator=(const SharedKeyFile&) = delete;

  const std::string& path() const { return path_; }

  // Makes the changes made through `from` visible through `to`.
  void HandOver(int from, int to) {
    if (BlockCache::Instance().WriteAll(from) != kOk) throw std::runtime_error("WriteAll failed");
    BlockCache::Instance().Close(to);
    Register(to);
  }

 private:
  static int Index(int registration) { return registration == kOwn ? 0 : 1; }
  void Register(int registration) {
    const int i = Index(registration);
    if (BlockCache::Instance().Open(registration, fds_[i], path_, blocks_[i]) != kOk) {
      throw std::runtime_error("cannot register " + path_);
    }
  }

  korvan::testing::TempDir dir_;
  std::string path_;
  int fds_[2] = {-1, -1};
  int blocks_[2] = {0, 0};
};

struct WalkConfig {
  int version;
  int key_length;
  int own_blocks;
};

class WalkRun {
 public:
  WalkRun(const WalkConfig& config, uint32_t seed)
      : config_(config), rng_(seed), file_(config.own_blocks, 31) {}

  void Run(int operations) {
    ASSERT_EQ(KeyFileInit(config_.version, kOwn, config_.key_length), kOk);
    for (int i = 0; i < 1500; ++i) ASSERT_NO_FATAL_FAILURE(Insert(kOwn));
    ASSERT_NO_FATAL_FAILURE(Jump());
    for (int op = 0; op < operations; ++op) {
      const uint32_t dice = rng_() % 100;
      if (dice < 70) {
        if (rng_() % 8 == 0) forward_ = !forward_;
        ASSERT_NO_FATAL_FAILURE(Step());
      } else if (dice < 74) {
        ASSERT_NO_FATAL_FAILURE(Jump());
      } else if (dice < 86) {
        ASSERT_NO_FATAL_FAILURE(Change(kOwn));
      } else {
        // Another process changes the file; this one sees its changes afterwards.
        file_.HandOver(kOwn, kOther);
        const int changes = rng_() % 10 == 0 ? 60 : 1 + static_cast<int>(rng_() % 3);
        for (int i = 0; i < changes; ++i) ASSERT_NO_FATAL_FAILURE(Change(kOther));
        file_.HandOver(kOther, kOwn);
      }
    }
    const std::vector<std::string> problems = CheckKeyFile(kOwn);
    ASSERT_TRUE(problems.empty()) << problems.front();
    ASSERT_GT(steps_taken_, operations / 2);
    ASSERT_GE(model_.size(), 1000u);
  }

 private:
  static constexpr int kOwn = SharedKeyFile::kOwn;
  static constexpr int kOther = SharedKeyFile::kOther;

  Pair RandomPair() {
    // Few distinct keys, so that equal keys with different positions are common.
    std::string key(static_cast<size_t>(config_.key_length), '\x04');
    const int length = 1 + static_cast<int>(rng_() % 3);
    for (int i = 0; i < length; ++i) key[static_cast<size_t>(i)] = "ABCDEFGH"[rng_() % 8];
    const uint32_t r = rng_() % 64;
    const int32_t position =
        r == 0 ? static_cast<int32_t>(0x80000000u + rng_() % 4) : static_cast<int32_t>(r * 100);
    return Pair{key, position};
  }
  KeyEntry ToEntry(const Pair& pair) const {
    KeyEntry entry;
    entry.position = static_cast<uint32_t>(pair.position);
    std::memcpy(entry.key, pair.key.data(), pair.key.size());
    return entry;
  }
  Pair FromEntry(const KeyEntry& entry) const {
    return Pair{std::string(reinterpret_cast<const char*>(entry.key),
                            static_cast<size_t>(config_.key_length)),
                static_cast<int32_t>(entry.position)};
  }
  Pair RandomModelPair() {
    return *std::next(model_.begin(), static_cast<long>(rng_() % model_.size()));
  }

  // A random pair, or one with the cursor's key (beside it in the order).
  void Insert(int registration, bool beside_cursor = false) {
    Pair pair = RandomPair();
    if (beside_cursor) pair.key = cursor_.key;
    const int rc = KeyInsert(registration, ToEntry(pair));
    ASSERT_EQ(rc, model_.count(pair) != 0 ? kKeyDuplicate : kOk);
    model_.insert(pair);
  }

  void Delete(int registration, const Pair& pair) {
    const int rc = KeyDelete(registration, ToEntry(pair));
    if (model_.empty()) {
      ASSERT_EQ(rc, kKeyIndexEmpty);
    } else {
      ASSERT_EQ(rc, model_.erase(pair) != 0 ? kOk : kKeyNotFoundOnDelete);
    }
  }

  // Changes aimed at the cursor's leaf most of the time: pairs beside the cursor (splits),
  // its neighbours, itself, a run of entries after it (merges, freed nodes). The tree is
  // kept at 1200 entries or more, three levels.
  void Change(int registration) {
    const uint32_t dice = rng_() % 20;
    auto at = model_.lower_bound(cursor_);
    if (dice < 9 || model_.size() < 1200) {
      ASSERT_NO_FATAL_FAILURE(Insert(registration, dice % 2 == 0));
    } else if (dice < 11) {
      ASSERT_NO_FATAL_FAILURE(Delete(registration, RandomModelPair()));
    } else if (dice < 12) {
      ASSERT_NO_FATAL_FAILURE(Delete(registration, cursor_));
    } else if (dice < 18) {
      // The neighbour the next step would return.
      if (forward_ && at != model_.end() && *at == cursor_) ++at;
      if (!forward_) {
        if (at == model_.begin()) return;
        --at;
      }
      if (at != model_.end()) {
        ASSERT_NO_FATAL_FAILURE(Delete(registration, Pair(*at)));
      }
    } else {
      for (int i = 0; i < 30 && at != model_.end(); ++i) {
        const Pair victim = *at++;
        if (!(victim == cursor_)) {
          ASSERT_NO_FATAL_FAILURE(Delete(registration, victim));
        }
      }
    }
  }

  void Jump() {
    if (model_.empty()) return;
    cursor_ = rng_() % 10 == 0 ? RandomPair() : RandomModelPair();
  }

  void Step() {
    KeyEntry entry = ToEntry(cursor_);
    const int rc = forward_ ? KeyNext(kOwn, entry) : KeyPrev(kOwn, entry);
    ++steps_taken_;
    const std::string where = std::string(forward_ ? "next" : "prev") + " from " +
                              cursor_.key.substr(0, 3) + "/" + std::to_string(cursor_.position);
    if (model_.empty()) {
      ASSERT_EQ(rc, kKeyIndexEmpty) << where;
      return;
    }
    const auto at = model_.find(cursor_);
    if (at == model_.end()) {
      // The cursor's pair is gone: as if the end had been reached.
      ASSERT_EQ(rc, kKeyNoMatch) << where;
      ASSERT_EQ(FromEntry(entry), cursor_) << where;
      Jump();
      return;
    }
    if (forward_ ? std::next(at) == model_.end() : at == model_.begin()) {
      ASSERT_EQ(rc, kKeyNoMatch) << where;
      forward_ = !forward_;
      return;
    }
    ASSERT_EQ(rc, kOk) << where;
    const Pair expected = forward_ ? *std::next(at) : *std::prev(at);
    ASSERT_EQ(FromEntry(entry), expected) << where;
    cursor_ = expected;
  }

  WalkConfig config_;
  std::mt19937 rng_;
  SharedKeyFile file_;
  std::set<Pair> model_;
  Pair cursor_;
  bool forward_ = true;
  int steps_taken_ = 0;
};

void RunWalks(const WalkConfig& config, int operations) {
  const uint32_t seed = 7100 + static_cast<uint32_t>(config.version * 100 + config.own_blocks);
  SCOPED_TRACE("version " + std::to_string(config.version) + ", key length " +
               std::to_string(config.key_length) + ", " + std::to_string(config.own_blocks) +
               " blocks, seed " + std::to_string(seed));
  WalkRun(config, seed).Run(operations);
}

TEST(KeyFileWalk, StepsMatchTheModelWhileThisAndAnotherProcessChangeTheFile) {
  RunWalks({3, 90, 64}, 12000);
  RunWalks({3, 90, 7}, 6000);
  RunWalks({2, 90, 64}, 8000);
}

// The block in which this process last stepped may be something else entirely by the
// next step: here another process has rebuilt the file, and the leaf in which the hint
// points is now the root and holds the cursor's pair, followed by the separator of the
// next leaf. The in-order successor is the first entry of that leaf.
TEST(KeyFileWalk, AHintedLeafThatAnotherProcessMadeAnInnerNodeIsNotUsed) {
  SharedKeyFile file(64, 64);
  constexpr int kOwn = SharedKeyFile::kOwn;
  constexpr int kOther = SharedKeyFile::kOther;
  constexpr int kKeyLength = 90;  // 20 entries per node, 9 the underflow limit
  constexpr uint32_t kBlock = 3;
  auto entry = [](int number) {
    char text[8];
    std::snprintf(text, sizeof text, "K%04d", number);
    return testing::MakeEntry(text, 0, kKeyLength);
  };
  // The node at kBlock on disk: its count and leftmost child.
  auto node_on_disk = [&](int registration) {
    EXPECT_EQ(BlockCache::Instance().WriteAll(registration), kOk);
    std::vector<uint8_t> block(kBlockSize);
    const int fd = ::open(file.path().c_str(), O_RDONLY);
    EXPECT_EQ(::pread(fd, block.data(), block.size(), off_t{kBlock} * kBlockSize), kBlockSize);
    ::close(fd);
    return std::pair<int, uint32_t>(testing::Load16(block, 0), testing::Load32(block, 2));
  };

  // This process: a root split (leaves 1 and 2, root 3), a merge that frees 2 and 3, and
  // a split that takes node 3 back as the new right leaf.
  ASSERT_EQ(KeyFileInit(3, kOwn, kKeyLength), kOk);
  for (int i = 1; i <= 21; ++i) ASSERT_EQ(KeyInsert(kOwn, entry(i)), kOk);
  ASSERT_EQ(KeyDelete(kOwn, entry(21)), kOk);
  ASSERT_EQ(KeyDelete(kOwn, entry(20)), kOk);
  for (int i = 20; i <= 22; ++i) ASSERT_EQ(KeyInsert(kOwn, entry(i)), kOk);
  const auto [own_count, own_leftmost] = node_on_disk(kOwn);
  ASSERT_EQ(own_leftmost, 0u) << "node 3 is not a leaf";
  ASSERT_GE(own_count, 3);
  KeyEntry cursor = entry(12);  // first entry of node 3
  ASSERT_EQ(KeyNext(kOwn, cursor), kOk);
  EXPECT_EQ(testing::KeyText(cursor, kKeyLength), "K0013");

  // Another process starts the file afresh: leaves 1, 2 and 4 under root 3, which holds
  // K1011 and K1022.
  file.HandOver(kOwn, kOther);
  ASSERT_EQ(KeyFileInit(3, kOther, kKeyLength), kOk);
  for (int i = 1001; i <= 1032; ++i) ASSERT_EQ(KeyInsert(kOther, entry(i)), kOk);
  const auto [other_count, other_leftmost] = node_on_disk(kOther);
  ASSERT_NE(other_leftmost, 0u) << "node 3 is not an inner node";
  ASSERT_EQ(other_count, 2);
  file.HandOver(kOther, kOwn);

  cursor = entry(1011);
  ASSERT_EQ(KeyNext(kOwn, cursor), kOk);
  EXPECT_EQ(testing::KeyText(cursor, kKeyLength), "K1012");
  cursor = entry(1022);
  ASSERT_EQ(KeyPrev(kOwn, cursor), kOk);
  EXPECT_EQ(testing::KeyText(cursor, kKeyLength), "K1021");
  // The cursor of before is gone.
  cursor = entry(13);
  EXPECT_EQ(KeyNext(kOwn, cursor), kKeyNoMatch);
}

// A walk along a leaf reads the header and that leaf only, instead of every node on the
// way down from the root; the tree here is three levels deep.
TEST(KeyFileWalk, StepsAlongALeafReadTwoBlocks) {
  SharedKeyFile file(1024, 7, true);
  constexpr int kReg = SharedKeyFile::kOwn;
  constexpr int kKeyLength = 90;
  ASSERT_EQ(KeyFileInit(3, kReg, kKeyLength), kOk);
  constexpr int kEntries = 3000;
  for (int i = 0; i < kEntries; ++i) {
    const uint32_t number = static_cast<uint32_t>(i) * 7919u % kEntries;
    ASSERT_EQ(
        KeyInsert(kReg, testing::MakeEntry(std::to_string(number + 10000), number, kKeyLength)),
        kOk);
  }
  const CacheMonitor* monitor = BlockCache::Instance().Find(kReg)->Monitoring();
  ASSERT_NE(monitor, nullptr);

  KeyEntry cursor = testing::MakeEntry("", 0, kKeyLength);
  ASSERT_EQ(KeyFirstMatch(kReg, cursor), kOk);
  const uint32_t reads_before = monitor->figures(MonitoredFunction::kRead).Si;
  int steps = 0;
  int rc = kOk;
  for (; rc == kOk; ++steps) {
    ASSERT_EQ(testing::KeyText(cursor, kKeyLength), std::to_string(steps + 10000));
    rc = KeyNext(kReg, cursor);
  }
  EXPECT_EQ(rc, kKeyNoMatch);
  EXPECT_EQ(steps, kEntries);
  const uint32_t reads = monitor->figures(MonitoredFunction::kRead).Si - reads_before;
  // Two per step inside a leaf; a descent (header and three nodes) once per leaf of at
  // least nine entries.
  EXPECT_LT(reads, static_cast<uint32_t>(steps) * 5 / 2);

  // Backwards the same.
  ASSERT_EQ(KeyLastMatch(kReg, cursor), kOk);
  const uint32_t back_before = monitor->figures(MonitoredFunction::kRead).Si;
  for (steps = 0, rc = kOk; rc == kOk; ++steps) {
    ASSERT_EQ(testing::KeyText(cursor, kKeyLength), std::to_string(kEntries - 1 - steps + 10000));
    rc = KeyPrev(kReg, cursor);
  }
  EXPECT_EQ(steps, kEntries);
  EXPECT_LT(monitor->figures(MonitoredFunction::kRead).Si - back_before,
            static_cast<uint32_t>(steps) * 5 / 2);
}

}  // namespace
}  // namespace korvan::storage
