#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "data/tables/std_db.h"

namespace korvan::boq {

// What the layers above the bill of quantities keep per LV in the LV database and delete
// with it (the GAEB header record of the exchange, later bidders and contracts). The
// bill of quantities cannot call them, so each library registers its step here when it
// registers its tables; deleting an LV header runs every step first.
class TLvDeleteCascades {
 public:
  // Deletes what one library keeps of the LV `lv_id`; answers a kernel code (0: done,
  // also when there was nothing to delete).
  using Step = std::function<int(data::TStdDb& lv_db, int32_t lv_id)>;

  static TLvDeleteCascades& Instance();

  // A later registration under the same name replaces the earlier one, so that composing
  // the program's tables twice does not run a step twice.
  void Register(std::string name, Step step);

  // Runs the steps in the order they were registered; the first failure ends the run
  // and is answered.
  int Run(data::TStdDb& lv_db, int32_t lv_id) const;

 private:
  std::vector<std::pair<std::string, Step>> steps_;
};

}  // namespace korvan::boq
