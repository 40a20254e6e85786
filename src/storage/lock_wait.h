#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "storage/lock_file.h"

namespace korvan::storage {

// Decides how a lock request that another user refuses is waited for. The shell shows
// a wait indicator between WaitStarted and WaitEnded and, after each time-out, asks the
// user whether to give up.
class LockWaitHandler {
 public:
  virtual ~LockWaitHandler() = default;

  // Whether a refused request may wait at all; false returns the refusal at once.
  virtual bool MayWait() const { return true; }
  // How long to wait before GiveUp is asked; none means the kernel's LOCK_TIMEOUT.
  virtual std::optional<std::chrono::milliseconds> TimeOut() const { return std::nullopt; }
  virtual void WaitStarted() {}
  virtual void WaitEnded() {}
  // Asked each time the time-out has passed, with the task that holds the lock (task -1
  // while only the lock file is busy). True ends the request with 4319; false waits
  // another time-out.
  virtual bool GiveUp(const LockHolder& holder) = 0;
};

// The handler of the command line and of tests: waits one time-out, then gives up.
class GiveUpAfterTimeOut : public LockWaitHandler {
 public:
  explicit GiveUpAfterTimeOut(std::optional<std::chrono::milliseconds> time_out = std::nullopt)
      : time_out_(time_out) {}

  std::optional<std::chrono::milliseconds> TimeOut() const override { return time_out_; }
  void WaitStarted() override { ++waits_started_; }
  void WaitEnded() override { ++waits_ended_; }
  bool GiveUp(const LockHolder& holder) override {
    last_holder_ = holder;
    return true;
  }

  int waits_started() const { return waits_started_; }
  int waits_ended() const { return waits_ended_; }
  const std::optional<LockHolder>& last_holder() const { return last_holder_; }

 private:
  std::optional<std::chrono::milliseconds> time_out_;
  int waits_started_ = 0;
  int waits_ended_ = 0;
  std::optional<LockHolder> last_holder_;
};

struct LockWaitOptions {
  std::chrono::milliseconds default_time_out{5000};  // LOCK_TIMEOUT
  bool diagnostics = false;                          // the "test" switch
  std::string database_path;                         // named in the diagnostics
  std::chrono::milliseconds retry_pause{2};
};

// One try of LockSet or WriteLockSet: a lock-level code, the holder on a refusal.
using LockAttempt = std::function<int(LockHolder* holder)>;

// Repeats the attempt while the lock file is busy (4105) and, when the handler lets it
// wait, while another task holds the name (4098, 4099, 4103). After each time-out the
// handler is asked whether to give up. Returns the kernel's code: 0; 4317 when the name
// stays locked (4098, 4099); 4319 when the handler gave up; 4320 for anything else.
int WaitForLock(const LockAttempt& attempt, LockWaitHandler* handler,
                const LockWaitOptions& options);

// Repeats an operation while the lock file is busy; returns its final lock-level code.
int RepeatWhileBusy(const std::function<int()>& operation);

}  // namespace korvan::storage
