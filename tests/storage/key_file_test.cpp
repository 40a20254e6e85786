// Key files: creation, the node layout on disk, and the documented edge cases.
#include "storage/key_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "storage/key_file_test_support.h"
#include "storage/key_tree_check.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

using testing::Load16;
using testing::Load32;
using testing::MakeEntry;
using testing::ScratchKeyFile;

std::string Numbered(int i) {
  char text[16];
  std::snprintf(text, sizeof text, "K%05d", i);
  return text;
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
  std::vector<uint8_t> v3 = file.DiskBlock(0);
  EXPECT_EQ(v3[0], 3);
  EXPECT_EQ(v3[1], 2);
  EXPECT_EQ(Load32(v3, 2), 0u);  // highest node
  EXPECT_EQ(Load32(v3, 6), 0u);  // free list
  EXPECT_EQ(v3[10], 83);
  EXPECT_EQ(Load16(v3, 11), 22);  // 2042 div 91
  EXPECT_EQ(Load16(v3, 13), 11);
  EXPECT_EQ(Load32(v3, 15), 0u);  // root
  for (size_t i = 19; i < v3.size(); ++i) ASSERT_EQ(v3[i], 0) << "offset " << i;

  ASSERT_EQ(KeyFileInit(2, file.reg(), 40), kOk);
  file.Flush();
  std::vector<uint8_t> v2 = file.DiskBlock(0);
  EXPECT_EQ(v2[0], 2);
  EXPECT_EQ(v2[1], 40);
  EXPECT_EQ(Load16(v2, 2), 44);  // 2044 div 46
  EXPECT_EQ(Load16(v2, 4), 22);
  EXPECT_EQ(Load16(v2, 6), 0);
  for (size_t i = 8; i < v2.size(); ++i) ASSERT_EQ(v2[i], 0) << "offset " << i;
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

TEST(KeyFileLayout, The23rdInsertIntoAFullRootOfKeyLength83CreatesANewRoot) {
  ScratchKeyFile file(31);
  ASSERT_EQ(KeyFileInit(3, file.reg(), 83), kOk);
  for (int i = 0; i < 22; ++i) {
    ASSERT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(i), 100 + i, 83)), kOk);
  }
  file.Flush();
  std::vector<uint8_t> header = file.DiskBlock(0);
  EXPECT_EQ(Load32(header, 15), 1u);  // one leaf, the root
  EXPECT_EQ(Load32(header, 2), 1u);
  std::vector<uint8_t> leaf = file.DiskBlock(1);
  EXPECT_EQ(Load16(leaf, 0), 22);
  EXPECT_EQ(Load32(leaf, 2), 0u);
  for (int i = 0; i < 22; ++i) {
    const size_t at = 6 + static_cast<size_t>(i) * 91;
    EXPECT_EQ(Load32(leaf, at), 0u);
    EXPECT_EQ(Load32(leaf, at + 4), 100u + i);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&leaf[at + 8]), 6), Numbered(i));
    EXPECT_EQ(leaf[at + 8 + 82], kKeyPad);
  }

  // The new key is the largest: h = 22 > H = 11, entry 12 goes up.
  ASSERT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(22), 122, 83)), kOk);
  file.Flush();
  header = file.DiskBlock(0);
  EXPECT_EQ(Load32(header, 2), 3u);   // highest node
  EXPECT_EQ(Load32(header, 15), 3u);  // the new root
  const std::vector<uint8_t> root = file.DiskBlock(3);
  EXPECT_EQ(Load16(root, 0), 1);
  EXPECT_EQ(Load32(root, 2), 1u);  // old root on the left
  EXPECT_EQ(Load32(root, 6), 2u);  // new node on the right
  EXPECT_EQ(Load32(root, 10), 111u);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(&root[14]), 6), Numbered(11));
  const std::vector<uint8_t> left = file.DiskBlock(1);
  const std::vector<uint8_t> right = file.DiskBlock(2);
  EXPECT_EQ(Load16(left, 0), 11);
  EXPECT_EQ(Load16(right, 0), 11);
  EXPECT_EQ(Load32(right, 6 + 4), 112u);
  EXPECT_EQ(Load32(right, 6 + 10 * 91 + 4), 122u);
  // Slots the old node gave up are cleared.
  for (size_t i = 6 + 11 * 91; i < 6 + 22 * 91; ++i) ASSERT_EQ(left[i], 0) << i;
  EXPECT_TRUE(CheckKeyFile(file.reg()).empty());
}

