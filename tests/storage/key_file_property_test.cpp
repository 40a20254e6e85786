// Random inserts, deletes and searches against an ordered-set model, for both formats,
// several key lengths and cache sizes down to 7 blocks.
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
};

class KeyFileModelRun {
 public:
  KeyFileModelRun(const Config& config, uint32_t seed)
      : config_(config), rng_(seed), file_(config.blocks, config.write_by_release, config.kind) {}

  void Run(int operations) {
    ASSERT_EQ(KeyFileInit(config_.version, file_.reg(), config_.key_length), kOk);
    for (int op = 1; op <= operations; ++op) {
      // Grow for the first 70 %, then shrink, so merges and root collapses happen too.
      const uint32_t dice = rng_() % 100;
      if (dice < (op < operations * 7 / 10 ? 75u : 20u)) {
        ASSERT_NO_FATAL_FAILURE(Insert());
      } else if (dice < 92) {
        ASSERT_NO_FATAL_FAILURE(Delete());
      } else {
        ASSERT_NO_FATAL_FAILURE(Search());
      }
      if (op % 500 == 0) {
        ASSERT_NO_FATAL_FAILURE(Verify());
      }
      if (op % 2500 == 0) file_.Reopen(config_.blocks, config_.write_by_release, config_.kind);
    }
    ASSERT_NO_FATAL_FAILURE(Verify());
    // Emptied, the tree leaves no node in use behind.
    while (!model_.empty() && refusals_ < operations / 20) ASSERT_NO_FATAL_FAILURE(Delete());
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
  bool Refused(int rc) {
    if (rc != kNoBlocksFree || config_.blocks > 7) return false;
    ++refusals_;
    return true;
  }

  void Insert() {
    const Pair pair = RandomPair();
    const int rc = KeyInsert(file_.reg(), ToEntry(pair));
    if (Refused(rc)) return;
    ASSERT_EQ(rc, model_.insert(pair).second ? kOk : kKeyDuplicate);
  }

  void Delete() {
    Pair pair = RandomPair();
    if (!model_.empty() && rng_() % 10 < 8) {
      pair = *std::next(model_.begin(), static_cast<long>(rng_() % model_.size()));
    }
    const int rc = KeyDelete(file_.reg(), ToEntry(pair));
    if (Refused(rc)) return;
    if (model_.empty()) {
      ASSERT_EQ(rc, kKeyIndexEmpty);
    } else {
      ASSERT_EQ(rc, model_.erase(pair) != 0 ? kOk : kKeyNotFoundOnDelete);
    }
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
      const int rc = last ? KeyLastMatch(file_.reg(), entry) : KeyFirstMatch(file_.reg(), entry);
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
    const std::vector<std::string> problems = CheckKeyFile(file_.reg());
    ASSERT_TRUE(problems.empty()) << problems.front();

    // The whole tree forward, the last 200 backward.
    std::vector<Pair> forward;
    KeyEntry cursor = MakeEntry("", 0, kl);
    int rc = KeyFirstMatch(file_.reg(), cursor);
    ASSERT_EQ(rc, model_.empty() ? kKeyIndexEmpty : kOk);
    if (model_.empty()) {
      ASSERT_EQ(KeyNext(file_.reg(), cursor), kKeyIndexEmpty);
    }
    for (; rc == kOk; rc = KeyNext(file_.reg(), cursor)) forward.push_back(FromEntry(cursor, kl));
    if (!model_.empty()) {
      ASSERT_EQ(rc, kKeyNoMatch);
    }
    ASSERT_TRUE(std::equal(forward.begin(), forward.end(), model_.begin(), model_.end()));
    if (!model_.empty()) {
      cursor = MakeEntry("", 0, kl);
      ASSERT_EQ(KeyLastMatch(file_.reg(), cursor), kOk);
      auto it = model_.rbegin();
      for (int steps = 0; steps < 200 && it != model_.rend(); ++steps, ++it) {
        ASSERT_EQ(FromEntry(cursor, kl), *it);
        rc = KeyPrev(file_.reg(), cursor);
        if (std::next(it) == model_.rend()) {
          ASSERT_EQ(rc, kKeyNoMatch);
        }
      }
    }

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
        ASSERT_EQ(MatchesCount(file_.reg(), bytes, n, tilde, &count), kOk);
        ASSERT_EQ(count, positions.size());
        std::vector<uint32_t> listed;
        rc = MatchesList(file_.reg(), bytes, n, tilde, &listed);
        ASSERT_EQ(rc, config_.version == 2 ? kKeyFileUnknownVersion : kOk);
        if (config_.version == 3) {
          ASSERT_EQ(listed, positions);
        }
      }
      if (expected.empty()) continue;
      bool found = true;
      uint8_t key[kMaxKeyLength];
      ASSERT_EQ(KeyMatchEx(file_.reg(), bytes, n, 1, &found, key), kOk);  // no such position
      ASSERT_FALSE(found);
      const int32_t target = expected[rng_() % expected.size()].position;
      ASSERT_EQ(KeyMatchEx(file_.reg(), bytes, n, static_cast<uint32_t>(target), &found, key), kOk);
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
  int refusals_ = 0;
};

TEST(KeyFileProperty, BothVersionsMatchTheModel) {
  for (const Config& config : std::vector<Config>{
           {3, 12, 1024, false},
           {3, 35, 31, true},
           {3, 70, 7, false},
           {3, 90, 7, true},
           {3, 40, 7, false, CacheKind::kClassic},
           {2, 12, 31, false},
           {2, 35, 7, false},
           {2, 70, 1024, true},
           {2, 90, 7, true},
           {2, 40, 31, true, CacheKind::kClassic},
       }) {
    const uint32_t seed = 20240 + static_cast<uint32_t>(config.version * 1000 + config.key_length);
    SCOPED_TRACE("version " + std::to_string(config.version) + ", key length " +
                 std::to_string(config.key_length) + ", " + std::to_string(config.blocks) +
                 " blocks, write-by-release " + std::to_string(config.write_by_release) +
                 (config.kind == CacheKind::kClassic ? ", classic" : "") + ", seed " +
                 std::to_string(seed));
    KeyFileModelRun(config, seed).Run(config.kind == CacheKind::kClassic ? 4000 : 6000);
    if (HasFatalFailure()) return;
  }
}

}  // namespace
}  // namespace korvan::storage
