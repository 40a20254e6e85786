#include "storage/block_cache.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

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
  for (size_t i = 0; i < data.size(); ++i)
    data[i] = static_cast<uint8_t>(block * 31 + i * 7 + salt);
  return data;
}

Block Copy(const uint8_t* data) {
  return Block(data, data + kBlockSize);
}

// An open file of `blocks` pattern blocks in a temporary directory.
class BlockFile {
 public:
  explicit BlockFile(uint32_t blocks) : path_(dir_.File("test.Q10")) {
    std::ofstream out(path_, std::ios::binary);
    for (uint32_t b = 0; b < blocks; ++b) {
      out.write(reinterpret_cast<const char*>(PatternBlock(b).data()), kBlockSize);
    }
    out.close();
    fd_ = ::open(path_.c_str(), O_RDWR);
    if (fd_ < 0) throw std::runtime_error("cannot open " + path_);
  }
  ~BlockFile() { ::close(fd_); }
  BlockFile(const BlockFile&) = delete;
  BlockFile& operator=(const BlockFile&) = delete;

  int fd() const { return fd_; }
  const std::string& path() const { return path_; }
  uintmax_t size() const { return std::filesystem::file_size(path_); }

  // Block n as it is in the file now, past any cache; empty when there is no whole block n.
  Block OnDisk(uint32_t block) const {
    Block data(kBlockSize);
    if (pread(fd_, data.data(), kBlockSize, off_t{block} * kBlockSize) != kBlockSize) data.clear();
    return data;
  }
  // Changes the file behind the cache's back, to see which blocks the cache rereads.
  void Overwrite(uint32_t block, uint8_t salt) const {
    ASSERT_EQ(pwrite(fd_, PatternBlock(block, salt).data(), kBlockSize, off_t{block} * kBlockSize),
              kBlockSize);
  }

 private:
  korvan::testing::TempDir dir_;
  std::string path_;
  int fd_ = -1;
};

using MakeCache = std::function<std::unique_ptr<FileCache>(int fd, int blocks, bool wbr)>;
const std::vector<std::pair<const char*, MakeCache>> kKinds = {
    {"random-access",
     [](int fd, int blocks, bool wbr) {
       return MakeRandomAccessCache(fd, "test.Q10", blocks, wbr, false);
     }},
    {"classic", [](int fd, int blocks,
                   bool wbr) { return MakeClassicCache(fd, "test.Q10", blocks, wbr, false); }},
};

TEST(BlockIo, APartialBlockIsBeyondTheEnd) {
  BlockFile file(3);
  Block data(kBlockSize);
  ASSERT_EQ(ftruncate(file.fd(), 2 * kBlockSize + 100), 0);
  EXPECT_EQ(ReadBlock(file.fd(), 1, data.data()), kOk);
  EXPECT_EQ(data, PatternBlock(1));
  EXPECT_EQ(ReadBlock(file.fd(), 2, data.data()), kBlockBeyondEnd);
  EXPECT_EQ(ReadBlock(file.fd(), 4000000, data.data()), kBlockBeyondEnd);
}

TEST(BlockCache, ProtocolViolationsThrow) {
  for (const auto& [name, make] : kKinds) {
    SCOPED_TRACE(name);
    BlockFile file(4);
    auto cache = make(file.fd(), 7, false);
    EXPECT_THROW(cache->Write(2), CacheUsageError);
    EXPECT_THROW(cache->Release(2), CacheUsageError);
    uint8_t* data = nullptr;
    ASSERT_EQ(cache->Read(2, &data), kOk);
    ASSERT_EQ(cache->Release(2), kOk);
    EXPECT_THROW(cache->Release(2), CacheUsageError);  // cached, but held by nobody
  }
}

// Random Read/NewBlock/Write/Release/WriteAll against a model of the file: what every
// block must read as, which blocks are pinned and which are changed since the last
// write-back.
class CacheModelRun {
 public:
  static constexpr uint32_t kInitialBlocks = 30;

