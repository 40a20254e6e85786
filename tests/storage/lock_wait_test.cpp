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
class ScriptedAttempt {
 public:
  explicit ScriptedAttempt(std::vector<int> answers, int holder_task = 4)
      : answers_(std::move(answers)), holder_task_(holder_task) {}

  LockAttempt AsAttempt() {
    return [this](LockHolder* holder) {
      int answer = answers_[std::min(calls_, answers_.size() - 1)];
      ++calls_;
      if (answer != kOk && answer != kLockFileBusy) holder->task = holder_task_;
      return answer;
    };
  }
  size_t calls() const { return calls_; }

 private:
  std::vector<int> answers_;
  int holder_task_;
  size_t calls_ = 0;
};

// Waits as long as asked, then gives up or not as scripted.
class ScriptedHandler : public LockWaitHandler {
 public:
  ScriptedHandler(bool may_wait, std::vector<bool> give_up, milliseconds time_out)
      : may_wait_(may_wait), give_up_(std::move(give_up)), time_out_(time_out) {}
  bool MayWait() const override { return may_wait_; }
  std::optional<milliseconds> TimeOut() const override { return time_out_; }
  void WaitStarted() override { events += "S"; }
  void WaitEnded() override { events += "E"; }
  bool GiveUp(const LockHolder& holder) override {
    events += "?" + std::to_string(holder.task);
    bool answer = give_up_[std::min(questions_, give_up_.size() - 1)];
    ++questions_;
    return answer;
  }
  std::string events;

 private:
  bool may_wait_;
  std::vector<bool> give_up_;
  milliseconds time_out_;
  size_t questions_ = 0;
};

LockWaitOptions Options(milliseconds default_time_out = milliseconds(5000)) {
  LockWaitOptions options;
  options.default_time_out = default_time_out;
  options.retry_pause = milliseconds(1);
  options.database_path = "/data/DB_Lv.QA";
  return options;
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
    ScriptedAttempt attempt({c.answer});
    EXPECT_EQ(WaitForLock(attempt.AsAttempt(), nullptr, Options()), c.expected) << c.answer;
    EXPECT_EQ(attempt.calls(), 1u) << "no handler: no waiting";
  }
  ScriptedHandler refuses(false, {true}, milliseconds(1000));
  ScriptedAttempt attempt({kLockNameExclusive});
  EXPECT_EQ(WaitForLock(attempt.AsAttempt(), &refuses, Options()), kDkRecordLocked);
  EXPECT_EQ(attempt.calls(), 1u);
  EXPECT_EQ(refuses.events, "") << "a handler that does not allow waiting sees nothing";
}

TEST(LockWait, RetriesWhileBusyAndWhileTheHandlerWaits) {
  ScriptedAttempt busy({kLockFileBusy, kLockFileBusy, kLockFileBusy, kOk});
  EXPECT_EQ(WaitForLock(busy.AsAttempt(), nullptr, Options()), kOk);
  EXPECT_EQ(busy.calls(), 4u) << "busy is retried even without a handler";

  ScriptedHandler handler(true, {true}, milliseconds(5000));
  ScriptedAttempt conflict({kLockNameExclusive, kLockWriteLockHeld, kLockFileBusy, kOk});
  EXPECT_EQ(WaitForLock(conflict.AsAttempt(), &handler, Options()), kOk);
  EXPECT_EQ(conflict.calls(), 4u);
  EXPECT_EQ(handler.events, "SE") << "notified once when waiting starts and once at the end";

  EXPECT_EQ(RepeatWhileBusy([n = 0]() mutable { return ++n < 3 ? kLockFileBusy : kLockNotHeld; }),
            kLockNotHeld);
}

TEST(LockWait, TimeOutAsksTheHandler) {
  // Gives up at the first question: 4319 after the handler's own time-out.
  ScriptedHandler gives_up(true, {true}, milliseconds(40));
  ScriptedAttempt held({kLockNameExclusive}, 9);
  auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(WaitForLock(held.AsAttempt(), &gives_up, Options()), kDkSharingViolation);
  auto waited = std::chrono::steady_clock::now() - start;
  EXPECT_GE(waited, milliseconds(40));
  EXPECT_LT(waited, milliseconds(2000));
  EXPECT_EQ(gives_up.events, "S?9E");
  EXPECT_GT(held.calls(), 2u);

  // Waits on twice, then gives up: three questions, one per time-out.
  ScriptedHandler patient(true, {false, false, true}, milliseconds(20));
  ScriptedAttempt still_held({kLockNameWriteLocked}, 3);
  start = std::chrono::steady_clock::now();
  EXPECT_EQ(WaitForLock(still_held.AsAttempt(), &patient, Options()), kDkSharingViolation);
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(60));
  EXPECT_EQ(patient.events, "S?3?3?3E");

  // Without its own time-out the handler is asked after the default (LOCK_TIMEOUT).
  GiveUpAfterTimeOut by_default;
  ScriptedAttempt blocked({kLockNameExclusive});
  start = std::chrono::steady_clock::now();
  EXPECT_EQ(WaitForLock(blocked.AsAttempt(), &by_default, Options(milliseconds(30))),
            kDkSharingViolation);
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(30));
  ASSERT_TRUE(by_default.last_holder());
  EXPECT_EQ(by_default.last_holder()->task, 4);

  // A lock file that stays busy ends the same way, with no holder known.
  GiveUpAfterTimeOut busy_handler(milliseconds(20));
  ScriptedAttempt always_busy({kLockFileBusy});
  EXPECT_EQ(WaitForLock(always_busy.AsAttempt(), &busy_handler, Options()), kDkSharingViolation);
  ASSERT_TRUE(busy_handler.last_holder());
  EXPECT_EQ(busy_handler.last_holder()->task, -1);
}

TEST(LockWait, TestModeReportsPendingRequests) {
  LockWaitOptions options = Options();
  options.diagnostics = true;
  ScriptedHandler handler(true, {true}, milliseconds(5000));
  ScriptedAttempt attempt({kLockNameExclusive, kLockNameExclusive, kLockWriteLockHeld, kOk});
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(WaitForLock(attempt.AsAttempt(), &handler, options), kOk);
  std::string output = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(output,
            "DBKernel: Pending LockSet. DB \"/data/DB_Lv.QA\" has exclusive lock\n"
            "DBKernel: Pending LockSet. DB \"/data/DB_Lv.QA\" has write lock\n");

  options.diagnostics = false;
  ScriptedAttempt quiet({kLockNameExclusive, kOk});
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(WaitForLock(quiet.AsAttempt(), &handler, options), kOk);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace korvan::storage