// Which entry goes up when a full node splits, for a new entry left of, at and right of
// the middle; checked through the separator that ends up in the new root.
TEST(KeyFileLayout, SplitSendsUpTheMiddleOfTheOldAndNewEntries) {
  struct Case {
    int inserted;    // key number of the 23rd entry (the first 22 are even numbers)
    int separator;   // key number expected in the new root
    int left_count;  // H
  };
  for (const Case& c : {Case{5, 20, 11}, Case{21, 21, 11}, Case{41, 22, 11}}) {
    ScratchKeyFile file(31);
    ASSERT_EQ(KeyFileInit(3, file.reg(), 83), kOk);
    for (int i = 0; i < 22; ++i) {
      ASSERT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(2 * i), 2 * i, 83)), kOk);
    }
    ASSERT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(c.inserted), c.inserted, 83)), kOk);
    file.Flush();
    const std::vector<uint8_t> root = file.DiskBlock(3);
    EXPECT_EQ(Load32(root, 10), static_cast<uint32_t>(c.separator)) << c.inserted;
    EXPECT_EQ(Load16(file.DiskBlock(1), 0), c.left_count);
    EXPECT_EQ(Load16(file.DiskBlock(2), 0), 11);
    EXPECT_TRUE(CheckKeyFile(file.reg()).empty());
    // All 23 keys are found in order.
    KeyEntry cursor = MakeEntry("", 0, 83);
    ASSERT_EQ(KeyFirstMatch(file.reg(), cursor), kOk);
    int seen = 1;
    while (KeyNext(file.reg(), cursor) == kOk) ++seen;
    EXPECT_EQ(seen, 23);
  }
}

TEST(KeyFileLayout, Version2NodesUse16BitChildren) {
  ScratchKeyFile file(31);
  ASSERT_EQ(KeyFileInit(2, file.reg(), 90), kOk);  // 21 entries of 96 bytes
  for (int i = 0; i < 22; ++i) {
    ASSERT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(i), 7 + i, 90)), kOk);
  }
  file.Flush();
  const std::vector<uint8_t> header = file.DiskBlock(0);
  EXPECT_EQ(Load16(header, 6), 3);  // root
  EXPECT_EQ(header[8], 0x07);       // nodes 1, 2, 3 in use
  const std::vector<uint8_t> root = file.DiskBlock(3);
  EXPECT_EQ(Load16(root, 0), 1);
  EXPECT_EQ(Load16(root, 2), 1);  // leftmost child
  EXPECT_EQ(Load16(root, 4), 2);  // child right of the entry
  // M = 21, H = 10: entry H+1, the eleventh key, went up.
  EXPECT_EQ(Load32(root, 6), 7u + 10);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(&root[10]), 6), Numbered(10));
  EXPECT_EQ(Load16(file.DiskBlock(1), 0), 10);
  EXPECT_EQ(Load16(file.DiskBlock(2), 0), 11);
  EXPECT_TRUE(CheckKeyFile(file.reg()).empty());
}

