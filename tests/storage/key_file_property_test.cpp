// Random inserts, deletes, searches and walks (KeyNext / KeyPrev from a cursor) against an
// ordered-set model, for both formats, several key lengths and cache sizes down to 7
// blocks; in some runs a second registration of the same file, standing for another
// process, changes the file between the walk's steps.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "storage/key_file.h"
#include "storage/key_file_test_support.h"
#include "storage/key_tree_check.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

using namespace testing;  // NOLINT

struct Config {
  int version;
  int key_length;
  int blocks;
  bool write_by_release;
  CacheKind kind = CacheKind::kRandomAccess;
  bool other_process = false;
};

class KeyFileModelRun {
 public:
  static constexpr int kOwn = ScratchKeyFile::kRegistration;
  static constexpr int kOther = ScratchKeyFile::kOther;

  KeyFileModelRun(const Config& config, uint32_t seed)
      : config_(config), rng_(seed), file_(config.blocks, config.write_by_release, config.kind) {
    if (config.other_process) file_.OpenOther(31);
    cursor_ = Pair{Padded("B", config.key_length), 0};
  }

  void Run(int operations) {
    ASSERT_EQ(KeyFileInit(config_.version, kOwn, config_.key_length), kOk);
    // Three levels before another process changes the leaves the walk is in.
    for (int i = 0; config_.other_process && i < 1500; ++i) {
      ASSERT_NO_FATAL_FAILURE(Insert(kOwn));
    }
    for (int op = 1; op <= operations; ++op) {
      // Grow for the first 70 %, then shrink, so merges and root collapses happen too.
      const bool growing = op < operations * 7 / 10;
      const uint32_t dice = rng_() % 100;
      if (dice < 30) {
        ASSERT_NO_FATAL_FAILURE(Step());
      } else if (dice < (growing ? 75u : 42u)) {
        ASSERT_NO_FATAL_FAILURE(Insert(kOwn));
      } else if (dice < 88) {
        ASSERT_NO_FATAL_FAILURE(Delete(kOwn));
      } else if (dice < 94 || !config_.other_process) {
        ASSERT_NO_FATAL_FAILURE(Search());
      } else {
        // Another process changes the file; this one sees its changes afterwards.
        file_.HandOver(kOwn, kOther);
        const int changes = rng_() % 10 == 0 ? 60 : 1 + static_cast<int>(rng_() % 3);
        for (int i = 0; i < changes; ++i) {
          ASSERT_NO_FATAL_FAILURE(rng_() % 2 ? Insert(kOther) : Delete(kOther));
        }
        file_.HandOver(kOther, kOwn);
      }
      if (op % 500 == 0) {
        ASSERT_NO_FATAL_FAILURE(Verify());
      }
      if (op % 2500 == 0 && !config_.other_process) {
        file_.Reopen(config_.blocks, config_.write_by_release, config_.kind);
      }
    }
    ASSERT_NO_FATAL_FAILURE(Verify());
    ASSERT_GT(steps_taken_, operations / 5);
    // Emptied, the tree leaves no node in use behind.
    while (!model_.empty() && refusals_ < operations / 20) ASSERT_NO_FATAL_FAILURE(Delete(kOwn));
    ASSERT_NO_FATAL_FAILURE(Verify());
    // A tiny cache may refuse an operation that needs more pins than it has, but only
    // rarely, and never leaves a trace of it.
    EXPECT_LT(refusals_, operations / 20);
  }

 private:
  // Pad bytes and "~" (free-space keys) inside keys, "~" also leading; a pad never leads.
  std::string RandomText() {
    static const char kAlphabet[] = {'A', 'B', 'C', '\x04', '\xE4'};
    std::string text(1, rng_() % 10 == 0 ? '~' : kAlphabet[rng_() % 3]);
    for (int i = static_cast<int>(rng_() % 5); i > 0; --i) text.push_back(kAlphabet[rng_() % 5]);
    return text;
  }
  Pair RandomPair() {
    return Pair{Padded(RandomText(), config_.key_length), RandomPosition(rng_, 16)};
  }
  Pair RandomModelPair() {
    return *std::next(model_.begin(), static_cast<long>(rng_() % model_.size()));
  }
  bool Refused(int rc) {
    if (rc != kNoBlocksFree || config_.blocks > 7) return false;
    ++refusals_;
    return true;
  }

