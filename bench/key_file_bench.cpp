// Key file throughput: inserts, exact and prefix searches, in-order walks and deletes on
// 10^5 and 10^6 keys of length 70, with caches of 31 and 1024 blocks.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "storage/block_cache.h"
#include "storage/key_file.h"
#include "storage/key_tree_check.h"
#include "storage/result_codes.h"

namespace {

using namespace korvan::storage;

constexpr int kKeyLength = 70;

KeyEntry EntryFor(uint32_t number) {
  KeyEntry entry;
  entry.position = number;
  std::memset(entry.key, kKeyPad, kKeyLength);
  std::snprintf(reinterpret_cast<char*>(entry.key), 16, "K%010u", number);
  entry.key[11] = kKeyPad;  // snprintf's terminator
  return entry;
}

std::vector<uint32_t> Shuffled(int count, uint32_t seed) {
  std::vector<uint32_t> numbers(static_cast<size_t>(count));
  std::iota(numbers.begin(), numbers.end(), 0u);
  std::shuffle(numbers.begin(), numbers.end(), std::mt19937(seed));
  return numbers;
}

// A key file in the temporary directory, registered with the cache.
class BenchKeyFile {
 public:
  BenchKeyFile(int registration, int blocks) : registration_(registration) {
    path_ = (std::filesystem::temp_directory_path() /
             ("korvan-keybench-" + std::to_string(getpid()) + "-" + std::to_string(registration)))
                .string();
    fd_ = ::open(path_.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0644);
    BlockCache::Instance().Open(registration_, fd_, path_, blocks);
    KeyFileInit(3, registration_, kKeyLength);
  }
  ~BenchKeyFile() {
    BlockCache::Instance().Close(registration_);
    ::close(fd_);
    std::filesystem::remove(path_);
  }
  int reg() const { return registration_; }