TEST(KeyFileEntries, EqualKeysAreOrderedBySignedPosition) {
  for (int version : {3, 2}) {
    ScratchKeyFile file(31);
    ASSERT_EQ(KeyFileInit(version, file.reg(), 12), kOk);
    const KeyEntry low = MakeEntry("SAME", 0x80000000u, 12);  // negative as signed
    const KeyEntry high = MakeEntry("SAME", 5, 12);
    ASSERT_EQ(KeyInsert(file.reg(), high), kOk);
    ASSERT_EQ(KeyInsert(file.reg(), low), kOk);
    EXPECT_EQ(KeyInsert(file.reg(), high), kKeyDuplicate);

    KeyEntry found = MakeEntry("SAME", 0, 12);
    ASSERT_EQ(KeyFirstMatch(file.reg(), found), kOk);
    EXPECT_EQ(found.position, 0x80000000u);
    found = MakeEntry("SAME", 0, 12);
    ASSERT_EQ(KeyLastMatch(file.reg(), found), kOk);
    EXPECT_EQ(found.position, 5u);

    EXPECT_EQ(KeyDelete(file.reg(), MakeEntry("SAME", 6, 12)), kKeyNotFoundOnDelete);
    EXPECT_EQ(KeyDelete(file.reg(), low), kOk);
    found = MakeEntry("SAME", 0, 12);
    ASSERT_EQ(KeyFirstMatch(file.reg(), found), kOk);
    EXPECT_EQ(found.position, 5u);
    EXPECT_EQ(KeyDelete(file.reg(), low), kKeyNotFoundOnDelete);
  }
}

TEST(KeyFileMatches, PadOnlyPatternsMatchEverythingButCountsSkipFreeSpaceKeys) {
  for (int version : {3, 2}) {
    ScratchKeyFile file(31);
    ASSERT_EQ(KeyFileInit(version, file.reg(), 91 - 1), kOk);
    const int kl = 90;
    int tilde = 0;
    for (int i = 0; i < 300; ++i) {
      const bool free_space = i % 7 == 3;
      tilde += free_space;
      const std::string text = free_space ? "~" + std::to_string(1000 + i) : Numbered(i);
      ASSERT_EQ(KeyInsert(file.reg(), MakeEntry(text, static_cast<uint32_t>(i), kl)), kOk);
    }
    KeyEntry pattern = MakeEntry("", 0, kl);
    ASSERT_EQ(KeyFirstMatch(file.reg(), pattern), kOk);
    EXPECT_EQ(testing::KeyText(pattern, kl), Numbered(0));
    pattern = MakeEntry("", 0, kl);
    ASSERT_EQ(KeyLastMatch(file.reg(), pattern), kOk);
    EXPECT_EQ(testing::KeyText(pattern, kl), "~1297");

    const KeyEntry pads = MakeEntry("", 0, kl);
    uint32_t count = 0;
    EXPECT_EQ(MatchesCount(file.reg(), pads.key, 0, false, &count), kOk);
    EXPECT_EQ(count, static_cast<uint32_t>(300 - tilde));
    EXPECT_EQ(MatchesCount(file.reg(), pads.key, 0, true, &count), kOk);
    EXPECT_EQ(count, 300u);
    const KeyEntry prefix = MakeEntry("K0001", 0, kl);  // K00010..K00019
    EXPECT_EQ(MatchesCount(file.reg(), prefix.key, 5, false, &count), kOk);
    EXPECT_EQ(count, 10u - 2u);  // 10 and 17 are free-space keys
    const KeyEntry none = MakeEntry("B", 0, kl);
    EXPECT_EQ(MatchesCount(file.reg(), none.key, 1, true, &count), kOk);
    EXPECT_EQ(count, 0u);
    KeyEntry missing = MakeEntry("B", 0, kl);
    EXPECT_EQ(KeyFirstMatch(file.reg(), missing), kKeyNoMatch);
    EXPECT_EQ(KeyLastMatch(file.reg(), missing), kKeyNoMatch);

    std::vector<uint32_t> positions;
    if (version == 2) {
      EXPECT_EQ(MatchesList(file.reg(), prefix.key, 5, false, &positions), kKeyFileUnknownVersion);
    } else {
      EXPECT_EQ(MatchesList(file.reg(), prefix.key, 5, false, &positions), kOk);
      EXPECT_EQ(positions, (std::vector<uint32_t>{11, 12, 13, 14, 15, 16, 18, 19}));
    }

    bool found = false;
    uint8_t key[kMaxKeyLength];
    EXPECT_EQ(KeyMatchEx(file.reg(), prefix.key, 5, 16, &found, key), kOk);
    EXPECT_TRUE(found);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(key), 6), Numbered(16));
    EXPECT_EQ(KeyMatchEx(file.reg(), prefix.key, 5, 26, &found, key), kOk);
    EXPECT_FALSE(found);
  }
}

