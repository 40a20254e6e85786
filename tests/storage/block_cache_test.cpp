#include "storage/block_cache.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "storage/block_io.h"
#include "storage/classic_cache.h"
#include "storage/random_access_cache.h"
#include "storage/result_codes.h"
#include "testing/temp_dir.h"

namespace korvan::storage {
namespace {

using Block = std::vector<uint8_t>;

Block PatternBlock(uint32_t block, uint8_t salt = 0) {
  Block data(kBlockSize);
  for (int i = 0; i < kBlockSize; ++i) {
    data[static_cast<size_t>(i)] = static_cast<uint8_t>(block * 31 + i * 7 + salt);
  }
  return data;
}

// An open file of `blocks` pattern blocks, closed when the object goes.
class BlockFile {
 public:
  BlockFile(const std::string& path, uint32_t blocks, int flags = O_RDWR) : path_(path) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    for (uint32_t b = 0; b < blocks; ++b) {
      const Block data = PatternBlock(b);
      out.write(reinterpret_cast<const char*>(data.data()), kBlockSize);
    }
    out.close();
    fd_ = ::open(path.c_str(), flags);
    if (fd_ < 0) throw std::runtime_error("cannot open " + path);
  }
  ~BlockFile() { ::close(fd_); }
  BlockFile(const BlockFile&) = delete;
  BlockFile& operator=(const BlockFile&) = delete;

  int fd() const { return fd_; }
  const std::string& path() const { return path_; }
  uintmax_t size() const { return std::filesystem::file_size(path_); }

  // The bytes of block n as they are in the file now, read past any cache; empty when
  // the file holds no whole block n.
  Block OnDisk(uint32_t block) const {
    Block data(kBlockSize);
    const ssize_t n = pread(fd_, data.data(), kBlockSize, static_cast<off_t>(block) * kBlockSize);
    if (n != kBlockSize) data.clear();
    return data;
  }
  // Changes the file behind the cache's back, to see which blocks the cache rereads.
  void Overwrite(uint32_t block, uint8_t salt) const {
    const Block data = PatternBlock(block, salt);
    ASSERT_EQ(pwrite(fd_, data.data(), kBlockSize, static_cast<off_t>(block) * kBlockSize),
              kBlockSize);
  }

