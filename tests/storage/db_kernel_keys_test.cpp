#include <gtest/gtest.h>

#include "db_kernel_fixture.h"
#include "storage/db_kernel.h"

namespace korvan::storage::testing {
namespace {

using DbKernelKeys = DbKernelTest;

KeyEntry Key(const std::string& text, uint32_t position = 0) {
  KeyEntry entry;
  entry.position = position;
  std::memset(entry.key, kKeyPad, sizeof entry.key);
  std::memcpy(entry.key, text.data(), text.size());
  return entry;
}

std::string Text(const KeyEntry& entry, size_t length) {
  return std::string(reinterpret_cast<const char*>(entry.key), length);
}

TEST_F(DbKernelKeys, InsertMatchAndStep) {
  const int handle = Create("db", 'T', 20);
  for (const auto& [text, position] : std::vector<std::pair<std::string, uint32_t>>{
           {"AB1", 10}, {"AB2", 20}, {"AB2", 30}, {"AC1", 40}, {"B", 50}}) {
    ASSERT_EQ(iDK_KeyInsert(handle, Key(text, position)), 0) << text;
  }
  EXPECT_EQ(iDK_KeyInsert(handle, Key("AB2", 20)), 4291);

  KeyEntry entry = Key("AB");
  uint32_t position = 0;
  ASSERT_EQ(iDK_KeyFirstMatch(handle, entry, &position), 0);
  EXPECT_EQ(position, 10u);
  EXPECT_EQ(entry.position, 10u);
  EXPECT_EQ(Text(entry, 3), "AB1");
  ASSERT_EQ(iDK_KeyNext(handle, entry, &position), 0);
  EXPECT_EQ(Text(entry, 3), "AB2");
  EXPECT_EQ(position, 20u);
  ASSERT_EQ(iDK_KeyNext(handle, entry, &position), 0);
  EXPECT_EQ(position, 30u);
  ASSERT_EQ(iDK_KeyPrev(handle, entry, &position), 0);
  EXPECT_EQ(position, 20u);

  entry = Key("AB");
  ASSERT_EQ(iDK_KeyLastMatch(handle, entry, &position), 0);
  EXPECT_EQ(Text(entry, 3), "AB2");
  EXPECT_EQ(position, 30u);
  entry = Key("B");
  ASSERT_EQ(iDK_KeyLastMatch(handle, entry, &position), 0);
  EXPECT_EQ(iDK_KeyNext(handle, entry, &position), 4314);  // end of the index
  entry = Key("Z");
  position = 77;
  EXPECT_EQ(iDK_KeyFirstMatch(handle, entry, &position), 4314);
  EXPECT_EQ(position, 77u);
  EXPECT_EQ(Text(entry, 1), "Z");

  uint32_t count = 0;
  const KeyEntry pattern = Key("AB");
  ASSERT_EQ(iDK_KeyMatchesCount(handle, pattern.key, 2, false, &count), 0);
  EXPECT_EQ(count, 3u);
  std::vector<uint32_t> positions;
  ASSERT_EQ(iDK_KeyMatchesList(handle, pattern.key, 2, false, &positions), 0);
  EXPECT_EQ(positions, (std::vector<uint32_t>{10, 20, 30}));

  bool found = false;
  KeyEntry probe = Key("AB", 30);
  ASSERT_EQ(iDK_KeyMatchEx(handle, probe, 2, &found), 0);
  EXPECT_TRUE(found);
  EXPECT_EQ(Text(probe, 3), "AB2");
  probe = Key("AB", 40);
  iDK_KeyMatchEx(handle, probe, 2, &found);
  EXPECT_FALSE(found);

  ASSERT_EQ(iDK_KeyDelete(handle, Key("AB2", 20)), 0);
  EXPECT_EQ(iDK_KeyDelete(handle, Key("AB2", 20)), 4314);
  ASSERT_EQ(iDK_KeyMatchesCount(handle, pattern.key, 2, false, &count), 0);
  EXPECT_EQ(count, 2u);
}

TEST_F(DbKernelKeys, FreeSpaceKeysSortLastAndAreNotCounted) {
  const int handle = Create("db", 'T', 20);
  std::vector<std::vector<uint8_t>> records;
  for (int i = 0; i < 4; ++i) {
    records.push_back(MakeRecord('A', 100 + 10 * i, 0));
    Insert(handle, records.back());
  }
  std::vector<uint8_t> old(48);
  ASSERT_EQ(iDK_RecordDelete(handle, old.data(), 80), 0);   // 100 bytes free
  ASSERT_EQ(iDK_RecordDelete(handle, old.data(), 290), 0);  // 120 bytes free
  ASSERT_EQ(iDK_KeyInsert(handle, Key("A1", 500)), 0);

  KeyEntry all = Key("");
  uint32_t count = 0;
  ASSERT_EQ(iDK_KeyMatchesCount(handle, all.key, 0, false, &count), 0);
  EXPECT_EQ(count, 1u);
  ASSERT_EQ(iDK_KeyMatchesCount(handle, all.key, 0, true, &count), 0);
  EXPECT_EQ(count, 3u);
  uint32_t position = 0;
  ASSERT_EQ(iDK_KeyLastMatch(handle, all, &position), 0);
  EXPECT_EQ(Text(all, 12), "~        120");
  EXPECT_EQ(position, 290u);
}

TEST_F(DbKernelKeys, ReadOnlyHandlesRefuseKeyChanges) {
  iDK_SetTypeShareable('S', true);
  int handle = 0;
  ASSERT_EQ(iDK_DbCreate('S', Base("db"), 20, &handle), 0);
  ASSERT_EQ(iDK_KeyInsert(handle, Key("X", 1)), 0);
  ASSERT_EQ(iDK_DbClose(handle), 0);
  ASSERT_EQ(iDK_DbOpen('S', Base("db"), false, true, &handle), 0);
  EXPECT_EQ(iDK_KeyInsert(handle, Key("Y", 1)), 4320);
  EXPECT_EQ(iDK_KeyDelete(handle, Key("X", 1)), 4320);
  KeyEntry entry = Key("X");
  uint32_t position = 0;
  EXPECT_EQ(iDK_KeyFirstMatch(handle, entry, &position), 0);
  EXPECT_EQ(position, 1u);
  auto record = MakeRecord('A', 60, 0);
  int32_t at = 0;
  EXPECT_EQ(iDK_RecordInsert(handle, record.data(), 60, true, &at), 4320);
  iDK_SetTypeShareable('S', false);
}

}  // namespace
}  // namespace korvan::storage::testing
