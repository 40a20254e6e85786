// Key files: the layout on disk, node allocation, and the edge cases: caches too small,
// damaged files, failures that must stop the program, the end of the file's capacity.
#include "storage/key_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "storage/cache_monitoring.h"
#include "storage/key_file_test_support.h"
#include "storage/key_tree_check.h"
#include "storage/result_codes.h"
#include "storage/storage_fatal_error.h"

namespace korvan::storage {
namespace {

using namespace testing;  // NOLINT

void InsertRange(int reg, int from, int to, int key_length, int step = 1) {
  for (int i = from; i < to; ++i) {
    ASSERT_EQ(KeyInsert(reg, MakeEntry(Numbered(i * step), i, key_length)), kOk) << i;
  }
}

// A three-level version 3 tree of key length 90, written to disk.
void BuildThreeLevels(ScratchKeyFile& file) {
  ASSERT_EQ(KeyFileInit(3, file.reg(), 90), kOk);
  ASSERT_NO_FATAL_FAILURE(InsertRange(file.reg(), 0, 600, 90));
  file.Flush();
}

uint32_t CountAll(int reg, int key_length) {
  const KeyEntry pads = MakeEntry("", 0, key_length);
  uint32_t count = 0;
  EXPECT_EQ(MatchesCount(reg, pads.key, 0, true, &count), kOk);
  return count;
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

// Expects a header block to start with `bytes` and hold zeros from `zeros_from` on.
void ExpectHeader(const std::vector<uint8_t>& block, const std::vector<uint8_t>& bytes,
                  size_t zeros_from) {
  EXPECT_EQ(std::vector<uint8_t>(block.begin(), block.begin() + bytes.size()), bytes);
  for (size_t i = zeros_from; i < block.size(); ++i) ASSERT_EQ(block[i], 0) << "offset " << i;
}

std::string KeyAt(const std::vector<uint8_t>& block, size_t offset, size_t length = 7) {
  return std::string(reinterpret_cast<const char*>(&block[offset]), length);
}

TEST(KeyFileInit, AcceptsKeyLengths12To90AndWritesTheHeader) {
  ScratchKeyFile file(31);
  for (int version : {3, 2}) {
    EXPECT_EQ(KeyFileInit(version, file.reg(), 11), kKeyLengthOutOfRange);
    EXPECT_EQ(KeyFileInit(version, file.reg(), 91), kKeyLengthOutOfRange);
    EXPECT_EQ(KeyFileInit(version, file.reg(), 90), kOk);
    EXPECT_EQ(KeyFileInit(version, file.reg(), 12), kOk);
  }
  EXPECT_EQ(KeyFileInit(4, file.reg(), 40), kKeyFileUnknownVersion);

  ASSERT_EQ(KeyFileInit(3, file.reg(), 83), kOk);
  int version = 0;
  int key_length = 0;
  EXPECT_EQ(KeyFileVersion(file.reg(), &version), kOk);
  EXPECT_EQ(version, 3);
  EXPECT_EQ(KeyFileKeyLength(file.reg(), &key_length), kOk);
  EXPECT_EQ(key_length, 83);
  file.Flush();
  // Version, 2, highest node, free list, key length, 22 = 2042 div 91, 11, root.
  ExpectHeader(file.DiskBlock(0), {3, 2, 0, 0, 0, 0, 0, 0, 0, 0, 83, 22, 0, 11, 0}, 15);

  ASSERT_EQ(KeyFileInit(2, file.reg(), 40), kOk);
  file.Flush();
  // Version, key length, 44 = 2044 div 46, 22, root, then the node bitmap.
  ExpectHeader(file.DiskBlock(0), {2, 40, 44, 0, 22, 0}, 6);
  EXPECT_EQ(KeyFileVersion(file.reg(), &version), kOk);
  EXPECT_EQ(version, 2);
}

TEST(KeyFileInit, HeadersOfOtherVersionsAreRefused) {
  ScratchKeyFile file(31);
  ASSERT_EQ(KeyFileInit(3, file.reg(), 20), kOk);
  file.Reopen(31);
  KeyEntry entry = MakeEntry("A", 1, 20);
  int version = 0;

  file.PatchDisk(0, 0, {7});
  file.Reopen(31);
  EXPECT_EQ(KeyFileVersion(file.reg(), &version), kKeyFileCorrupt);
  EXPECT_EQ(KeyInsert(file.reg(), entry), kKeyFileUnknownVersion);
  EXPECT_EQ(KeyFirstMatch(file.reg(), entry), kKeyFileUnknownVersion);

  file.PatchDisk(0, 0, {3, 9});  // version 3 without its constant 2
  file.Reopen(31);
  EXPECT_EQ(KeyInsert(file.reg(), entry), kKeyFileCorrupt);

  file.PatchDisk(0, 0, {3, 2});
  file.PatchDisk(0, 10, {11});  // key length below 12
  file.Reopen(31);
  EXPECT_EQ(KeyFirstMatch(file.reg(), entry), kKeyLengthOutOfRange);

  file.PatchDisk(0, 10, {20, 99, 0});  // maximum entries not matching the key length
  file.Reopen(31);
  EXPECT_EQ(KeyInsert(file.reg(), entry), kKeyLengthOutOfRange);
}

// A full root of key length 83 (22 entries of 91 bytes) splits on the 23rd insert into
// leaves 1 and 2 of 11 under root 3; the slots the old node gave up are cleared.
TEST(KeyFileLayout, Version3NodesUse32BitChildrenAndASplitClearsWhatItGaveUp) {
  ScratchKeyFile file(31);
  ASSERT_EQ(KeyFileInit(3, file.reg(), 83), kOk);
  for (int i = 0; i < 23; ++i) {
    ASSERT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(2 * i), 2 * i, 83)), kOk);
  }
  file.Flush();
  const std::vector<uint8_t> header = file.DiskBlock(0);
  EXPECT_EQ(Load32(header, 2), 3u);   // highest node
  EXPECT_EQ(Load32(header, 15), 3u);  // the new root
  // Root: count, old root on the left, new node on the right, the separator entry.
  const std::vector<uint8_t> root = file.DiskBlock(3);
  EXPECT_EQ(Load16(root, 0), 1);
  EXPECT_EQ(Load32(root, 2), 1u);
  EXPECT_EQ(Load32(root, 6), 2u);
  EXPECT_EQ(Load32(root, 10), 22u);
  EXPECT_EQ(KeyAt(root, 14), Numbered(22));
  const std::vector<uint8_t> left = file.DiskBlock(1);
  const std::vector<uint8_t> right = file.DiskBlock(2);
  EXPECT_EQ(Load16(left, 0), 11);
  EXPECT_EQ(Load16(right, 0), 11);
  EXPECT_EQ(KeyAt(right, 14, 83), Numbered(24) + std::string(76, static_cast<char>(kKeyPad)));
  for (size_t i = 6 + 11 * 91; i < 6 + 22 * 91; ++i) ASSERT_EQ(left[i], 0) << i;
  EXPECT_TRUE(CheckKeyFile(file.reg()).empty());
}

