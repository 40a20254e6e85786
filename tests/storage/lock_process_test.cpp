// The lock protocol between real processes: each user is a forked process with its own
// LockFile, and the processes step each other through a socket pair.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#include "storage/db_kernel_codes.h"
#include "storage/lock_entry_keys.h"
#include "storage/lock_file.h"
#include "storage/lock_file_mutex.h"
#include "storage/lock_wait.h"
#include "storage/result_codes.h"
#include "testing/child_process.h"
#include "testing/temp_dir.h"

namespace korvan::storage {
namespace {

using korvan::testing::Channel;
using korvan::testing::ChildProcess;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// This process as one more user of the lock file at `path`.
class LockProcesses : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(LockFile::Open(path_, 41, &lock_file_), kOk);
    ASSERT_EQ(RepeatWhileBusy([&] { return lock_file_->RegisterTask(9000, false, &task_); }), kOk);
  }
  int LockSet(LockMode mode, const std::string& name, LockWaitHandler* handler = nullptr) {
    return WaitForLock([&](LockHolder* h) { return lock_file_->LockSet(task_, mode, name, h); },
                       handler, LockWaitOptions{});
  }

  korvan::testing::TempDir dir_;
  std::string path_ = dir_.File("DB_Lv.QA2");
  std::unique_ptr<LockFile> lock_file_;
  int task_ = -1;
};

TEST_F(LockProcesses, LocksOfAKilledUserAreRemovedInsteadOfBlocking) {
  char dead_task = 0;
  {
    ChildProcess killed([&](const Channel& channel) {
      std::unique_ptr<LockFile> file;
      int task = -1;
      LockHolder holder;
      if (LockFile::Open(path_, 42, &file) != kOk ||
          RepeatWhileBusy([&] { return file->RegisterTask(7042, false, &task); }) != kOk ||
          RepeatWhileBusy(
              [&] { return file->LockSet(task, LockMode::kExclusive, "Rec", &holder); }) != kOk ||
          RepeatWhileBusy([&] { return file->WriteLockSet(task, "Tabelle", &holder); }) != kOk) {
        return 1;
      }
      channel.Send(task);
      channel.Receive();  // killed while it waits here
      return 0;
    });
    dead_task = killed.Receive();
    LockHolder holder;
    ASSERT_EQ(lock_file_->LockSet(task_, LockMode::kExclusive, "Rec", &holder), kLockNameExclusive);
    EXPECT_EQ(holder.task, dead_task);
  }  // killed: its process ends without unregistering

  LockHolder holder;
  EXPECT_EQ(lock_file_->LockSet(task_, LockMode::kExclusive, "Rec", &holder), kOk);
  EXPECT_EQ(lock_file_->WriteLockSet(task_, "Tabelle", &holder), kOk);
  std::vector<KeyEntry> entries;
  ASSERT_EQ(lock_file_->ReadAllEntries(&entries), kOk);
  for (const KeyEntry& entry : entries) {
    EXPECT_NE(ParseUserTask(entry), dead_task) << "the dead user is still registered";
  }
  // This process is the last live user: the file goes with it.
  ASSERT_EQ(lock_file_->UnregisterTask(task_), kOk);
  EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(LockProcesses, LockFileDisappearsWithTheLastTaskAndReturns) {
  // A user that opened the file before the last task left registers in a new file.
  ChildProcess late([&](const Channel& channel) {
    std::unique_ptr<LockFile> late_file;
    if (LockFile::Open(path_, 43, &late_file) != kOk) return 1;
    channel.Send('O');
    if (channel.Receive() != 'G') return 2;
    int late_task = -1;
    if (RepeatWhileBusy([&] { return late_file->RegisterTask(5, false, &late_task); }) != kOk) {
      return 3;
    }
    channel.Send(static_cast<char>('0' + late_task));
    if (channel.Receive() != 'Q') return 4;
    return RepeatWhileBusy([&] { return late_file->UnregisterTask(late_task); }) == kOk ? 0 : 5;
  });
  ASSERT_EQ(late.Receive(), 'O');
  ASSERT_EQ(lock_file_->UnregisterTask(task_), kOk);
  EXPECT_FALSE(std::filesystem::exists(path_));
  late.Send('G');
  EXPECT_EQ(late.Receive(), '0') << "task 0 of a new lock file";
  EXPECT_TRUE(std::filesystem::exists(path_));
  late.Send('Q');
  EXPECT_EQ(late.Wait(), 0);
  EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(LockProcesses, BusyMutexIsRetriedUntilTheOtherProcessLetsGo) {
  ChildProcess mutex_holder([&](const Channel& channel) {
    const int fd = open(path_.c_str(), O_RDWR);
    if (fd < 0) return 1;
    LockFileMutex mutex(fd);
    if (mutex.TryLock() != kOk) return 2;
    channel.Send('H');
    if (channel.Receive() != 'G') return 3;
    std::this_thread::sleep_for(milliseconds(60));
    mutex.Unlock();
    return 0;
  });
  ASSERT_EQ(mutex_holder.Receive(), 'H');
  LockHolder holder;
  EXPECT_EQ(lock_file_->LockSet(task_, LockMode::kExclusive, "A", &holder), kLockFileBusy);
  EXPECT_EQ(lock_file_->LockReleaseAll(task_), kLockFileBusy);
  int other = -1;
  EXPECT_EQ(lock_file_->RegisterTask(2, false, &other), kLockFileBusy);

  mutex_holder.Send('G');
  const auto start = Clock::now();
  GiveUpAfterTimeOut handler(milliseconds(5000));
  EXPECT_EQ(LockSet(LockMode::kExclusive, "A", &handler), kOk);
  EXPECT_GE(Clock::now() - start, milliseconds(40)) << "it waited for the other process";
  EXPECT_EQ(handler.waits_started(), 0) << "a busy mutex is no lock conflict";
  EXPECT_EQ(mutex_holder.Wait(), 0);
}

}  // namespace
}  // namespace korvan::storage
