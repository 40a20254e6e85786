// Records of a data file: read, insert, update, delete and count.
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "storage/data_file_banner.h"
#include "storage/data_file_reader.h"
#include "storage/db_kernel.h"
#include "storage/db_kernel_internal.h"
#include "storage/delphi_datetime.h"
#include "storage/key_file_sharing.h"
#include "storage/record_cache.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

constexpr char kSystemWriterId[] = "FFFFFFFF";  // records written by system code
constexpr int kModifiedByIdLength = 22;
// Records up to this size are read with a single system call.
constexpr size_t kSingleReadLimit = 4096;

[[noreturn]] void Raise(int handle, TDKDatabaseOperation operation, int code, char type = 0) {
  throw EDbKernelException(handle, operation, code, type);
}

std::string ShortString(const uint8_t (&field)[kModifiedByIdLength + 1]) {
  const size_t length = std::min<size_t>(field[0], kModifiedByIdLength);
  return std::string(reinterpret_cast<const char*>(field + 1), length);
}

TDbRecordHeader HeaderOf(const void* record) {
  TDbRecordHeader header;
  std::memcpy(&header, record, sizeof header);
  return header;
}

// The stored header of a live or freed record for update and delete; 4320 when it
// cannot be read or the position is no record position.
int ReadStoredHeader(const DbHandleSlot& slot, int32_t position, TDbRecordHeader* header) {
  if (position < kFirstBlockPosition) return kDkIoError;
  size_t got = 0;
  if (kernel::ReadAt(slot.data_file, position, header, sizeof *header, &got) != kOk ||
      got != sizeof *header) {
    return kDkIoError;
  }
  return kOk;
}

// A live slot must hold a header and end inside the file; else the file is damaged.
int CheckLiveSlot(const DbHandleSlot& slot, int32_t position, int32_t slot_length) {
  int64_t file_size = 0;
  if (kernel::FileSize(slot.data_file, &file_size) != kOk) return kDkIoError;
  if (slot_length < kRecordHeaderSize || position + int64_t{slot_length} > file_size) {
    return kDkFatalRegenerateOk;
  }
  return kOk;
}

// Another user rewrote the record since this handle was opened: the caller's copy is
// stale. Records written by system code never conflict.
void CheckConflict(int handle, const DbHandleSlot& slot, const TDbRecordHeader& stored,
                   const TDbRecordHeader& callers, TDKDatabaseOperation operation) {
  if (!kernel::ConcurrencyDetectionOn()) return;
  if (stored.LastModified == callers.LastModified) return;
  if (!(stored.LastModified > slot.open_time)) return;
  const std::string stored_id = ShortString(stored.ModifiedById);
  if (stored_id == ShortString(callers.ModifiedById) || stored_id == kSystemWriterId) return;
  throw EDbKernelConcurrencyException(handle, operation, stored.RecTyp, stored.LastModified,
                                      stored_id, stored.RecLen < 0);
}

// The bytes of a slot: the record, its length field set to the slot length, and zeros
// in the 1..3 bytes a record may leave unused.
std::vector<uint8_t> SlotImage(const void* record, int32_t record_length, int32_t slot_length) {
  std::vector<uint8_t> image(static_cast<size_t>(slot_length), 0);
  std::memcpy(image.data(), record, static_cast<size_t>(record_length));
  std::memcpy(image.data(), &slot_length, sizeof slot_length);
  return image;
}

// Puts a record at the start of a larger free block, leaving the rest free. Two writes,
// ordered so that a crash between or during them leaves blocks that read as a chain:
// first the record's body and, behind it, the length of the remaining free block (the
// block still starts with its old free length, so all of it is still one free block);
// then the record's length, which turns the front into the record. A sync between them
// keeps that order on disk too.
int WriteIntoFreeBlock(DbHandleSlot& slot, const void* record, int32_t length,
                       const kernel::FreeBlock& block) {
  constexpr size_t kLengthField = sizeof(int32_t);
  std::vector<uint8_t> image = SlotImage(record, length, length);
  const int32_t rest_length = -(block.length - length);
  image.resize(image.size() + kLengthField);
  std::memcpy(image.data() + length, &rest_length, kLengthField);
  if (kernel::WriteData(slot, int64_t{block.position} + kLengthField, image.data() + kLengthField,
                        image.size() - kLengthField) != kOk ||
      kernel::SyncDataFile(slot) != kOk ||
      kernel::WriteData(slot, block.position, image.data(), kLengthField) != kOk) {
    return kDkIoError;
  }
  return kOk;
}

