#include "storage/lock_wait.h"

#include <cstdio>
#include <thread>

#include "storage/db_kernel_codes.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

using Clock = std::chrono::steady_clock;

// The lock file mutex is only ever held for the length of one operation.
constexpr std::chrono::milliseconds kBusyPause{1};

bool IsConflict(int result) {
  return result == kLockNameWriteLocked || result == kLockNameExclusive ||
         result == kLockWriteLockHeld;
}

int KernelResult(int result) {
  if (result == kOk) return kOk;
  if (result == kLockNameWriteLocked || result == kLockNameExclusive) return kDkRecordLocked;
  return kDkIoError;
}

void ReportPending(int result, const std::string& database_path) {
  const char* kind = result == kLockNameExclusive ? "exclusive" : "write";
  std::fprintf(stderr, "DBKernel: Pending LockSet. DB \"%s\" has %s lock\n", database_path.c_str(),
               kind);
}

// The state of one waiting request: notifications and the time-out clock.
class Waiting {
 public:
  Waiting(LockWaitHandler* handler, const LockWaitOptions& options)
      : handler_(handler),
        options_(options),
        time_out_(handler != nullptr && handler->TimeOut() ? *handler->TimeOut()
                                                           : options.default_time_out),
        period_start_(Clock::now()) {}

  ~Waiting() {
    if (started_) handler_->WaitEnded();
  }

  // Whether to try again after `result`; false when it is final. *gave_up is set when
  // the handler ended the wait after a time-out.
  bool ShouldRetry(int result, const LockHolder& holder, bool* gave_up) {
    if (result != kLockFileBusy && !IsConflict(result)) return false;
    if (IsConflict(result)) {
      if (handler_ == nullptr || !handler_->MayWait()) return false;
      Start();
      if (options_.diagnostics && result != last_reported_)
        ReportPending(result, options_.database_path);
      last_reported_ = result;
    }
    if (handler_ != nullptr && Clock::now() - period_start_ >= time_out_) {
      Start();
      if (handler_->GiveUp(result == kLockFileBusy ? LockHolder{} : holder)) {
        *gave_up = true;
        return false;
      }
      period_start_ = Clock::now();
    }
    std::this_thread::sleep_for(result == kLockFileBusy ? kBusyPause : options_.retry_pause);
    return true;
  }

 private:
  void Start() {
    if (started_) return;
    started_ = true;
    handler_->WaitStarted();
  }

  LockWaitHandler* handler_;
  const LockWaitOptions& options_;
  std::chrono::milliseconds time_out_;
  Clock::time_point period_start_;
  bool started_ = false;
  int last_reported_ = kOk;
};

}  // namespace

int WaitForLock(const LockAttempt& attempt, LockWaitHandler* handler,
                const LockWaitOptions& options) {
  Waiting waiting(handler, options);
  while (true) {
    LockHolder holder;
    int result = attempt(&holder);
    bool gave_up = false;
    if (!waiting.ShouldRetry(result, holder, &gave_up)) {
      return gave_up ? kDkSharingViolation : KernelResult(result);
    }
  }
}

int RepeatWhileBusy(const std::function<int()>& operation) {
  while (true) {
    int result = operation();
    if (result != kLockFileBusy) return result;
    std::this_thread::sleep_for(kBusyPause);
  }
}

}  // namespace korvan::storage
