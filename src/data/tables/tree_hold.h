#pragma once

namespace korvan::data {

class TStdDb;

// Holds a database's tree lock over one table operation: a record with its keys, a
// unique check with the write it guards, a key lookup with the read of its record.
// Other processes then see the operation whole, and the kernel takes the lock once
// instead of once per call. Never hold it while waiting for a record lock or for the
// user: Release() before such a wait, Take() again after it.
class TTreeHold {
 public:
  TTreeHold(const TStdDb& db, bool change);
  ~TTreeHold();
  TTreeHold(const TTreeHold&) = delete;
  TTreeHold& operator=(const TTreeHold&) = delete;

  // Lets go: 0, or the kernel's code when the key blocks changed inside could not be
  // written back (4320). Nothing to do when nothing is held.
  int Release();
  // Takes the lock again after a Release(); without it the operations lock on their own.
  void Take();

 private:
  const TStdDb& FDb;
  bool FChange;
  int FHandle = 0;  // the handle whose lock is held, or 0
};

}  // namespace korvan::data
