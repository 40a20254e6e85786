#include "storage/db_handle_table.h"

#include <utility>

namespace korvan::storage {

DbHandleTable& DbHandleTable::Instance() {
  static DbHandleTable table;
  return table;
}

DbHandleSlot* DbHandleTable::Find(int handle) {
  if (handle < 1 || handle > kMaxDbHandles) return nullptr;
  DbHandleSlot& slot = slots_[handle];
  return slot.InUse() ? &slot : nullptr;
}

int DbHandleTable::FindFree() const {
  for (int handle = 1; handle <= kMaxDbHandles; ++handle) {
    if (!slots_[handle].InUse()) return handle;
  }
  return 0;
}

// Paths are compared exactly and case-sensitively: the same database reached under two
// spellings is not recognised, which the share modes then guard.
int DbHandleTable::FindOpen(const std::string& base_path) const {
  for (int handle = 1; handle <= kMaxDbHandles; ++handle) {
    if (slots_[handle].InUse() && slots_[handle].file_name == base_path) return handle;
  }
  return 0;
}

DbHandleSlot& DbHandleTable::Take(int handle, DbHandleSlot slot) {
  slots_[handle] = std::move(slot);
  return slots_[handle];
}

void DbHandleTable::Release(int handle) {
  if (handle >= 1 && handle <= kMaxDbHandles) slots_[handle] = DbHandleSlot{};
}

}  // namespace korvan::storage
