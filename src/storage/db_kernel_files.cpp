// Creating, opening, flushing and closing databases.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "storage/block_cache.h"
#include "storage/data_file_banner.h"
#include "storage/db_kernel.h"
#include "storage/db_kernel_internal.h"
#include "storage/db_kernel_locks.h"
#include "storage/db_share_mode.h"
#include "storage/delphi_datetime.h"
#include "storage/key_file_sharing.h"
#include "storage/record_cache.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

// Data files are written through: a change returns when its data is on disk
// (kernel::WriteData). Key files are not: their blocks are written back after every
// change for other processes to see, and synced at flush and close; a key file whose
// writer ended without that is rebuilt (key_file_sharing.h).
constexpr int kNewFileMode = 0666;

void CloseQuietly(int fd) {
  if (fd >= 0) close(fd);
}

int DataFileOpenError(int error) {
  if (kernel::IsNoRegularFile(error)) return kDkNotADatabaseFile;
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return kDkDataFileMissing;
    case EWOULDBLOCK:
      return kDkSharingViolation;
    case EROFS:
    case EACCES:
    case EPERM:
      return kDkMediumReadOnly;
    default:
      return kDkIoError;
  }
}

int KeyFileOpenError(int error) {
  if (kernel::IsNoRegularFile(error)) return kDkNotADatabaseFile;
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return kDkKeyFileMissing;
    case EROFS:
    case EACCES:
    case EPERM:
      return kDkMediumReadOnly;
    default:
      return kDkIoError;
  }
}

// Opens a data file in a mode and takes the mode's share markers; -1 with errno.
int OpenDataFile(const std::string& path, uint16_t mode) {
  const int fd = kernel::OpenFile(path, OpenFlagsForMode(mode));
  if (fd < 0) return -1;
  if (int error = AcquireShareMode(fd, mode); error != 0) {
    close(fd);
    errno = error;
    return -1;
  }
  return fd;
}

// Undoes a half-made database: nothing of it may remain.
void DiscardNewDatabase(int handle, bool cached, int data_fd, int key_fd,
                        const std::string& base_path) {
  if (cached) BlockCache::Instance().Close(handle);
  CloseQuietly(data_fd);
  CloseQuietly(key_fd);
  unlink(DataFileName(base_path).c_str());
  unlink(KeyFileName(base_path).c_str());
}

// Creates both files empty and closed; 4304 when the data file is there already.
int CreateEmptyFiles(const std::string& base_path) {
  const int data_fd =
      kernel::OpenFile(DataFileName(base_path), O_RDWR | O_CREAT | O_EXCL, kNewFileMode);
  if (data_fd < 0) return errno == EEXIST ? kDkDataFileExists : DataFileOpenError(errno);
  const int key_fd =
      kernel::OpenFile(KeyFileName(base_path), O_RDWR | O_CREAT | O_TRUNC, kNewFileMode);
  if (key_fd < 0) {
    const int error = KeyFileOpenError(errno);
    close(data_fd);
    unlink(DataFileName(base_path).c_str());
    return error;
  }
  close(data_fd);
  close(key_fd);
  return kOk;
}

bool DataFileExists(const std::string& base_path) {
  const int fd = kernel::OpenFile(DataFileName(base_path), O_RDONLY);
  if (fd >= 0) {
    close(fd);
    return true;
  }
  return errno != ENOENT;  // anything but "not found" counts as there
}

int WriteNewHeader(int data_fd) {
  const auto& table = DbHandleTable::Instance();
  const double stamp = table.new_file_time_stamp().value_or(DelphiNow());
  const TDataFileHeader header = MakeDataFileHeader(table.new_file_version(), stamp);
  const bool written = kernel::WriteAt(data_fd, 0, &header, sizeof header) == kOk;
  return written && fdatasync(data_fd) == 0 ? kOk : kDkDataFileInitFailed;
}

int FlushKeyFileCache(int handle) {
  try {
    int result = kCacheBusy;
    while (result == kCacheBusy) result = BlockCache::Instance().WriteAll(handle);
    return result == kOk ? kOk : kDkIoError;
  } catch (const FileIoError& error) {
    kernel::Diagnostic(error.what());
    return kDkIoError;
  }
}

