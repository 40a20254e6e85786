// The kernel's lock operations on database handles, between real processes.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "lock_test_process.h"
#include "storage/block_cache.h"
#include "storage/db_handle_table.h"
#include "storage/db_kernel.h"
#include "storage/db_kernel_codes.h"
#include "storage/db_kernel_locks.h"
#include "storage/lock_file.h"
#include "storage/result_codes.h"
#include "testing/temp_dir.h"

namespace korvan::storage {
namespace {

using korvan::testing::TestProcess;
using Channel = TestProcess::Channel;
using std::chrono::milliseconds;

constexpr char kSharedType = 'S';
constexpr char kPrivateType = 'P';

// A database of the shared type, closed when the object goes.
class SharedDatabase {
 public:
  explicit SharedDatabase(const std::string& base_path) {
    iDK_SetTypeShareable(kSharedType, true);
    if (!std::filesystem::exists(base_path + "0")) {
      EXPECT_EQ(iDK_DbCreate(kSharedType, base_path, 40, &handle_), kOk);
    } else {
      EXPECT_EQ(iDK_DbOpen(kSharedType, base_path, true, true, &handle_), kOk);
    }
  }
  ~SharedDatabase() {
    if (handle_ > 0) iDK_DbClose(handle_);
  }
  int handle() const { return handle_; }

