#include "storage/lock_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

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

constexpr int kRegistration = 41;

std::unique_ptr<LockFile> OpenLockFile(const std::string& path, int registration = kRegistration) {
  std::unique_ptr<LockFile> lock_file;
  EXPECT_EQ(LockFile::Open(path, registration, &lock_file), kOk);
  return lock_file;
}

std::vector<KeyEntry> EntriesOfKind(LockFile& lock_file, char kind) {
  std::vector<KeyEntry> all;
  EXPECT_EQ(lock_file.ReadAllEntries(&all), kOk);
  std::vector<KeyEntry> of_kind;
  for (const KeyEntry& entry : all) {
    if (entry.key[0] == kind) of_kind.push_back(entry);
  }
  return of_kind;
}

TaskTable ReadTasks(LockFile& lock_file) {
  auto entries = EntriesOfKind(lock_file, 'L');
  EXPECT_EQ(entries.size(), 1u);
  if (entries.size() != 1) return {};
  auto table = ParseTaskTable(entries.front());
  EXPECT_TRUE(table);
  return table.value_or(TaskTable{});
}

// One process can register several tasks; the protocol between them is the same as
// between processes (the byte-range mutex is tested with real processes elsewhere).
TEST(LockFile, CreatesRegistersAndDeletesWithTheLastTask) {
  testing::TempDir dir;
  std::string path = dir.File("DB_Lv.QA2");
  auto lock_file = OpenLockFile(path);
  ASSERT_TRUE(lock_file);
  EXPECT_TRUE(std::filesystem::exists(path));

  int first = -1, second = -1, third = -1;
  ASSERT_EQ(lock_file->RegisterTask(1001, false, &first), kOk);
  ASSERT_EQ(lock_file->RegisterTask(1002, false, &second), kOk);
  ASSERT_EQ(lock_file->RegisterTask(1003, false, &third), kOk);
  EXPECT_EQ(first, 0);
  EXPECT_EQ(second, 1);
  EXPECT_EQ(third, 2);
  EXPECT_GE(std::filesystem::file_size(path), 2u * 2048) << "header and root node";

  TaskTable tasks = ReadTasks(*lock_file);
  EXPECT_EQ(tasks.count, 3);
  EXPECT_TRUE(tasks.Has(0) && tasks.Has(1) && tasks.Has(2));
  auto users = EntriesOfKind(*lock_file, 'U');
  ASSERT_EQ(users.size(), 3u);
  EXPECT_EQ(ParseUserTask(users[1]), 1);
  EXPECT_EQ(users[1].position, 1002u) << "the U entry carries the user's identity";

  // The lowest free number is handed out again; reuse takes over a user's own task.
  ASSERT_EQ(lock_file->UnregisterTask(second), kOk);
  EXPECT_FALSE(ReadTasks(*lock_file).Has(1));
  int again = -1;
  ASSERT_EQ(lock_file->RegisterTask(1004, false, &again), kOk);
  EXPECT_EQ(again, 1);
  int reused = -1;
  ASSERT_EQ(lock_file->RegisterTask(1003, true, &reused), kOk);
  EXPECT_EQ(reused, third);
  EXPECT_EQ(ReadTasks(*lock_file).count, 3) << "reuse registers no new task";
  int fresh = -1;
  ASSERT_EQ(lock_file->RegisterTask(1003, false, &fresh), kOk);
  EXPECT_EQ(fresh, 3) << "without reuse the same user gets a new task";

  EXPECT_EQ(lock_file->UnregisterTask(77), kLockTaskNotRegistered);
  EXPECT_EQ(lock_file->UnregisterTask(-1), kLockTaskNotRegistered);

  for (int task : {0, 1, 2}) {
    ASSERT_EQ(lock_file->UnregisterTask(task), kOk);
    EXPECT_TRUE(std::filesystem::exists(path)) << "task " << fresh << " is still registered";
  }
  ASSERT_EQ(lock_file->UnregisterTask(fresh), kOk);
  EXPECT_TRUE(lock_file->deleted());
  EXPECT_FALSE(std::filesystem::exists(path)) << "the last task deletes the lock file";
  EXPECT_EQ(lock_file->LockReleaseAll(fresh), kLockFileNotOpen);

  // Registering again creates a new file.
  int after = -1;
  ASSERT_EQ(lock_file->RegisterTask(1005, false, &after), kOk);
  EXPECT_EQ(after, 0);
  EXPECT_TRUE(std::filesystem::exists(path));
}

