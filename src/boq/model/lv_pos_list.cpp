#include "boq/model/lv_pos_list.h"

#include <algorithm>

namespace korvan::boq {
namespace {

// Level numbers index the per-level settings directly; 0 is unused there.
std::size_t SettingIndex(int level) {
  return static_cast<std::size_t>(std::clamp(level, 0, 9));
}

}  // namespace

void TLVPosList::RefreshLvProperties(const t_Lv_DB_VERSION_3100& lv) {
  lv_ = lv;
  oz_mask_ = TLvOzMask(lv_.PosMaske.Raw());
  // A set switch for level 9 turns numbering on for every level; the tri-state default
  // counts as set.
  auto_num_ = AutoCounter(9);
  for (int level = 1; level <= oz_mask_.FMaxLevel() && !auto_num_; ++level) {
    auto_num_ = AutoCounter(level);
  }
}

TLvPos* TLVPosList::GetLvPosItems(int index) {
  if (index < 0 || index >= Count()) return nullptr;
  return &entries_[static_cast<std::size_t>(index)];
}

const TLvPos* TLVPosList::GetLvPosItems(int index) const {
  if (index < 0 || index >= Count()) return nullptr;
  return &entries_[static_cast<std::size_t>(index)];
}

void TLVPosList::Insert(int index, TLvPos entry) {
  entries_.insert(entries_.begin() + std::clamp(index, 0, Count()), std::move(entry));
}

void TLVPosList::Delete(int index) {
  if (index < 0 || index >= Count()) return;
  entries_.erase(entries_.begin() + index);
}

int TLVPosList::StepWidth(int level) const {
  const int own = lv_.OZSchrittweiteGT[SettingIndex(level)];
  if (own > 0) return own;
  return lv_.xSchrittweite > 0 ? lv_.xSchrittweite : 1;
}

bool TLVPosList::AutoCounter(int level) const {
  return lv_.OZAutoNumGT[SettingIndex(level)] != 0;
}

bool TLVPosList::ContinuousCounter(int level) const {
  return lv_.OZDurchNumGT[SettingIndex(level)] != 0;
}

}  // namespace korvan::boq