  CacheModelRun(const MakeCache& make, int size, bool write_by_release, uint32_t seed)
      : file_(kInitialBlocks),
        cache_(make(file_.fd(), size, write_by_release)),
        size_(size),
        write_by_release_(write_by_release),
        random_(seed) {
    for (uint32_t b = 0; b < kInitialBlocks; ++b) blocks_.push_back(PatternBlock(b));
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
        if (!pins_.empty()) {
          const uint32_t block = RandomPin()->first;
          Change(block);
          dirty_.insert(block);
        }
      } else if (choice < 67) {
        ReleaseThenChange();
      } else if (choice < 95) {
        if (!pins_.empty()) ReleaseBlock(RandomPin()->first);
      } else {
        WriteAllAndCompare();
      }
      // Blocks a new block could be taken for: everything not pinned, less the changed
      // blocks that must stay while write-by-release is off.
      int held = static_cast<int>(pins_.size());
      for (uint32_t b : dirty_) held += !write_by_release_ && pins_.count(b) == 0 ? 1 : 0;
      ASSERT_EQ(cache_->CleanOrFreeBuffers(), size_ - held);
      ASSERT_GE(cache_->DirtyBlocks(), static_cast<int>(dirty_.size()));
      ASSERT_LE(cache_->DirtyBlocks(), static_cast<int>(dirty_.size() + unheld_changes_.size()));
    }
    while (!pins_.empty()) ReleaseBlock(pins_.begin()->first);
    WriteAllAndCompare();
  }

 private:
  struct Holding {
    uint8_t* data = nullptr;
    int count = 0;
  };

  int Pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random_); }
  std::map<uint32_t, Holding>::iterator RandomPin() {
    return std::next(pins_.begin(), Pick(static_cast<int>(pins_.size())));
  }

  void ReadSome() {
    const auto block = static_cast<uint32_t>(Pick(static_cast<int>(blocks_.size()) + 2));
    uint8_t* data = nullptr;
    const bool cached_for_sure = pins_.count(block) > 0 || dirty_.count(block) > 0;
    const int free_before = cache_->CleanOrFreeBuffers();
    const int rc = cache_->Read(block, &data);
    if (block >= blocks_.size()) {
      ASSERT_EQ(rc, free_before == 0 ? kNoBlocksFree : kBlockBeyondEnd);
      return;
    }
    // Nothing could be given up; only a block that is cached anyway is delivered.
    if (!cached_for_sure && free_before == 0 && rc == kNoBlocksFree) return;
    ASSERT_EQ(rc, kOk);
    ASSERT_EQ(Copy(data), blocks_[block]) << "block " << block;
    Pin(block, data);
  }

  void AppendBlock() {
    const auto block = static_cast<uint32_t>(blocks_.size());
    uint8_t* data = nullptr;
    const int free_before = cache_->CleanOrFreeBuffers();
    const int rc = cache_->NewBlock(block, &data);
    ASSERT_EQ(rc, free_before == 0 ? kNoBlocksFree : kOk);
    if (rc != kOk) return;
    ASSERT_EQ(Copy(data), Block(kBlockSize, 0)) << "new block " << block;
    Block contents = PatternBlock(block, static_cast<uint8_t>(Pick(256)));
    std::memcpy(data, contents.data(), kBlockSize);
    ASSERT_EQ(cache_->Write(block), kOk);
    blocks_.push_back(std::move(contents));
    dirty_.insert(block);
    Pin(block, data);
  }

  // One byte of a block the caller may change (pinned, or just released).
  void Change(uint32_t block, uint8_t* data = nullptr) {
    const auto offset = static_cast<size_t>(Pick(kBlockSize));
    const auto value = static_cast<uint8_t>(Pick(256));
    (data ? data : pins_[block].data)[offset] = value;
    blocks_[block][offset] = value;
    ASSERT_EQ(cache_->Write(block), kOk);
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
    Change(block, data);
    (write_by_release_ ? unheld_changes_ : dirty_).insert(block);
  }

  void ReleaseBlock(uint32_t block) {
    ASSERT_EQ(cache_->Release(block), kOk);
    if (--pins_[block].count > 0) return;
    pins_.erase(block);
    if (write_by_release_ && dirty_.erase(block) + unheld_changes_.erase(block) > 0) {
      ASSERT_EQ(file_.OnDisk(block), blocks_[block]) << "released block " << block;
    }
  }

  void WriteAllAndCompare() {
    ASSERT_EQ(cache_->WriteAll(), kOk);
    ASSERT_EQ(cache_->DirtyBlocks(), 0);
    dirty_.clear();
    unheld_changes_.clear();
    ASSERT_EQ(file_.size(), blocks_.size() * kBlockSize);
    for (uint32_t b = 0; b < blocks_.size(); ++b) {
      ASSERT_EQ(file_.OnDisk(b), blocks_[b]) << "block " << b << " after WriteAll";
    }
  }

  void Pin(uint32_t block, uint8_t* data) {
    Holding& holding = pins_[block];
    if (holding.count++ > 0) {
      ASSERT_EQ(holding.data, data) << "two buffers for block " << block;
    }
    holding.data = data;
  }

  BlockFile file_;
  std::unique_ptr<FileCache> cache_;
  int size_;
  bool write_by_release_;
  std::mt19937 random_;
  std::vector<Block> blocks_;
  std::map<uint32_t, Holding> pins_;
  std::set<uint32_t> dirty_;
  std::set<uint32_t> unheld_changes_;  // changed while unpinned, write-by-release on
};