TEST(LockFile, LockSetSharedExclusiveAndNesting) {
  testing::TempDir dir;
  auto lock_file = OpenLockFile(dir.File("DB_Lv.QA2"));
  int a = -1, b = -1;
  ASSERT_EQ(lock_file->RegisterTask(500, false, &a), kOk);
  ASSERT_EQ(lock_file->RegisterTask(600, false, &b), kOk);
  LockHolder holder;

  EXPECT_EQ(lock_file->LockSet(a, LockMode::kShared, "Pos1", &holder), kOk);
  EXPECT_EQ(lock_file->LockSet(b, LockMode::kShared, "Pos1", &holder), kOk);
  EXPECT_EQ(lock_file->LockSet(b, LockMode::kExclusive, "Pos1", &holder), kLockNameExclusive);
  EXPECT_EQ(holder.task, a);
  EXPECT_EQ(holder.user_identity, 500u);
  ASSERT_EQ(lock_file->LockRelease(a, "Pos1"), kOk);
  EXPECT_EQ(lock_file->LockSet(b, LockMode::kExclusive, "Pos1", &holder), kOk)
      << "upgrade once no other task holds the name";
  auto locks = EntriesOfKind(*lock_file, 'I');
  ASSERT_EQ(locks.size(), 1u);
  EXPECT_EQ(*ParseNameLock(locks[0]), (NameLock{"Pos1", LockMode::kExclusive, b, 2}));
  EXPECT_EQ(lock_file->LockSet(a, LockMode::kShared, "Pos1", &holder), kLockNameExclusive);
  EXPECT_EQ(holder.task, b);

  // Nested locks: two sets need two releases.
  ASSERT_EQ(lock_file->LockSet(a, LockMode::kExclusive, "Pos2", &holder), kOk);
  ASSERT_EQ(lock_file->LockSet(a, LockMode::kShared, "Pos2", &holder), kOk);
  auto index = EntriesOfKind(*lock_file, 'D');
  ASSERT_EQ(index.size(), 2u);
  EXPECT_EQ(*ParseTaskIndex(index[0]), (NameLock{"Pos2", LockMode::kExclusive, a, 2}))
      << "a nested shared request keeps the exclusive mode";
  EXPECT_EQ(lock_file->LockSet(b, LockMode::kShared, "Pos2", &holder), kLockNameExclusive);
  ASSERT_EQ(lock_file->LockRelease(a, "Pos2"), kOk);
  EXPECT_EQ(lock_file->LockSet(b, LockMode::kShared, "Pos2", &holder), kLockNameExclusive)
      << "one release of two leaves the lock held";
  ASSERT_EQ(lock_file->LockRelease(a, "Pos2"), kOk);
  EXPECT_EQ(lock_file->LockSet(b, LockMode::kShared, "Pos2", &holder), kOk);
  EXPECT_EQ(lock_file->LockRelease(a, "Pos2"), kLockNotHeld);

  // Names are exact: a longer name sharing the prefix is a different lock.
  EXPECT_EQ(lock_file->LockSet(a, LockMode::kExclusive, "Pos", &holder), kOk);
  EXPECT_EQ(lock_file->LockSet(a, LockMode::kExclusive, "Pos10", &holder), kOk);
  // Names are cut at the pad byte and at 31 bytes.
  EXPECT_EQ(lock_file->LockSet(a, LockMode::kExclusive, "Pos3\x04\x04", &holder), kOk);
  EXPECT_EQ(lock_file->LockSet(b, LockMode::kShared, "Pos3", &holder), kLockNameExclusive);
  std::string long_name(31, 'q');
  EXPECT_EQ(lock_file->LockSet(a, LockMode::kExclusive, long_name + "1", &holder), kOk);
  EXPECT_EQ(lock_file->LockSet(b, LockMode::kShared, long_name + "2", &holder), kLockNameExclusive);

  EXPECT_EQ(lock_file->LockSet(9, LockMode::kShared, "Pos1", &holder), kLockTaskNotRegistered);
  EXPECT_EQ(lock_file->LockRelease(9, "Pos1"), kLockTaskNotRegistered);

  // Release all: every lock of a, whatever its nesting, and nothing of b.
  ASSERT_EQ(lock_file->LockSet(a, LockMode::kShared, "Pos4", &holder), kOk);
  ASSERT_EQ(lock_file->LockSet(a, LockMode::kShared, "Pos4", &holder), kOk);
  ASSERT_EQ(lock_file->LockReleaseAll(a), kOk);
  for (const KeyEntry& entry : EntriesOfKind(*lock_file, 'I')) {
    EXPECT_EQ(ParseNameLock(entry)->task, b);
  }
  for (const KeyEntry& entry : EntriesOfKind(*lock_file, 'D')) {
    EXPECT_EQ(ParseTaskIndex(entry)->task, b);
  }
  EXPECT_EQ(EntriesOfKind(*lock_file, 'I').size(), 2u);  // Pos1 and Pos2 of b
  EXPECT_EQ(lock_file->LockSet(a, LockMode::kExclusive, "Pos3", &holder), kOk);
}

