#include "storage/lock_file_mutex.h"

#include <fcntl.h>

#include <cerrno>

#include "storage/block_cache.h"
#include "storage/db_kernel_codes.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

int SetRangeLock(int fd, short type) {
  struct flock range = {};
  range.l_type = type;
  range.l_whence = SEEK_SET;
  range.l_start = 0;
  range.l_len = kBlockSize;
  int result;
  do {
    result = fcntl(fd, F_SETLK, &range);
  } while (result != 0 && errno == EINTR);
  return result == 0 ? 0 : errno;
}

}  // namespace

int LockFileMutex::TryLock() {
  if (held_) return kOk;
  int error = SetRangeLock(fd_, F_WRLCK);
  if (error == EACCES || error == EAGAIN) return kLockFileBusy;
  if (error != 0) return kDkIoError;
  held_ = true;
  return kOk;
}

void LockFileMutex::Unlock() {
  if (!held_) return;
  SetRangeLock(fd_, F_UNLCK);
  held_ = false;
}

}  // namespace korvan::storage