TEST(KeyFileLayout, Version2NodesUse16BitChildren) {
  ScratchKeyFile file(31);
  ASSERT_EQ(KeyFileInit(2, file.reg(), 90), kOk);  // 21 entries of 96 bytes
  ASSERT_NO_FATAL_FAILURE(InsertRange(file.reg(), 0, 22, 90));
  file.Flush();
  const std::vector<uint8_t> header = file.DiskBlock(0);
  EXPECT_EQ(Load16(header, 6), 3);  // root
  EXPECT_EQ(header[8], 0x07);       // nodes 1, 2, 3 in use
  // Count, leftmost child, child right of the entry; M = 21, H = 10: the eleventh key
  // went up.
  const std::vector<uint8_t> root = file.DiskBlock(3);
  EXPECT_EQ(Load16(root, 0), 1);
  EXPECT_EQ(Load16(root, 2), 1);
  EXPECT_EQ(Load16(root, 4), 2);
  EXPECT_EQ(Load32(root, 6), 10u);
  EXPECT_EQ(KeyAt(root, 10), Numbered(10));
  EXPECT_EQ(Load16(file.DiskBlock(1), 0), 10);
  EXPECT_EQ(Load16(file.DiskBlock(2), 0), 11);
  EXPECT_TRUE(CheckKeyFile(file.reg()).empty());
}