 private:
  std::string path_;
  int fd_ = -1;
};

Block Copy(const uint8_t* data) {
  return Block(data, data + kBlockSize);
}

struct CacheKindCase {
  const char* name;
  std::function<std::unique_ptr<FileCache>(int fd, int blocks, bool write_by_release)> make;
};

std::vector<CacheKindCase> AllKinds(bool monitoring = false) {
  return {
      {"random-access",
       [monitoring](int fd, int blocks, bool wbr) {
         return MakeRandomAccessCache(fd, "test.Q10", blocks, wbr, monitoring);
       }},
      {"classic",
       [monitoring](int fd, int blocks, bool wbr) {
         return MakeClassicCache(fd, "test.Q10", blocks, wbr, monitoring);
       }},
  };
}

TEST(BlockIo, ReadsWholeBlocksAndReportsTheEndOfFile) {
  testing::TempDir dir;
  BlockFile file(dir.File("io.Q10"), 3);
  Block data(kBlockSize);
  EXPECT_EQ(ReadBlock(file.fd(), 2, data.data()), kOk);
  EXPECT_EQ(data, PatternBlock(2));
  EXPECT_EQ(ReadBlock(file.fd(), 3, data.data()), kBlockBeyondEnd);
  EXPECT_EQ(ReadBlock(file.fd(), 4000000, data.data()), kBlockBeyondEnd);

  // A block cut short by the end of the file is not a block of the file.
  ASSERT_EQ(ftruncate(file.fd(), 2 * kBlockSize + 100), 0);
  EXPECT_EQ(ReadBlock(file.fd(), 2, data.data()), kBlockBeyondEnd);

  const Block written = PatternBlock(9, 5);
  WriteBlock(file.fd(), 5, written.data());
  EXPECT_EQ(file.size(), 6u * kBlockSize);
  EXPECT_EQ(file.OnDisk(5), written);
  EXPECT_EQ(ReadBlock(file.fd(), 5, data.data()), kOk);
  EXPECT_EQ(data, written);
}

TEST(BlockIo, FailuresThrowWithOperationAndCode) {
  testing::TempDir dir;
  BlockFile read_only(dir.File("ro.Q10"), 1, O_RDONLY);
  const Block data = PatternBlock(0);
  try {
    WriteBlock(read_only.fd(), 0, data.data());
    FAIL() << "write to a read-only file succeeded";
  } catch (const FileIoError& e) {
    EXPECT_EQ(std::string(e.what()), "FileIoError Write " + std::to_string(EBADF));
    EXPECT_EQ(e.code(), EBADF);
  }
  BlockFile write_only(dir.File("wo.Q10"), 1, O_WRONLY);
  Block buffer(kBlockSize);
  try {
    ReadBlock(write_only.fd(), 0, buffer.data());
    FAIL() << "read from a write-only file succeeded";
  } catch (const FileIoError& e) {
    EXPECT_EQ(std::string(e.what()), "FileIoError Read " + std::to_string(EBADF));
  }
}

TEST(BlockCache, EdgeCasesOfBothKinds) {
  for (const CacheKindCase& kind : AllKinds()) {
    SCOPED_TRACE(kind.name);
    testing::TempDir dir;

    // Seven buffers, all pinned: the eighth block cannot be taken.
    {
      BlockFile file(dir.File("pins.Q10"), 10);
      auto cache = kind.make(file.fd(), 7, false);
      uint8_t* data = nullptr;
      for (uint32_t b = 0; b < 7; ++b) ASSERT_EQ(cache->Read(b, &data), kOk);
      EXPECT_EQ(cache->CleanOrFreeBuffers(), 0);
      EXPECT_EQ(cache->Read(7, &data), kNoBlocksFree);
      EXPECT_EQ(cache->NewBlock(10, &data), kNoBlocksFree);
      // A block already held can still be taken again.
      EXPECT_EQ(cache->Read(3, &data), kOk);
      EXPECT_EQ(Copy(data), PatternBlock(3));
      ASSERT_EQ(cache->Release(3), kOk);
      ASSERT_EQ(cache->Release(3), kOk);
      EXPECT_EQ(cache->CleanOrFreeBuffers(), 1);
      EXPECT_EQ(cache->Read(7, &data), kOk);
      EXPECT_EQ(Copy(data), PatternBlock(7));
    }

    // Write-by-release off: the change reaches the file only with WriteAll, and the
    // changed block is never given up for another one.
    {
      BlockFile file(dir.File("wbr-off.Q10"), 10);
      auto cache = kind.make(file.fd(), 7, false);
      uint8_t* data = nullptr;
      ASSERT_EQ(cache->Read(4, &data), kOk);
      data[0] = 0xAB;
      ASSERT_EQ(cache->Write(4), kOk);
      ASSERT_EQ(cache->Release(4), kOk);
      EXPECT_EQ(cache->DirtyBlocks(), 1);
      EXPECT_EQ(cache->CleanOrFreeBuffers(), 6);
      for (uint32_t b = 0; b < 10; ++b) {
        if (b == 4) continue;
        ASSERT_EQ(cache->Read(b, &data), kOk);
        ASSERT_EQ(cache->Release(b), kOk);
      }
      EXPECT_EQ(file.OnDisk(4), PatternBlock(4));
      ASSERT_EQ(cache->Read(4, &data), kOk);
      EXPECT_EQ(data[0], 0xAB);
      ASSERT_EQ(cache->Release(4), kOk);
      ASSERT_EQ(cache->WriteAll(), kOk);
      EXPECT_EQ(cache->DirtyBlocks(), 0);
      EXPECT_EQ(file.OnDisk(4)[0], 0xAB);
    }

    // Write-by-release on: the change is on disk when the last holder releases it.
    {
      BlockFile file(dir.File("wbr-on.Q10"), 10);
      auto cache = kind.make(file.fd(), 7, true);
      uint8_t* data = nullptr;
      ASSERT_EQ(cache->Read(4, &data), kOk);
      ASSERT_EQ(cache->Read(4, &data), kOk);
      data[1] = 0xCD;
      ASSERT_EQ(cache->Write(4), kOk);
      ASSERT_EQ(cache->Release(4), kOk);
      EXPECT_EQ(file.OnDisk(4), PatternBlock(4));
      ASSERT_EQ(cache->Release(4), kOk);
      EXPECT_EQ(file.OnDisk(4)[1], 0xCD);
      EXPECT_EQ(cache->DirtyBlocks(), 0);
    }

    // The block at the end of the file: Read refuses it, NewBlock creates it.
    {
      BlockFile file(dir.File("end.Q10"), 3);
      auto cache = kind.make(file.fd(), 7, false);
      uint8_t* data = nullptr;
      EXPECT_EQ(cache->Read(3, &data), kBlockBeyondEnd);
      EXPECT_EQ(cache->CleanOrFreeBuffers(), 7);
      ASSERT_EQ(cache->NewBlock(3, &data), kOk);
      EXPECT_EQ(Copy(data), Block(kBlockSize, 0));
      std::memcpy(data, PatternBlock(3, 9).data(), kBlockSize);
      ASSERT_EQ(cache->Write(3), kOk);
      ASSERT_EQ(cache->Release(3), kOk);
      EXPECT_EQ(file.size(), 3u * kBlockSize);
      ASSERT_EQ(cache->WriteAll(), kOk);
      EXPECT_EQ(file.size(), 4u * kBlockSize);
      EXPECT_EQ(file.OnDisk(3), PatternBlock(3, 9));
    }
  }
}

TEST(BlockCache, ProtocolViolationsThrow) {
  for (const CacheKindCase& kind : AllKinds()) {
    SCOPED_TRACE(kind.name);
    testing::TempDir dir;
    BlockFile file(dir.File("proto.Q10"), 4);
    auto cache = kind.make(file.fd(), 7, false);
    uint8_t* data = nullptr;
    try {
      cache->Write(2);
      FAIL() << "Write of an uncached block succeeded";
    } catch (const CacheUsageError& e) {
      EXPECT_STREQ(e.what(), "No write before read");
    }
    try {
      cache->Release(2);
      FAIL() << "Release of an uncached block succeeded";
    } catch (const CacheUsageError& e) {
      EXPECT_STREQ(e.what(), "No release before read");
    }
    ASSERT_EQ(cache->Read(2, &data), kOk);
    ASSERT_EQ(cache->Release(2), kOk);
    // Cached but no longer held: one release too many.
    EXPECT_THROW(cache->Release(2), CacheUsageError);
  }
}

TEST(BlockCache, RandomAccessCacheGivesUpTheLeastRecentlyStampedBlock) {
  testing::TempDir dir;
  for (int size : {4, 40}) {  // unsorted and sorted index lists
    SCOPED_TRACE(size);
    BlockFile file(dir.File("lru.Q10"), static_cast<uint32_t>(size) + 8);
    auto cache = MakeRandomAccessCache(file.fd(), file.path(), size, false, false);
    const auto last = static_cast<uint32_t>(size - 1);
    uint8_t* data = nullptr;
    for (uint32_t b = 0; b <= last; ++b) ASSERT_EQ(cache->Read(b, &data), kOk);
    // Release order decides the age: 1 is the oldest, then 0, then 2, 3, ...
    ASSERT_EQ(cache->Release(1), kOk);
    ASSERT_EQ(cache->Release(0), kOk);
    for (uint32_t b = 2; b <= last; ++b) ASSERT_EQ(cache->Release(b), kOk);
    // Block 2 becomes the youngest by being read again; block 0 changed (and so kept).
    ASSERT_EQ(cache->Read(2, &data), kOk);
    ASSERT_EQ(cache->Release(2), kOk);
    ASSERT_EQ(cache->Read(0, &data), kOk);
    ASSERT_EQ(cache->Write(0), kOk);
    ASSERT_EQ(cache->Release(0), kOk);
    for (uint32_t b = 0; b <= last; ++b) file.Overwrite(b, 77);

    // Two new blocks push out 1 (the oldest) and 3; 0 is changed and 2 is young.
    for (uint32_t b = last + 1; b <= last + 2; ++b) {
      ASSERT_EQ(cache->Read(b, &data), kOk);
      ASSERT_EQ(cache->Release(b), kOk);
    }
    const std::set<uint32_t> evicted = {1, 3};
    // Check the kept blocks first: reading an evicted one evicts again.
    for (uint32_t b : {0u, 2u}) {
      ASSERT_EQ(cache->Read(b, &data), kOk);
      EXPECT_EQ(Copy(data), PatternBlock(b)) << "block " << b << " was given up";
      ASSERT_EQ(cache->Release(b), kOk);
    }
    for (uint32_t b : evicted) {
      ASSERT_EQ(cache->Read(b, &data), kOk);
      EXPECT_EQ(Copy(data), PatternBlock(b, 77)) << "block " << b << " was kept";
      ASSERT_EQ(cache->Release(b), kOk);
    }
  }
}

TEST(BlockCache, WriteByReleaseLetsChangedBlocksGoAfterWritingThem) {
  testing::TempDir dir;
  BlockFile file(dir.File("wbr.Q10"), 12);
  auto cache = MakeRandomAccessCache(file.fd(), file.path(), 4, true, false);
  uint8_t* data = nullptr;
  for (uint32_t b = 0; b < 4; ++b) ASSERT_EQ(cache->Read(b, &data), kOk);
  for (uint32_t b = 0; b < 4; ++b) ASSERT_EQ(cache->Release(b), kOk);
  // A change to a block nobody holds stays in memory until the block is given up.
  ASSERT_EQ(cache->Read(0, &data), kOk);
  ASSERT_EQ(cache->Release(0), kOk);
  std::memset(data, 0x5A, kBlockSize);
  ASSERT_EQ(cache->Write(0), kOk);
  EXPECT_EQ(cache->DirtyBlocks(), 1);
  EXPECT_EQ(cache->CleanOrFreeBuffers(), 4);
  for (uint32_t b = 4; b < 8; ++b) {
    ASSERT_EQ(cache->Read(b, &data), kOk);
    ASSERT_EQ(cache->Release(b), kOk);
  }
  EXPECT_EQ(cache->DirtyBlocks(), 0);
  EXPECT_EQ(file.OnDisk(0), Block(kBlockSize, 0x5A));
}

// Random Read/NewBlock/Write/Release/WriteAll against a model of the file: what every
// block must read as, which blocks are pinned and which are changed since the last
// write-back.
class CacheModelRun {
 public:
  CacheModelRun(FileCache& cache, const BlockFile& file, uint32_t initial_blocks, int size,
                bool write_by_release, uint32_t seed)
      : cache_(cache),
        file_(file),
        size_(size),
        write_by_release_(write_by_release),
        random_(seed) {
    for (uint32_t b = 0; b < initial_blocks; ++b) blocks_.push_back(PatternBlock(b));
  }