// A record read before under the tree lock, as iDK_RecordRead hands it out; false when
// it is not cached or no lock vouches for the cache.
bool ReadCached(int handle, const DbHandleSlot& slot, int32_t position, void* buffer,
                int32_t* length, bool read_whole) {
  if (slot.tree_lock_depth == 0) return false;
  const std::vector<uint8_t>* cached = RecordCache::Instance().Find(handle, position);
  if (cached == nullptr) return false;
  const auto stored = static_cast<int32_t>(cached->size());
  if (!read_whole) {
    *length = stored;
    return true;
  }
  const int32_t wanted = std::min(stored, std::max(*length, int32_t{0}));
  std::memcpy(buffer, cached->data(), static_cast<size_t>(wanted));
  *length = wanted;
  return true;
}

bool IsTableLetter(char letter) {
  return letter >= 'A' && letter <= 'Z';
}

}  // namespace

int iDK_RecordRead(int handle, int32_t position, void* buffer, int32_t* length, bool read_whole) {
  constexpr auto kRead = TDKDatabaseOperation::doRead;
  const DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) Raise(handle, kRead, kDkInvalidHandle);
  if (position < kFirstBlockPosition) Raise(handle, kRead, kDkBadPosition);
  if (ReadCached(handle, *slot, position, buffer, length, read_whole)) return kOk;

  // Records of ordinary tables fit a small buffer: one read brings header and body, which
  // halves the system calls of a lookup. Only the record's own bytes reach the caller,
  // whose buffer beyond them stays as it was.
  uint8_t scratch[kSingleReadLimit];
  const size_t first_read =
      read_whole ? std::clamp<size_t>(static_cast<size_t>(std::max(*length, int32_t{0})),
                                      sizeof(TDbRecordHeader), sizeof scratch)
                 : sizeof(TDbRecordHeader);
  size_t got = 0;
  const int result = kernel::ReadAt(slot->data_file, position, scratch, first_read, &got);
  if (result == kDkBadPosition) Raise(handle, kRead, kDkBadPosition);
  if (result != kOk || got < sizeof(TDbRecordHeader)) Raise(handle, kRead, kDkFileTooShort);
  const TDbRecordHeader header = HeaderOf(scratch);
  if (!read_whole) {
    *length = header.RecLen;
    return kOk;
  }
  if (header.RecLen < 0) Raise(handle, kRead, kDkRecordDeleted, header.RecTyp);
  if (header.RecLen < kRecordHeaderSize)
    Raise(handle, kRead, kDkInvalidRecordLength, header.RecTyp);
  const int32_t wanted = std::min(header.RecLen, std::max(*length, int32_t{0}));
  if (static_cast<size_t>(wanted) <= got) {
    std::memcpy(buffer, scratch, static_cast<size_t>(wanted));
    // Only a whole record read under the lock may be handed out again.
    if (wanted == header.RecLen && slot->tree_lock_depth > 0) {
      RecordCache::Instance().Store(handle, position, scratch, static_cast<size_t>(wanted));
    }
  } else if (kernel::ReadAt(slot->data_file, position, buffer, static_cast<size_t>(wanted), &got) !=
                 kOk ||
             got != static_cast<size_t>(wanted)) {
    Raise(handle, kRead, kDkRecordBeyondEnd, header.RecTyp);
  }
  *length = wanted;
  return kOk;
}

int iDK_RecordInsert(int handle, void* record, int32_t length, bool reuse_free_space,
                     int32_t* position) {
  DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  if (record == nullptr || length < kRecordHeaderSize) return kDkBadRecordLength;
  if (!slot->IsWritable()) return kDkIoError;
  // Free space, appends and keys are shared with other processes: one change at a time.
  kernel::TreeLock lock(handle, *slot, kernel::TreeAccess::kChange);
  if (int begun = kernel::BeginChange(handle, *slot, lock); begun != kOk) return begun;
  auto* header = static_cast<TDbRecordHeader*>(record);

  kernel::FreeBlock block;
  bool into_free_block = false;
  if (reuse_free_space) {
    const int found = kernel::FindFreeBlock(handle, *slot, length, &block);
    if (found != kOk && found != kDkKeyNotFound) return found;
    into_free_block = found == kOk;
  }
  int64_t target = 0;
  int32_t occupied = length;
  if (into_free_block) {
    target = block.position;
    // A rest under 4 bytes could not even hold the length of a free block.
    if (block.length - length <= kernel::kMaxSlack) occupied = block.length;
  } else {
    if (kernel::FileSize(slot->data_file, &target) != kOk) return kDkIoError;
    if (target < kFirstBlockPosition) return kDkFatalRegenerateOk;
    if (target + length >= kernel::kMaxDataFileSize) {
      Raise(handle, TDKDatabaseOperation::doInsert, kDkFileWouldExceed2GB, header->RecTyp);
    }
  }

  const double now = DelphiNow();
  header->LastModified = now;
  header->CreationDate = now;
  RecordCache::Instance().Forget(handle, static_cast<int32_t>(target));
  const int32_t rest = into_free_block ? block.length - occupied : 0;
  if (rest >= kernel::kFreeBlockMinimum) {
    if (int written = WriteIntoFreeBlock(*slot, record, length, block); written != kOk) {
      return written;
    }
  } else {
    const std::vector<uint8_t> image = SlotImage(record, length, occupied);
    if (kernel::WriteData(*slot, target, image.data(), image.size()) != kOk) {
      return kDkIoError;
    }
  }
  if (into_free_block) {
    if (int removed = kernel::RemoveFreeSpaceKey(handle, block.position, block.length);
        removed != kOk) {
      return removed;
    }
    if (rest >= kernel::kFreeBlockMinimum) {
      if (int added = kernel::AddFreeSpaceKey(handle, block.position + occupied, rest);
          added != kOk) {
        return added;
      }
    }
  }
  *position = static_cast<int32_t>(target);
  return lock.Release();
}