  // A random pair, half the time with the cursor's key (beside it in the order: splits
  // where the walk goes next).
  void Insert(int registration) {
    Pair pair = RandomPair();
    if (rng_() % 2 == 0) pair.key = cursor_.key;
    const int rc = KeyInsert(registration, ToEntry(pair));
    if (Refused(rc)) return;
    ASSERT_EQ(rc, model_.insert(pair).second ? kOk : kKeyDuplicate);
  }

  // A random pair, one of the model, the cursor itself, the neighbour the next step
  // would return, or a run of 30 after the cursor (merges, freed nodes).
  void Delete(int registration) {
    std::vector<Pair> victims = {RandomPair()};
    const uint32_t dice = rng_() % 20;
    auto at = model_.lower_bound(cursor_);
    if (model_.empty() || dice < 2) {
    } else if (dice < 10) {
      victims = {RandomModelPair()};
    } else if (dice < 12) {
      victims = {cursor_};
    } else if (dice < 19) {
      if (forward_ && at != model_.end() && *at == cursor_) ++at;
      if (!forward_ && at != model_.begin()) --at;
      if (at != model_.end()) victims = {*at};
    } else {
      victims.clear();
      for (int i = 0; i < 30 && at != model_.end(); ++i, ++at) {
        if (!(*at == cursor_)) victims.push_back(*at);
      }
    }
    for (const Pair& pair : victims) {
      const int rc = KeyDelete(registration, ToEntry(pair));
      if (Refused(rc)) return;
      if (model_.empty()) {
        ASSERT_EQ(rc, kKeyIndexEmpty);
      } else {
        ASSERT_EQ(rc, model_.erase(pair) != 0 ? kOk : kKeyNotFoundOnDelete);
      }
    }
  }