  void Run(int steps) {
    for (int step = 0; step < steps && !::testing::Test::HasFatalFailure(); ++step) {
      SCOPED_TRACE("step " + std::to_string(step));
      const int choice = Pick(100);
      if (choice < 35) {
        ReadSome();
      } else if (choice < 45) {
        AppendBlock();
      } else if (choice < 62) {
        ChangePinned();
      } else if (choice < 67) {
        ReleaseThenChange();
      } else if (choice < 95) {
        ReleasePinned();
      } else {
        WriteAllAndCompare();
      }
      CheckCounts();
    }
    while (!pins_.empty()) ReleaseBlock(pins_.begin()->first);
    WriteAllAndCompare();
  }

 private:
  int Pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random_); }

  // Blocks a new block could be taken for: everything not pinned, less the changed
  // blocks that must stay while write-by-release is off.
  int ExpectedCleanOrFree() const {
    int held = static_cast<int>(pins_.size());
    if (!write_by_release_) {
      for (uint32_t b : dirty_) held += pins_.count(b) == 0 ? 1 : 0;
    }
    return size_ - held;
  }

  void CheckCounts() {
    ASSERT_EQ(cache_.CleanOrFreeBuffers(), ExpectedCleanOrFree());
    ASSERT_GE(cache_.DirtyBlocks(), static_cast<int>(dirty_.size()));
    ASSERT_LE(cache_.DirtyBlocks(), static_cast<int>(dirty_.size() + unheld_changes_.size()));
  }

  void ReadSome() {
    const auto block = static_cast<uint32_t>(Pick(static_cast<int>(blocks_.size()) + 2));
    uint8_t* data = nullptr;
    const bool cached_for_sure = pins_.count(block) > 0 || dirty_.count(block) > 0;
    const int free_before = cache_.CleanOrFreeBuffers();
    const int rc = cache_.Read(block, &data);
    if (block >= blocks_.size()) {
      ASSERT_EQ(rc, free_before == 0 ? kNoBlocksFree : kBlockBeyondEnd);
      return;
    }
    if (!cached_for_sure && free_before == 0) {
      // Nothing could be given up; only a block that is cached anyway is delivered.
      if (rc == kNoBlocksFree) return;
    }
    ASSERT_EQ(rc, kOk);
    ASSERT_EQ(Copy(data), blocks_[block]) << "block " << block;
    Pin(block, data);
  }

  void AppendBlock() {
    const auto block = static_cast<uint32_t>(blocks_.size());
    uint8_t* data = nullptr;
    const int free_before = cache_.CleanOrFreeBuffers();
    const int rc = cache_.NewBlock(block, &data);
    if (free_before == 0) {
      ASSERT_EQ(rc, kNoBlocksFree);
      return;
    }
    ASSERT_EQ(rc, kOk);
    Block contents = PatternBlock(block, static_cast<uint8_t>(Pick(256)));
    std::memcpy(data, contents.data(), kBlockSize);
    ASSERT_EQ(cache_.Write(block), kOk);
    blocks_.push_back(std::move(contents));
    dirty_.insert(block);
    Pin(block, data);
  }

  void ChangePinned() {
    if (pins_.empty()) return;
    auto it = pins_.begin();
    std::advance(it, Pick(static_cast<int>(pins_.size())));
    const uint32_t block = it->first;
    const auto offset = static_cast<size_t>(Pick(kBlockSize));
    const auto value = static_cast<uint8_t>(Pick(256));
    it->second.data[offset] = value;
    blocks_[block][offset] = value;
    ASSERT_EQ(cache_.Write(block), kOk);
    dirty_.insert(block);
  }

  // A change made right after the last release, while the block is still cached but
  // held by nobody. With write-by-release on, the cache writes it whenever it gives the
  // block up, so the model cannot tell when it stops being dirty.
  void ReleaseThenChange() {
    const auto it = std::find_if(pins_.begin(), pins_.end(),
                                 [](const auto& pin) { return pin.second.count == 1; });
    if (it == pins_.end()) return;
    const uint32_t block = it->first;
    uint8_t* data = it->second.data;
    ReleaseBlock(block);
    const auto offset = static_cast<size_t>(Pick(kBlockSize));
    const auto value = static_cast<uint8_t>(Pick(256));
    data[offset] = value;
    blocks_[block][offset] = value;
    ASSERT_EQ(cache_.Write(block), kOk);
    if (write_by_release_) {
      unheld_changes_.insert(block);
    } else {
      dirty_.insert(block);
    }
  }

  void ReleasePinned() {
    if (pins_.empty()) return;
    auto it = pins_.begin();
    std::advance(it, Pick(static_cast<int>(pins_.size())));
    ReleaseBlock(it->first);
  }

  void ReleaseBlock(uint32_t block) {
    ASSERT_EQ(cache_.Release(block), kOk);
    if (--pins_[block].count > 0) return;
    pins_.erase(block);
    if (write_by_release_ && dirty_.erase(block) + unheld_changes_.erase(block) > 0) {
      ASSERT_EQ(file_.OnDisk(block), blocks_[block]) << "released block " << block;
    }
  }

  void WriteAllAndCompare() {
    ASSERT_EQ(cache_.WriteAll(), kOk);
    ASSERT_EQ(cache_.DirtyBlocks(), 0);
    dirty_.clear();
    unheld_changes_.clear();
    ASSERT_EQ(file_.size(), blocks_.size() * kBlockSize);
    for (uint32_t b = 0; b < blocks_.size(); ++b) {
      ASSERT_EQ(file_.OnDisk(b), blocks_[b]) << "block " << b << " after WriteAll";
    }
  }

  void Pin(uint32_t block, uint8_t* data) {
    Holding& holding = pins_[block];
    if (holding.count > 0) {
      ASSERT_EQ(holding.data, data) << "two buffers for block " << block;
    }
    holding.data = data;
    ++holding.count;
  }

  struct Holding {
    uint8_t* data = nullptr;
    int count = 0;
  };

  FileCache& cache_;
  const BlockFile& file_;
  int size_;
  bool write_by_release_;
  std::mt19937 random_;
  std::vector<Block> blocks_;
  std::map<uint32_t, Holding> pins_;
  std::set<uint32_t> dirty_;
  std::set<uint32_t> unheld_changes_;  // changed while unpinned, write-by-release on
};

