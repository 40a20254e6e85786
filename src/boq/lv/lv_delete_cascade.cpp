#include "boq/lv/lv_delete_cascade.h"

#include "storage/result_codes.h"

namespace korvan::boq {

TLvDeleteCascades& TLvDeleteCascades::Instance() {
  static TLvDeleteCascades cascades;
  return cascades;
}

void TLvDeleteCascades::Register(std::string name, Step step) {
  for (auto& [known, known_step] : steps_) {
    if (known == name) {
      known_step = std::move(step);
      return;
    }
  }
  steps_.emplace_back(std::move(name), std::move(step));
}

int TLvDeleteCascades::Run(data::TStdDb& lv_db, int32_t lv_id) const {
  for (const auto& [name, step] : steps_) {
    if (int result = step(lv_db, lv_id); result != storage::kOk) return result;
  }
  return storage::kOk;
}

}  // namespace korvan::boq
