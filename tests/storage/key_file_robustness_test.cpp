// Key files under pressure: caches too small, corrupt files, failures that must stop
// the program, the end of the file's capacity, and long runs with the default cache.
#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "storage/key_file.h"
#include "storage/key_file_test_support.h"
#include "storage/key_tree_check.h"
#include "storage/result_codes.h"
#include "storage/storage_fatal_error.h"

namespace korvan::storage {
namespace {

using testing::Load16;
using testing::Load32;
using testing::MakeEntry;
using testing::ScratchKeyFile;

std::string Numbered(int i) {
  char text[16];
  std::snprintf(text, sizeof text, "K%06d", i);
  return text;
}

void Store32(std::vector<uint8_t>& bytes, size_t offset, uint32_t value) {
  for (int i = 0; i < 4; ++i) bytes[offset + i] = static_cast<uint8_t>(value >> (8 * i));
}

// Changes bytes of a block through the cache, as if an earlier run had left them.
void PatchCached(FileCache& cache, uint32_t block, size_t offset, const std::vector<uint8_t>& bytes,
                 bool new_block = false) {
  uint8_t* data = nullptr;
  ASSERT_EQ(new_block ? cache.NewBlock(block, &data) : cache.Read(block, &data), kOk);
  std::memcpy(data + offset, bytes.data(), bytes.size());
  ASSERT_EQ(cache.Write(block), kOk);
  ASSERT_EQ(cache.Release(block), kOk);
}

uint32_t CountAll(int reg, int key_length) {
  const KeyEntry pads = MakeEntry("", 0, key_length);
  uint32_t count = 0;
  EXPECT_EQ(MatchesCount(reg, pads.key, 0, true, &count), kOk);
  return count;
}

TEST(KeyFileCachePressure, ACacheTooSmallForOneOperationRefusesBeforeChanging) {
  // Ascending keys of length 90 (20 per node) with 7 buffers: once a split runs through
  // three levels and makes a new root, header + path + new nodes no longer fit.
  ScratchKeyFile file(7);
  ASSERT_EQ(KeyFileInit(3, file.reg(), 90), kOk);
  int inserted = 0;
  int refused_at = -1;
  for (int i = 0; i < 20000 && refused_at < 0; ++i) {
    const int rc = KeyInsert(file.reg(), MakeEntry(Numbered(i), static_cast<uint32_t>(i), 90));
    if (rc == kNoBlocksFree) {
      refused_at = i;
    } else {
      ASSERT_EQ(rc, kOk) << i;
      ++inserted;
    }
  }
  ASSERT_GE(refused_at, 0) << "no insert needed more than 7 blocks";
  EXPECT_TRUE(CheckKeyFile(file.reg()).empty());
  EXPECT_EQ(CountAll(file.reg(), 90), static_cast<uint32_t>(inserted));
  KeyEntry refused = MakeEntry(Numbered(refused_at), 0, 90);
  EXPECT_EQ(KeyFirstMatch(file.reg(), refused), kKeyNoMatch);

  // Written back and opened with a larger cache, the same insert succeeds.
  file.Reopen(31);
  EXPECT_TRUE(CheckKeyFile(file.reg()).empty());
  EXPECT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(refused_at), refused_at, 90)), kOk);
  EXPECT_TRUE(CheckKeyFile(file.reg()).empty());
  EXPECT_EQ(CountAll(file.reg(), 90), static_cast<uint32_t>(inserted + 1));
}

