#include "storage/db_kernel_internal.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "storage/db_kernel_codes.h"
#include "storage/kernel_settings.h"
#include "storage/result_codes.h"

namespace korvan::storage::kernel {
int ReadAt(int fd, int64_t position, void* data, size_t size, size_t* got) {
  *got = 0;
  if (position < 0) return kDkBadPosition;
  auto* bytes = static_cast<uint8_t*>(data);
  while (*got < size) {
    const ssize_t n = pread(fd, bytes + *got, size - *got, static_cast<off_t>(position + *got));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return errno == EINVAL ? kDkBadPosition : kDkIoError;
    if (n == 0) break;
    *got += static_cast<size_t>(n);
  }
  return kOk;
}

int WriteAt(int fd, int64_t position, const void* data, size_t size) {
  if (position < 0) return kDkIoError;
  const auto* bytes = static_cast<const uint8_t*>(data);
  size_t done = 0;
  while (done < size) {
    const ssize_t n = pwrite(fd, bytes + done, size - done, static_cast<off_t>(position + done));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return kDkIoError;
    done += static_cast<size_t>(n);
  }
  return kOk;
}

int WriteData(DbHandleSlot& slot, int64_t position, const void* data, size_t size) {
  if (int written = WriteAt(slot.data_file, position, data, size); written != kOk) return written;
  slot.data_unsynced = true;
  const bool in_change = slot.tree_lock_depth > 0 && slot.tree_lock_exclusive;
  return in_change ? kOk : SyncDataFile(slot);
}

int SyncDataFile(DbHandleSlot& slot) {
  if (!slot.data_unsynced) return kOk;
  slot.data_unsynced = false;
  return fdatasync(slot.data_file) == 0 ? kOk : kDkIoError;
}

int FileSize(int fd, int64_t* size) {
  struct stat info {};
  if (fstat(fd, &info) != 0) return kDkIoError;
  *size = info.st_size;
  return kOk;
}

int MapKeyResult(int key_result) {
  switch (key_result) {
    case kNoBlocksFree:
      return kDkCacheTooSmall;
    case kKeyFileNearlyFull:
      return kDkKeyFileVeryLarge;
    case kKeyFileFull:
      return kDkFatalRegenerateMaybe;
    case kKeyDuplicate:
      return kDkDuplicateKey;
    case kKeyIndexEmpty:
    case kKeyNotFoundOnDelete:
    case kKeyNoMatch:
      return kDkKeyNotFound;
    default:
      return key_result;
  }
}

int ConfiguredCacheSize() {
  return KeyFileCacheBlocks();
}

bool ConcurrencyDetectionOn() {
  return CurrentKernelSettings().ccd_enabled;
}

// The switch is the "CCD_ENABLED" setting itself, so the settings stay the one place
// that says whether detection is on.
bool SetConcurrencyDetection(bool on) {
  KernelSettings settings = CurrentKernelSettings();
  const bool previous = settings.ccd_enabled;
  if (previous != on) {
    settings.ccd_enabled = on;
    ApplyKernelSettings(settings);
  }
  return previous;
}

void Diagnostic(const std::string& text) {
  if (std::getenv("KORVAN_DBKERNEL_TRACE") != nullptr) {
    std::fprintf(stderr, "DBKernel: %s\n", text.c_str());
  }
}

}  // namespace korvan::storage::kernel