 private:
  int handle_ = 0;
};

// In a forked child: forgets the databases inherited from the parent without touching
// their files, so that the child opens them like any other process.
void ForgetInheritedDatabases() {
  for (int handle = 1; handle <= kMaxDbHandles; ++handle) {
    if (DbHandleTable::Instance().Find(handle) == nullptr) continue;
    BlockCache::Instance().Close(handle);
    DbHandleTable::Instance().Release(handle);
  }
}

// A user that opens the database, registers, locks `name` exclusively and waits for 'Q'.
int ExclusiveHolder(const Channel& channel, const std::string& base_path, const std::string& name) {
  ForgetInheritedDatabases();
  int handle = 0;
  if (iDK_DbOpen(kSharedType, base_path, true, true, &handle) != kOk) return 1;
  int task = -1;
  if (iDK_DbLock(handle, 4711, false, &task) != kOk) return 2;
  if (iDK_LockSet(handle, task, true, name, nullptr) != kOk) return 3;
  channel.Send(static_cast<char>(task));
  if (channel.Receive() != 'Q') return 4;
  return iDK_DbClose(handle) == kOk ? 0 : 5;
}

TEST(LockKernel, TypesWithoutLockingAndInvalidHandles) {
  korvan::testing::TempDir dir;
  iDK_SetTypeShareable(kPrivateType, false);
  int handle = 0;
  ASSERT_EQ(iDK_DbCreate(kPrivateType, dir.File("DB_Private.QP"), 40, &handle), kOk);
  int task = -1;
  EXPECT_EQ(iDK_DbLock(handle, 1, false, &task), kDkNoLockingForType);
  EXPECT_EQ(iDK_DbUnlock(handle), kDkNoLockingForType);
  EXPECT_EQ(iDK_LockSet(handle, 0, true, "A", nullptr), kDkOpenedByOtherWriter);
  EXPECT_EQ(iDK_LockRelease(handle, 0, "A"), kDkOpenedByOtherWriter);
  EXPECT_EQ(iDK_LockReleaseAll(handle, 0), kDkOpenedByOtherWriter);
  EXPECT_EQ(iDK_WriteLockSet(handle, 0, "A", nullptr), kDkOpenedByOtherWriter);
  EXPECT_EQ(iDK_WriteLockRelease(handle, 0, "A"), kDkOpenedByOtherWriter);
  EXPECT_FALSE(std::filesystem::exists(dir.File("DB_Private.QP2")));
  EXPECT_EQ(iDK_DbClose(handle), kOk);

  EXPECT_EQ(iDK_DbLock(handle, 1, false, &task), kDkInvalidHandle);
  EXPECT_EQ(iDK_LockSet(0, 0, true, "A", nullptr), kDkInvalidHandle);
  EXPECT_EQ(iDK_WriteLockSet(41, 0, "A", nullptr), kDkInvalidHandle);
  EXPECT_EQ(iDK_DbUnlock(handle), kDkInvalidHandle);
}

TEST(LockKernel, RegisterLockAndUnregisterOneProcess) {
  korvan::testing::TempDir dir;
  std::string base = dir.File("DB_Lv.QS");
  SharedDatabase db(base);
  int handle = db.handle();
  EXPECT_EQ(iDK_WriteLockSet(handle, 0, "Lv", nullptr), kDkOpenedByOtherWriter)
      << "no lock file open yet";
  EXPECT_EQ(iDK_LockSet(handle, 0, true, "Lv", nullptr), kDkIoError);

  int task = -1;
  ASSERT_EQ(iDK_DbLock(handle, 77, false, &task), kOk);
  EXPECT_EQ(task, 0);
  EXPECT_TRUE(std::filesystem::exists(base + "2"));
  EXPECT_EQ(DbHandleTable::Instance().Find(handle)->task_number, 0);
  int again = -1;
  EXPECT_EQ(iDK_DbLock(handle, 78, false, &again), kOk);
  EXPECT_EQ(again, task) << "a handle keeps its task";

  EXPECT_EQ(iDK_LockSet(handle, task, true, "Pos1", nullptr), kOk);
  EXPECT_EQ(iDK_LockSet(handle, task, false, "Pos1", nullptr), kOk);
  EXPECT_EQ(iDK_LockRelease(handle, task, "Pos1"), kOk);
  EXPECT_EQ(iDK_LockRelease(handle, task, "Pos1"), kOk);
  EXPECT_EQ(iDK_LockRelease(handle, task, "Pos1"), kDkIoError) << "not held any more";
  EXPECT_EQ(iDK_LockSet(handle, task + 1, true, "Pos1", nullptr), kDkIoError)
      << "task not registered";
  EXPECT_EQ(iDK_WriteLockSet(handle, task, "Lv", nullptr), kOk);
  EXPECT_EQ(iDK_WriteLockRelease(handle, task, "Lv"), kOk);
  EXPECT_EQ(iDK_WriteLockRelease(handle, task, "Lv"), kDkIoError);
  EXPECT_EQ(iDK_LockSet(handle, task, true, "Pos2", nullptr), kOk);
  EXPECT_EQ(iDK_LockReleaseAll(handle, task), kOk);
  EXPECT_EQ(iDK_LockRelease(handle, task, "Pos2"), kDkIoError);

  EXPECT_EQ(iDK_DbUnlock(handle), kOk);
  EXPECT_FALSE(std::filesystem::exists(base + "2")) << "the last task deleted the lock file";
  EXPECT_EQ(DbHandleTable::Instance().Find(handle)->task_number, kNoTask);
  EXPECT_EQ(iDK_DbUnlock(handle), kOk) << "nothing left to unlock";

  // Closing a database unregisters its task as well.
  ASSERT_EQ(iDK_DbLock(handle, 77, false, &task), kOk);
  EXPECT_TRUE(std::filesystem::exists(base + "2"));
  EXPECT_EQ(iDK_DbClose(handle), kOk);
  EXPECT_FALSE(std::filesystem::exists(base + "2"));
}

TEST(LockKernel, WaitsForAnotherProcessAndMapsTheResults) {
  korvan::testing::TempDir dir;
  std::string base = dir.File("DB_Lv.QS");
  SharedDatabase db(base);
  int handle = db.handle();
  int task = -1;
  ASSERT_EQ(iDK_DbLock(handle, 1, false, &task), kOk);

  TestProcess holder([&](const Channel& channel) { return ExclusiveHolder(channel, base, "R1"); });
  int holder_task = holder.Receive();
  ASSERT_NE(holder_task, task);

  EXPECT_EQ(iDK_LockSet(handle, task, false, "R1", nullptr), kDkRecordLocked);
  EXPECT_EQ(iDK_WriteLockSet(handle, task, "R1", nullptr), kDkRecordLocked);

  GiveUpAfterTimeOut handler(milliseconds(80));
  SetPendingLockDiagnostics(true);
  ::testing::internal::CaptureStderr();
  auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(iDK_LockSet(handle, task, true, "R1", &handler), kDkSharingViolation);
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(80));
  std::string diagnostics = ::testing::internal::GetCapturedStderr();
  SetPendingLockDiagnostics(false);
  EXPECT_EQ(diagnostics, "DBKernel: Pending LockSet. DB \"" + base + "\" has exclusive lock\n");
  ASSERT_TRUE(handler.last_holder());
  EXPECT_EQ(handler.last_holder()->task, holder_task);
  EXPECT_EQ(handler.last_holder()->user_identity, 4711u);

  holder.Send('Q');
  EXPECT_EQ(holder.Wait(), 0);
  EXPECT_TRUE(std::filesystem::exists(base + "2")) << "this process is still registered";
  EXPECT_EQ(iDK_LockSet(handle, task, true, "R1", nullptr), kOk);
  EXPECT_EQ(iDK_DbUnlock(handle), kOk);
  EXPECT_FALSE(std::filesystem::exists(base + "2"));
}

}  // namespace
}  // namespace korvan::storage
