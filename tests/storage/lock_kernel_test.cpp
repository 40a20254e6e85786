// The kernel's lock operations on database handles, between real processes.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "db_kernel_fixture.h"
#include "storage/db_kernel_codes.h"
#include "storage/db_kernel_locks.h"
#include "storage/file/file_names.h"
#include "storage/lock_file.h"
#include "storage/result_codes.h"
#include "testing/child_process.h"

namespace korvan::storage::testing {
namespace {

using korvan::testing::ChildProcess;
using std::chrono::milliseconds;
using LockKernel = DbKernelTest;

TEST_F(LockKernel, TypesWithoutLockingAndInvalidHandles) {
  iDK_SetTypeShareable('P', false);
  const int handle = Create("DB_Private.QP", 'P');
  int task = -1;
  EXPECT_EQ(iDK_DbLock(handle, 1, false, &task), kDkNoLockingForType);
  EXPECT_EQ(iDK_DbUnlock(handle), kDkNoLockingForType);
  EXPECT_EQ(iDK_LockSet(handle, 0, true, "A", nullptr), kDkOpenedByOtherWriter);
  EXPECT_EQ(iDK_LockRelease(handle, 0, "A"), kDkOpenedByOtherWriter);
  EXPECT_EQ(iDK_LockReleaseAll(handle, 0), kDkOpenedByOtherWriter);
  EXPECT_EQ(iDK_WriteLockSet(handle, 0, "A", nullptr), kDkOpenedByOtherWriter);
  EXPECT_EQ(iDK_WriteLockRelease(handle, 0, "A"), kDkOpenedByOtherWriter);
  EXPECT_FALSE(std::filesystem::exists(Base("DB_Private.QP2")));
  EXPECT_EQ(iDK_DbClose(handle), kOk);

  EXPECT_EQ(iDK_DbLock(handle, 1, false, &task), kDkInvalidHandle);
  EXPECT_EQ(iDK_LockSet(0, 0, true, "A", nullptr), kDkInvalidHandle);
  EXPECT_EQ(iDK_WriteLockSet(41, 0, "A", nullptr), kDkInvalidHandle);
  EXPECT_EQ(iDK_DbUnlock(handle), kDkInvalidHandle);
}

TEST_F(LockKernel, RegisterLockAndUnregisterOneProcess) {
  const std::string lock_path = LockFileName(Base("DB_Lv.QS"));
  const int handle = Create("DB_Lv.QS", 'S');
  EXPECT_EQ(iDK_WriteLockSet(handle, 0, "Lv", nullptr), kDkOpenedByOtherWriter)
      << "no lock file open yet";
  EXPECT_EQ(iDK_LockSet(handle, 0, true, "Lv", nullptr), kDkIoError);

  int task = -1;
  ASSERT_EQ(iDK_DbLock(handle, 77, false, &task), kOk);
  EXPECT_TRUE(std::filesystem::exists(lock_path));
  int again = -1;
  EXPECT_EQ(iDK_DbLock(handle, 78, false, &again), kOk);
  EXPECT_EQ(again, task) << "a handle keeps its task";

  // Refusals of the lock file become the kernel's codes.
  EXPECT_EQ(iDK_LockSet(handle, task + 1, true, "Pos1", nullptr), kDkIoError)
      << "task not registered";
  EXPECT_EQ(iDK_WriteLockSet(handle, task, "Lv", nullptr), kOk);
  EXPECT_EQ(iDK_WriteLockRelease(handle, task, "Lv"), kOk);
  EXPECT_EQ(iDK_WriteLockRelease(handle, task, "Lv"), kDkIoError);
  EXPECT_EQ(iDK_LockSet(handle, task, true, "Pos2", nullptr), kOk);
  EXPECT_EQ(iDK_LockReleaseAll(handle, task), kOk);
  EXPECT_EQ(iDK_LockRelease(handle, task, "Pos2"), kDkIoError) << "not held any more";

  EXPECT_EQ(iDK_DbUnlock(handle), kOk);
  EXPECT_FALSE(std::filesystem::exists(lock_path)) << "the last task deleted the lock file";
  EXPECT_EQ(DbHandleTable::Instance().Find(handle)->task_number, kNoTask);
  EXPECT_EQ(iDK_DbUnlock(handle), kOk) << "nothing left to unlock";

  // Closing a database unregisters its task as well.
  ASSERT_EQ(iDK_DbLock(handle, 77, false, &task), kOk);
  EXPECT_EQ(iDK_DbClose(handle), kOk);
  EXPECT_FALSE(std::filesystem::exists(lock_path));
}

TEST_F(LockKernel, WaitsForAnotherProcessAndMapsTheResults) {
  const std::string base = Base("DB_Lv.QS");
  const int handle = Create("DB_Lv.QS", 'S');
  int task = -1;
  ASSERT_EQ(iDK_DbLock(handle, 1, false, &task), kOk);

  // Another user locks "R1" exclusively and holds it until told 'Q'.
  ChildProcess holder([&](const korvan::testing::Channel& channel) {
    ForgetInheritedDatabases();
    int other = 0;
    int other_task = -1;
    if (iDK_DbOpen('S', base, true, true, &other) != kOk) return 1;
    if (iDK_DbLock(other, 4711, false, &other_task) != kOk) return 2;
    if (iDK_LockSet(other, other_task, true, "R1", nullptr) != kOk) return 3;
    channel.Send(static_cast<char>(other_task));
    if (channel.Receive() != 'Q') return 4;
    return iDK_DbClose(other) == kOk ? 0 : 5;
  });
  const int holder_task = holder.Receive();
  ASSERT_NE(holder_task, task);
  EXPECT_EQ(iDK_LockSet(handle, task, false, "R1", nullptr), kDkRecordLocked);
  EXPECT_EQ(iDK_WriteLockSet(handle, task, "R1", nullptr), kDkRecordLocked);

  GiveUpAfterTimeOut handler(milliseconds(80));
  SetPendingLockDiagnostics(true);
  ::testing::internal::CaptureStderr();
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(iDK_LockSet(handle, task, true, "R1", &handler), kDkSharingViolation);
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(80));
  const std::string diagnostics = ::testing::internal::GetCapturedStderr();
  SetPendingLockDiagnostics(false);
  EXPECT_EQ(diagnostics, "DBKernel: Pending LockSet. DB \"" + base + "\" has exclusive lock\n");
  ASSERT_TRUE(handler.last_holder());
  EXPECT_EQ(handler.last_holder()->task, holder_task);
  EXPECT_EQ(handler.last_holder()->user_identity, 4711u);

  holder.Send('Q');
  EXPECT_EQ(holder.Wait(), 0);
  EXPECT_TRUE(std::filesystem::exists(LockFileName(base))) << "this process is still registered";
  EXPECT_EQ(iDK_LockSet(handle, task, true, "R1", nullptr), kOk);
  EXPECT_EQ(iDK_DbUnlock(handle), kOk);
  EXPECT_FALSE(std::filesystem::exists(LockFileName(base)));
}

}  // namespace
}  // namespace korvan::storage::testing
