// In-order walks (KeyNext / KeyPrev) from random cursors, interleaved with inserts and
// deletes made through the walking registration and through a second registration of
// the same file standing for another process, compared with an ordered-set model after
// every step.
#include <gtest/gtest.h>

#include <iterator>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "storage/cache_monitoring.h"
#include "storage/key_file_test_support.h"
#include "storage/key_tree_check.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

using namespace testing;  // NOLINT

struct WalkConfig {
  int version;
  int key_length;
  int own_blocks;
};

class WalkRun {
 public:
  WalkRun(const WalkConfig& config, uint32_t seed)
      : config_(config), rng_(seed), file_(config.own_blocks) {
    file_.OpenOther(31);
  }

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
  static constexpr int kOwn = ScratchKeyFile::kRegistration;
  static constexpr int kOther = ScratchKeyFile::kOther;

  Pair RandomPair() {
    std::string key(static_cast<size_t>(rng_() % 3 + 1), 'A');
    for (char& c : key) c = "ABCDEFGH"[rng_() % 8];
    return Pair{Padded(key, config_.key_length), RandomPosition(rng_, 64)};
  }
  Pair RandomModelPair() {
    return *std::next(model_.begin(), static_cast<long>(rng_() % model_.size()));
  }

  // A random pair, or one with the cursor's key (beside it in the order).
  void Insert(int registration, bool beside_cursor = false) {
    Pair pair = RandomPair();
    if (beside_cursor) pair.key = cursor_.key;
    const int rc = KeyInsert(registration, ToEntry(pair));
    ASSERT_EQ(rc, model_.insert(pair).second ? kOk : kKeyDuplicate);
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
    const std::string where =
        (forward_ ? "next from " : "prev from ") + ::testing::PrintToString(cursor_);
    if (model_.empty()) {
      ASSERT_EQ(rc, kKeyIndexEmpty) << where;
      return;
    }
    const auto at = model_.find(cursor_);
    if (at == model_.end()) {
      // The cursor's pair is gone: as if the end had been reached.
      ASSERT_EQ(rc, kKeyNoMatch) << where;
      ASSERT_EQ(FromEntry(entry, config_.key_length), cursor_) << where;
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
    ASSERT_EQ(FromEntry(entry, config_.key_length), expected) << where;
    cursor_ = expected;
  }

  WalkConfig config_;
  std::mt19937 rng_;
  ScratchKeyFile file_;
  std::set<Pair> model_;
  Pair cursor_;
  bool forward_ = true;
  int steps_taken_ = 0;
};

TEST(KeyFileWalk, StepsMatchTheModelWhileThisAndAnotherProcessChangeTheFile) {
  for (const auto& [config, operations] : std::vector<std::pair<WalkConfig, int>>{
           {{3, 90, 64}, 12000}, {{3, 90, 7}, 6000}, {{2, 90, 64}, 8000}}) {
    const uint32_t seed = 7100 + static_cast<uint32_t>(config.version * 100 + config.own_blocks);
    SCOPED_TRACE("version " + std::to_string(config.version) + ", " +
                 std::to_string(config.own_blocks) + " blocks, seed " + std::to_string(seed));
    WalkRun(config, seed).Run(operations);
    if (HasFatalFailure()) return;
  }
}

// The block in which this process last stepped may be something else entirely by the
// next step: here another process has rebuilt the file, and the leaf in which the hint
// points is now the root and holds the cursor's pair, followed by the separator of the
// next leaf. The in-order successor is the first entry of that leaf.
TEST(KeyFileWalk, AHintedLeafThatAnotherProcessMadeAnInnerNodeIsNotUsed) {
  ScratchKeyFile file(64);
  file.OpenOther(64);
  constexpr int kOwn = ScratchKeyFile::kRegistration;
  constexpr int kOther = ScratchKeyFile::kOther;
  constexpr int kKeyLength = 90;  // 20 entries per node, 9 the underflow limit
  auto entry = [](int number) { return MakeEntry("K" + std::to_string(number), 0, kKeyLength); };

  // This process: a root split (leaves 1 and 2, root 3), a merge that frees 2 and 3, and
  // a split that takes node 3 back as the new right leaf.
  ASSERT_EQ(KeyFileInit(3, kOwn, kKeyLength), kOk);
  for (int i = 101; i <= 121; ++i) ASSERT_EQ(KeyInsert(kOwn, entry(i)), kOk);
  ASSERT_EQ(KeyDelete(kOwn, entry(121)), kOk);
  ASSERT_EQ(KeyDelete(kOwn, entry(120)), kOk);
  for (int i = 120; i <= 122; ++i) ASSERT_EQ(KeyInsert(kOwn, entry(i)), kOk);
  file.Flush();
  std::vector<uint8_t> node = file.DiskBlock(3);
  ASSERT_EQ(Load32(node, 2), 0u) << "node 3 is not a leaf";
  ASSERT_GE(Load16(node, 0), 3);
  KeyEntry cursor = entry(112);  // first entry of node 3
  ASSERT_EQ(KeyNext(kOwn, cursor), kOk);
  EXPECT_EQ(KeyText(cursor, kKeyLength), "K113");

  // Another process starts the file afresh: leaves 1, 2 and 4 under root 3, which holds
  // K1011 and K1022.
  file.HandOver(kOwn, kOther);
  ASSERT_EQ(KeyFileInit(3, kOther, kKeyLength), kOk);
  for (int i = 1001; i <= 1032; ++i) ASSERT_EQ(KeyInsert(kOther, entry(i)), kOk);
  file.HandOver(kOther, kOwn);
  node = file.DiskBlock(3);
  ASSERT_NE(Load32(node, 2), 0u) << "node 3 is not an inner node";
  ASSERT_EQ(Load16(node, 0), 2);

  cursor = entry(1011);
  ASSERT_EQ(KeyNext(kOwn, cursor), kOk);
  EXPECT_EQ(KeyText(cursor, kKeyLength), "K1012");
  cursor = entry(1022);
  ASSERT_EQ(KeyPrev(kOwn, cursor), kOk);
  EXPECT_EQ(KeyText(cursor, kKeyLength), "K1021");
  cursor = entry(113);  // the cursor of before is gone
  EXPECT_EQ(KeyNext(kOwn, cursor), kKeyNoMatch);
}

// A walk along a leaf reads the header and that leaf only, instead of every node on the
// way down from the root; the tree here is three levels deep. A descent (header and
// three nodes) comes once per leaf of at least nine entries.
TEST(KeyFileWalk, StepsAlongALeafReadTwoBlocks) {
  ScratchKeyFile file(1024, false, CacheKind::kRandomAccess, true);
  constexpr int kReg = ScratchKeyFile::kRegistration;
  constexpr int kKeyLength = 90;
  constexpr int kEntries = 3000;
  ASSERT_EQ(KeyFileInit(3, kReg, kKeyLength), kOk);
  for (uint32_t i = 0; i < kEntries; ++i) {
    const uint32_t number = i * 7919u % kEntries;
    ASSERT_EQ(KeyInsert(kReg, MakeEntry(std::to_string(number + 10000), number, kKeyLength)), kOk);
  }
  const CacheMonitor* monitor = BlockCache::Instance().Find(kReg)->Monitoring();
  ASSERT_NE(monitor, nullptr);
  for (bool forward : {true, false}) {
    SCOPED_TRACE(forward ? "forward" : "backward");
    KeyEntry cursor = MakeEntry("", 0, kKeyLength);
    ASSERT_EQ(forward ? KeyFirstMatch(kReg, cursor) : KeyLastMatch(kReg, cursor), kOk);
    const uint32_t reads_before = monitor->figures(MonitoredFunction::kRead).Si;
    int steps = 0;
    for (int rc = kOk; rc == kOk; ++steps) {
      ASSERT_EQ(KeyText(cursor, kKeyLength),
                std::to_string((forward ? steps : kEntries - 1 - steps) + 10000));
      rc = forward ? KeyNext(kReg, cursor) : KeyPrev(kReg, cursor);
      if (rc != kOk) {
        ASSERT_EQ(rc, kKeyNoMatch);
      }
    }
    EXPECT_EQ(steps, kEntries);
    EXPECT_LT(monitor->figures(MonitoredFunction::kRead).Si - reads_before,
              static_cast<uint32_t>(steps) * 5 / 2);
  }
}

}  // namespace
}  // namespace korvan::storage
