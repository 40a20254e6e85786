// Random inserts, deletes and searches against an ordered-set model, for both formats,
// several key lengths and cache sizes down to 7 blocks.
#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "storage/key_file.h"
#include "storage/key_file_test_support.h"
#include "storage/key_tree_check.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

using testing::ScratchKeyFile;

struct Pair {
  std::string key;  // all key_length bytes
  int32_t position;
  // Key bytes unsigned (char_traits<char> compares like memcmp), then signed position.
  bool operator<(const Pair& other) const {
    if (const int c = key.compare(other.key); c != 0) return c < 0;
    return position < other.position;
  }
};

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
      const bool growing = op < operations * 7 / 10;
      const uint32_t dice = rng_() % 100;
      if (dice < (growing ? 75u : 20u)) {
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
    // A tiny cache may refuse an operation that needs more pins than it has, but only
    // rarely, and never leaves a trace of it.
    EXPECT_LT(refusals_, operations / 20);
  }

 private:
  std::string RandomText() {
    static const char kAlphabet[] = {'A', 'B', 'C', '\x04', '\xE4', '~'};
    std::string text;
    const int length = 1 + static_cast<int>(rng_() % 5);
    for (int i = 0; i < length; ++i) {
      // "~" only leads (free-space keys); pad bytes do not lead.
      const uint32_t choices = i == 0 ? 3 + (rng_() % 10 == 0 ? 3 : 0) : 5;
      char c = kAlphabet[rng_() % choices];
      if (i == 0 && c == '\x04') c = 'A';
      if (i == 0 && rng_() % 10 == 0) c = '~';
      text.push_back(c);
    }
    return text;
  }
  std::string Padded(const std::string& text) const {
    std::string key = text.substr(0, static_cast<size_t>(config_.key_length));
    key.resize(static_cast<size_t>(config_.key_length), '\x04');
    return key;
  }
  int32_t RandomPosition() {
    const uint32_t r = rng_() % 16;
    return r == 0 ? static_cast<int32_t>(0x80000000u + rng_() % 4) : static_cast<int32_t>(r * 100);
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
  bool Refused(int rc) {
    if (rc != kNoBlocksFree || config_.blocks > 7) return false;
    ++refusals_;
    return true;
  }

  void Insert() {
    const Pair pair{Padded(RandomText()), RandomPosition()};
    const int rc = KeyInsert(file_.reg(), ToEntry(pair));
    if (Refused(rc)) return;
    if (model_.count(pair) != 0) {
      ASSERT_EQ(rc, kKeyDuplicate);
    } else {
      ASSERT_EQ(rc, kOk);
      model_.insert(pair);
    }
  }

  void Delete() {
    Pair pair{Padded(RandomText()), RandomPosition()};
    if (!model_.empty() && rng_() % 10 < 8) {
      pair = *std::next(model_.begin(), static_cast<long>(rng_() % model_.size()));
    }
    const int rc = KeyDelete(file_.reg(), ToEntry(pair));
    if (Refused(rc)) return;
    if (model_.empty()) {
      ASSERT_EQ(rc, kKeyIndexEmpty);
    } else if (model_.erase(pair) == 0) {
      ASSERT_EQ(rc, kKeyNotFoundOnDelete);
    } else {
      ASSERT_EQ(rc, kOk);
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
    if (length == 1 && pattern[0] == '\x04') length = 0;
    return length;
  }

  void Search() {
    std::string text = rng_() % 8 == 0 ? std::string() : RandomText();
    if (!text.empty() && rng_() % 2 == 0) text.pop_back();
    const std::string pattern = Padded(text);
    const std::vector<Pair> expected = Matches(pattern, SignificantLength(pattern));
    const Pair probe{pattern, 0};
    for (bool last : {false, true}) {
      KeyEntry entry = ToEntry(probe);
      const int rc = last ? KeyLastMatch(file_.reg(), entry) : KeyFirstMatch(file_.reg(), entry);
      if (model_.empty()) {
        ASSERT_EQ(rc, kKeyIndexEmpty);
      } else if (expected.empty()) {
        ASSERT_EQ(rc, kKeyNoMatch);
      } else {
        ASSERT_EQ(rc, kOk);
        const Pair& want = last ? expected.back() : expected.front();
        ASSERT_EQ(FromEntry(entry).key, want.key);
        ASSERT_EQ(static_cast<int32_t>(entry.position), want.position);
      }
    }
  }

  void Verify() {
    SCOPED_TRACE("entries " + std::to_string(model_.size()));
    const std::vector<std::string> problems = CheckKeyFile(file_.reg());
    ASSERT_TRUE(problems.empty()) << problems.front();

    // The whole tree forward and backward.
    std::vector<Pair> forward;
    KeyEntry cursor = ToEntry(Pair{Padded(""), 0});
    int rc = KeyFirstMatch(file_.reg(), cursor);
    ASSERT_EQ(rc, model_.empty() ? kKeyIndexEmpty : kOk);
    while (rc == kOk) {
      forward.push_back(FromEntry(cursor));
      rc = KeyNext(file_.reg(), cursor);
    }
    if (!model_.empty()) {
      ASSERT_EQ(rc, kKeyNoMatch);
    }
    ASSERT_TRUE(std::equal(forward.begin(), forward.end(), model_.begin(), model_.end(),
                           [](const Pair& a, const Pair& b) { return !(a < b) && !(b < a); }));
    if (!model_.empty()) {
      cursor = ToEntry(Pair{Padded(""), 0});
      ASSERT_EQ(KeyLastMatch(file_.reg(), cursor), kOk);
      auto it = model_.rbegin();
      for (int steps = 0; steps < 200 && it != model_.rend(); ++steps, ++it) {
        ASSERT_EQ(FromEntry(cursor).key, it->key);
        ASSERT_EQ(static_cast<int32_t>(cursor.position), it->position);
        rc = KeyPrev(file_.reg(), cursor);
        if (std::next(it) == model_.rend()) {
          ASSERT_EQ(rc, kKeyNoMatch);
        }
      }
    }

    // Counts, lists and KeyMatchEx for a few prefixes.
    for (int i = 0; i < 6; ++i) {
      const std::string pattern = Padded(i == 0 ? std::string() : RandomText());
      const size_t length =
          rng_() % 3 == 0 ? SignificantLength(pattern) : rng_() % (pattern.size() / 4 + 1);
      const std::vector<Pair> expected = Matches(pattern, length);
      const auto bytes = reinterpret_cast<const uint8_t*>(pattern.data());
      for (bool tilde : {false, true}) {
        std::vector<uint32_t> positions;
        for (const Pair& pair : expected) {
          if (tilde || pair.key[0] != '~')
            positions.push_back(static_cast<uint32_t>(pair.position));
        }
        uint32_t count = 0;
        ASSERT_EQ(MatchesCount(file_.reg(), bytes, static_cast<int>(length), tilde, &count), kOk);
        ASSERT_EQ(count, positions.size());
        std::vector<uint32_t> listed;
        rc = MatchesList(file_.reg(), bytes, static_cast<int>(length), tilde, &listed);
        if (config_.version == 2) {
          ASSERT_EQ(rc, kKeyFileUnknownVersion);
        } else {
          ASSERT_EQ(rc, kOk);
          ASSERT_EQ(listed, positions);
        }
      }
      if (!expected.empty()) {
        const Pair& target = expected[rng_() % expected.size()];
        bool found = false;
        uint8_t key[kMaxKeyLength];
        ASSERT_EQ(KeyMatchEx(file_.reg(), bytes, static_cast<int>(length),
                             static_cast<uint32_t>(target.position), &found, key),
                  kOk);
        ASSERT_TRUE(found);
        // The first matching key with that position.
        for (const Pair& pair : expected) {
          if (pair.position == target.position) {
            ASSERT_EQ(std::string(reinterpret_cast<const char*>(key), pair.key.size()), pair.key);
            break;
          }
        }
      }
    }
  }

  Config config_;
  std::mt19937 rng_;
  ScratchKeyFile file_;
  std::set<Pair> model_;
  int refusals_ = 0;
};

void RunModel(const Config& config, int operations) {
  const uint32_t seed = 20240 + static_cast<uint32_t>(config.version * 1000 + config.key_length);
  SCOPED_TRACE("version " + std::to_string(config.version) + ", key length " +
               std::to_string(config.key_length) + ", " + std::to_string(config.blocks) +
               " blocks, write-by-release " + std::to_string(config.write_by_release) +
               (config.kind == CacheKind::kClassic ? ", classic cache" : "") + ", seed " +
               std::to_string(seed));
  KeyFileModelRun(config, seed).Run(operations);
}

TEST(KeyFileProperty, Version3MatchesTheModel) {
  RunModel({3, 12, 1024, false}, 6000);
  RunModel({3, 35, 31, true}, 6000);
  RunModel({3, 70, 7, false}, 6000);
  RunModel({3, 90, 7, true}, 6000);
  RunModel({3, 40, 7, false, CacheKind::kClassic}, 4000);
}

TEST(KeyFileProperty, Version2MatchesTheModel) {
  RunModel({2, 12, 31, false}, 6000);
  RunModel({2, 35, 7, false}, 6000);
  RunModel({2, 70, 1024, true}, 6000);
  RunModel({2, 90, 7, true}, 6000);
  RunModel({2, 40, 31, true, CacheKind::kClassic}, 4000);
}

}  // namespace
}  // namespace korvan::storage
