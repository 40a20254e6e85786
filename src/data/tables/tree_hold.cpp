#include "data/tables/tree_hold.h"

#include "data/tables/std_db.h"
#include "storage/db_kernel.h"
#include "storage/result_codes.h"

namespace korvan::data {

TTreeHold::TTreeHold(const TStdDb& db, bool change) : FDb(db), FChange(change) {
  Take();
}

TTreeHold::~TTreeHold() {
  Release();
}

void TTreeHold::Take() {
  if (FHandle != 0 || !FDb.IsOpen()) return;
  // A lock that cannot be taken is no reason to fail here: every kernel call inside then
  // takes it on its own and reports what goes wrong.
  if (storage::iDK_TreeLock(FDb.Handle(), FChange) == storage::kOk) FHandle = FDb.Handle();
}

int TTreeHold::Release() {
  if (FHandle == 0) return storage::kOk;
  const int handle = FHandle;
  FHandle = 0;
  return storage::iDK_TreeUnlock(handle);
}

}  // namespace korvan::data
