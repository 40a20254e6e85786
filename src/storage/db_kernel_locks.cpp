#include "storage/db_kernel_locks.h"

#include <chrono>
#include <memory>

#include "storage/block_cache.h"
#include "storage/db_handle_table.h"
#include "storage/db_kernel_codes.h"
#include "storage/file/file_names.h"
#include "storage/kernel_settings.h"
#include "storage/lock_file.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

// The LockFile objects behind the handle table's lock-file fields, by handle. The
// handle table stays a table of plain values; the objects that own the descriptors and
// the lock protocol live here, one per handle.
std::unique_ptr<LockFile>& LockFileOf(int handle) {
  // The cache must outlive the lock files, whose destructors unregister from it.
  BlockCache::Instance();
  static std::unique_ptr<LockFile> lock_files[kMaxDbHandles + 1];
  return lock_files[handle];
}

int LockFileRegistration(int handle) {
  return handle + kMaxDbHandles;
}

// Lock-level and key-layer codes become 4320; kernel codes pass.
int KernelCode(int result) {
  return result == kOk || result >= kDkInvalidHandle ? result : kDkIoError;
}

bool& PendingLockDiagnostics() {
  static bool on = false;
  return on;
}

LockWaitOptions WaitOptionsFor(const DbHandleSlot& slot) {
  LockWaitOptions options;
  options.default_time_out = std::chrono::milliseconds(CurrentKernelSettings().lock_timeout_ms);
  options.diagnostics = PendingLockDiagnostics();
  options.database_path = slot.file_name;
  return options;
}

void ForgetLockFile(int handle, DbHandleSlot& slot) {
  LockFileOf(handle).reset();
  slot.lock_file = -1;
  slot.lock_state = LockFileState::kNotOpen;
  slot.task_number = kNoTask;
}

// The open lock file of a handle for the lock-set operations: 4288 for an invalid
// handle, `not_shared` for a type without locking, 4320 while no lock file is open.
int FindLockFile(int handle, int not_shared, DbHandleSlot** slot, LockFile** lock_file) {
  *slot = DbHandleTable::Instance().Find(handle);
  if (*slot == nullptr) return kDkInvalidHandle;
  if ((*slot)->lock_state == LockFileState::kNoLocking) return not_shared;
  *lock_file = LockFileOf(handle).get();
  return *lock_file == nullptr ? kDkIoError : kOk;
}

}  // namespace

int iDK_DbLock(int handle, uint32_t user_identity, bool reuse, int* task) {
  DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  if (slot->lock_state == LockFileState::kNoLocking) return kDkNoLockingForType;
  std::unique_ptr<LockFile>& lock_file = LockFileOf(handle);
  if (slot->task_number != kNoTask && lock_file != nullptr) {
    *task = slot->task_number;
    return kOk;
  }
  // A lock file without a task belongs to an earlier use of the handle number (a slot
  // released without closing its lock file, as in a forked process): start afresh.
  lock_file.reset();
  int result =
      LockFile::Open(LockFileName(slot->file_name), LockFileRegistration(handle), &lock_file);
  if (result != kOk) return KernelCode(result);
  int registered = -1;
  result =
      RepeatWhileBusy([&] { return lock_file->RegisterTask(user_identity, reuse, &registered); });
  if (result != kOk) {
    // Leave no lock file behind that this call created and nobody uses.
    RepeatWhileBusy([&] { return lock_file->DeleteIfUnused(); });
    ForgetLockFile(handle, *slot);
    return KernelCode(result);
  }
  slot->lock_file = lock_file->fd();
  slot->lock_state = LockFileState::kOpen;
  slot->task_number = static_cast<uint16_t>(registered);
  *task = registered;
  return kOk;
}

int iDK_DbUnlock(int handle) {
  DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  if (slot->lock_state == LockFileState::kNoLocking) return kDkNoLockingForType;
  return DbCloseLockFile(handle);
}

int DbCloseLockFile(int handle) {
  DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  std::unique_ptr<LockFile>& lock_file = LockFileOf(handle);
  if (slot->lock_state == LockFileState::kNoLocking || lock_file == nullptr) return kOk;
  int result = kOk;
  if (slot->task_number != kNoTask) {
    int task = slot->task_number;
    result = RepeatWhileBusy([&] { return lock_file->UnregisterTask(task); });
  }
  // UnregisterTask deleted the file if it was the last task; otherwise it stays for the
  // others and this process only closes it.
  ForgetLockFile(handle, *slot);
  return KernelCode(result);
}

void SetPendingLockDiagnostics(bool on) {
  PendingLockDiagnostics() = on;
}

LockFile* DbOpenLockFile(int handle) {
  if (DbHandleTable::Instance().Find(handle) == nullptr) return nullptr;
  return LockFileOf(handle).get();
}

int iDK_LockSet(int handle, int task, bool exclusive, std::string_view name,
                LockWaitHandler* handler) {
  DbHandleSlot* slot = nullptr;
  LockFile* lock_file = nullptr;
  int result = FindLockFile(handle, kDkOpenedByOtherWriter, &slot, &lock_file);
  if (result != kOk) return result;
  LockMode mode = exclusive ? LockMode::kExclusive : LockMode::kShared;
  return WaitForLock(
      [&](LockHolder* holder) { return lock_file->LockSet(task, mode, name, holder); }, handler,
      WaitOptionsFor(*slot));
}

int iDK_LockRelease(int handle, int task, std::string_view name) {
  DbHandleSlot* slot = nullptr;
  LockFile* lock_file = nullptr;
  int result = FindLockFile(handle, kDkOpenedByOtherWriter, &slot, &lock_file);
  if (result != kOk) return result;
  return KernelCode(RepeatWhileBusy([&] { return lock_file->LockRelease(task, name); }));
}

int iDK_LockReleaseAll(int handle, int task) {
  DbHandleSlot* slot = nullptr;
  LockFile* lock_file = nullptr;
  int result = FindLockFile(handle, kDkOpenedByOtherWriter, &slot, &lock_file);
  if (result != kOk) return result;
  return KernelCode(RepeatWhileBusy([&] { return lock_file->LockReleaseAll(task); }));
}

int iDK_WriteLockSet(int handle, int task, std::string_view name, LockWaitHandler* handler) {
  DbHandleSlot* slot = nullptr;
  LockFile* lock_file = nullptr;
  int result = FindLockFile(handle, kDkOpenedByOtherWriter, &slot, &lock_file);
  if (result == kDkIoError) return kDkOpenedByOtherWriter;  // no lock file open
  if (result != kOk) return result;
  return WaitForLock(
      [&](LockHolder* holder) { return lock_file->WriteLockSet(task, name, holder); }, handler,
      WaitOptionsFor(*slot));
}

int iDK_WriteLockRelease(int handle, int task, std::string_view name) {
  DbHandleSlot* slot = nullptr;
  LockFile* lock_file = nullptr;
  int result = FindLockFile(handle, kDkOpenedByOtherWriter, &slot, &lock_file);
  if (result == kDkIoError) return kDkOpenedByOtherWriter;  // no lock file open
  if (result != kOk) return result;
  return KernelCode(RepeatWhileBusy([&] { return lock_file->WriteLockRelease(task, name); }));
}

}  // namespace korvan::storage
