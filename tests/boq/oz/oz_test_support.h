#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "boq/model/lv_pos_list.h"

namespace korvan::boq::testing {

// An LV header with the mask, every counter automatic, and the given step widths by level
// (level 1 first); levels not named step by 1.
inline t_Lv_DB_VERSION_3100 NumberedLvHeader(std::string_view mask,
                                             std::vector<int16_t> steps = {}) {
  t_Lv_DB_VERSION_3100 lv{};
  lv.PosMaske.Set(mask);
  lv.Status = 'N';
  lv.xSchrittweite = 1;
  lv.OZSchrittweiteGT.fill(-1);
  for (std::size_t i = 0; i < steps.size(); ++i) lv.OZSchrittweiteGT[i + 1] = steps[i];
  lv.OZAutoNumGT.fill(1);
  return lv;
}

inline TLvPos Entry(char kind, std::string_view oz = {}) {
  TLvPos entry = NewLvPos(kind);
  entry.SetOz(oz);
  return entry;
}

inline TLVPosList ListOf(const t_Lv_DB_VERSION_3100& lv,
                         const std::vector<std::pair<char, std::string>>& entries) {
  TLVPosList list(lv);
  for (const auto& [kind, oz] : entries) list.Add(Entry(kind, oz));
  return list;
}

inline std::vector<std::string> OzsOf(const TLVPosList& list) {
  std::vector<std::string> ozs;
  for (const TLvPos& entry : list.Entries()) ozs.emplace_back(entry.Oz());
  return ozs;
}

}  // namespace korvan::boq::testing
