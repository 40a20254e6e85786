#include "storage/lock_entry_keys.h"

#include <gtest/gtest.h>

#include <string>

namespace korvan::storage {
namespace {

std::string KeyText(const KeyEntry& entry) {
  return std::string(reinterpret_cast<const char*>(entry.key), kLockKeyLength);
}

std::string Pads(size_t count) {
  return std::string(count, '\x04');
}

TEST(LockEntryKeys, TaskHexAndNames) {
  char hex[2];
  WriteTaskHex(0, hex);
  EXPECT_EQ(std::string(hex, 2), "00");
  WriteTaskHex(171, hex);
  EXPECT_EQ(std::string(hex, 2), "AB");
  WriteTaskHex(247, hex);
  EXPECT_EQ(std::string(hex, 2), "F7");
  EXPECT_EQ(ReadTaskHex("F7"), 247);
  EXPECT_EQ(ReadTaskHex("0A"), 10);
  EXPECT_EQ(ReadTaskHex("F8"), -1) << "248 is beyond the task table";
  EXPECT_EQ(ReadTaskHex("0a"), -1) << "lowercase digits are not written";
  EXPECT_EQ(ReadTaskHex("G0"), -1);

  EXPECT_EQ(LockNameOf("AB12\x04\x04\x04"), "AB12") << "table keys arrive padded";
  EXPECT_EQ(LockNameOf(std::string(40, 'N')), std::string(31, 'N'));
  EXPECT_EQ(LockNameOf("Region"), "Region");
}

TEST(LockEntryKeys, TaskTableEntryLayout) {
  TaskTable table;
  EXPECT_EQ(table.LowestFree(), 0);
  table.Set(0);
  table.Set(9);
  table.Set(247);
  table.Set(9);  // setting twice counts once
  EXPECT_EQ(table.count, 3);
  EXPECT_EQ(table.LowestFree(), 1);

  KeyEntry entry = TaskTableEntry(table);
  EXPECT_EQ(entry.position, 0u);
  EXPECT_EQ(entry.key[0], 'L');
  EXPECT_EQ(entry.key[1], 3) << "byte 1 holds the number of tasks";
  EXPECT_EQ(entry.key[2], 0x01) << "task 0: bit 0 of the first bitmap byte (offset 2)";
  EXPECT_EQ(entry.key[3], 0x02) << "task 9: bit 1 of bitmap byte 1";
  EXPECT_EQ(entry.key[32], 0x80) << "task 247: bit 7 of the last bitmap byte";
  EXPECT_EQ(entry.key[33], 0x04);
  EXPECT_EQ(entry.key[34], 0x04);

  auto parsed = ParseTaskTable(entry);
  ASSERT_TRUE(parsed);
  EXPECT_TRUE(parsed->Has(0) && parsed->Has(9) && parsed->Has(247));
  EXPECT_FALSE(parsed->Has(1));
  EXPECT_EQ(parsed->count, 3);

  entry.key[1] = 4;  // count disagrees with the bitmap
  EXPECT_FALSE(ParseTaskTable(entry));

  KeyEntry empty = TaskTableEntry(TaskTable{});
  EXPECT_EQ(KeyText(empty), std::string("L") + '\0' + std::string(31, '\0') + Pads(2));

  TaskTable full;
  for (int task = 0; task < kMaxLockTasks; ++task) full.Set(task);
  EXPECT_EQ(full.LowestFree(), -1);
  full.Clear(100);
  EXPECT_EQ(full.LowestFree(), 100);
  EXPECT_EQ(full.count, kMaxLockTasks - 1);
}

TEST(LockEntryKeys, UserAndWriteLockLayout) {
  KeyEntry user = UserEntry(0x2C, 987654);
  EXPECT_EQ(KeyText(user), "U2C" + Pads(32));
  EXPECT_EQ(user.position, 987654u);
  EXPECT_EQ(ParseUserTask(user), 0x2C);
  EXPECT_EQ(KeyText(UserPattern(0x2C)), KeyText(user));

  KeyEntry write_lock = WriteLockEntry(WriteLock{"Kalkulation", 5});
  EXPECT_EQ(KeyText(write_lock), "WKalkulation" + Pads(20) + "05" + Pads(1));
  EXPECT_EQ(write_lock.position, 0u);
  auto parsed = ParseWriteLock(write_lock);
  ASSERT_TRUE(parsed);
  EXPECT_EQ(*parsed, (WriteLock{"Kalkulation", 5}));

  KeyEntry long_name = WriteLockEntry(WriteLock{std::string(31, 'x'), 247});
  EXPECT_EQ(KeyText(long_name), "W" + std::string(31, 'x') + "F7" + Pads(1));
  EXPECT_EQ(ParseWriteLock(long_name)->name, std::string(31, 'x'));

  EXPECT_EQ(ParseUserTask(write_lock), -1);
  EXPECT_FALSE(ParseWriteLock(user));
}

TEST(LockEntryKeys, NameLockAndTaskIndexLayout) {
  NameLock lock{"A1B2", LockMode::kExclusive, 0x1F, 3};
  KeyEntry name_lock = NameLockEntry(lock);
  EXPECT_EQ(KeyText(name_lock), "IA1B2" + Pads(27) + "X1F");
  EXPECT_EQ(name_lock.position, 3u) << "the position carries the nesting count";
  KeyEntry index = TaskIndexEntry(lock);
  EXPECT_EQ(KeyText(index), "D1FA1B2" + Pads(27) + "X");
  EXPECT_EQ(index.position, 3u);

  EXPECT_EQ(*ParseNameLock(name_lock), lock);
  EXPECT_EQ(*ParseTaskIndex(index), lock);

  NameLock shared{std::string(31, 'n'), LockMode::kShared, 0, 1};
  EXPECT_EQ(KeyText(NameLockEntry(shared)), "I" + std::string(31, 'n') + "Y00");
  EXPECT_EQ(KeyText(TaskIndexEntry(shared)), "D00" + std::string(31, 'n') + "Y");
  EXPECT_EQ(*ParseNameLock(NameLockEntry(shared)), shared);

  KeyEntry bad_mode = name_lock;
  bad_mode.key[32] = 'Z';
  EXPECT_FALSE(ParseNameLock(bad_mode));
  KeyEntry bad_task = index;
  bad_task.key[1] = 'q';
  EXPECT_FALSE(ParseTaskIndex(bad_task));
  EXPECT_FALSE(ParseNameLock(index)) << "a D entry is not an I entry";

  EXPECT_EQ(KeyText(TaskIndexPattern(0x1F)), "D1F" + Pads(32));
  EXPECT_EQ(KeyText(KindPattern('I', "A1B2")), "IA1B2" + Pads(30));
}

}  // namespace
}  // namespace korvan::storage