TEST(KeyFileCachePressure, BuffersHeldElsewhereGiveAPlainRefusal) {
  for (bool write_by_release : {false, true}) {
    ScratchKeyFile file(7, write_by_release);
    ASSERT_EQ(KeyFileInit(3, file.reg(), 90), kOk);
    for (int i = 0; i < 600; ++i) {  // three levels
      ASSERT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(i * 2), i, 90)), kOk);
    }
    // Five buffers pinned by someone else leave two: header and root, not the path.
    file.Flush();
    std::vector<uint32_t> held;
    for (uint32_t block = 50000; block < 50005; ++block) {
      uint8_t* data = nullptr;
      ASSERT_EQ(file.cache().NewBlock(block, &data), kOk);
      held.push_back(block);
    }
    EXPECT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(1), 1, 90)), kNoBlocksFree);
    EXPECT_EQ(KeyDelete(file.reg(), MakeEntry(Numbered(0), 0, 90)), kNoBlocksFree);
    // Searches hold only the header and one node at a time.
    KeyEntry probe = MakeEntry(Numbered(2), 0, 90);
    EXPECT_EQ(KeyFirstMatch(file.reg(), probe), kOk);
    EXPECT_EQ(probe.position, 1u);
    for (uint32_t block : held) ASSERT_EQ(file.cache().Release(block), kOk);

    EXPECT_TRUE(CheckKeyFile(file.reg()).empty());
    EXPECT_EQ(CountAll(file.reg(), 90), 600u);
    EXPECT_EQ(KeyDelete(file.reg(), MakeEntry(Numbered(0), 0, 90)), kOk);
    EXPECT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(1), 1, 90)), kOk);
  }
}

TEST(KeyFileCachePressure, TheDefaultCacheCarriesALongRunOfChanges) {
  // 100 000 random inserts and deletes with 31 buffers and write-by-release off: the
  // changed blocks are written back whenever the cache runs short.
  ScratchKeyFile file(31);
  ASSERT_EQ(KeyFileInit(3, file.reg(), 70), kOk);
  std::mt19937 rng(4711);
  std::vector<uint32_t> live;
  std::set<uint32_t> present;
  for (int op = 0; op < 100000; ++op) {
    if (live.empty() || rng() % 100 < 60) {
      const uint32_t k = rng() % 1000000;
      if (!present.insert(k).second) continue;
      ASSERT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(static_cast<int>(k)), k, 70)), kOk) << op;
      live.push_back(k);
    } else {
      const size_t at = rng() % live.size();
      const uint32_t k = live[at];
      live[at] = live.back();
      live.pop_back();
      present.erase(k);
      ASSERT_EQ(KeyDelete(file.reg(), MakeEntry(Numbered(static_cast<int>(k)), k, 70)), kOk) << op;
    }
  }
  const std::vector<std::string> problems = CheckKeyFile(file.reg());
  EXPECT_TRUE(problems.empty()) << problems.front();
  EXPECT_EQ(CountAll(file.reg(), 70), live.size());
}

class CorruptKeyFile : public ::testing::Test {
 protected:
  // A three-level version 3 tree of key length 90, written to disk.
  void SetUp() override {
    ASSERT_EQ(KeyFileInit(3, file_.reg(), 90), kOk);
    for (int i = 0; i < 600; ++i) {
      ASSERT_EQ(KeyInsert(file_.reg(), MakeEntry(Numbered(i), i, 90)), kOk);
    }
    file_.Flush();
    header_ = file_.DiskBlock(0);
    root_ = Load32(header_, 15);
    highest_ = Load32(header_, 2);
    ASSERT_TRUE(CheckKeyFile(file_.reg()).empty());
  }
  void Patch(uint32_t block, size_t offset, const std::vector<uint8_t>& bytes) {
    file_.PatchDisk(block, offset, bytes);
    file_.Reopen(31);
  }
  // Every operation that passes the leftmost subtree answers with a code (4231 unless
  // said otherwise) and nothing loops.
  void ExpectRefused(int code = kKeyFileCorrupt) {
    KeyEntry entry = MakeEntry(Numbered(0), 0, 90);
    EXPECT_EQ(KeyFirstMatch(file_.reg(), entry), code);
    entry = MakeEntry(Numbered(0), 0, 90);
    EXPECT_EQ(KeyLastMatch(file_.reg(), entry), code);
    entry = MakeEntry(Numbered(0), 0, 90);
    EXPECT_EQ(KeyNext(file_.reg(), entry), code);
    EXPECT_EQ(KeyInsert(file_.reg(), MakeEntry("A", 1, 90)), code);
    EXPECT_EQ(KeyDelete(file_.reg(), MakeEntry(Numbered(0), 0, 90)), code);
    uint32_t count = 0;
    EXPECT_EQ(MatchesCount(file_.reg(), entry.key, 0, true, &count), code);
    EXPECT_FALSE(CheckKeyFile(file_.reg()).empty());
  }