TEST(KeyFileAllocation, Version3ReusesTheMostRecentlyFreedNodeFirst) {
  ScratchKeyFile file(31);
  ASSERT_EQ(KeyFileInit(3, file.reg(), 90), kOk);  // 20 entries per node
  ASSERT_NO_FATAL_FAILURE(InsertRange(file.reg(), 0, 200, 90));
  auto header = [&] {
    file.Flush();
    return file.DiskBlock(0);
  };
  const uint32_t highest = Load32(header(), 2);
  // Delete until at least two nodes are on the free list.
  uint32_t head = 0;
  for (int i = 0; head == 0 || Load32(file.DiskBlock(head), 2) == 0; ++i) {
    ASSERT_LT(i, 200);
    ASSERT_EQ(KeyDelete(file.reg(), MakeEntry(Numbered(i), i, 90)), kOk);
    head = Load32(header(), 6);
  }
  EXPECT_EQ(Load32(header(), 2), highest);  // freeing never lowers the counter
  EXPECT_EQ(Load16(file.DiskBlock(head), 0), 0);
  const uint32_t second = Load32(file.DiskBlock(head), 2);
  EXPECT_TRUE(CheckKeyFile(file.reg()).empty());

  // Inserting at the far end splits the rightmost leaf: the new node is the free head.
  for (int i = 1000; Load32(header(), 6) == head; ++i) {
    ASSERT_LT(i, 1100);
    ASSERT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(i), i, 90)), kOk);
  }
  EXPECT_EQ(Load32(header(), 6), second);
  EXPECT_EQ(Load32(header(), 2), highest);
  EXPECT_GT(Load16(file.DiskBlock(head), 0), 0);
  EXPECT_TRUE(CheckKeyFile(file.reg()).empty());
}

TEST(KeyFileCachePressure, BuffersHeldElsewhereGiveAPlainRefusal) {
  for (bool write_by_release : {false, true}) {
    ScratchKeyFile file(7, write_by_release);
    ASSERT_EQ(KeyFileInit(3, file.reg(), 90), kOk);
    ASSERT_NO_FATAL_FAILURE(InsertRange(file.reg(), 0, 600, 90, 2));  // three levels
    file.Flush();
    // Five buffers pinned by someone else leave two: header and root, not the path.
    uint8_t* data = nullptr;
    for (uint32_t block = 50000; block < 50005; ++block) {
      ASSERT_EQ(file.cache().NewBlock(block, &data), kOk);
    }
    EXPECT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(1), 1, 90)), kNoBlocksFree);
    EXPECT_EQ(KeyDelete(file.reg(), MakeEntry(Numbered(0), 0, 90)), kNoBlocksFree);
    // Searches hold only the header and one node at a time.
    KeyEntry probe = MakeEntry(Numbered(2), 0, 90);
    EXPECT_EQ(KeyFirstMatch(file.reg(), probe), kOk);
    EXPECT_EQ(probe.position, 1u);
    for (uint32_t block = 50000; block < 50005; ++block) {
      ASSERT_EQ(file.cache().Release(block), kOk);
    }
    EXPECT_TRUE(CheckKeyFile(file.reg()).empty());
    EXPECT_EQ(CountAll(file.reg(), 90), 600u);
    EXPECT_EQ(KeyDelete(file.reg(), MakeEntry(Numbered(0), 0, 90)), kOk);
    EXPECT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(1), 1, 90)), kOk);
  }
}

// Every operation that passes the leftmost subtree of a damaged tree answers with a code,
// and nothing loops.
TEST(KeyFileCorrupt, DamagedNodesAreRefusedWithACode) {
  for (int damage = 0; damage < 4; ++damage) {
    SCOPED_TRACE(damage);
    ScratchKeyFile file(31);
    ASSERT_NO_FATAL_FAILURE(BuildThreeLevels(file));
    const uint32_t root = Load32(file.DiskBlock(0), 15);
    const uint32_t beyond = Load32(file.DiskBlock(0), 2) + 5;
    struct Patch {
      uint32_t block;
      size_t offset;
      std::vector<uint8_t> bytes;
    };
    const std::vector<Patch> damages[] = {
        {{root, 0, {21, 0}}},          // too many entries
        {{root, 2, Bytes32(root)}},    // a child link back to the root
        {{root, 2, Bytes32(beyond)}},  // a child beyond the highest node
        {{0, 2, Bytes32(beyond + 5)}, {0, 15, Bytes32(beyond + 5)}},  // beyond the file
    };
    for (const Patch& patch : damages[damage])
      file.PatchDisk(patch.block, patch.offset, patch.bytes);
    file.Reopen(31);
    const int code = damage == 3 ? kBlockBeyondEnd : kKeyFileCorrupt;
    KeyEntry entry = MakeEntry(Numbered(0), 0, 90);
    EXPECT_EQ(KeyFirstMatch(file.reg(), entry), code);
    entry = MakeEntry(Numbered(0), 0, 90);
    EXPECT_EQ(KeyLastMatch(file.reg(), entry), code);
    entry = MakeEntry(Numbered(0), 0, 90);
    EXPECT_EQ(KeyNext(file.reg(), entry), code);
    EXPECT_EQ(KeyInsert(file.reg(), MakeEntry("A", 1, 90)), code);
    EXPECT_EQ(KeyDelete(file.reg(), MakeEntry(Numbered(0), 0, 90)), code);
    uint32_t count = 0;
    EXPECT_EQ(MatchesCount(file.reg(), entry.key, 0, true, &count), code);
    EXPECT_FALSE(CheckKeyFile(file.reg()).empty());
  }
}

