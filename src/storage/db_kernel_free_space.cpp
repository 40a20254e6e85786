// The free-space index: every free block of a data file has one key "~" + its length
// in the database's key file. Insert takes the largest free block first; delete merges
// a freed block with the free blocks behind it.
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "storage/data_file_banner.h"
#include "storage/db_kernel_codes.h"
#include "storage/db_kernel_internal.h"
#include "storage/result_codes.h"

namespace korvan::storage::kernel {
namespace {

constexpr int kFreeSpaceKeySignificant = 1 + kFreeSpaceDigits;

KeyEntry LargestFreeBlockPattern() {
  KeyEntry pattern;
  std::memset(pattern.key, kKeyPad, sizeof pattern.key);
  pattern.key[0] = kFreeSpaceKeyLead;
  return pattern;
}

// The length written in a free-space key, or -1 when the characters are no number.
int64_t DecodeFreeSpaceLength(const uint8_t* key) {
  int64_t value = 0;
  int i = 1;
  while (i <= kFreeSpaceDigits && key[i] == ' ') ++i;
  if (i > kFreeSpaceDigits) return -1;
  for (; i <= kFreeSpaceDigits; ++i) {
    if (key[i] < '0' || key[i] > '9') return -1;
    value = value * 10 + (key[i] - '0');
  }
  return value;
}

int ReadLength(int fd, int64_t position, int32_t* length) {
  size_t got = 0;
  if (ReadAt(fd, position, length, sizeof *length, &got) != kOk || got != sizeof *length) {
    return kDkIoError;
  }
  return kOk;
}

// A free block named by the index must lie inside the file and carry its length.
int VerifyFreeBlock(const DbHandleSlot& slot, int64_t position, int64_t length) {
  int64_t file_size = 0;
  if (FileSize(slot.data_file, &file_size) != kOk) return kDkIoError;
  if (length < kFreeBlockMinimum || position < kFirstBlockPosition ||
      position + length > file_size) {
    return kDkFatalRegenerateOk;
  }
  int32_t stored = 0;
  if (ReadLength(slot.data_file, position, &stored) != kOk) return kDkFatalRegenerateOk;
  return stored == -length ? kOk : kDkFatalRegenerateOk;
}

}  // namespace

KeyEntry FreeSpaceKey(int64_t block_length, int32_t position) {
  KeyEntry entry;
  entry.position = static_cast<uint32_t>(position);
  std::memset(entry.key, kKeyPad, sizeof entry.key);
  char digits[kFreeSpaceDigits + 2];
  std::snprintf(digits, sizeof digits, "%11lld", static_cast<long long>(block_length));
  entry.key[0] = kFreeSpaceKeyLead;
  std::memcpy(entry.key + 1, digits, kFreeSpaceDigits);
  return entry;
}

int FindFreeBlock(int handle, const DbHandleSlot& slot, int32_t wanted, FreeBlock* block) {
  KeyEntry found = LargestFreeBlockPattern();
  const int result = CallKeyLayer([&] { return KeyLastMatch(handle, found); });
  if (result != kOk) return result;
  const KeyEntry wanted_key = FreeSpaceKey(wanted, 0);
  if (std::memcmp(found.key, wanted_key.key, kFreeSpaceKeySignificant) < 0) {
    return kDkKeyNotFound;
  }
  const int64_t length = DecodeFreeSpaceLength(found.key);
  if (length < 0) return kDkFatalRegenerateOk;
  const int64_t position = static_cast<int32_t>(found.position);
  if (int check = VerifyFreeBlock(slot, position, length); check != kOk) {
    Diagnostic("free-space key does not match the data file at " + std::to_string(position));
    return check;
  }
  block->position = static_cast<int32_t>(position);
  block->length = static_cast<int32_t>(length);
  return kOk;
}

int AddFreeSpaceKey(int handle, int32_t position, int64_t block_length) {
  const KeyEntry entry = FreeSpaceKey(block_length, position);
  const int result = CallKeyLayer([&] { return KeyInsert(handle, entry); });
  // 4336 only warns that the key file grows large; the key is in.
  return result == kOk || result == kDkKeyFileVeryLarge ? kOk : kDkFatalRegenerateOk;
}

int RemoveFreeSpaceKey(int handle, int32_t position, int64_t block_length) {
  const KeyEntry entry = FreeSpaceKey(block_length, position);
  const int result = CallKeyLayer([&] { return KeyDelete(handle, entry); });
  return result == kOk ? kOk : kDkFatalRegenerateOk;
}

int FreeRecordBlock(int handle, DbHandleSlot& slot, int32_t position, TDbRecordHeader freed) {
  int64_t file_size = 0;
  if (FileSize(slot.data_file, &file_size) != kOk) return kDkIoError;
  int64_t total = -static_cast<int64_t>(freed.RecLen);
  int64_t next = position + total;
  while (next < file_size) {
    int32_t length = 0;
    if (ReadLength(slot.data_file, next, &length) != kOk) return kDkIoError;
    if (length >= 0) break;
    const int64_t size = -static_cast<int64_t>(length);
    if (size < kFreeBlockMinimum || next + size > file_size) return kDkFatalRegenerateOk;
    if (int removed = RemoveFreeSpaceKey(handle, static_cast<int32_t>(next), size);
        removed != kOk) {
      return removed;
    }
    total += size;
    next += size;
  }
  // One write frees the record and swallows the free blocks behind it: the old free
  // lengths inside the merged block are never read again: one synchronous write per
  // delete, at the end of the change.
  freed.RecLen = static_cast<int32_t>(-total);
  if (WriteData(slot, position, &freed, sizeof freed) != kOk) return kDkIoError;
  if (next >= file_size) {
    return ftruncate(slot.data_file, position) == 0 ? kOk : kDkIoError;
  }
  return AddFreeSpaceKey(handle, position, total);
}

}  // namespace korvan::storage::kernel
