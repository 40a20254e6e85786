// What write-through costs: one 200-byte record write with and without O_DSYNC, and the
// kernel's record insert and update, which each make one or two such writes. And what
// sharing a key file between processes costs a key operation: the tree lock taken and
// given back, the change stamp read, changed blocks written back.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "storage/db_kernel.h"

namespace {

using namespace korvan::storage;

constexpr int kRecordSize = 200;

std::string BenchDirectory() {
  const char* root = std::getenv("KORVAN_BENCH_DIR");
  std::string pattern = std::string(root ? root : "/tmp") + "/korvan-bench-XXXXXX";
  return mkdtemp(pattern.data()) ? pattern : std::string("/tmp");
}

void PositionedWrite(benchmark::State& state, int extra_flags) {
  const std::string dir = BenchDirectory();
  const std::string path = dir + "/data0";
  const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | extra_flags, 0644);
  std::vector<char> bytes(kRecordSize, 'x');
  off_t position = 80;
  for (auto _ : state) {
    if (pwrite(fd, bytes.data(), bytes.size(), position) != kRecordSize) {
      state.SkipWithError("write failed");
      break;
    }
    position = position > 1 << 20 ? 80 : position + kRecordSize;
  }
  close(fd);
  std::filesystem::remove_all(dir);
}

void BM_Write200Synchronous(benchmark::State& state) {
  PositionedWrite(state, O_DSYNC);
}
void BM_Write200Buffered(benchmark::State& state) {
  PositionedWrite(state, 0);
}

std::vector<uint8_t> Record() {
  std::vector<uint8_t> record(kRecordSize, 7);
  TDbRecordHeader header{};
  header.RecLen = kRecordSize;
  header.RecTyp = 'A';
  std::memcpy(record.data(), &header, sizeof header);
  return record;
}

void BM_RecordInsertAppend(benchmark::State& state) {
  const std::string dir = BenchDirectory();
  int handle = 0;
  iDK_DbCreate('T', dir + "/db", 40, &handle);
  auto record = Record();
  int32_t position = 0;
  for (auto _ : state) iDK_RecordInsert(handle, record.data(), kRecordSize, true, &position);
  iDK_DbClose(handle);
  std::filesystem::remove_all(dir);
}

void BM_RecordUpdateInPlace(benchmark::State& state) {
  const std::string dir = BenchDirectory();
  int handle = 0;
  iDK_DbCreate('T', dir + "/db", 40, &handle);
  auto record = Record();
  int32_t position = 0;
  iDK_RecordInsert(handle, record.data(), kRecordSize, true, &position);
  for (auto _ : state) {
    iDK_RecordUpdate(handle, record.data(), kRecordSize, position, kRecordSize);
  }
  iDK_DbClose(handle);
  std::filesystem::remove_all(dir);
}

KeyEntry NumberedKey(uint32_t number) {
  KeyEntry entry;
  std::memset(entry.key, kKeyPad, sizeof entry.key);
  const std::string text = "K" + std::to_string(1000000 + number);
  std::memcpy(entry.key, text.data(), text.size());
  entry.position = number;
  return entry;
}

constexpr uint32_t kKeys = 10000;

void BM_KernelKeyInsert(benchmark::State& state) {
  const std::string dir = BenchDirectory();
  int handle = 0;
  iDK_DbCreate('T', dir + "/db", 40, &handle);
  uint32_t number = 0;
  for (auto _ : state) {
    // Scattered, as index keys of a table are.
    iDK_KeyInsert(handle, NumberedKey((number++ * 7919) % 10000000));
  }
  iDK_DbClose(handle);
  std::filesystem::remove_all(dir);
}

// With `held` the lookups run inside one iDK_TreeLock, which leaves the search alone.
void BM_KernelKeyLookup(benchmark::State& state, bool held) {
  const std::string dir = BenchDirectory();
  int handle = 0;
  iDK_DbCreate('T', dir + "/db", 40, &handle);
  for (uint32_t number = 0; number < kKeys; ++number) iDK_KeyInsert(handle, NumberedKey(number));
  iDK_DbFlush(handle);
  if (held) iDK_TreeLock(handle, false);
  uint32_t number = 0;
  for (auto _ : state) {
    KeyEntry entry = NumberedKey((number++ * 7919) % kKeys);
    uint32_t position = 0;
    benchmark::DoNotOptimize(iDK_KeyFirstMatch(handle, entry, &position));
  }
  if (held) iDK_TreeUnlock(handle);
  iDK_DbClose(handle);
  std::filesystem::remove_all(dir);
}

// The system calls the tree lock adds to every key operation, alone: lock, read the
// change stamp, unlock.
void BM_TreeLockRoundTrip(benchmark::State& state) {
  const std::string dir = BenchDirectory();
  const std::string path = dir + "/db1";
  const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0644);
  std::vector<char> block(2048, 0);
  if (pwrite(fd, block.data(), block.size(), 0) != 2048) state.SkipWithError("write failed");
  struct flock lock {};
  lock.l_whence = SEEK_SET;
  lock.l_start = off_t{1} << 40;
  lock.l_len = 1;
  uint64_t stamp = 0;
  for (auto _ : state) {
    lock.l_type = F_RDLCK;
    fcntl(fd, F_OFD_SETLKW, &lock);
    benchmark::DoNotOptimize(pread(fd, &stamp, sizeof stamp, 27));
    lock.l_type = F_UNLCK;
    fcntl(fd, F_OFD_SETLK, &lock);
  }
  close(fd);
  std::filesystem::remove_all(dir);
}

BENCHMARK(BM_Write200Synchronous)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_Write200Buffered)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_RecordInsertAppend)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_RecordUpdateInPlace)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_KernelKeyInsert)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK_CAPTURE(BM_KernelKeyLookup, locked_per_call, false)
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(BM_KernelKeyLookup, held, true)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_TreeLockRoundTrip)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace
