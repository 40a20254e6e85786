#include "data/tables/batch_hold.h"

#include <algorithm>

#include "data/tables/std_db.h"
#include "data/tables/tree_hold.h"
#include "storage/result_codes.h"

namespace korvan::data {

TBatchHold::TBatchHold(std::vector<const TStdDb*> dbs, int steps_per_batch)
    : FDbs(std::move(dbs)), FStepsPerBatch(steps_per_batch) {
  std::erase(FDbs, nullptr);
  std::sort(FDbs.begin(), FDbs.end(),
            [](const TStdDb* a, const TStdDb* b) { return a->BasePath() < b->BasePath(); });
  FDbs.erase(std::unique(FDbs.begin(), FDbs.end()), FDbs.end());
  Take();
}

// Without Finish an error is on its way already; what the last batch wrote stays in the
// files (a later flush or close syncs it), and the holds' destructors let go.
TBatchHold::~TBatchHold() = default;

void TBatchHold::Take() {
  for (const TStdDb* db : FDbs) FHolds.push_back(std::make_unique<TTreeHold>(*db, true));
}

int TBatchHold::Step() {
  if (++FSteps < FStepsPerBatch) return storage::kOk;
  FSteps = 0;
  const int ended = Finish();
  Take();
  return ended;
}

int TBatchHold::Finish() {
  int result = storage::kOk;
  // Let go in the reverse order of taking.
  while (!FHolds.empty()) {
    if (int released = FHolds.back()->Release(); result == storage::kOk) result = released;
    FHolds.pop_back();
  }
  return result;
}

}  // namespace korvan::data
