// Lock semantics (shared, exclusive, nesting, write locks) are checked against a model in
// lock_random_test.cpp; this file covers registration, damaged files and the entry layout.
#include "storage/lock_file.h"
#include "storage/lock_entry_keys.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "storage/block_cache.h"
#include "storage/db_kernel_codes.h"
#include "storage/result_codes.h"
#include "testing/temp_dir.h"

namespace korvan::storage {
namespace {

std::unique_ptr<LockFile> OpenLockFile(const std::string& path) {
  std::unique_ptr<LockFile> lock_file;
  EXPECT_EQ(LockFile::Open(path, 41, &lock_file), kOk);
  return lock_file;
}

std::vector<KeyEntry> EntriesOfKind(LockFile& lock_file, char kind) {
  std::vector<KeyEntry> all;
  EXPECT_EQ(lock_file.ReadAllEntries(&all), kOk);
  std::erase_if(all, [kind](const KeyEntry& entry) { return entry.key[0] != kind; });
  return all;
}

int RegisteredTasks(LockFile& lock_file) {
  const auto entries = EntriesOfKind(lock_file, 'L');
  return entries.size() == 1 ? ParseTaskTable(entries.front()).value_or(TaskTable{}).count : -1;
}

// One process can register several tasks; the protocol between them is the same as
// between processes (the byte-range mutex is tested with real processes elsewhere).
TEST(LockFile, RegistersTasksAndDeletesTheFileWithTheLastOne) {
  korvan::testing::TempDir dir;
  const std::string path = dir.File("DB_Lv.QA2");
  auto lock_file = OpenLockFile(path);
  int tasks[4];
  for (uint32_t i = 0; i < 3; ++i) {
    ASSERT_EQ(lock_file->RegisterTask(1001 + i, false, &tasks[i]), kOk);
    EXPECT_EQ(tasks[i], static_cast<int>(i));
  }
  EXPECT_EQ(RegisteredTasks(*lock_file), 3);

  // Reuse takes over the user's own task; without it the same user gets a new one.
  int task = -1;
  ASSERT_EQ(lock_file->RegisterTask(1003, true, &task), kOk);
  EXPECT_EQ(task, 2);
  EXPECT_EQ(RegisteredTasks(*lock_file), 3);
  ASSERT_EQ(lock_file->RegisterTask(1003, false, &tasks[3]), kOk);
  EXPECT_EQ(tasks[3], 3);
  EXPECT_EQ(lock_file->UnregisterTask(77), kLockTaskNotRegistered);
  EXPECT_EQ(lock_file->UnregisterTask(-1), kLockTaskNotRegistered);

  for (int t : tasks) {
    EXPECT_TRUE(std::filesystem::exists(path));
    ASSERT_EQ(lock_file->UnregisterTask(t), kOk);
  }
  EXPECT_TRUE(lock_file->deleted());
  EXPECT_FALSE(std::filesystem::exists(path)) << "the last task deletes the lock file";
  EXPECT_EQ(lock_file->LockReleaseAll(0), kLockFileNotOpen);
  ASSERT_EQ(lock_file->RegisterTask(1005, false, &task), kOk);
  EXPECT_EQ(task, 0);
  EXPECT_TRUE(std::filesystem::exists(path)) << "registering again creates a new file";
}

TEST(LockFile, RefusesFullTaskTableAndDamagedFiles) {
  korvan::testing::TempDir dir;
  const std::string path = dir.File("DB_Lv.QA2");
  auto lock_file = OpenLockFile(path);
  int task = -1;
  for (int i = 0; i < kMaxLockTasks; ++i) {
    ASSERT_EQ(lock_file->RegisterTask(static_cast<uint32_t>(i), false, &task), kOk);
  }
  EXPECT_EQ(lock_file->RegisterTask(9999, false, &task), kDkTooManyTasks);
  EXPECT_EQ(RegisteredTasks(*lock_file), kMaxLockTasks);
  lock_file.reset();

  // A lock file whose "L" entry is gone cannot register anybody.
  std::filesystem::remove(path);
  lock_file = OpenLockFile(path);
  ASSERT_EQ(lock_file->RegisterTask(1, false, &task), kOk);
  const auto entries = EntriesOfKind(*lock_file, 'L');
  ASSERT_EQ(entries.size(), 1u);
  lock_file.reset();
  const int fd = open(path.c_str(), O_RDWR);
  ASSERT_GE(fd, 0);
  BlockCache::Instance().Open(45, fd, path, kLockFileCacheBlocks);
  EXPECT_EQ(KeyDelete(45, entries.front()), kOk);
  EXPECT_EQ(BlockCache::Instance().WriteAll(45), kOk);
  BlockCache::Instance().Close(45);
  lock_file = OpenLockFile(path);
  EXPECT_EQ(lock_file->RegisterTask(2, false, &task), kLockEntryMissing);
  EXPECT_TRUE(EntriesOfKind(*lock_file, 'L').empty()) << "nothing was written";

  // A header that is not a key file's gives the key layer's code, not a crash.
  lock_file.reset();
  ASSERT_EQ(pwrite(fd, std::vector<char>(2048, '\xFF').data(), 2048, 0), 2048);
  close(fd);
  lock_file = OpenLockFile(path);
  EXPECT_EQ(lock_file->RegisterTask(2, false, &task), kKeyFileUnknownVersion);

  // A file shorter than a header and a root node was never completed: it is initialised.
  lock_file.reset();
  std::filesystem::resize_file(path, 100);
  lock_file = OpenLockFile(path);
  ASSERT_EQ(lock_file->RegisterTask(3, false, &task), kOk);
  EXPECT_EQ(task, 0);
}

TEST(LockFile, OpenFailures) {
  korvan::testing::TempDir dir;
  std::unique_ptr<LockFile> lock_file;
  EXPECT_EQ(LockFile::Open(dir.File("missing/DB.QA2"), 41, &lock_file), kDkLockFileInitFailed);
  EXPECT_FALSE(lock_file);
  if (geteuid() != 0) {  // root may write anywhere
    const std::string read_only = dir.File("ro");
    std::filesystem::create_directory(read_only);
    chmod(read_only.c_str(), 0555);
    EXPECT_EQ(LockFile::Open(read_only + "/DB.QA2", 41, &lock_file), kDkMediumReadOnly);
    chmod(read_only.c_str(), 0755);
  }
}

std::string KeyText(const KeyEntry& entry) {
  return std::string(reinterpret_cast<const char*>(entry.key), kLockKeyLength);
}

std::string Pads(size_t count) {
  return std::string(count, '\x04');
}

// The entries are the lock file's format, shared by every process using a database.
TEST(LockEntryKeys, EntriesHaveTheirByteLayoutAndParseBack) {
  TaskTable table;
  for (int task : {0, 9, 247, 9}) table.Set(task);
  EXPECT_EQ(table.count, 3);
  EXPECT_EQ(table.LowestFree(), 1);
  KeyEntry tasks = TaskTableEntry(table);
  std::string bitmap(31, '\0');
  bitmap[0] = 0x01;     // task 0
  bitmap[1] = 0x02;     // task 9
  bitmap[30] = '\x80';  // task 247
  EXPECT_EQ(KeyText(tasks), "L\x03" + bitmap + Pads(2));
  const auto parsed = ParseTaskTable(tasks);
  ASSERT_TRUE(parsed);
  EXPECT_TRUE(parsed->count == 3 && parsed->Has(9) && parsed->Has(247) && !parsed->Has(1));
  tasks.key[1] = 4;  // count disagrees with the bitmap
  EXPECT_FALSE(ParseTaskTable(tasks));

  KeyEntry user = UserEntry(0x2C, 987654);
  EXPECT_EQ(KeyText(user), "U2C" + Pads(32));
  EXPECT_EQ(user.position, 987654u);
  EXPECT_EQ(ParseUserTask(user), 0x2C);

  KeyEntry write_lock = WriteLockEntry(WriteLock{std::string(31, 'x'), 247});
  EXPECT_EQ(KeyText(write_lock), "W" + std::string(31, 'x') + "F7" + Pads(1));
  EXPECT_EQ(*ParseWriteLock(write_lock), (WriteLock{std::string(31, 'x'), 247}));
  EXPECT_EQ(ParseUserTask(write_lock), -1);
  EXPECT_FALSE(ParseWriteLock(user));

  const NameLock lock{"A1B2", LockMode::kExclusive, 0x1F, 3};
  KeyEntry name_lock = NameLockEntry(lock);
  EXPECT_EQ(KeyText(name_lock), "IA1B2" + Pads(27) + "X1F");
  EXPECT_EQ(name_lock.position, 3u) << "the position carries the nesting count";
  KeyEntry index = TaskIndexEntry(lock);
  EXPECT_EQ(KeyText(index), "D1FA1B2" + Pads(27) + "X");
  EXPECT_EQ(*ParseNameLock(name_lock), lock);
  EXPECT_EQ(*ParseTaskIndex(index), lock);
  EXPECT_FALSE(ParseNameLock(index)) << "a D entry is not an I entry";
  name_lock.key[32] = 'Z';
  EXPECT_FALSE(ParseNameLock(name_lock));
  index.key[1] = 'q';
  EXPECT_FALSE(ParseTaskIndex(index));
}

TEST(LockEntryKeys, TaskNumbersAndNames) {
  EXPECT_EQ(ReadTaskHex("F7"), 247);
  EXPECT_EQ(ReadTaskHex("F8"), -1) << "248 is beyond the task table";
  EXPECT_EQ(ReadTaskHex("0a"), -1) << "lowercase digits are not written";
  EXPECT_EQ(LockNameOf("AB12\x04\x04\x04"), "AB12") << "table keys arrive padded";
  EXPECT_EQ(LockNameOf(std::string(40, 'N')), std::string(31, 'N'));
  TaskTable full;
  for (int task = 0; task < kMaxLockTasks; ++task) full.Set(task);
  EXPECT_EQ(full.LowestFree(), -1);
  full.Clear(100);
  EXPECT_EQ(full.LowestFree(), 100);
}

}  // namespace
}  // namespace korvan::storage