TEST(LockFile, WriteLocks) {
  testing::TempDir dir;
  auto lock_file = OpenLockFile(dir.File("DB_Lv.QA2"));
  int a = -1, b = -1;
  ASSERT_EQ(lock_file->RegisterTask(1, false, &a), kOk);
  ASSERT_EQ(lock_file->RegisterTask(2, false, &b), kOk);
  LockHolder holder;

  ASSERT_EQ(lock_file->LockSet(a, LockMode::kShared, "Lv", &holder), kOk);
  EXPECT_EQ(lock_file->WriteLockSet(b, "Lv", &holder), kLockNameWriteLocked);
  EXPECT_EQ(holder.task, a);
  EXPECT_EQ(lock_file->WriteLockSet(a, "Lv", &holder), kOk) << "own locks do not refuse";
  EXPECT_EQ(lock_file->WriteLockSet(a, "Lv", &holder), kOk) << "taking it again is harmless";
  auto write_locks = EntriesOfKind(*lock_file, 'W');
  ASSERT_EQ(write_locks.size(), 1u);
  EXPECT_EQ(*ParseWriteLock(write_locks[0]), (WriteLock{"Lv", a}));

  EXPECT_EQ(lock_file->LockSet(b, LockMode::kShared, "Lv", &holder), kLockWriteLockHeld);
  EXPECT_EQ(holder.task, a);
  EXPECT_EQ(holder.user_identity, 1u);
  EXPECT_EQ(lock_file->LockSet(b, LockMode::kShared, "Other", &holder), kOk)
      << "a write lock refuses lock sets on its own name only";
  EXPECT_EQ(lock_file->WriteLockSet(b, "Third", &holder), kLockNameWriteLocked)
      << "any write lock of another task refuses a write lock";
  EXPECT_EQ(holder.task, a);

  EXPECT_EQ(lock_file->WriteLockRelease(b, "Lv"), kLockNoWriteLock);
  EXPECT_EQ(lock_file->WriteLockRelease(a, "Lv"), kOk);
  EXPECT_EQ(lock_file->WriteLockRelease(a, "Lv"), kLockNoWriteLock);
  EXPECT_EQ(lock_file->WriteLockSet(b, "Third", &holder), kOk);

  // Unregistering removes the task's write locks with its other locks.
  ASSERT_EQ(lock_file->UnregisterTask(b), kOk);
  EXPECT_TRUE(EntriesOfKind(*lock_file, 'W').empty());
  for (const KeyEntry& entry : EntriesOfKind(*lock_file, 'I')) {
    EXPECT_NE(ParseNameLock(entry)->task, b);
  }
}