TEST(KeyFileCorrupt, ABrokenFreeListStopsAnInsertBeforeItChangesAnything) {
  ScratchKeyFile file(31);
  ASSERT_NO_FATAL_FAILURE(BuildThreeLevels(file));
  // The free list claims the root, which has entries.
  file.PatchDisk(0, 6, Bytes32(Load32(file.DiskBlock(0), 15)));
  file.Reopen(31);
  // Fill the rightmost leaf until a split needs a node.
  int rc = kOk;
  int i = 1000;
  for (; rc == kOk && i < 1100; ++i) rc = KeyInsert(file.reg(), MakeEntry(Numbered(i), i, 90));
  EXPECT_EQ(rc, kKeyFileCorrupt);
  KeyEntry refused = MakeEntry(Numbered(i - 1), 0, 90);
  EXPECT_EQ(KeyFirstMatch(file.reg(), refused), kKeyNoMatch);
  const std::vector<std::string> problems = CheckKeyFile(file.reg());
  ASSERT_FALSE(problems.empty());
  EXPECT_NE(problems.front().find("frei"), std::string::npos) << problems.front();
}

TEST(KeyFileFatal, FreeingANodeBeyondTheLimitStopsTheProgram) {
  ScratchKeyFile file(31);
  ASSERT_EQ(KeyFileInit(3, file.reg(), 20), kOk);
  // A one-leaf tree whose leaf has a node number no file under 2 GB can hold.
  const uint32_t node = 1048580;
  PatchCached(file.cache(), 0, 2, Bytes32(node));
  PatchCached(file.cache(), 0, 15, Bytes32(node));
  std::vector<uint8_t> leaf(6 + 28, 0);
  leaf[0] = 1;
  leaf[10] = 77;
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
    ScratchKeyFile file(31);
    ASSERT_EQ(KeyFileInit(version, file.reg(), 20), kOk);
    ASSERT_EQ(KeyInsert(file.reg(), MakeEntry("FIRST", 1, 20)), kOk);
    file.Flush();
    // The same file opened read-only, every change written when released.
    const int fd = ::open(file.path().c_str(), O_RDONLY);
    ASSERT_GE(fd, 0);
    BlockCache::Instance().Close(file.reg());
    BlockCache::Instance().Configure({CacheKind::kRandomAccess, true, false, ""});
    ASSERT_EQ(BlockCache::Instance().Open(file.reg(), fd, file.path(), 31), kOk);
    // Nothing changed yet: searching works on a read-only file.
    KeyEntry found = MakeEntry("FIRST", 0, 20);
    EXPECT_EQ(KeyFirstMatch(file.reg(), found), kOk);
    try {
      KeyInsert(file.reg(), MakeEntry("SECOND", 2, 20));
      ADD_FAILURE() << "no fatal error";
    } catch (const StorageFatalError& e) {
      EXPECT_EQ(e.caption(), version == 3 ? "Database Index Error" : "FatalError");
      EXPECT_EQ(e.step(), version == 3 ? "xInsertEntry" : "InsertEntry");
    }
    BlockCache::Instance().Close(file.reg());
    ::close(fd);
  }
}

TEST(KeyFileCapacity, NearlyFullAndFullAreReported) {
  {
    // Version 3: the node after 1046526 is past the nearly-full mark.
    ScratchKeyFile file(31);
    ASSERT_EQ(KeyFileInit(3, file.reg(), 20), kOk);
    PatchCached(file.cache(), 0, 2, Bytes32(1046526));
    EXPECT_EQ(KeyInsert(file.reg(), MakeEntry("A", 1, 20)), kKeyFileNearlyFull);
    EXPECT_EQ(KeyInsert(file.reg(), MakeEntry("B", 2, 20)), kOk);  // no new node
    KeyEntry found = MakeEntry("A", 0, 20);
    EXPECT_EQ(KeyFirstMatch(file.reg(), found), kOk);
    EXPECT_EQ(found.position, 1u);
    file.Flush();
    EXPECT_EQ(Load32(file.DiskBlock(0), 15), 1046527u);  // the root
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
    // With every bit set no node is left, and nothing changes.
    PatchCached(file.cache(), 0, 8, std::vector<uint8_t>(2040, 0xFF));
    EXPECT_EQ(KeyInsert(file.reg(), MakeEntry("A", 1, 20)), kKeyFileFull);
    found = MakeEntry("A", 0, 20);
    EXPECT_EQ(KeyFirstMatch(file.reg(), found), kKeyIndexEmpty);
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