TEST(KeyFileCursor, NextAndPrevWalkTheWholeTreeAndStopAtTheEnds) {
  for (int version : {3, 2}) {
    ScratchKeyFile file(31);
    ASSERT_EQ(KeyFileInit(version, file.reg(), 12), kOk);
    const int n = 2500;  // three levels at key length 12
    for (int i = 0; i < n; ++i) {
      const int k = (i * 7919) % n;
      ASSERT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(k), static_cast<uint32_t>(k), 12)), kOk);
    }
    KeyEntry cursor = MakeEntry("", 0, 12);
    ASSERT_EQ(KeyFirstMatch(file.reg(), cursor), kOk);
    for (int i = 1; i < n; ++i) {
      ASSERT_EQ(KeyNext(file.reg(), cursor), kOk);
      ASSERT_EQ(cursor.position, static_cast<uint32_t>(i));
    }
    EXPECT_EQ(KeyNext(file.reg(), cursor), kKeyNoMatch);
    for (int i = n - 2; i >= 0; --i) {
      ASSERT_EQ(KeyPrev(file.reg(), cursor), kOk);
      ASSERT_EQ(cursor.position, static_cast<uint32_t>(i));
    }
    EXPECT_EQ(KeyPrev(file.reg(), cursor), kKeyNoMatch);

    // A cursor whose pair was deleted meanwhile has reached its end.
    KeyEntry gone = MakeEntry(Numbered(100), 100, 12);
    ASSERT_EQ(KeyDelete(file.reg(), gone), kOk);
    EXPECT_EQ(KeyNext(file.reg(), gone), kKeyNoMatch);
    EXPECT_EQ(KeyPrev(file.reg(), gone), kKeyNoMatch);
    EXPECT_TRUE(CheckKeyFile(file.reg()).empty());
  }
}

TEST(KeyFileDelete, DeletingEverythingEmptiesTheTree) {
  for (int version : {3, 2}) {
    ScratchKeyFile file(31);
    ASSERT_EQ(KeyFileInit(version, file.reg(), 40), kOk);
    KeyEntry probe = MakeEntry("", 0, 40);
    EXPECT_EQ(KeyFirstMatch(file.reg(), probe), kKeyIndexEmpty);
    EXPECT_EQ(KeyDelete(file.reg(), probe), kKeyIndexEmpty);
    const int n = 1500;
    for (int i = 0; i < n; ++i) {
      ASSERT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(i), static_cast<uint32_t>(i), 40)), kOk);
    }
    for (int i = 0; i < n; ++i) {
      const int k = (i * 611) % n;
      ASSERT_EQ(KeyDelete(file.reg(), MakeEntry(Numbered(k), static_cast<uint32_t>(k), 40)), kOk)
          << k;
      if (i % 100 == 0) {
        ASSERT_TRUE(CheckKeyFile(file.reg()).empty()) << i;
      }
    }
    file.Flush();
    const std::vector<uint8_t> header = file.DiskBlock(0);
    EXPECT_EQ(version == 3 ? Load32(header, 15) : Load16(header, 6), 0u);
    probe = MakeEntry("", 0, 40);
    EXPECT_EQ(KeyFirstMatch(file.reg(), probe), kKeyIndexEmpty);
    EXPECT_EQ(KeyNext(file.reg(), probe), kKeyIndexEmpty);
    uint32_t count = 7;
    EXPECT_EQ(MatchesCount(file.reg(), probe.key, 0, true, &count), kOk);
    EXPECT_EQ(count, 0u);
    EXPECT_TRUE(CheckKeyFile(file.reg()).empty());
    if (version == 2) {
      for (size_t i = 8; i < header.size(); ++i) ASSERT_EQ(header[i], 0) << "bitmap byte " << i;
    }
  }
}