  // One step of the walk from the cursor; now and then the walk turns or jumps.
  void Step() {
    if (rng_() % 8 == 0) forward_ = !forward_;
    if (rng_() % 20 == 0 && !model_.empty()) {
      cursor_ = rng_() % 10 == 0 ? RandomPair() : RandomModelPair();
    }
    KeyEntry entry = ToEntry(cursor_);
    const int rc = forward_ ? KeyNext(kOwn, entry) : KeyPrev(kOwn, entry);
    if (Refused(rc)) return;
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
      cursor_ = RandomModelPair();
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

  // The model's matches of a pattern's first `length` bytes.
  std::vector<Pair> Matches(const std::string& pattern, size_t length) const {
    std::vector<Pair> found;
    for (const Pair& pair : model_) {
      if (pair.key.compare(0, length, pattern, 0, length) == 0) found.push_back(pair);
    }
    return found;
  }
  static size_t SignificantLength(const std::string& pattern) {
    size_t length = pattern.size();
    while (length > 1 && pattern[length - 1] == '\x04') --length;
    return length == 1 && pattern[0] == '\x04' ? 0 : length;
  }

  void Search() {
    std::string text = rng_() % 8 == 0 ? std::string() : RandomText();
    if (!text.empty() && rng_() % 2 == 0) text.pop_back();
    const std::string pattern = Padded(text, config_.key_length);
    const std::vector<Pair> expected = Matches(pattern, SignificantLength(pattern));
    for (bool last : {false, true}) {
      KeyEntry entry = ToEntry(Pair{pattern, 0});
      const int rc = last ? KeyLastMatch(kOwn, entry) : KeyFirstMatch(kOwn, entry);
      if (model_.empty()) {
        ASSERT_EQ(rc, kKeyIndexEmpty);
      } else if (expected.empty()) {
        ASSERT_EQ(rc, kKeyNoMatch);
      } else {
        ASSERT_EQ(rc, kOk);
        ASSERT_EQ(FromEntry(entry, config_.key_length), last ? expected.back() : expected.front());
      }
    }
  }

  void Verify() {
    SCOPED_TRACE("entries " + std::to_string(model_.size()));
    const int kl = config_.key_length;
    const std::vector<std::string> problems = CheckKeyFile(kOwn);
    ASSERT_TRUE(problems.empty()) << problems.front();

    // The whole tree in order (KeyPrev is checked step by step against the model).
    std::vector<Pair> forward;
    KeyEntry cursor = MakeEntry("", 0, kl);
    int rc = KeyFirstMatch(kOwn, cursor);
    ASSERT_EQ(rc, model_.empty() ? kKeyIndexEmpty : kOk);
    for (; rc == kOk; rc = KeyNext(kOwn, cursor)) forward.push_back(FromEntry(cursor, kl));
    ASSERT_TRUE(std::equal(forward.begin(), forward.end(), model_.begin(), model_.end()));

    // Counts, lists and KeyMatchEx for a few prefixes.
    for (int i = 0; i < 6; ++i) {
      const std::string pattern = Padded(i == 0 ? std::string() : RandomText(), kl);
      const size_t length =
          rng_() % 3 == 0 ? SignificantLength(pattern) : rng_() % (pattern.size() / 4 + 1);
      const std::vector<Pair> expected = Matches(pattern, length);
      const auto bytes = reinterpret_cast<const uint8_t*>(pattern.data());
      const int n = static_cast<int>(length);
      for (bool tilde : {false, true}) {
        std::vector<uint32_t> positions;
        for (const Pair& pair : expected) {
          if (tilde || pair.key[0] != '~')
            positions.push_back(static_cast<uint32_t>(pair.position));
        }
        uint32_t count = 0;
        ASSERT_EQ(MatchesCount(kOwn, bytes, n, tilde, &count), kOk);
        ASSERT_EQ(count, positions.size());
        std::vector<uint32_t> listed;
        rc = MatchesList(kOwn, bytes, n, tilde, &listed);
        ASSERT_EQ(rc, config_.version == 2 ? kKeyFileUnknownVersion : kOk);
        if (config_.version == 3) {
          ASSERT_EQ(listed, positions);
        }
      }
      if (expected.empty()) continue;
      bool found = true;
      uint8_t key[kMaxKeyLength];
      ASSERT_EQ(KeyMatchEx(kOwn, bytes, n, 1, &found, key), kOk);  // no such position
      ASSERT_FALSE(found);
      const int32_t target = expected[rng_() % expected.size()].position;
      ASSERT_EQ(KeyMatchEx(kOwn, bytes, n, static_cast<uint32_t>(target), &found, key), kOk);
      ASSERT_TRUE(found);
      // The first matching key with that position.
      const auto first = std::find_if(expected.begin(), expected.end(),
                                      [&](const Pair& p) { return p.position == target; });
      ASSERT_EQ(std::string(reinterpret_cast<const char*>(key), first->key.size()), first->key);
    }
  }

  Config config_;
  std::mt19937 rng_;
  ScratchKeyFile file_;
  std::set<Pair> model_;
  Pair cursor_;
  bool forward_ = true;
  int steps_taken_ = 0;
  int refusals_ = 0;
};

TEST(KeyFileProperty, BothVersionsMatchTheModel) {
  for (const Config& config : std::vector<Config>{
           {3, 12, 1024, false},
           {3, 90, 7, true},
           {3, 40, 7, false, CacheKind::kClassic},
           {3, 90, 64, false, CacheKind::kRandomAccess, true},
           {3, 90, 7, false, CacheKind::kRandomAccess, true},
           {2, 35, 7, false},
           {2, 70, 1024, true},
           {2, 40, 31, true, CacheKind::kClassic},
           {2, 90, 64, false, CacheKind::kRandomAccess, true},
       }) {
    const uint32_t seed = 20240 + static_cast<uint32_t>(config.version * 1000 + config.key_length +
                                                        config.blocks + config.other_process);
    SCOPED_TRACE("version " + std::to_string(config.version) + ", key length " +
                 std::to_string(config.key_length) + ", " + std::to_string(config.blocks) +
                 " blocks, write-by-release " + std::to_string(config.write_by_release) +
                 (config.kind == CacheKind::kClassic ? ", classic" : "") +
                 (config.other_process ? ", another process" : "") + ", seed " +
                 std::to_string(seed));
    KeyFileModelRun(config, seed).Run(config.kind == CacheKind::kClassic ? 4000 : 6000);
    if (HasFatalFailure()) return;
  }
}

}  // namespace
}  // namespace korvan::storage
