#include "boq/lv/lv_table_walk.h"

#include <vector>

#include "data/tables/table_key.h"
#include "storage/result_codes.h"

namespace korvan::boq {

int DeleteMatching(data::TStdTB& table, std::string_view pattern, char index) {
  std::vector<std::vector<uint8_t>> records;
  if (int result = table.GetBatch(pattern, index, records); result != storage::kOk) return result;
  const char unique = table.UniqueIndex();
  for (const std::vector<uint8_t>& record : records) {
    std::string key;
    if (table.GetKeyString(record, unique, key) < 0) continue;
    // A record that an earlier cascade took with it is gone already.
    if (!table.GetKey(key, unique)) continue;
    if (int result = table.DeleteRec(); result != storage::kOk) return result;
  }
  return storage::kOk;
}

}  // namespace korvan::boq