TEST(BlockCache, RandomOperationsMatchAModelOfTheFile) {
  for (const CacheKindCase& kind : AllKinds()) {
    for (int size : {1, 7, 19, 40}) {
      for (bool write_by_release : {false, true}) {
        SCOPED_TRACE(std::string(kind.name) + " size " + std::to_string(size) +
                     (write_by_release ? " write-by-release" : ""));
        testing::TempDir dir;
        constexpr uint32_t kInitialBlocks = 30;
        BlockFile file(dir.File("model.Q10"), kInitialBlocks);
        auto cache = kind.make(file.fd(), size, write_by_release);
        CacheModelRun run(*cache, file, kInitialBlocks, size, write_by_release,
                          static_cast<uint32_t>(size * 2 + (write_by_release ? 1 : 0)));
        run.Run(1500);
        if (HasFatalFailure()) return;
      }
    }
  }
}

// A cache registration that is closed again at the end of the test.
class Registration {
 public:
  Registration(int number, int fd, const std::string& name, int blocks) : number_(number) {
    BlockCache::Instance().Open(number, fd, name, blocks);
  }
  ~Registration() { BlockCache::Instance().Close(number_); }
  Registration(const Registration&) = delete;
  Registration& operator=(const Registration&) = delete;

 private:
  int number_;
};

