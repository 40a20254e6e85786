// One tree lock over several kernel operations: a caller that reads or changes many
// records and keys at once takes the key file's lock once instead of once per call.
#include "storage/db_kernel.h"
#include "storage/db_kernel_internal.h"
#include "storage/key_file_layout.h"
#include "storage/key_file_sharing.h"
#include "storage/result_codes.h"

namespace korvan::storage {

int iDK_TreeLock(int handle, bool change) {
  DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  if (change && !slot->IsWritable()) return kDkIoError;
  return kernel::HoldTreeLock(handle, *slot,
                              change ? kernel::TreeAccess::kChange : kernel::TreeAccess::kRead);
}

int iDK_TreeUnlock(int handle) {
  DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  return kernel::EndTreeHold(handle, *slot);
}

int iDK_ChangeMark(int handle, uint64_t* mark) {
  DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  const bool vouched = slot->tree_lock_depth > 0 && slot->key_file_version == KeyFileV3::kVersion;
  *mark = vouched ? slot->change_mark : ++slot->change_mark;
  return kOk;
}

}  // namespace korvan::storage
