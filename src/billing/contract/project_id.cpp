#include "billing/contract/project_id.h"

#include "data/records/null_values.h"
#include "data/tables/tb_counter.h"
#include "storage/result_codes.h"

namespace korvan::billing {
namespace {

constexpr char kProjectCounterKind = 'J';
constexpr char kProjectCounter[] = "Projekt";

}  // namespace

int32_t ProjectNumberOf(data::TStdDb& lv_db) {
  data::TTbCounter counters(lv_db);
  const int32_t number = counters.LastId(kProjectCounterKind, kProjectCounter);
  return number > 0 ? number : data::kNullId;
}

int AssignProjectNumber(data::TStdDb& lv_db, data::TStdDb& billing_db, int32_t* number) {
  *number = ProjectNumberOf(lv_db);
  if (*number != data::kNullId) return storage::kOk;
  data::TTbCounter installation(billing_db);
  if (int result = installation.NextId(kProjectCounterKind, kProjectCounter, number);
      result != storage::kOk) {
    return result;
  }
  // The project's own counter is set to its number by handing out that many ids at once.
  data::TTbCounter project(lv_db);
  int32_t first = 0;
  return project.NextIds(kProjectCounterKind, kProjectCounter, *number, &first);
}

}  // namespace korvan::billing