// Leaves the process-wide cache configured as it was found.
class ConfigurationGuard {
 public:
  ConfigurationGuard() : saved_(BlockCache::Instance().settings()) {}
  ~ConfigurationGuard() { BlockCache::Instance().Configure(saved_); }
  ConfigurationGuard(const ConfigurationGuard&) = delete;
  ConfigurationGuard& operator=(const ConfigurationGuard&) = delete;

 private:
  CacheSettings saved_;
};

TEST(BlockCache, ProcessWideCacheDispatchesByRegistration) {
  ConfigurationGuard guard;
  testing::TempDir dir;
  BlockFile key_file(dir.File("a.Q10"), 4);
  BlockFile lock_file(dir.File("a.Q12"), 4);
  BlockCache& cache = BlockCache::Instance();
  for (CacheKind kind_setting : {CacheKind::kRandomAccess, CacheKind::kClassic}) {
    cache.Configure({kind_setting, false, false, ""});
    Registration key(3, key_file.fd(), key_file.path(), 31);
    Registration lock(43, lock_file.fd(), lock_file.path(), 300);
    EXPECT_EQ(cache.Find(3)->BlockCount(), 31);
    EXPECT_EQ(cache.Find(43)->BlockCount(), kind_setting == CacheKind::kClassic ? 255 : 300);
    EXPECT_EQ(cache.Find(4), nullptr);
    uint8_t* data = nullptr;
    ASSERT_EQ(cache.Read(43, 1, &data), kOk);
    data[0] = 0x11;
    ASSERT_EQ(cache.Write(43, 1), kOk);
    ASSERT_EQ(cache.Release(43, 1), kOk);
    ASSERT_EQ(cache.NewBlock(3, 4, &data), kOk);
    ASSERT_EQ(cache.Write(3, 4), kOk);
    ASSERT_EQ(cache.Release(3, 4), kOk);
    ASSERT_EQ(cache.FlashCache(), kOk);
    EXPECT_EQ(lock_file.OnDisk(1)[0], 0x11);
    EXPECT_EQ(key_file.size(), 5u * kBlockSize);
    ASSERT_EQ(ftruncate(key_file.fd(), 4 * kBlockSize), 0);

    EXPECT_THROW(cache.Read(4, 0, &data), CacheUsageError);
    EXPECT_THROW(cache.WriteAll(81), CacheUsageError);
    EXPECT_THROW(cache.Open(3, key_file.fd(), key_file.path(), 7), CacheUsageError);
    EXPECT_THROW(cache.Open(0, key_file.fd(), key_file.path(), 7), CacheUsageError);
    EXPECT_THROW(cache.Open(5, key_file.fd(), key_file.path(), 0), CacheUsageError);
  }
  EXPECT_EQ(cache.Close(3), kOk);  // closed already: nothing to do
}