  ScratchKeyFile file_{31};
  std::vector<uint8_t> header_;
  uint32_t root_ = 0;
  uint32_t highest_ = 0;
};

TEST_F(CorruptKeyFile, ANodeWithTooManyEntriesIsNeverUsed) {
  Patch(root_, 0, {21, 0});
  ExpectRefused();
}

TEST_F(CorruptKeyFile, AChildLinkBackToTheRootIsCaught) {
  std::vector<uint8_t> link(4);
  Store32(link, 0, root_);
  Patch(root_, 2, link);  // leftmost child of the root = the root
  ExpectRefused();
}

TEST_F(CorruptKeyFile, AChildBeyondTheHighestNodeIsCaught) {
  std::vector<uint8_t> link(4);
  Store32(link, 0, highest_ + 5);
  Patch(root_, 2, link);
  ExpectRefused();
}

TEST_F(CorruptKeyFile, ANodeBeyondTheEndOfTheFileIsReported) {
  std::vector<uint8_t> numbers(4);
  Store32(numbers, 0, highest_ + 10);
  Patch(0, 2, numbers);   // highest node
  Patch(0, 15, numbers);  // root
  ExpectRefused(kBlockBeyondEnd);
}

TEST_F(CorruptKeyFile, ABrokenFreeListStopsAnInsertBeforeItChangesAnything) {
  // The free list claims the root, which has entries.
  std::vector<uint8_t> head(4);
  Store32(head, 0, root_);
  Patch(0, 6, head);
  // Fill the rightmost leaf until a split needs a node.
  int rc = kOk;
  int i = 1000;
  for (; rc == kOk && i < 1100; ++i) rc = KeyInsert(file_.reg(), MakeEntry(Numbered(i), i, 90));
  EXPECT_EQ(rc, kKeyFileCorrupt);
  KeyEntry refused = MakeEntry(Numbered(i - 1), 0, 90);
  EXPECT_EQ(KeyFirstMatch(file_.reg(), refused), kKeyNoMatch);
  const std::vector<std::string> problems = CheckKeyFile(file_.reg());
  ASSERT_FALSE(problems.empty());
  EXPECT_NE(problems.front().find("free"), std::string::npos) << problems.front();
}

TEST(KeyFileFatal, FreeingANodeBeyondTheLimitStopsTheProgram) {
  ScratchKeyFile file(31);
  ASSERT_EQ(KeyFileInit(3, file.reg(), 20), kOk);
  // A one-leaf tree whose leaf has a node number no file under 2 GB can hold.
  const uint32_t node = 1048580;
  std::vector<uint8_t> numbers(4);
  Store32(numbers, 0, node);
  PatchCached(file.cache(), 0, 2, numbers);
  PatchCached(file.cache(), 0, 15, numbers);
  std::vector<uint8_t> leaf(6 + 28, 0);
  leaf[0] = 1;
  Store32(leaf, 10, 77);
  std::memcpy(&leaf[14], MakeEntry("ONLY", 77, 20).key, 20);
  PatchCached(file.cache(), node, 0, leaf, /*new_block=*/true);
  KeyEntry found = MakeEntry("ONLY", 0, 20);
  ASSERT_EQ(KeyFirstMatch(file.reg(), found), kOk);
  EXPECT_EQ(found.position, 77u);
  try {
    KeyDelete(file.reg(), MakeEntry("ONLY", 77, 20));
    FAIL() << "no fatal error";
  } catch (const StorageFatalError& e) {
    EXPECT_EQ(e.caption(), "Database Index Error");
    EXPECT_EQ(e.step(), "xNodeDeAlloc2");
  }
}

