// Writing records: insert, update (keys kept in step), delete, and the question put to
// the user when another user changed the record meanwhile.
#include <cstddef>
#include <cstring>
#include <vector>

#include "data/common/date_time.h"
#include "data/tables/concurrency_question.h"
#include "data/tables/std_tb.h"
#include "data/tables/table_key.h"
#include "data/tables/tree_hold.h"
#include "data/undo/undo_table_restorer.h"
#include "storage/db_kernel.h"
#include "storage/db_kernel_codes.h"
#include "storage/db_kernel_exception.h"
#include "storage/result_codes.h"

namespace korvan::data {

using storage::kDkCannotReplace;
using storage::kOk;

int TStdTB::UpDateRec() {
  nLastError = kOk;
  if (int result = DoValidateRecord(); result != kOk) return nLastError = result;
  if (int result = ValidateRecordBeforeUpdate(); result != kOk) return nLastError = result;
  const int written = HasPosition() ? UpdateCurrent() : InsertCurrent();
  nLastError = written;
  return written;
}

void TStdTB::AcceptWritten(int32_t position) {
  FCurrentRecordPos = position;
  FLastRecord = FCurrentRecord;
  FTBRealRecLen = static_cast<int>(FCurrentRecord.size());
  FActualRecordSize = FTBRealRecLen;
  sUniqueResultKey = CurrentKey(FUniqueIndex);
}

int TStdTB::InsertCurrent() {
  FCurrentRecord.resize(static_cast<size_t>(RecordLength(FCurrentRecord)), 0);
  SetHeaderForWrite(FCurrentRecord);
  if (TableChangeObserver* journal = CurrentTableChangeObserver()) {
    journal->RecordWillChange(TableTargetOf(*this), {}, FCurrentRecord);
  }
  int32_t position = 0;
  int result = kOk;
  try {
    result = FDbOwner.InsertRec(*this, FCurrentRecord, static_cast<int32_t>(FCurrentRecord.size()),
                                &position);
  } catch (const storage::EDbKernelException& error) {
    result = error.FErrorCode;
  }
  if (result != kOk) return Fail("Insert", result);
  AcceptWritten(position);
  if (TableChangeObserver* journal = CurrentTableChangeObserver()) {
    journal->RecordInserted(TableTargetOf(*this), FCurrentRecord);
  }
  if (FOnAfterInsert) FOnAfterInsert(*this);
  return kOk;
}

int TStdTB::WriteAsked(const char* operation, TTreeHold& hold, const std::function<int()>& write) {
  try {
    return write();
  } catch (const storage::EDbKernelConcurrencyException& conflict) {
    // Nobody waits for this user's answer.
    hold.Release();
    const std::string question = ConcurrencyQuestionText(FDbOwner.Name(), CurrentRecordToString(),
                                                         FormatDateTime(conflict.FModifiedDateTime),
                                                         FDbOwner.UserName(conflict.FModifiedById));
    IConcurrencyQuestion* asked = FDbOwner.ConcurrencyQuestion();
    if (asked == nullptr || !asked->AskOverwrite(question)) {
      nLastError = storage::kDkConcurrencyConflict;
      FLastErrorText = conflict.what();
      return storage::kDkConcurrencyConflict;
    }
    FForceUpdate = true;
    hold.Take();
    const bool previous = TStdDb::DisableConcurrencyDetection();
    int result = kOk;
    try {
      result = write();
    } catch (const storage::EDbKernelException& error) {
      result = error.FErrorCode;
    }
    TStdDb::RestoreConcurrencyDetection(previous);
    FForceUpdate = false;
    return result;
  } catch (const storage::EDbKernelException& error) {
    (void)operation;
    return error.FErrorCode;
  }
}

int TStdTB::UpdateCurrent() {
  const int32_t position = FCurrentRecordPos;
  // From the read of the stored record to its keys, one change for other processes.
  TTreeHold hold(FDbOwner, true);
  StoredRecord stored;
  if (int result = ReadStored(position, stored, "UpDateRec"); result != kOk) return result;
  FCurrentRecord.resize(static_cast<size_t>(RecordLength(FCurrentRecord)), 0);
  const TRecordKeys old_keys = BuildKeys(stored.current);
  const TRecordKeys new_keys = BuildKeys(FCurrentRecord);
  std::vector<bool> changed(new_keys.keys.size());
  for (size_t i = 0; i < changed.size(); ++i) changed[i] = new_keys.keys[i] != old_keys.keys[i];
  if (int result = FDbOwner.CheckUniqueKeys(new_keys, position, changed); result != kOk) {
    return Fail("Update", result);
  }

  SetHeaderForWrite(FCurrentRecord);
  if (TableChangeObserver* journal = CurrentTableChangeObserver()) {
    journal->RecordWillChange(TableTargetOf(*this), stored.current, FCurrentRecord);
  }
  const int32_t old_length = static_cast<int32_t>(stored.raw.size());
  const int32_t new_length = static_cast<int32_t>(FCurrentRecord.size());
  const int written = WriteAsked("Update", hold, [&] {
    return storage::iDK_RecordUpdate(FDbOwner.Handle(), FCurrentRecord.data(), old_length, position,
                                     new_length);
  });
  if (written == storage::kDkConcurrencyConflict) return written;
  if (written == kDkCannotReplace) {
    const int moved = MoveRecord(stored, old_keys, new_keys);
    if (int released = hold.Release(); moved == kOk && released != kOk) {
      return Fail("Update", released);
    }
    return moved;
  }
  if (written != kOk) return Fail("Update", written);

  if (int result = ReplaceKeys(old_keys, new_keys, position); result != kOk) {
    // The record goes back to what it was, so that record and keys agree again.
    std::vector<uint8_t> restore = stored.raw;
    // It carries the stamp and writer of the write just made, so that the kernel sees
    // this user's own record and raises no conflict.
    constexpr size_t kStampOffset = offsetof(storage::TDbRecordHeader, LastModified);
    std::memcpy(restore.data() + kStampOffset, FCurrentRecord.data() + kStampOffset,
                storage::kRecordHeaderSize - kStampOffset);
    try {
      storage::iDK_RecordUpdate(FDbOwner.Handle(), restore.data(),
                                static_cast<int32_t>(restore.size()), position,
                                static_cast<int32_t>(restore.size()));
    } catch (const storage::EDbKernelException&) {
    }
    return Fail("Update", result);
  }
  if (int released = hold.Release(); released != kOk) return Fail("Update", released);
  AcceptWritten(position);
  if (TableChangeObserver* journal = CurrentTableChangeObserver()) {
    journal->RecordUpdated(TableTargetOf(*this), stored.current, FCurrentRecord);
  }
  return kOk;
}

// Replaces the keys whose string changed; on failure the keys are as before.
int TStdTB::ReplaceKeys(const TRecordKeys& old_keys, const TRecordKeys& new_keys,
                        int32_t position) {
  const int handle = FDbOwner.Handle();
  const auto at = static_cast<uint32_t>(position);
  for (size_t i = 0; i < new_keys.keys.size(); ++i) {
    if (old_keys.keys[i] == new_keys.keys[i]) continue;
    int result = kOk;
    if (old_keys.entered[i])
      result = storage::iDK_KeyDelete(handle, MakeKeyEntry(old_keys.keys[i], at));
    if (result == kOk && new_keys.entered[i]) {
      result = storage::iDK_KeyInsert(handle, MakeKeyEntry(new_keys.keys[i], at));
      if (result != kOk && old_keys.entered[i]) {
        storage::iDK_KeyInsert(handle, MakeKeyEntry(old_keys.keys[i], at));
      }
    }
    if (result != kOk) {
      for (size_t j = 0; j < i; ++j) {
        if (old_keys.keys[j] == new_keys.keys[j]) continue;
        if (new_keys.entered[j]) storage::iDK_KeyDelete(handle, MakeKeyEntry(new_keys.keys[j], at));
        if (old_keys.entered[j]) storage::iDK_KeyInsert(handle, MakeKeyEntry(old_keys.keys[j], at));
      }
      return result;
    }
  }
  return kOk;
}

// The record no longer fits its slot: it is written anew elsewhere, its keys follow it,
// and only then is the old slot freed, so that a failure leaves the old record intact.
int TStdTB::MoveRecord(const StoredRecord& stored, const TRecordKeys& old_keys,
                       const TRecordKeys& new_keys) {
  const int handle = FDbOwner.Handle();
  const int32_t old_position = FCurrentRecordPos;
  int32_t new_position = 0;
  int result = kOk;
  try {
    result =
        storage::iDK_RecordInsert(handle, FCurrentRecord.data(),
                                  static_cast<int32_t>(FCurrentRecord.size()), true, &new_position);
  } catch (const storage::EDbKernelException& error) {
    result = error.FErrorCode;
  }
  if (result != kOk) return Fail("Update", result);

  FDbOwner.iIO_KeysDelete(old_keys, old_position);
  result = FDbOwner.iIO_KeysInsert(new_keys, new_position);
  if (result == kOk) {
    std::vector<uint8_t> old_header(stored.raw.begin(),
                                    stored.raw.begin() + storage::kRecordHeaderSize);
    try {
      result = storage::iDK_RecordDelete(handle, old_header.data(), old_position);
    } catch (const storage::EDbKernelException& error) {
      result = error.FErrorCode;
    }
    if (result != kOk) FDbOwner.iIO_KeysDelete(new_keys, new_position);
  }
  if (result != kOk) {
    FDbOwner.iIO_KeysInsert(old_keys, old_position);
    std::vector<uint8_t> new_header(FCurrentRecord.begin(),
                                    FCurrentRecord.begin() + storage::kRecordHeaderSize);
    try {
      storage::iDK_RecordDelete(handle, new_header.data(), new_position);
    } catch (const storage::EDbKernelException&) {
    }
    return Fail("Update", result);
  }
  AcceptWritten(new_position);
  if (TableChangeObserver* journal = CurrentTableChangeObserver()) {
    journal->RecordUpdated(TableTargetOf(*this), stored.current, FCurrentRecord);
  }
  return kOk;
}

int TStdTB::DeleteRec() {
  nLastError = kOk;
  if (!HasPosition()) return nLastError = storage::kDbNoRecordFound;
  const int32_t position = FCurrentRecordPos;
  // The record and its keys go as one change for other processes.
  TTreeHold hold(FDbOwner, true);
  StoredRecord stored;
  if (int result = ReadStored(position, stored, "DeleteRec"); result != kOk) return result;
  const TRecordKeys keys = BuildKeys(stored.current);
  // The kernel compares the header as this user read it with the stored one.
  std::vector<uint8_t> header(FCurrentRecord.begin(),
                              FCurrentRecord.begin() + storage::kRecordHeaderSize);
  if (TableChangeObserver* journal = CurrentTableChangeObserver()) {
    journal->RecordWillChange(TableTargetOf(*this), stored.current, {});
  }
  const int deleted = WriteAsked("Delete", hold, [&] {
    return storage::iDK_RecordDelete(FDbOwner.Handle(), header.data(), position);
  });
  if (deleted == storage::kDkConcurrencyConflict) return deleted;
  if (deleted != kOk) return Fail("Delete", deleted);
  int keys_removed = FDbOwner.iIO_KeysDelete(keys, position);
  if (int released = hold.Release(); keys_removed == kOk) keys_removed = released;
  UnLockRec();
  FCurrentRecordPos = 0;
  FLastRecord.clear();
  if (TableChangeObserver* journal = CurrentTableChangeObserver()) {
    journal->RecordDeleted(TableTargetOf(*this), stored.current);
  }
  if (keys_removed != kOk) return Fail("Delete", keys_removed);
  if (FOnAfterDelete) FOnAfterDelete(*this);
  return kOk;
}

int TStdTB::DeleteMatching(std::string_view pattern, char index) {
  // Gathered first, so that the deletes do not disturb the walk.
  std::vector<std::vector<uint8_t>> records;
  if (int result = GetBatch(pattern, index, records); result != storage::kOk) return result;
  const char unique = UniqueIndex();
  for (const std::vector<uint8_t>& record : records) {
    std::string key;
    if (GetKeyString(record, unique, key) < 0) continue;
    // A record that an earlier cascade took with it is gone already.
    if (!GetKey(key, unique)) continue;
    if (int result = DeleteRec(); result != storage::kOk) return result;
  }
  return storage::kOk;
}

}  // namespace korvan::data