 private:
  int registration_;
  std::string path_;
  int fd_;
};

// Trees built once per (keys, blocks) and kept for the search benchmarks.
BenchKeyFile& WarmTree(int keys, int blocks) {
  static std::map<std::pair<int, int>, std::unique_ptr<BenchKeyFile>> trees;
  auto& tree = trees[{keys, blocks}];
  if (!tree) {
    tree = std::make_unique<BenchKeyFile>(10 + static_cast<int>(trees.size()), blocks);
    for (uint32_t number : Shuffled(keys, 1)) KeyInsert(tree->reg(), EntryFor(number));
    BlockCache::Instance().WriteAll(tree->reg());
  }
  return *tree;
}

void BM_RandomInsert(benchmark::State& state) {
  const int keys = static_cast<int>(state.range(0));
  const std::vector<uint32_t> order = Shuffled(keys, 2);
  for (auto _ : state) {
    state.PauseTiming();
    BenchKeyFile file(1, static_cast<int>(state.range(1)));
    state.ResumeTiming();
    for (uint32_t number : order) {
      if (KeyInsert(file.reg(), EntryFor(number)) != kOk) state.SkipWithError("insert failed");
    }
    BlockCache::Instance().WriteAll(file.reg());
  }
  state.SetItemsProcessed(state.iterations() * keys);
}

void BM_RandomDelete(benchmark::State& state) {
  const int keys = static_cast<int>(state.range(0));
  const std::vector<uint32_t> order = Shuffled(keys, 3);
  for (auto _ : state) {
    state.PauseTiming();
    BenchKeyFile file(2, static_cast<int>(state.range(1)));
    for (uint32_t number : Shuffled(keys, 4)) KeyInsert(file.reg(), EntryFor(number));
    BlockCache::Instance().WriteAll(file.reg());
    state.ResumeTiming();
    for (uint32_t number : order) {
      if (KeyDelete(file.reg(), EntryFor(number)) != kOk) state.SkipWithError("delete failed");
    }
    BlockCache::Instance().WriteAll(file.reg());
  }
  state.SetItemsProcessed(state.iterations() * keys);
}

void BM_ExactFirstMatch(benchmark::State& state) {
  const int keys = static_cast<int>(state.range(0));
  BenchKeyFile& tree = WarmTree(keys, static_cast<int>(state.range(1)));
  const std::vector<uint32_t> order = Shuffled(keys, 5);
  size_t i = 0;
  for (auto _ : state) {
    KeyEntry entry = EntryFor(order[i++ % order.size()]);
    if (KeyFirstMatch(tree.reg(), entry) != kOk) state.SkipWithError("not found");
  }
  state.SetItemsProcessed(state.iterations());
}

void BM_PrefixFirstMatch(benchmark::State& state) {
  const int keys = static_cast<int>(state.range(0));
  BenchKeyFile& tree = WarmTree(keys, static_cast<int>(state.range(1)));
  const std::vector<uint32_t> order = Shuffled(keys, 6);
  size_t i = 0;
  for (auto _ : state) {
    // "K" and the first eight digits: up to 100 keys share the prefix.
    KeyEntry entry = EntryFor(order[i++ % order.size()]);
    std::memset(entry.key + 9, kKeyPad, kKeyLength - 9);
    if (KeyFirstMatch(tree.reg(), entry) != kOk) state.SkipWithError("not found");
  }
  state.SetItemsProcessed(state.iterations());
}

void BM_InOrderWalk(benchmark::State& state) {
  const int keys = static_cast<int>(state.range(0));
  BenchKeyFile& tree = WarmTree(keys, static_cast<int>(state.range(1)));
  int64_t steps = 0;
  for (auto _ : state) {
    KeyEntry cursor;
    std::memset(cursor.key, kKeyPad, kKeyLength);
    if (KeyFirstMatch(tree.reg(), cursor) != kOk) state.SkipWithError("empty");
    int rc = kOk;
    for (int n = 0; n < 10000 && rc == kOk; ++n, ++steps) rc = KeyNext(tree.reg(), cursor);
  }
  state.SetItemsProcessed(steps);
}

void BM_MatchesCount(benchmark::State& state) {
  const int keys = static_cast<int>(state.range(0));
  BenchKeyFile& tree = WarmTree(keys, static_cast<int>(state.range(1)));
  KeyEntry pads;
  std::memset(pads.key, kKeyPad, kKeyLength);
  for (auto _ : state) {
    uint32_t count = 0;
    if (MatchesCount(tree.reg(), pads.key, 0, false, &count) != kOk ||
        count != static_cast<uint32_t>(keys)) {
      state.SkipWithError("wrong count");
    }
  }
  state.SetItemsProcessed(state.iterations() * keys);
}

// 10^6 random inserts and deletes with the default cache of 31 blocks and
// write-by-release off must run through without a single error, and leave a sound tree.
void BM_LongRunDefaultCache(benchmark::State& state) {
  const int operations = static_cast<int>(state.range(0));
  for (auto _ : state) {
    BenchKeyFile file(3, 31);
    std::mt19937 rng(7);
    std::vector<uint32_t> live;
    uint32_t next = 0;
    for (int op = 0; op < operations; ++op) {
      if (live.empty() || rng() % 100 < 55) {
        const uint32_t number = (next++ * 2654435761u) % 1000000007u;
        if (KeyInsert(file.reg(), EntryFor(number)) != kOk) state.SkipWithError("insert failed");
        live.push_back(number);
      } else {
        const size_t at = rng() % live.size();
        if (KeyDelete(file.reg(), EntryFor(live[at])) != kOk) state.SkipWithError("delete failed");
        live[at] = live.back();
        live.pop_back();
      }
    }
    state.PauseTiming();
    if (!CheckKeyFile(file.reg()).empty()) state.SkipWithError("tree not sound");
    state.counters["live_keys"] = static_cast<double>(live.size());
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * operations);
}

void Sizes(benchmark::internal::Benchmark* b) {
  for (int keys : {100000, 1000000}) {
    for (int blocks : {31, 1024}) b->Args({keys, blocks});
  }
  // A cache that holds the whole tree of 10^6 keys (about 58 000 nodes): the cost of the
  // tree code itself, without reading and writing the file.
  b->Args({1000000, 65536});
  b->ArgNames({"keys", "cache"});
}

BENCHMARK(BM_RandomInsert)->Apply(Sizes)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RandomDelete)->Apply(Sizes)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ExactFirstMatch)->Apply(Sizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PrefixFirstMatch)->Apply(Sizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_InOrderWalk)->Apply(Sizes)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MatchesCount)
    ->Args({100000, 1024})
    ->ArgNames({"keys", "cache"})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LongRunDefaultCache)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