TEST(LockFile, RefusesFullTaskTableAndDamagedFiles) {
  testing::TempDir dir;
  std::string path = dir.File("DB_Lv.QA2");
  auto lock_file = OpenLockFile(path);
  for (int i = 0; i < kMaxLockTasks; ++i) {
    int task = -1;
    ASSERT_EQ(lock_file->RegisterTask(static_cast<uint32_t>(i), false, &task), kOk);
    ASSERT_EQ(task, i);
  }
  int task = -1;
  EXPECT_EQ(lock_file->RegisterTask(9999, false, &task), kDkTooManyTasks);
  EXPECT_EQ(ReadTasks(*lock_file).count, kMaxLockTasks);
  lock_file.reset();

  // A lock file whose "L" entry is gone cannot register anybody.
  std::filesystem::remove(path);
  lock_file = OpenLockFile(path);
  ASSERT_EQ(lock_file->RegisterTask(1, false, &task), kOk);
  auto entries = EntriesOfKind(*lock_file, 'L');
  ASSERT_EQ(entries.size(), 1u);
  lock_file.reset();
  {
    int fd = open(path.c_str(), O_RDWR);
    ASSERT_GE(fd, 0);
    BlockCache::Instance().Open(45, fd, path, kLockFileCacheBlocks);
    EXPECT_EQ(KeyDelete(45, entries.front()), kOk);
    EXPECT_EQ(BlockCache::Instance().WriteAll(45), kOk);
    BlockCache::Instance().Close(45);
    close(fd);
  }
  lock_file = OpenLockFile(path);
  EXPECT_EQ(lock_file->RegisterTask(2, false, &task), kLockEntryMissing);
  EXPECT_TRUE(EntriesOfKind(*lock_file, 'L').empty()) << "nothing was written";

  // A header that is not a key file's gives the key layer's code, not a crash.
  lock_file.reset();
  {
    FILE* file = std::fopen(path.c_str(), "r+b");
    ASSERT_NE(file, nullptr);
    std::vector<char> garbage(2048, '\xFF');
    std::fwrite(garbage.data(), 1, garbage.size(), file);
    std::fclose(file);
  }
  lock_file = OpenLockFile(path);
  EXPECT_EQ(lock_file->RegisterTask(2, false, &task), kKeyFileUnknownVersion);

  // A file shorter than a header and a root node was never completed: the next user
  // initialises it.
  lock_file.reset();
  std::filesystem::resize_file(path, 100);
  lock_file = OpenLockFile(path);
  ASSERT_EQ(lock_file->RegisterTask(3, false, &task), kOk);
  EXPECT_EQ(task, 0);
}

TEST(LockFile, OpenFailures) {
  testing::TempDir dir;
  std::unique_ptr<LockFile> lock_file;
  EXPECT_EQ(LockFile::Open(dir.File("missing/DB.QA2"), kRegistration, &lock_file),
            kDkLockFileInitFailed);
  EXPECT_FALSE(lock_file);
  if (geteuid() != 0) {
    std::string read_only = dir.File("ro");
    std::filesystem::create_directory(read_only);
    chmod(read_only.c_str(), 0555);
    EXPECT_EQ(LockFile::Open(read_only + "/DB.QA2", kRegistration, &lock_file), kDkMediumReadOnly);
    chmod(read_only.c_str(), 0755);
  }
}

}  // namespace
}  // namespace korvan::storage
