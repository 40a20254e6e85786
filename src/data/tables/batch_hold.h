#pragma once

#include <memory>
#include <vector>

namespace korvan::data {

class TStdDb;
class TTreeHold;

// Writes many records as batches: the tree lock of each database is held over a batch of
// steps, so the lock is taken, and the data written synced, once per batch instead of
// once per record. Between batches the locks are let go so that other users get their
// turn. Databases are locked in one order, by their files' names, whatever order the
// caller gives, so that two batch writers cannot wait on each other.
class TBatchHold {
 public:
  static constexpr int kStepsPerBatch = 256;

  explicit TBatchHold(std::vector<const TStdDb*> dbs, int steps_per_batch = kStepsPerBatch);
  ~TBatchHold();
  TBatchHold(const TBatchHold&) = delete;
  TBatchHold& operator=(const TBatchHold&) = delete;

  // Counts a step; after the last step of a batch the batch ends and the next begins.
  // 0, or the kernel's code when the ended batch's data could not be written.
  int Step();
  // Ends the batch under way: 0 or the kernel's code. Nothing is held afterwards.
  int Finish();

 private:
  void Take();

  std::vector<const TStdDb*> FDbs;
  int FStepsPerBatch;
  int FSteps = 0;
  std::vector<std::unique_ptr<TTreeHold>> FHolds;
};

}  // namespace korvan::data