int OpenKeyFile(int handle, const std::string& base_path, uint16_t mode, int* key_fd,
                int* version) {
  // A reader may have to rebuild a key file its last writer did not close: it opens it
  // for writing too where it may.
  *key_fd = kernel::OpenFile(KeyFileName(base_path), O_RDWR);
  if (*key_fd < 0) *key_fd = kernel::OpenFile(KeyFileName(base_path), OpenFlagsForMode(mode));
  if (*key_fd < 0) return KeyFileOpenError(errno);
  BlockCache::Instance().Open(handle, *key_fd, KeyFileName(base_path),
                              kernel::ConfiguredCacheSize());
  int result = kernel::CallKeyLayer([&] { return KeyFileVersion(handle, version); });
  if (result == kOk && *version != 2 && *version != 3) result = kKeyFileUnknownVersion;
  int64_t file_size = 0;
  if (result == kOk) result = kernel::FileSize(*key_fd, &file_size);
  if (result == kOk) {
    result = kernel::CallKeyLayer([&] { return KeyFileCheckHeader(handle, file_size); });
  }
  if (result != kOk) {
    BlockCache::Instance().Close(handle);
    close(*key_fd);
    *key_fd = -1;
  }
  return result;
}

// Puts the slot into the table and joins the other users of its key file; on failure
// the handle is given up again.
int JoinTaken(int handle, DbHandleSlot slot) {
  auto& table = DbHandleTable::Instance();
  DbHandleSlot& taken = table.Take(handle, std::move(slot));
  const int joined = kernel::JoinKeyFile(handle, taken);
  if (joined != kOk) {
    BlockCache::Instance().Close(handle);
    close(taken.data_file);
    close(taken.key_file);
    table.Release(handle);
  }
  return joined;
}

}  // namespace

void iDK_SetTypeShareable(char db_type, bool shareable) {
  DbHandleTable::Instance().SetShareableType(db_type, shareable);
}

int iDK_DbCreate(char db_type, const std::string& base_path, int key_length, int* handle) {
  auto& table = DbHandleTable::Instance();
  const int free_handle = table.FindFree();
  if (free_handle == 0) return kDkTooManyHandles;
  if (base_path.empty()) return kDkIoError;
  const bool shareable = table.IsShareableType(db_type);
  const uint16_t mode = shareable ? kOpenSharedReadWrite : kOpenExclusiveWriter;
  if (DataFileExists(base_path)) return kDkDataFileExists;
  if (key_length < kMinKeyFileKeyLength || key_length > kMaxKeyFileKeyLength) {
    return kDkKeyFileInitFailed;
  }
  if (int created = CreateEmptyFiles(base_path); created != kOk) return created;

  const int data_fd = OpenDataFile(DataFileName(base_path), mode);
  const int key_fd = kernel::OpenFile(KeyFileName(base_path), OpenFlagsForMode(mode));
  if (data_fd < 0 || key_fd < 0) {
    DiscardNewDatabase(free_handle, false, data_fd, key_fd, base_path);
    return kDkIoError;
  }
  BlockCache::Instance().Open(free_handle, key_fd, KeyFileName(base_path),
                              kernel::ConfiguredCacheSize());
  int result = kernel::CallKeyLayer([&] { return KeyFileInit(3, free_handle, key_length); });
  if (result == kOk) result = FlushKeyFileCache(free_handle);
  if (result != kOk) {
    DiscardNewDatabase(free_handle, true, data_fd, key_fd, base_path);
    return kDkKeyFileInitFailed;
  }
  if (WriteNewHeader(data_fd) != kOk) {
    DiscardNewDatabase(free_handle, true, data_fd, key_fd, base_path);
    return kDkDataFileInitFailed;
  }
  kernel::DataFileInfo info;
  kernel::ReadDataFileInfo(data_fd, &info);

  DbHandleSlot slot;
  slot.file_name = base_path;
  slot.db_type = db_type;
  slot.data_file = data_fd;
  slot.key_file = key_fd;
  slot.lock_state = shareable ? LockFileState::kNotOpen : LockFileState::kNoLocking;
  slot.key_file_version = 3;
  slot.open_mode = mode;
  slot.file_version = info.version;
  slot.file_time_stamp = info.time_stamp;
  slot.open_time = DelphiNow();
  if (int joined = JoinTaken(free_handle, std::move(slot)); joined != kOk) {
    unlink(DataFileName(base_path).c_str());
    unlink(KeyFileName(base_path).c_str());
    return joined;
  }
  *handle = free_handle;
  return iDK_DbFlush(free_handle);
}