TEST(KeyFileAllocation, Version2TakesTheLowestFreeNode) {
  ScratchKeyFile file(31);
  ASSERT_EQ(KeyFileInit(2, file.reg(), 90), kOk);  // 21 entries per node
  ASSERT_EQ(KeyInsert(file.reg(), MakeEntry("A", 1, 90)), kOk);
  file.Flush();
  EXPECT_EQ(Load16(file.DiskBlock(0), 6), 1);  // node 1 first
  ASSERT_EQ(KeyDelete(file.reg(), MakeEntry("A", 1, 90)), kOk);
  file.Flush();
  EXPECT_EQ(file.DiskBlock(0)[8], 0);

  // Three leaves under a root: 1 (split), 2 (right half), 3 (root), then 4.
  for (int i = 0; i < 40; ++i) {
    ASSERT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(i), static_cast<uint32_t>(i), 90)), kOk);
  }
  file.Flush();
  EXPECT_EQ(file.DiskBlock(0)[8], 0x0F);
  // Deleting from the left leaf until it merges frees node 1 or 2; the next split
  // takes the lowest free number.
  for (int i = 0; i < 8; ++i) {
    ASSERT_EQ(KeyDelete(file.reg(), MakeEntry(Numbered(i), static_cast<uint32_t>(i), 90)), kOk);
  }
  file.Flush();
  const uint8_t bits = file.DiskBlock(0)[8];
  ASSERT_NE(bits, 0x0F) << "a leaf should have been merged away";
  int lowest_free = 1;
  while (bits & (1 << (lowest_free - 1))) ++lowest_free;
  for (int i = 100; i < 130; ++i) {
    ASSERT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(i), static_cast<uint32_t>(i), 90)), kOk);
  }
  file.Flush();
  EXPECT_TRUE(file.DiskBlock(0)[8] & (1 << (lowest_free - 1)));
  EXPECT_TRUE(CheckKeyFile(file.reg()).empty());
}

TEST(KeyFileAllocation, Version3ReusesTheMostRecentlyFreedNodeFirst) {
  ScratchKeyFile file(31);
  ASSERT_EQ(KeyFileInit(3, file.reg(), 90), kOk);  // 20 entries per node
  for (int i = 0; i < 200; ++i) {
    ASSERT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(i), static_cast<uint32_t>(i), 90)), kOk);
  }
  file.Flush();
  const uint32_t highest = Load32(file.DiskBlock(0), 2);
  // Delete until at least two nodes are free.
  int deleted = 0;
  while (deleted < 200) {
    ASSERT_EQ(KeyDelete(file.reg(), MakeEntry(Numbered(deleted), deleted, 90)), kOk);
    ++deleted;
    file.Flush();
    const std::vector<uint8_t> header = file.DiskBlock(0);
    const uint32_t head = Load32(header, 6);
    if (head != 0 && Load32(file.DiskBlock(head), 2) != 0) break;
  }
  std::vector<uint8_t> header = file.DiskBlock(0);
  EXPECT_EQ(Load32(header, 2), highest);  // freeing never lowers the counter
  const uint32_t head = Load32(header, 6);
  const std::vector<uint8_t> freed = file.DiskBlock(head);
  EXPECT_EQ(Load16(freed, 0), 0);
  const uint32_t second = Load32(freed, 2);
  ASSERT_NE(second, 0u);
  EXPECT_TRUE(CheckKeyFile(file.reg()).empty());

  // Inserting at the far end splits the rightmost leaf: the new node is the free head.
  for (int i = 1000; Load32(file.DiskBlock(0), 6) == head; ++i) {
    ASSERT_EQ(KeyInsert(file.reg(), MakeEntry(Numbered(i), static_cast<uint32_t>(i), 90)), kOk);
    file.Flush();
    ASSERT_LT(i, 1100);
  }
  header = file.DiskBlock(0);
  EXPECT_EQ(Load32(header, 6), second);
  EXPECT_EQ(Load32(header, 2), highest);
  EXPECT_GT(Load16(file.DiskBlock(head), 0), 0);
  EXPECT_TRUE(CheckKeyFile(file.reg()).empty());
}

}  // namespace
}  // namespace korvan::storage
