#include "storage/lock_wait.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "storage/db_kernel_codes.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

using std::chrono::milliseconds;

// An attempt that answers from a script, then keeps giving the last answer.
struct ScriptedAttempt {
  std::vector<int> answers;
  int holder_task = 4;
  size_t calls = 0;

  LockAttempt AsAttempt() {
    return [this](LockHolder* holder) {
      const int answer = answers[std::min(calls++, answers.size() - 1)];
      if (answer != kOk && answer != kLockFileBusy) holder->task = holder_task;
      return answer;
    };
  }
};

// Waits as long as asked, then gives up or not as scripted.
struct ScriptedHandler : LockWaitHandler {
  ScriptedHandler(bool may_wait, std::vector<bool> give_up, milliseconds time_out)
      : may_wait(may_wait), give_up(std::move(give_up)), time_out(time_out) {}
  bool MayWait() const override { return may_wait; }
  std::optional<milliseconds> TimeOut() const override { return time_out; }
  void WaitStarted() override { events += "S"; }
  void WaitEnded() override { events += "E"; }
  bool GiveUp(const LockHolder& holder) override {
    events += "?" + std::to_string(holder.task);
    return give_up[std::min(questions++, give_up.size() - 1)];
  }

  bool may_wait;
  std::vector<bool> give_up;
  milliseconds time_out;
  size_t questions = 0;
  std::string events;
};

LockWaitOptions Options(milliseconds default_time_out = milliseconds(5000)) {
  return LockWaitOptions{.default_time_out = default_time_out,
                         .diagnostics = false,
                         .database_path = "/data/DB_Lv.QA",
                         .retry_pause = milliseconds(1)};
}

TEST(LockWait, FinalResultsAreMappedToKernelCodes) {
  struct Case {
    int answer;
    int expected;
  };
  for (Case c : {Case{kOk, kOk}, Case{kLockNameExclusive, kDkRecordLocked},
                 Case{kLockNameWriteLocked, kDkRecordLocked}, Case{kLockWriteLockHeld, kDkIoError},
                 Case{kLockTaskNotRegistered, kDkIoError}, Case{kLockFileNotOpen, kDkIoError},
                 Case{kKeyFileCorrupt, kDkIoError}}) {
    ScriptedAttempt attempt{{c.answer}};
    EXPECT_EQ(WaitForLock(attempt.AsAttempt(), nullptr, Options()), c.expected) << c.answer;
    EXPECT_EQ(attempt.calls, 1u) << "no handler: no waiting";
  }
  ScriptedHandler refuses(false, {true}, milliseconds(1000));
  ScriptedAttempt attempt{{kLockNameExclusive}};
  EXPECT_EQ(WaitForLock(attempt.AsAttempt(), &refuses, Options()), kDkRecordLocked);
  EXPECT_EQ(attempt.calls, 1u);
  EXPECT_EQ(refuses.events, "") << "a handler that does not allow waiting sees nothing";
}

TEST(LockWait, RetriesWhileBusyAndWhileTheHandlerWaits) {
  ScriptedAttempt busy{{kLockFileBusy, kLockFileBusy, kLockFileBusy, kOk}};
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(WaitForLock(busy.AsAttempt(), nullptr, Options()), kOk);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "") << "no diagnostics unless asked";
  EXPECT_EQ(busy.calls, 4u) << "busy is retried even without a handler";
  EXPECT_EQ(RepeatWhileBusy([n = 0]() mutable { return ++n < 3 ? kLockFileBusy : kLockNotHeld; }),
            kLockNotHeld);

  // In test mode each new kind of pending conflict is reported.
  LockWaitOptions options = Options();
  options.diagnostics = true;
  ScriptedHandler handler(true, {true}, milliseconds(5000));
  ScriptedAttempt conflict{
      {kLockNameExclusive, kLockNameExclusive, kLockWriteLockHeld, kLockFileBusy, kOk}};
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(WaitForLock(conflict.AsAttempt(), &handler, options), kOk);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "DBKernel: Pending LockSet. DB \"/data/DB_Lv.QA\" has exclusive lock\n"
            "DBKernel: Pending LockSet. DB \"/data/DB_Lv.QA\" has write lock\n");
  EXPECT_EQ(conflict.calls, 5u);
  EXPECT_EQ(handler.events, "SE") << "notified once when waiting starts and once at the end";
}

TEST(LockWait, TimeOutAsksTheHandler) {
  // Gives up at the first question: 4319 after the handler's own time-out.
  ScriptedHandler gives_up(true, {true}, milliseconds(40));
  ScriptedAttempt held{{kLockNameExclusive}, 9};
  auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(WaitForLock(held.AsAttempt(), &gives_up, Options()), kDkSharingViolation);
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(40));
  EXPECT_EQ(gives_up.events, "S?9E");
  EXPECT_GT(held.calls, 2u);

  // Waits on twice, then gives up: three questions, one per time-out.
  ScriptedHandler patient(true, {false, false, true}, milliseconds(20));
  ScriptedAttempt still_held{{kLockNameWriteLocked}, 3};
  start = std::chrono::steady_clock::now();
  EXPECT_EQ(WaitForLock(still_held.AsAttempt(), &patient, Options()), kDkSharingViolation);
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(60));
  EXPECT_EQ(patient.events, "S?3?3?3E");

  // Without its own time-out the handler is asked after the default (LOCK_TIMEOUT).
  GiveUpAfterTimeOut by_default;
  ScriptedAttempt blocked{{kLockNameExclusive}};
  start = std::chrono::steady_clock::now();
  EXPECT_EQ(WaitForLock(blocked.AsAttempt(), &by_default, Options(milliseconds(30))),
            kDkSharingViolation);
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(30));
  ASSERT_TRUE(by_default.last_holder());
  EXPECT_EQ(by_default.last_holder()->task, 4);

  // A lock file that stays busy ends the same way, with no holder known.
  GiveUpAfterTimeOut busy_handler(milliseconds(20));
  ScriptedAttempt always_busy{{kLockFileBusy}};
  EXPECT_EQ(WaitForLock(always_busy.AsAttempt(), &busy_handler, Options()), kDkSharingViolation);
  ASSERT_TRUE(busy_handler.last_holder());
  EXPECT_EQ(busy_handler.last_holder()->task, -1);
}

}  // namespace
}  // namespace korvan::storage