int iDK_RecordUpdate(int handle, void* record, int32_t old_length, int32_t position,
                     int32_t new_length) {
  DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  if (record == nullptr || new_length < kRecordHeaderSize) return kDkBadRecordLength;
  if (!slot->IsWritable()) return kDkIoError;
  // Free space, appends and keys are shared with other processes: one change at a time.
  kernel::TreeLock lock(handle, *slot, kernel::TreeAccess::kChange);
  if (int begun = kernel::BeginChange(handle, *slot, lock); begun != kOk) return begun;
  TDbRecordHeader stored;
  if (int result = ReadStoredHeader(*slot, position, &stored); result != kOk) return result;
  CheckConflict(handle, *slot, stored, HeaderOf(record), TDKDatabaseOperation::doUpdate);
  if (stored.RecLen < 0) return kDkFatalRegenerateOk;
  if (int result = CheckLiveSlot(*slot, position, stored.RecLen); result != kOk) return result;
  // The record must still fit its slot, leaving no room for a free block: otherwise the
  // caller deletes and inserts anew.
  const auto fits = [&](int32_t record_length) {
    const int64_t slack = int64_t{stored.RecLen} - record_length;
    return slack >= 0 && slack <= kernel::kMaxSlack;
  };
  if (!fits(old_length) || !fits(new_length)) return kDkCannotReplace;

  static_cast<TDbRecordHeader*>(record)->LastModified = DelphiNow();
  RecordCache::Instance().Forget(handle, position);
  const std::vector<uint8_t> image = SlotImage(record, new_length, stored.RecLen);
  if (kernel::WriteData(*slot, position, image.data(), image.size()) != kOk) return kDkIoError;
  return lock.Release();
}

int iDK_RecordDelete(int handle, void* record, int32_t position) {
  DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  if (record == nullptr) return kDkBadRecordLength;
  if (!slot->IsWritable()) return kDkIoError;
  // Free space, appends and keys are shared with other processes: one change at a time.
  kernel::TreeLock lock(handle, *slot, kernel::TreeAccess::kChange);
  if (int begun = kernel::BeginChange(handle, *slot, lock); begun != kOk) return begun;
  TDbRecordHeader stored;
  if (int result = ReadStoredHeader(*slot, position, &stored); result != kOk) return result;
  CheckConflict(handle, *slot, stored, HeaderOf(record), TDKDatabaseOperation::doDelete);
  if (stored.RecLen < 0) return kDkFatalRegenerateOk;
  if (int result = CheckLiveSlot(*slot, position, stored.RecLen); result != kOk) return result;

  // The caller builds the record's keys from what was stored, to remove them.
  std::memcpy(record, &stored, sizeof stored);
  RecordCache::Instance().Forget(handle, position);
  TDbRecordHeader freed = stored;
  freed.RecLen = -stored.RecLen;
  freed.LastModified = DelphiNow();
  const int merged = kernel::FreeRecordBlock(handle, *slot, position, freed);
  const int written = lock.Release();
  return merged != kOk ? merged : written;
}

int iDK_RecordCount(int handle, char record_type, int32_t* count) {
  const DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  DataFileReader::FirstDamage damage;
  DataFileReader reader(slot->data_file, &damage);
  int32_t counted = 0;
  DataFileBlock block;
  while (reader.ReadBlock(&block) && !damage.seen) {
    if (!block.live) continue;
    if (record_type == 0 && !IsTableLetter(block.header.RecTyp)) {
      *count = -3;
      return kOk;
    }
    if (record_type == 0 || block.header.RecTyp == record_type) ++counted;
  }
  // A length of 0 ends the count where it stands; any other damage would make a count
  // that looks right and is wrong.
  const bool ended_by_zero = damage.seen && damage.kind == BlockDamage::kZeroLength;
  *count = reader.io_error() || (damage.seen && !ended_by_zero) ? -2 : counted;
  return kOk;
}

bool iDK_DisableConcurrencyDetection() {
  return kernel::SetConcurrencyDetection(false);
}
bool iDK_EnableConcurrencyDetection() {
  return kernel::SetConcurrencyDetection(true);
}
bool iDK_ConcurrencyDetectionEnabled() {
  return kernel::ConcurrencyDetectionOn();
}

}  // namespace korvan::storage
