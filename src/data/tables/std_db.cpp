#include "data/tables/std_db.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "data/db/db_groups.h"
#include "data/db/path_types.h"
#include "data/tables/std_tb.h"
#include "data/tables/table_key.h"
#include "data/tables/tree_hold.h"
#include "storage/db_kernel.h"
#include "storage/db_kernel_exception.h"
#include "storage/db_kernel_locks.h"
#include "storage/file/file_names.h"
#include "storage/result_codes.h"

namespace korvan::data {

using storage::kDkDuplicateKey;
using storage::kDkKeyNotFound;
using storage::kOk;

TStdDb::TStdDb(std::string group_name, std::string directory, char type_letter, int key_length)
    : FGroupName(std::move(group_name)),
      FDirectory(WithTrailingSeparator(std::move(directory))),
      FTypeLetter(type_letter),
      FKeyLength(key_length),
      // Processes are told apart by default; the shell sets the user's identity.
      FUserIdentity(static_cast<uint32_t>(getpid())) {}

TStdDb::TStdDb(const DatabaseFile& file)
    : TStdDb(file.group_name(), file.directory(), file.type_letter(), file.key_length()) {}

TStdDb::~TStdDb() {
  DbClose();
}

std::string TStdDb::BasePath() const {
  return storage::DatabaseBasePath(FDirectory, FGroupName, FTypeLetter);
}

int TStdDb::DbCreate() {
  if (FDbData != nullptr) return storage::kDkAlreadyOpen;
  storage::iDK_SetTypeShareable(FTypeLetter, FShareable);
  int handle = 0;
  const int result = storage::iDK_DbCreate(FTypeLetter, BasePath(), FKeyLength, &handle);
  if (result != kOk) return result;
  FDbData = TStdDbDatas::Instance().Adopt({BasePath(), FTypeLetter, FKeyLength, true, FShareable},
                                          handle);
  return kOk;
}

int TStdDb::DbOpen(bool write_wanted) {
  if (FDbData != nullptr) return kOk;
  storage::iDK_SetTypeShareable(FTypeLetter, FShareable);
  int result = kOk;
  FDbData = TStdDbDatas::Instance().GetDBdata(
      {BasePath(), FTypeLetter, FKeyLength, write_wanted, FShareable}, &result);
  return result;
}

int TStdDb::DbClose() {
  if (FDbData == nullptr) return kOk;
  while (FDbLocks > 0) UnLockDb();
  TStdDbData* data = std::exchange(FDbData, nullptr);
  return TStdDbDatas::Instance().ReleaseDBdata(data);
}

int TStdDb::Flush() {
  return IsOpen() ? storage::iDK_DbFlush(Handle()) : storage::kDkInvalidHandle;
}

int TStdDb::RecordCount(char table_type, int32_t* count) const {
  return storage::iDK_RecordCount(Handle(), table_type, count);
}

std::string TStdDb::UserName(const std::string& modified_by_id) const {
  return FUserNameLookup ? FUserNameLookup(modified_by_id) : modified_by_id;
}

std::string TStdDb::ErrorText(std::string_view operation, std::string_view table,
                              std::string_view kernel_text) const {
  std::string text = "Error in Database Operation \"";
  text.append(operation);
  text.append("\": [DB: ");
  text.append(FGroupName);
  text.append(", TB: ");
  text.append(table);
  text.append("]: \r\n");
  text.append(kernel_text);
  return text;
}

void TStdDb::ShowError(const std::string& text) const {
  if (FMessages) FMessages->ShowError(text);
}

void TStdDb::Log(const std::string& line) const {
  if (FMessages) FMessages->Log(line);
}

void TStdDb::AddTable(TStdTB* table) {
  FTables.push_back(table);
}

void TStdDb::RemoveTable(TStdTB* table) {
  FTables.erase(std::remove(FTables.begin(), FTables.end(), table), FTables.end());
}

TStdTB* TStdDb::GetTable(char table_type) const {
  for (TStdTB* table : FTables) {
    if (table->TableType() == table_type) return table;
  }
  return nullptr;
}

// ---------------------------------------------------------------------------------------

int TStdDb::InsertRec(TStdTB& table, std::vector<uint8_t>& record, int32_t length,
                      int32_t* position) {
  const TRecordKeys keys = table.BuildKeys(RecordView(record.data(), static_cast<size_t>(length)));
  // Record, unique checks and keys as one change: no other process slips a duplicate in
  // between or sees the record without its keys.
  TTreeHold hold(*this, true);
  int result = storage::iDK_RecordInsert(Handle(), record.data(), length, true, position);
  if (result != kOk) return result;
  result = iIO_KeysInsert(keys, *position);
  if (result != kOk) {
    // The record goes again: the caller sees the database as it was.
    std::vector<uint8_t> header(record.begin(), record.begin() + storage::kRecordHeaderSize);
    storage::iDK_RecordDelete(Handle(), header.data(), *position);
    *position = 0;
    return result;
  }
  if (result = hold.Release(); result != kOk) return result;
  Log("Insert Record \"" + table.CurrentRecordToString() + "\" in \"" + FGroupName + "\"");
  return kOk;
}

int TStdDb::FindExactKey(const std::string& key, bool* found, uint32_t* position) const {
  *found = false;
  storage::KeyEntry entry = MakeKeyEntry(key);
  uint32_t at = 0;
  const int result = storage::iDK_KeyFirstMatch(Handle(), entry, &at);
  if (result == kDkKeyNotFound) return kOk;
  if (result != kOk) return result;
  // A key ending in pad bytes is the first of all keys that share its significant
  // prefix, so the first match is the key itself when it exists.
  *found = KeyOf(entry, FKeyLength) == key;
  *position = at;
  return kOk;
}

int TStdDb::CheckUniqueKeys(const TRecordKeys& keys, int32_t own_position,
                            const std::vector<bool>& changed) const {
  for (size_t i = 0; i < keys.keys.size(); ++i) {
    if (!keys.entered[i] || !keys.unique[i]) continue;
    if (!changed.empty() && !changed[i]) continue;
    bool found = false;
    uint32_t at = 0;
    if (int result = FindExactKey(keys.keys[i], &found, &at); result != kOk) return result;
    if (found && static_cast<int32_t>(at) != own_position) return kDkDuplicateKey;
  }
  return kOk;
}

int TStdDb::iIO_KeysInsert(const TRecordKeys& keys, int32_t position) {
  for (size_t i = 0; i < keys.keys.size(); ++i) {
    if (!keys.entered[i]) continue;
    int result = kOk;
    if (keys.unique[i]) {
      bool found = false;
      uint32_t at = 0;
      result = FindExactKey(keys.keys[i], &found, &at);
      if (result == kOk && found) result = kDkDuplicateKey;
    }
    if (result == kOk) {
      result = storage::iDK_KeyInsert(Handle(),
                                      MakeKeyEntry(keys.keys[i], static_cast<uint32_t>(position)));
    }
    if (result != kOk) {
      for (size_t j = 0; j < i; ++j) {
        if (keys.entered[j]) {
          storage::iDK_KeyDelete(Handle(),
                                 MakeKeyEntry(keys.keys[j], static_cast<uint32_t>(position)));
        }
      }
      return result;
    }
  }
  return kOk;
}

int TStdDb::iIO_KeysDelete(const TRecordKeys& keys, int32_t position) {
  int first_failure = kOk;
  for (size_t i = 0; i < keys.keys.size(); ++i) {
    if (!keys.entered[i]) continue;
    const int result = storage::iDK_KeyDelete(
        Handle(), MakeKeyEntry(keys.keys[i], static_cast<uint32_t>(position)));
    if (result != kOk && first_failure == kOk) first_failure = result;
  }
  return first_failure;
}

int TStdDb::ReadRaw(int32_t position, std::vector<uint8_t>& record) const {
  // Records of ordinary tables are shorter than a first guess: one read brings them
  // whole; a longer one is read again at its stored length.
  constexpr int32_t kFirstGuess = 4096;
  try {
    record.assign(static_cast<size_t>(kFirstGuess), 0);
    int32_t length = kFirstGuess;
    storage::iDK_RecordRead(Handle(), position, record.data(), &length, true);
    int32_t stored = 0;
    std::memcpy(&stored, record.data(), sizeof stored);
    if (stored > length) {
      record.assign(static_cast<size_t>(stored), 0);
      length = stored;
      storage::iDK_RecordRead(Handle(), position, record.data(), &length, true);
    }
    record.resize(static_cast<size_t>(length));
    return kOk;
  } catch (const storage::EDbKernelException& error) {
    return error.FErrorCode;
  }
}

// ---------------------------------------------------------------------------------------

bool TStdDb::SharedLocking() const {
  return FShareable && IsOpen();
}

int TStdDb::LockDb() {
  if (!IsOpen()) return storage::kDkInvalidHandle;
  if (FDbData->LockID() == kNoLockTask) {
    int task = 0;
    const int result = storage::iDK_DbLock(Handle(), FUserIdentity, false, &task);
    if (result != kOk) return result;
    FDbData->SetLockID(task);
  }
  FDbData->AddLock();
  ++FDbLocks;
  return kOk;
}

int TStdDb::UnLockDb() {
  if (FDbLocks == 0 || FDbData == nullptr) return kOk;
  --FDbLocks;
  if (FDbData->ReleaseLock() > 0) return kOk;
  const int result = storage::iDK_DbUnlock(Handle());
  FDbData->SetLockID(kNoLockTask);
  return result;
}

int TStdDb::Lock(std::string_view name, bool exclusive, storage::LockWaitHandler* handler) {
  if (!SharedLocking()) return IsOpen() ? kOk : storage::kDkInvalidHandle;
  if (FDbLocks == 0) {
    if (int result = LockDb(); result != kOk) return result;
  }
  return storage::iDK_LockSet(Handle(), FDbData->LockID(), exclusive, name, handler);
}

int TStdDb::UnLock(std::string_view name) {
  if (!SharedLocking()) return kOk;
  if (FDbData->LockID() == kNoLockTask) return storage::kDkIoError;
  return storage::iDK_LockRelease(Handle(), FDbData->LockID(), name);
}

bool TStdDb::OtherUserLocked(std::string_view name) {
  if (Lock(name, true, nullptr) != kOk) return true;
  UnLock(name);
  return false;
}

bool TStdDb::DisableConcurrencyDetection() {
  return storage::iDK_DisableConcurrencyDetection();
}

void TStdDb::RestoreConcurrencyDetection(bool previous) {
  if (previous) {
    storage::iDK_EnableConcurrencyDetection();
  } else {
    storage::iDK_DisableConcurrencyDetection();
  }
}

}  // namespace korvan::data
