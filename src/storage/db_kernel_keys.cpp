// Key operations: the kernel's face of the key file of a database.
#include <cstring>

#include "storage/db_kernel.h"
#include "storage/db_kernel_internal.h"
#include "storage/key_file_sharing.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

// The key layer matches on the pattern's significant prefix; this re-checks the found
// key byte by byte, where a pad byte in the pattern stands for any byte and a zero byte
// ends the found key.
bool FoundKeyMatches(const uint8_t* pattern, const uint8_t* found) {
  for (int i = 0; i < kMaxKeyLength && found[i] != 0; ++i) {
    if (pattern[i] != kKeyPad && pattern[i] != found[i]) return false;
  }
  return true;
}

// Runs a call that only reads the key file, under the shared tree lock.
template <typename Read>
int ReadingKeys(int handle, Read read) {
  DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  kernel::TreeLock lock(handle, *slot, kernel::TreeAccess::kRead);
  if (lock.result() != kOk) return lock.result();
  return read();
}

template <typename Search>
int MatchSearch(int handle, KeyEntry& entry, uint32_t* position, Search search) {
  DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  kernel::TreeLock lock(handle, *slot, kernel::TreeAccess::kRead);
  if (lock.result() != kOk) return lock.result();
  KeyEntry found = entry;
  if (int result = kernel::CallKeyLayer([&] { return search(handle, found); }); result != kOk) {
    return result;
  }
  if (!FoundKeyMatches(entry.key, found.key)) return kDkKeyNotFound;
  entry = found;
  *position = found.position;
  return kOk;
}

template <typename Step>
int CursorStep(int handle, KeyEntry& entry, uint32_t* position, Step step) {
  DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  kernel::TreeLock lock(handle, *slot, kernel::TreeAccess::kRead);
  if (lock.result() != kOk) return lock.result();
  KeyEntry cursor = entry;
  cursor.position = *position;
  if (int result = kernel::CallKeyLayer([&] { return step(handle, cursor); }); result != kOk) {
    return result;
  }
  entry = cursor;
  *position = cursor.position;
  return kOk;
}

template <typename Change>
int ChangeKey(int handle, const KeyEntry& entry, Change change) {
  DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  if (!slot->IsWritable()) return kDkIoError;
  kernel::TreeLock lock(handle, *slot, kernel::TreeAccess::kChange);
  if (int begun = kernel::BeginChange(handle, *slot, lock); begun != kOk) return begun;
  const KeyEntry copy = entry;
  const int changed = kernel::CallKeyLayer([&] { return change(handle, copy); });
  const int written = lock.Release();
  return changed != kOk ? changed : written;
}

}  // namespace

int iDK_KeyInsert(int handle, const KeyEntry& entry) {
  return ChangeKey(handle, entry, [](int h, const KeyEntry& e) { return KeyInsert(h, e); });
}

int iDK_KeyDelete(int handle, const KeyEntry& entry) {
  return ChangeKey(handle, entry, [](int h, const KeyEntry& e) { return KeyDelete(h, e); });
}

int iDK_KeyFirstMatch(int handle, KeyEntry& entry, uint32_t* position) {
  return MatchSearch(handle, entry, position,
                     [](int h, KeyEntry& e) { return KeyFirstMatch(h, e); });
}

int iDK_KeyLastMatch(int handle, KeyEntry& entry, uint32_t* position) {
  return MatchSearch(handle, entry, position,
                     [](int h, KeyEntry& e) { return KeyLastMatch(h, e); });
}

int iDK_KeyNext(int handle, KeyEntry& entry, uint32_t* position) {
  return CursorStep(handle, entry, position, [](int h, KeyEntry& e) { return KeyNext(h, e); });
}

int iDK_KeyPrev(int handle, KeyEntry& entry, uint32_t* position) {
  return CursorStep(handle, entry, position, [](int h, KeyEntry& e) { return KeyPrev(h, e); });
}

int iDK_KeyMatchesCount(int handle, const uint8_t* pattern, int significant_length,
                        bool count_tilde, uint32_t* count) {
  return ReadingKeys(handle, [&] {
    return kernel::CallKeyLayer(
        [&] { return MatchesCount(handle, pattern, significant_length, count_tilde, count); });
  });
}

int iDK_KeyMatchesList(int handle, const uint8_t* pattern, int significant_length, bool count_tilde,
                       std::vector<uint32_t>* positions) {
  return ReadingKeys(handle, [&] {
    return kernel::CallKeyLayer(
        [&] { return MatchesList(handle, pattern, significant_length, count_tilde, positions); });
  });
}

int iDK_KeyMatchEx(int handle, KeyEntry& entry, int significant_length, bool* found) {
  uint8_t key[kMaxKeyLength] = {};
  *found = false;
  const int result = ReadingKeys(handle, [&] {
    return kernel::CallKeyLayer([&] {
      return KeyMatchEx(handle, entry.key, significant_length, entry.position, found, key);
    });
  });
  if (result == kOk && *found) std::memcpy(entry.key, key, sizeof key);
  return result;
}

}  // namespace korvan::storage