TEST(BlockCache, RandomOperationsMatchAModelOfTheFile) {
  for (const auto& [name, make] : kKinds) {
    for (int size : {1, 7, 19, 40}) {
      for (bool write_by_release : {false, true}) {
        SCOPED_TRACE(std::string(name) + " size " + std::to_string(size) +
                     (write_by_release ? " write-by-release" : ""));
        CacheModelRun(make, size, write_by_release, size * 2 + write_by_release).Run(1500);
        if (HasFatalFailure()) return;
      }
    }
  }
}

// A registration with the process-wide cache, closed again with the object; the cache's
// configuration is left as it was found.
class Registration {
 public:
  Registration(int number, const BlockFile& file, int blocks) : number_(number) {
    BlockCache::Instance().Open(number, file.fd(), file.path(), blocks);
  }
  ~Registration() { BlockCache::Instance().Close(number_); }
  Registration(const Registration&) = delete;
  Registration& operator=(const Registration&) = delete;

 private:
  int number_;
};

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
  BlockFile key_file(4);
  BlockFile lock_file(4);
  BlockCache& cache = BlockCache::Instance();
  for (CacheKind kind : {CacheKind::kRandomAccess, CacheKind::kClassic}) {
    cache.Configure({kind, false, false, ""});
    Registration key(3, key_file, 31);
    Registration lock(43, lock_file, 300);
    EXPECT_EQ(cache.Find(3)->BlockCount(), 31);
    EXPECT_EQ(cache.Find(43)->BlockCount(), kind == CacheKind::kClassic ? 255 : 300);
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
  BlockFile file(20);
  BlockCache& cache = BlockCache::Instance();
  const std::string csv_base = file.path() + "-CacheStats";
  auto calls_by_function = [&] {
    std::map<std::string, uint32_t> calls;
    for (const CacheMonitoring& m : cache.GetMonitorings()) calls[m.function] = m.calls;
    return calls;
  };
  std::map<std::string, uint32_t> calls = calls_by_function();
  {
    cache.Configure({CacheKind::kRandomAccess, false, true, csv_base});
    Registration reg(7, file, 9);
    ASSERT_NE(cache.Find(7)->Monitoring(), nullptr);
    uint8_t* data = nullptr;
    for (uint32_t i = 0; i < 24; ++i) {
      ASSERT_EQ(cache.Read(7, i % 12, &data), kOk);
      ASSERT_EQ(cache.Write(7, i % 12), kOk);
      ASSERT_EQ(cache.Release(7, i % 12), kOk);
      ASSERT_EQ(cache.WriteAll(7), kOk);
    }
    ASSERT_EQ(cache.FlashCache(), kOk);
  }
  {
    // Opened again, as the lock file is for every lock operation: still one line.
    Registration again(7, file, 9);
  }
  const std::map<std::string, uint32_t> after = calls_by_function();
  for (auto& [function, count] : calls) count = after.at(function) - count;
  // 9 buffers, 12 blocks read round-robin twice: every read misses; one WriteAll more
  // from FlashCache.
  const std::map<std::string, uint32_t> expected = {
      {"Read", 24}, {"WriteAll", 25}, {"WriteReal", 24}, {"ReadReal", 24}, {"FindBlock", 72}};
  for (const auto& [function, count] : expected) EXPECT_EQ(calls[function], count) << function;

  cache.SaveMonitoring();
  std::stringstream csv;
  csv << std::ifstream(csv_base + ".csv").rdbuf();
  uint64_t total_calls = 0;
  for (const auto& [function, count] : after) total_calls += count;
  // The file list (this file once), then a line per function with its mean time.
  const std::string text = csv.str();
  EXPECT_EQ(text.rfind("FileName;BlockCount;\n", 0), 0u) << text;
  const size_t line = text.find(file.path() + ";9;\n");
  EXPECT_NE(line, std::string::npos) << text;
  EXPECT_EQ(text.find(file.path(), line + 1), std::string::npos) << text;
  EXPECT_NE(text.find("\nFunction;Count;T[s];dT[ms]\n"), std::string::npos) << text;
  EXPECT_TRUE(std::regex_search(text, std::regex("\nRead;" + std::to_string(after.at("Read")) +
                                                 R"(;\d+\.\d{3};\d+\.\d{6}\n)")))
      << text;
  EXPECT_NE(text.find("\nSumme:;" + std::to_string(total_calls) + ";"), std::string::npos) << text;
}

}  // namespace
}  // namespace korvan::storage
