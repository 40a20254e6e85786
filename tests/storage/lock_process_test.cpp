// The lock protocol between real processes: each user is a forked process with its own
// LockFile, and the processes step each other through pipes.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#include "lock_test_process.h"
#include "storage/db_kernel_codes.h"
#include "storage/lock_file.h"
#include "storage/lock_file_mutex.h"
#include "storage/lock_wait.h"
#include "storage/result_codes.h"
#include "testing/temp_dir.h"

namespace korvan::storage {
namespace {

using korvan::testing::TestProcess;
using Channel = TestProcess::Channel;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// Exit statuses of the children: which step went wrong.
enum ChildStatus {
  kChildOk = 0,
  kOpenFailed,
  kRegisterFailed,
  kLockFailed,
  kReleaseFailed,
  kUnregisterFailed,
  kNoMessage
};

// A child that registers, locks `name` `times` times in `mode`, reports its task number
// (as a byte), then serves commands: 'R' releases once (answers 'r'), 'Q' unregisters
// and ends.
int LockingChild(const Channel& channel, const std::string& path, int registration, LockMode mode,
                 const std::string& name, int times) {
  std::unique_ptr<LockFile> lock_file;
  if (LockFile::Open(path, registration, &lock_file) != kOk) return kOpenFailed;
  int task = -1;
  if (RepeatWhileBusy([&] { return lock_file->RegisterTask(7000 + registration, false, &task); }) !=
      kOk) {
    return kRegisterFailed;
  }
  for (int i = 0; i < times; ++i) {
    LockHolder holder;
    if (RepeatWhileBusy([&] { return lock_file->LockSet(task, mode, name, &holder); }) != kOk) {
      return kLockFailed;
    }
  }
  channel.Send(static_cast<char>(task));
  while (true) {
    char command = channel.Receive();
    if (command == 'R') {
      if (RepeatWhileBusy([&] { return lock_file->LockRelease(task, name); }) != kOk) {
        return kReleaseFailed;
      }
      channel.Send('r');
    } else if (command == 'Q') {
      return RepeatWhileBusy([&] { return lock_file->UnregisterTask(task); }) == kOk
                 ? kChildOk
                 : kUnregisterFailed;
    } else {
      return kNoMessage;
    }
  }
}

int Register(LockFile& lock_file, uint32_t identity) {
  int task = -1;
  EXPECT_EQ(RepeatWhileBusy([&] { return lock_file.RegisterTask(identity, false, &task); }), kOk);
  return task;
}

TEST(LockProcesses, SharedLocksAndAnExclusiveRequestThatTimesOut) {
  testing::TempDir dir;
  std::string path = dir.File("DB_Lv.QA2");
  auto child = [&](int registration) {
    return [&path, registration](const Channel& channel) {
      return LockingChild(channel, path, registration, LockMode::kShared, "Pos7", 1);
    };
  };
  TestProcess first(child(42));
  TestProcess second(child(43));
  char first_task = first.Receive();
  char second_task = second.Receive();
  ASSERT_NE(first_task, second_task) << "both users registered and locked shared";

  std::unique_ptr<LockFile> lock_file;
  ASSERT_EQ(LockFile::Open(path, 41, &lock_file), kOk);
  int task = Register(*lock_file, 9000);
  ASSERT_GE(task, 0);
  LockHolder holder;
  EXPECT_EQ(lock_file->LockSet(task, LockMode::kShared, "Pos7", &holder), kOk)
      << "a third shared lock is no conflict";
  ASSERT_EQ(lock_file->LockRelease(task, "Pos7"), kOk);

  GiveUpAfterTimeOut handler(milliseconds(150));
  auto start = Clock::now();
  int result = WaitForLock(
      [&](LockHolder* h) { return lock_file->LockSet(task, LockMode::kExclusive, "Pos7", h); },
      &handler, LockWaitOptions{});
  auto waited = Clock::now() - start;
  EXPECT_EQ(result, kDkSharingViolation);
  EXPECT_GE(waited, milliseconds(150));
  EXPECT_LT(waited, milliseconds(3000));
  EXPECT_EQ(handler.waits_started(), 1);
  EXPECT_EQ(handler.waits_ended(), 1);
  ASSERT_TRUE(handler.last_holder());
  EXPECT_TRUE(handler.last_holder()->task == first_task ||
              handler.last_holder()->task == second_task);
  EXPECT_EQ(handler.last_holder()->user_identity,
            handler.last_holder()->task == first_task ? 7042u : 7043u);

  // Without a handler there is no waiting: the refusal is final at once.
  EXPECT_EQ(
      WaitForLock(
          [&](LockHolder* h) { return lock_file->LockSet(task, LockMode::kExclusive, "Pos7", h); },
          nullptr, LockWaitOptions{}),
      kDkRecordLocked);

  first.Send('Q');
  second.Send('Q');
  EXPECT_EQ(first.Wait(), kChildOk);
  EXPECT_EQ(second.Wait(), kChildOk);
  EXPECT_EQ(lock_file->LockSet(task, LockMode::kExclusive, "Pos7", &holder), kOk);
  ASSERT_EQ(lock_file->UnregisterTask(task), kOk);
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(LockProcesses, NestedLockMustBeReleasedTwice) {
  testing::TempDir dir;
  std::string path = dir.File("DB_Lv.QA2");
  TestProcess holder_process([&](const Channel& channel) {
    return LockingChild(channel, path, 42, LockMode::kExclusive, "Rec", 2);
  });
  int holder_task = holder_process.Receive();

  std::unique_ptr<LockFile> lock_file;
  ASSERT_EQ(LockFile::Open(path, 41, &lock_file), kOk);
  int task = Register(*lock_file, 1);
  LockHolder holder;
  EXPECT_EQ(lock_file->LockSet(task, LockMode::kExclusive, "Rec", &holder), kLockNameExclusive);
  EXPECT_EQ(holder.task, holder_task);

  // Every answer below depends on the other process's changes being read afresh,
  // although this process's cache held the file's blocks from its previous operation.
  holder_process.Send('R');
  ASSERT_EQ(holder_process.Receive(), 'r');
  EXPECT_EQ(lock_file->LockSet(task, LockMode::kShared, "Rec", &holder), kLockNameExclusive)
      << "still held once";
  holder_process.Send('R');
  ASSERT_EQ(holder_process.Receive(), 'r');
  EXPECT_EQ(lock_file->LockSet(task, LockMode::kExclusive, "Rec", &holder), kOk);

  holder_process.Send('Q');
  EXPECT_EQ(holder_process.Wait(), kChildOk);
  ASSERT_EQ(lock_file->UnregisterTask(task), kOk);
}

TEST(LockProcesses, LockFileDisappearsWithTheLastTaskAndReturns) {
  testing::TempDir dir;
  std::string path = dir.File("DB_Lv.QA2");
  std::unique_ptr<LockFile> lock_file;
  ASSERT_EQ(LockFile::Open(path, 41, &lock_file), kOk);
  int task = Register(*lock_file, 1);

  TestProcess other([&](const Channel& channel) {
    return LockingChild(channel, path, 42, LockMode::kShared, "X", 1);
  });
  ASSERT_NE(other.Receive(), 0);
  other.Send('Q');
  EXPECT_EQ(other.Wait(), kChildOk);
  EXPECT_TRUE(std::filesystem::exists(path)) << "this process is still registered";

  // A user that opened the file but had not registered when the last task left
  // registers in a new file.
  TestProcess late([&](const Channel& channel) {
    std::unique_ptr<LockFile> late_file;
    if (LockFile::Open(path, 43, &late_file) != kOk) return int{kOpenFailed};
    channel.Send('O');
    if (channel.Receive() != 'G') return int{kNoMessage};
    int late_task = -1;
    if (RepeatWhileBusy([&] { return late_file->RegisterTask(5, false, &late_task); }) != kOk) {
      return int{kRegisterFailed};
    }
    channel.Send(static_cast<char>('0' + late_task));
    if (channel.Receive() != 'Q') return int{kNoMessage};
    return RepeatWhileBusy([&] { return late_file->UnregisterTask(late_task); }) == kOk
               ? int{kChildOk}
               : int{kUnregisterFailed};
  });
  ASSERT_EQ(late.Receive(), 'O');
  ASSERT_EQ(lock_file->UnregisterTask(task), kOk);
  EXPECT_FALSE(std::filesystem::exists(path));
  late.Send('G');
  EXPECT_EQ(late.Receive(), '0') << "task 0 of a new lock file";
  EXPECT_TRUE(std::filesystem::exists(path));
  late.Send('Q');
  EXPECT_EQ(late.Wait(), kChildOk);
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(LockProcesses, BusyMutexIsRetriedUntilTheOtherProcessLetsGo) {
  testing::TempDir dir;
  std::string path = dir.File("DB_Lv.QA2");
  std::unique_ptr<LockFile> lock_file;
  ASSERT_EQ(LockFile::Open(path, 41, &lock_file), kOk);
  int task = Register(*lock_file, 1);

  TestProcess mutex_holder([&](const Channel& channel) {
    int fd = open(path.c_str(), O_RDWR);
    if (fd < 0) return int{kOpenFailed};
    LockFileMutex mutex(fd);
    if (mutex.TryLock() != kOk) return int{kLockFailed};
    channel.Send('H');
    if (channel.Receive() != 'G') return int{kNoMessage};
    std::this_thread::sleep_for(milliseconds(60));
    mutex.Unlock();
    return int{kChildOk};
  });
  ASSERT_EQ(mutex_holder.Receive(), 'H');

  LockHolder holder;
  EXPECT_EQ(lock_file->LockSet(task, LockMode::kExclusive, "A", &holder), kLockFileBusy);
  EXPECT_EQ(lock_file->LockReleaseAll(task), kLockFileBusy);
  int other = -1;
  EXPECT_EQ(lock_file->RegisterTask(2, false, &other), kLockFileBusy);
  LockFileMutex own(lock_file->fd());
  EXPECT_EQ(own.TryLock(), kLockFileBusy);

  mutex_holder.Send('G');
  auto start = Clock::now();
  GiveUpAfterTimeOut handler(milliseconds(5000));
  EXPECT_EQ(
      WaitForLock(
          [&](LockHolder* h) { return lock_file->LockSet(task, LockMode::kExclusive, "A", h); },
          &handler, LockWaitOptions{}),
      kOk);
  EXPECT_GE(Clock::now() - start, milliseconds(40)) << "it waited for the other process";
  EXPECT_EQ(handler.waits_started(), 0) << "a busy mutex is no lock conflict";
  EXPECT_EQ(mutex_holder.Wait(), kChildOk);
  EXPECT_EQ(lock_file->LockRelease(task, "A"), kOk);
  ASSERT_EQ(lock_file->UnregisterTask(task), kOk);
}

}  // namespace
}  // namespace korvan::storage
