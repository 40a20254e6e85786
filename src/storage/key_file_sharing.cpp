#include "storage/key_file_sharing.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

#include "storage/block_cache.h"
#include "storage/db_kernel_codes.h"
#include "storage/db_kernel_internal.h"
#include "storage/key_file_layout.h"
#include "storage/key_file_rebuild.h"
#include "storage/record_cache.h"
#include "storage/result_codes.h"

namespace korvan::storage::kernel {
namespace {

// Far beyond the 2 GB a key file can reach, so no block is ever covered.
constexpr off_t kLockBase = off_t{1} << 40;
constexpr off_t kTreeLockByte = kLockBase;
constexpr off_t kGuardByte = kLockBase + 1;
constexpr off_t kWriterSlotBase = kLockBase + 8;
constexpr int kWriterSlots = 64;

constexpr size_t kWritersOffset = offsetof(KeyFileHeaderV3, open_writers);
constexpr size_t kStampOffset = offsetof(KeyFileHeaderV3, change_stamp);
// The cached blocks of a handle that has not yet taken the tree lock belong to no stamp.
constexpr uint64_t kNoStamp = ~uint64_t{0};

int LockByte(int fd, off_t byte, short type, bool wait) {
  struct flock lock {};
  lock.l_type = type;
  lock.l_whence = SEEK_SET;
  lock.l_start = byte;
  lock.l_len = 1;
  while (fcntl(fd, wait ? F_OFD_SETLKW : F_OFD_SETLK, &lock) != 0) {
    if (errno != EINTR) return errno;
  }
  return 0;
}

void UnlockByte(int fd, off_t byte) {
  LockByte(fd, byte, F_UNLCK, false);
}

// Whether another open file description holds a lock on the byte.
bool HeldByOthers(int fd, off_t byte) {
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  lock.l_start = byte;
  lock.l_len = 1;
  if (fcntl(fd, F_OFD_GETLK, &lock) != 0) return true;  // unknown counts as alive
  return lock.l_type != F_UNLCK;
}

bool IsVersion3(const DbHandleSlot& slot) {
  return slot.key_file_version == KeyFileV3::kVersion;
}

int ReadHeaderField(int fd, size_t offset, uint64_t* value) {
  size_t got = 0;
  if (ReadAt(fd, static_cast<int64_t>(offset), value, sizeof *value, &got) != kOk ||
      got != sizeof *value) {
    return kDkIoError;
  }
  return kOk;
}

// Changes the header in the cache; the caller writes it back.
template <typename Change>
int ChangeHeader(int handle, Change change) {
  auto& cache = BlockCache::Instance();
  try {
    uint8_t* block = nullptr;
    if (cache.Read(handle, 0, &block) != kOk) return kDkIoError;
    change(block);
    const int written = cache.Write(handle, 0);
    const int released = cache.Release(handle, 0);
    return written == kOk && released == kOk ? kOk : kDkIoError;
  } catch (const FileIoError& error) {
    Diagnostic(error.what());
    return kDkIoError;
  }
}

int WriteBack(int handle) {
  try {
    int result = kCacheBusy;
    while (result == kCacheBusy) result = BlockCache::Instance().WriteAll(handle);
    return result == kOk ? kOk : kDkIoError;
  } catch (const FileIoError& error) {
    Diagnostic(error.what());
    return kDkIoError;
  }
}

// A new stamp in the cached header; every other process drops its blocks on its next
// operation.
int RaiseStamp(int handle, DbHandleSlot& slot) {
  return ChangeHeader(handle, [&](uint8_t* block) {
    const uint64_t stamp = LoadLe<uint64_t>(block + kStampOffset) + 1;
    StoreLe<uint64_t>(block + kStampOffset, stamp);
    slot.cached_change_stamp = stamp;
  });
}

void DropCachedBlocks(int handle, DbHandleSlot& slot) {
  RecordCache::Instance().Drop(handle);
  auto& cache = BlockCache::Instance();
  cache.Close(handle);
  cache.Open(handle, slot.key_file, KeyFileName(slot.file_name), ConfiguredCacheSize());
}

int TakeWriterSlot(const DbHandleSlot& slot, int* taken) {
  for (int s = 0; s < kWriterSlots; ++s) {
    const int error = LockByte(slot.key_file, kWriterSlotBase + s, F_WRLCK, false);
    if (error == 0) {
      *taken = s;
      return kOk;
    }
    if (error != EAGAIN && error != EACCES) return kDkIoError;
  }
  return kDkTooManyTasks;
}

// The writer bits whose writers are gone, and whether any other writer is alive.
struct WriterCensus {
  uint64_t gone = 0;
  bool others_alive = false;
};

WriterCensus CountWriters(int fd, uint64_t bits) {
  WriterCensus census;
  for (int s = 0; s < kWriterSlots; ++s) {
    const uint64_t bit = uint64_t{1} << s;
    if (HeldByOthers(fd, kWriterSlotBase + s)) {
      census.others_alive = true;
    } else if ((bits & bit) != 0) {
      census.gone |= bit;
    }
  }
  return census;
}

// Under the guard: rebuild when the key file cannot be trusted and nobody else writes.
int CheckAndRebuild(int handle, DbHandleSlot& slot) {
  TreeLock lock(handle, slot, TreeAccess::kChange);
  if (lock.result() != kOk) return lock.result();
  uint64_t bits = 0;
  if (int read = ReadHeaderField(slot.key_file, kWritersOffset, &bits); read != kOk) return read;
  const WriterCensus census = CountWriters(slot.key_file, bits);
  if (census.gone == 0) return kOk;
  if (census.others_alive) {
    Diagnostic(KeyFileName(slot.file_name) +
               ": a writer ended without closing; rebuilt when the others have closed");
    return kOk;
  }
  if (int rebuilt = RebuildKeyFile(handle, slot); rebuilt != kOk) return rebuilt;
  return lock.Release();
}

// Leaves one level of a handle's tree lock; the outermost writes back what changed and
// lets go.
int LeaveTreeLevel(int handle, DbHandleSlot& slot) {
  if (--slot.tree_lock_depth > 0) return kOk;
  // The data is on disk before anyone else can read the change.
  const int synced = SyncDataFile(slot);
  int result = kOk;
  const FileCache* cache = BlockCache::Instance().Find(handle);
  if (slot.tree_lock_exclusive && cache != nullptr && cache->DirtyBlocks() > 0) {
    if (!slot.stamp_raised) result = RaiseStamp(handle, slot);
    if (result == kOk) result = WriteBack(handle);
    // What could not be written back must not be read by this process as if it were
    // the file's: the next lock reads the blocks anew.
    if (result != kOk) slot.cached_change_stamp = kNoStamp;
  }
  slot.tree_lock_exclusive = false;
  slot.stamp_raised = false;
  UnlockByte(slot.key_file, kTreeLockByte);
  return synced != kOk ? synced : result;
}

}  // namespace

TreeLock::TreeLock(int handle, DbHandleSlot& slot, TreeAccess access)
    : handle_(handle), slot_(slot) {
  const bool exclusive = access == TreeAccess::kChange;
  if (slot_.tree_lock_depth > 0) {
    if (exclusive && !slot_.tree_lock_exclusive) {
      Diagnostic("tree lock: a change inside a read of " + slot_.file_name);
      result_ = kDkIoError;
      return;
    }
    ++slot_.tree_lock_depth;
    held_ = true;
    return;
  }
  if (!IsVersion3(slot_)) {
    // Unguarded: nothing tells this process whether another one changed the file.
    ++slot_.change_mark;
    return;
  }
  if (LockByte(slot_.key_file, kTreeLockByte, exclusive ? F_WRLCK : F_RDLCK, true) != 0) {
    result_ = kDkIoError;
    return;
  }
  slot_.tree_lock_depth = 1;
  slot_.tree_lock_exclusive = exclusive;
  held_ = true;
  uint64_t stamp = 0;
  if (ReadHeaderField(slot_.key_file, kStampOffset, &stamp) != kOk) {
    result_ = kDkIoError;
    return;
  }
  if (stamp != slot_.cached_change_stamp) {
    DropCachedBlocks(handle_, slot_);
    slot_.cached_change_stamp = stamp;
    ++slot_.change_mark;
  }
}

TreeLock::~TreeLock() {
  Release();
}

int TreeLock::Release() {
  if (!held_) return kOk;
  held_ = false;
  return LeaveTreeLevel(handle_, slot_);
}

int HoldTreeLock(int handle, DbHandleSlot& slot, TreeAccess access) {
  TreeLock lock(handle, slot, access);
  if (lock.result() != kOk) return lock.result();
  lock.Keep();
  ++slot.tree_holds;
  return kOk;
}

int EndTreeHold(int handle, DbHandleSlot& slot) {
  if (slot.tree_holds == 0) return kDkIoError;
  --slot.tree_holds;
  // A version 2 key file is shared unguarded: its holds hold no lock.
  if (!IsVersion3(slot)) return kOk;
  return LeaveTreeLevel(handle, slot);
}

// The stamp goes up in the file before the first change of an exclusive lock reaches
// either file: whoever cached key blocks or records under the old stamp drops them at
// its next lock, also when this process is killed halfway through its change.
int BeginChange(int handle, DbHandleSlot& slot, TreeLock& lock) {
  if (lock.result() != kOk) return lock.result();
  ++slot.change_mark;
  if (!IsVersion3(slot) || slot.stamp_raised) return kOk;
  const bool mark_writer = !slot.writer_marked && slot.writer_slot >= 0;
  int result = kOk;
  if (mark_writer) {
    const uint64_t bit = uint64_t{1} << slot.writer_slot;
    result = ChangeHeader(handle, [&](uint8_t* block) {
      StoreLe<uint64_t>(block + kWritersOffset, LoadLe<uint64_t>(block + kWritersOffset) | bit);
    });
  }
  if (result == kOk) result = RaiseStamp(handle, slot);
  if (result == kOk) result = WriteBack(handle);
  if (result == kOk && mark_writer && fdatasync(slot.key_file) != 0) result = kDkIoError;
  if (result != kOk) {
    slot.cached_change_stamp = kNoStamp;
    return result;
  }
  slot.writer_marked = slot.writer_marked || mark_writer;
  slot.stamp_raised = true;
  return kOk;
}

// A key file that may only be read (a medium without write permission) can be neither
// guarded nor rebuilt: it is used when it ended cleanly and refused otherwise.
int JoinReadOnly(const DbHandleSlot& slot) {
  uint64_t bits = 0;
  if (int read = ReadHeaderField(slot.key_file, kWritersOffset, &bits); read != kOk) return read;
  const WriterCensus census = CountWriters(slot.key_file, bits);
  return census.gone == 0 || census.others_alive ? kOk : kDkFatalRegenerateOk;
}

int JoinKeyFile(int handle, DbHandleSlot& slot) {
  slot.cached_change_stamp = kNoStamp;
  if (!IsVersion3(slot)) return kOk;
  if ((fcntl(slot.key_file, F_GETFL) & O_ACCMODE) == O_RDONLY) return JoinReadOnly(slot);
  if (LockByte(slot.key_file, kGuardByte, F_WRLCK, true) != 0) return kDkIoError;
  int result = kOk;
  if (slot.IsWritable()) result = TakeWriterSlot(slot, &slot.writer_slot);
  if (result == kOk) result = CheckAndRebuild(handle, slot);
  UnlockByte(slot.key_file, kGuardByte);
  return result;
}

int LeaveKeyFile(int handle, DbHandleSlot& slot) {
  if (slot.writer_marked) {
    TreeLock lock(handle, slot, TreeAccess::kChange);
    if (lock.result() != kOk) return lock.result();
    const uint64_t bit = uint64_t{1} << slot.writer_slot;
    int result = ChangeHeader(handle, [&](uint8_t* block) {
      StoreLe<uint64_t>(block + kWritersOffset, LoadLe<uint64_t>(block + kWritersOffset) & ~bit);
    });
    if (result == kOk) result = lock.Release();
    if (result == kOk && fdatasync(slot.key_file) != 0) result = kDkIoError;
    if (result != kOk) return result;
    slot.writer_marked = false;
  }
  if (slot.writer_slot >= 0) {
    UnlockByte(slot.key_file, kWriterSlotBase + slot.writer_slot);
    slot.writer_slot = -1;
  }
  return kOk;
}

int KeyFileClosedCleanly(const std::string& key_file, bool* clean) {
  const int fd = OpenFile(key_file, O_RDONLY);
  if (fd < 0) return errno == ENOENT || errno == ENOTDIR ? kDkKeyFileMissing : kDkIoError;
  uint8_t version = 0;
  size_t got = 0;
  int result = ReadAt(fd, 0, &version, sizeof version, &got);
  uint64_t bits = 0;
  if (result == kOk && got == 1 && version == KeyFileV3::kVersion) {
    result = ReadHeaderField(fd, kWritersOffset, &bits);
  }
  if (result == kOk) *clean = CountWriters(fd, bits).gone == 0;
  close(fd);
  return result == kOk ? kOk : kDkIoError;
}

}  // namespace korvan::storage::kernel