int iDK_DbOpen(char db_type, const std::string& base_path, bool write_wanted, bool shareable,
               int* handle) {
  auto& table = DbHandleTable::Instance();
  if (const int open_handle = table.FindOpen(base_path); open_handle != 0) {
    *handle = open_handle;
    return kDkAlreadyOpen;
  }
  const int free_handle = table.FindFree();
  if (free_handle == 0) return kDkTooManyHandles;
  if (base_path.empty()) return kDkDataFileMissing;
  uint16_t mode = kOpenExclusiveWriter;
  if (shareable) mode = write_wanted ? kOpenSharedReadWrite : kOpenReadDenyNone;

  const int data_fd = OpenDataFile(DataFileName(base_path), mode);
  if (data_fd < 0) return DataFileOpenError(errno);
  kernel::DataFileInfo info;
  if (int result = kernel::ReadDataFileInfo(data_fd, &info); result != kOk) {
    close(data_fd);
    return result;
  }
  int key_fd = -1;
  int version = 0;
  if (int result = OpenKeyFile(free_handle, base_path, mode, &key_fd, &version); result != kOk) {
    close(data_fd);
    return result;
  }

  DbHandleSlot slot;
  slot.file_name = base_path;
  slot.db_type = db_type;
  slot.data_file = data_fd;
  slot.key_file = key_fd;
  slot.lock_state = shareable ? LockFileState::kNotOpen : LockFileState::kNoLocking;
  slot.key_file_version = static_cast<uint8_t>(version);
  slot.open_mode = mode;
  slot.file_version = info.version;
  slot.file_time_stamp = info.time_stamp;
  slot.open_time = DelphiNow();
  if (int joined = JoinTaken(free_handle, std::move(slot)); joined != kOk) return joined;
  *handle = free_handle;
  return kOk;
}

int iDK_DbFlush(int handle) {
  DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  if (int result = FlushKeyFileCache(handle); result != kOk) return result;
  if (slot->IsWritable()) {
    if (fdatasync(slot->data_file) != 0 || fdatasync(slot->key_file) != 0) return kDkIoError;
  }
  return kOk;
}

// On POSIX a close cannot be taken back, so everything that can fail (writing back the
// key file and syncing) happens before: when it fails the database stays open (4316)
// and the handle remains usable.
int iDK_DbClose(int handle) {
  auto& table = DbHandleTable::Instance();
  DbHandleSlot* slot = table.Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  // Holds the caller left open end here; what changed inside is written back below.
  while (slot->tree_holds > 0) kernel::EndTreeHold(handle, *slot);
  if (iDK_DbFlush(handle) != kOk) return kDkStaysOpen;
  if (kernel::LeaveKeyFile(handle, *slot) != kOk) return kDkStaysOpen;
  // The lock protocol unregisters this process's task and deletes the lock file only
  // when no task is left: POSIX would let a process unlink a file others still use.
  if (slot->lock_state == LockFileState::kOpen && DbCloseLockFile(handle) != kOk) {
    kernel::Diagnostic("lock file of " + slot->file_name + " not released cleanly");
  }
  BlockCache::Instance().Close(handle);
  RecordCache::Instance().Drop(handle);
  close(slot->data_file);
  close(slot->key_file);
  table.Release(handle);
  return kOk;
}

int iDK_KeyFileClosedCleanly(const std::string& base_path, bool* clean) {
  return kernel::KeyFileClosedCleanly(KeyFileName(base_path), clean);
}

int iDK_IsWritable(int handle, bool* writable) {
  const DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  *writable = slot->IsWritable();
  return kOk;
}

int iDK_DbType(int handle, char* db_type) {
  const DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  *db_type = slot->db_type;
  return kOk;
}

}  // namespace korvan::storage