TEST(BlockCache, MonitoringCountsCallsAndWritesTheStatisticsFile) {
  ConfigurationGuard guard;
  testing::TempDir dir;
  BlockFile file(dir.File("mon.Q10"), 20);
  BlockCache& cache = BlockCache::Instance();
  const std::string csv_base = dir.File("CacheStats");
  const std::vector<CacheMonitoring> before = cache.GetMonitorings();
  {
    cache.Configure({CacheKind::kRandomAccess, false, true, csv_base});
    Registration reg(7, file.fd(), file.path(), 9);
    ASSERT_NE(cache.Find(7)->Monitoring(), nullptr);
    uint8_t* data = nullptr;
    for (uint32_t round = 0; round < 2; ++round) {
      for (uint32_t b = 0; b < 12; ++b) {
        ASSERT_EQ(cache.Read(7, b, &data), kOk);
        ASSERT_EQ(cache.Write(7, b), kOk);
        ASSERT_EQ(cache.Release(7, b), kOk);
        ASSERT_EQ(cache.WriteAll(7), kOk);
      }
    }
    ASSERT_EQ(cache.FlashCache(), kOk);
  }
  {
    // Opened again, as the lock file is for every lock operation: still one line.
    Registration again(7, file.fd(), file.path(), 9);
  }
  const std::vector<CacheMonitoring> after = cache.GetMonitorings();
  const std::vector<std::string> names = {
      "ReadReal",   "WriteReal", "Read",     "Write",         "Release",          "WriteAll",
      "FlashCache", "FindBlock", "NewBlock", "IndexListSort", "UsedCountListSort"};
  ASSERT_EQ(after.size(), names.size());
  std::map<std::string, uint32_t> calls;
  for (size_t i = 0; i < after.size(); ++i) {
    EXPECT_EQ(after[i].function, names[i]);
    calls[after[i].function] = after[i].calls - before[i].calls;
    EXPECT_GE(after[i].total_seconds, before[i].total_seconds);
  }
  EXPECT_EQ(calls["Read"], 24u);
  EXPECT_EQ(calls["Write"], 24u);
  EXPECT_EQ(calls["Release"], 24u);
  EXPECT_EQ(calls["WriteAll"], 25u);  // one of them from FlashCache
  EXPECT_EQ(calls["WriteReal"], 24u);
  // 9 buffers, 12 blocks read round-robin twice: every read misses.
  EXPECT_EQ(calls["ReadReal"], 24u);
  EXPECT_EQ(calls["NewBlock"], 24u);
  EXPECT_EQ(calls["FlashCache"], 1u);
  EXPECT_EQ(calls["FindBlock"], 72u);

  cache.Configure({CacheKind::kRandomAccess, false, true, csv_base});
  cache.SaveMonitoring();
  std::ifstream in(csv_base + ".csv");
  ASSERT_TRUE(in) << "no statistics file";
  std::stringstream text;
  text << in.rdbuf();
  const std::string csv = text.str();
  EXPECT_EQ(csv.rfind("FileName;BlockCount;\n", 0), 0u) << csv;
  const size_t file_line = csv.find(file.path() + ";9;\n");
  EXPECT_NE(file_line, std::string::npos) << csv;
  EXPECT_EQ(csv.find(file.path() + ";", file_line + 1), std::string::npos) << csv;
  EXPECT_NE(csv.find("\nFunction;Count;T[s];dT[ms]\n"), std::string::npos) << csv;
  const std::regex with_mean(R"(\nRead;(\d+);\d+\.\d{3};\d+\.\d{6}\n)");
  std::smatch match;
  ASSERT_TRUE(std::regex_search(csv, match, with_mean)) << csv;
  EXPECT_EQ(static_cast<uint32_t>(std::stoul(match[1])), after[2].calls);
  for (const std::string& name : names) {
    EXPECT_TRUE(
        std::regex_search(csv, std::regex("\n" + name + R"(;\d+;\d+\.\d{3}(;\d+\.\d{6})?\n)")))
        << name;
  }
  uint64_t total_calls = 0;
  for (const CacheMonitoring& m : after) total_calls += m.calls;
  EXPECT_NE(csv.find("\nSumme:;" + std::to_string(total_calls) + ";"), std::string::npos) << csv;

  // Without monitoring the cache has no figures and adds nothing.
  cache.Configure({CacheKind::kRandomAccess, false, false, ""});
  Registration quiet(7, file.fd(), file.path(), 9);
  EXPECT_EQ(cache.Find(7)->Monitoring(), nullptr);
  uint8_t* data = nullptr;
  ASSERT_EQ(cache.Read(7, 1, &data), kOk);
  ASSERT_EQ(cache.Release(7, 1), kOk);
  EXPECT_EQ(cache.GetMonitorings()[2].calls, after[2].calls);
}

}  // namespace
}  // namespace korvan::storage