TEST(KeyFileFatal, AWriteBackFailingAfterAChangeNamesTheStep) {
  for (int version : {3, 2}) {
    korvan::testing::TempDir dir;
    const std::string path = dir.File("readonly.Q30");
    {
      ScratchKeyFile setup(31);
      ASSERT_EQ(KeyFileInit(version, setup.reg(), 20), kOk);
      ASSERT_EQ(KeyInsert(setup.reg(), MakeEntry("FIRST", 1, 20)), kOk);
      setup.Flush();
      const std::vector<uint8_t> header = setup.DiskBlock(0);
      const std::vector<uint8_t> leaf = setup.DiskBlock(1);
      const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT, 0644);
      ASSERT_EQ(::write(fd, header.data(), header.size()), kBlockSize);
      ASSERT_EQ(::write(fd, leaf.data(), leaf.size()), kBlockSize);
      ::close(fd);
    }
    const int fd = ::open(path.c_str(), O_RDONLY);
    ASSERT_GE(fd, 0);
    CacheSettings settings;
    settings.write_by_release = true;
    BlockCache::Instance().Configure(settings);
    ASSERT_EQ(BlockCache::Instance().Open(ScratchKeyFile::kRegistration, fd, path, 31), kOk);
    // Nothing changed yet: searching works on a read-only file.
    KeyEntry found = MakeEntry("FIRST", 0, 20);
    EXPECT_EQ(KeyFirstMatch(ScratchKeyFile::kRegistration, found), kOk);
    try {
      KeyInsert(ScratchKeyFile::kRegistration, MakeEntry("SECOND", 2, 20));
      ADD_FAILURE() << "no fatal error";
    } catch (const StorageFatalError& e) {
      EXPECT_EQ(e.caption(), version == 3 ? "Database Index Error" : "FatalError");
      EXPECT_EQ(e.step(), version == 3 ? "xInsertEntry" : "InsertEntry");
    }
    BlockCache::Instance().Close(ScratchKeyFile::kRegistration);
    BlockCache::Instance().Configure(CacheSettings{});
    ::close(fd);
  }
}

TEST(KeyFileCapacity, NearlyFullAndFullAreReported) {
  {
    // Version 3: the node after 1046526 is past the nearly-full mark.
    ScratchKeyFile file(31);
    ASSERT_EQ(KeyFileInit(3, file.reg(), 20), kOk);
    std::vector<uint8_t> highest(4);
    Store32(highest, 0, 1046526);
    PatchCached(file.cache(), 0, 2, highest);
    EXPECT_EQ(KeyInsert(file.reg(), MakeEntry("A", 1, 20)), kKeyFileNearlyFull);
    EXPECT_EQ(KeyInsert(file.reg(), MakeEntry("B", 2, 20)), kOk);  // no new node
    KeyEntry found = MakeEntry("A", 0, 20);
    EXPECT_EQ(KeyFirstMatch(file.reg(), found), kOk);
    EXPECT_EQ(found.position, 1u);
    uint8_t* header = nullptr;
    ASSERT_EQ(file.cache().Read(0, &header), kOk);
    EXPECT_EQ(
        static_cast<uint32_t>(header[15] | header[16] << 8 | header[17] << 16 | header[18] << 24),
        1046527u);
    ASSERT_EQ(file.cache().Release(0), kOk);
  }
  {
    // Version 2: the first free node lies in bitmap byte 2032.
    ScratchKeyFile file(31);
    ASSERT_EQ(KeyFileInit(2, file.reg(), 20), kOk);
    PatchCached(file.cache(), 0, 8, std::vector<uint8_t>(2032, 0xFF));
    EXPECT_EQ(KeyInsert(file.reg(), MakeEntry("A", 1, 20)), kKeyFileNearlyFull);
    KeyEntry found = MakeEntry("A", 0, 20);
    EXPECT_EQ(KeyFirstMatch(file.reg(), found), kOk);
    EXPECT_EQ(KeyDelete(file.reg(), MakeEntry("A", 1, 20)), kOk);
    // With every bit set no node is left: 4226, and nothing changes.
    PatchCached(file.cache(), 0, 8, std::vector<uint8_t>(2040, 0xFF));
    EXPECT_EQ(KeyInsert(file.reg(), MakeEntry("A", 1, 20)), kKeyFileFull);
    found = MakeEntry("A", 0, 20);
    EXPECT_EQ(KeyFirstMatch(file.reg(), found), kKeyIndexEmpty);
  }
}

}  // namespace
}  // namespace korvan::storage
