#include "boq/model/lv_pos_list.h"

#include <algorithm>

#include "data/common/guid_text.h"
#include "data/records/null_values.h"

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

int TLVPosList::IndexOfOz(std::string_view oz, char kind) const {
  const std::string_view wanted = oz.substr(0, kMaxOzLength);
  const bool any_kind = kind == ' ' || kind == '\0';
  for (int i = Count() - 1; i >= 0; --i) {
    const TLvPos& entry = (*this)[i];
    if (entry.Oz().substr(0, kMaxOzLength) == wanted && (any_kind || entry.Kind() == kind))
      return i;
  }
  return -1;
}

int TLVPosList::SearchItemIndexByOz(int start, std::string_view oz, bool loose) const {
  for (int i = std::max(start, 0); i < Count(); ++i) {
    std::string own((*this)[i].Oz());
    if (loose)
      std::replace_if(
          own.begin(), own.end(), [](char c) { return c == '_' || c == ' '; }, '0');
    if (own == oz) return i;
  }
  return -1;
}

int TLVPosList::SearchItemIndexByIdBeschr(int32_t id_beschr) const {
  for (int i = 0; i < Count(); ++i) {
    if ((*this)[i].LvBgBeschr.IDBeschr == id_beschr) return i;
  }
  return -1;
}

int TLVPosList::SearchItemIndexByIdLvBgBeschr(int32_t id) const {
  for (int i = 0; i < Count(); ++i) {
    if ((*this)[i].Struktur.IdBgBeschr == id) return i;
  }
  return -1;
}

int TLVPosList::SearchItemIndexByStrukturRec(const t_Struktur& row) const {
  return SearchItemIndexByIdLvBgBeschr(row.IdBgBeschr);
}

int TLVPosList::SearchItemIndexByKatPosGUID(std::span<const uint8_t, 16> guid) const {
  for (int i = 0; i < Count(); ++i) {
    if (std::equal(guid.begin(), guid.end(), std::begin((*this)[i].LvBgBeschr.GUID))) return i;
  }
  return -1;
}

int TLVPosList::SearchItemIndexByDescriptionID(std::string_view id) const {
  const std::string wanted = data::NormalizedGuid(id);
  if (data::IsNullGuid(wanted)) return -1;
  for (int i = 0; i < Count(); ++i) {
    if (data::NormalizedGuid(data::GuidBytesToText((*this)[i].LvBgBeschr.GUID)) == wanted) return i;
  }
  return -1;
}

int32_t TLVPosList::GetRefDescr(int index) const {
  const TLvPos* entry = GetLvPosItems(index);
  return entry == nullptr ? data::kNullId : entry->LvBgBeschr.IDBeschr;
}

void TLVPosList::Assign(const TLVPosList& other) {
  if (&other == this) return;
  lv_ = other.lv_;
  oz_mask_ = other.oz_mask_;
  read_only_ = other.read_only_;
  auto_num_ = other.auto_num_;
  entries_ = other.entries_;
  Changed(TModelChangedReason::crUnspecified);
}

void TLVPosList::Changed(int index, TModelChangedReason reason) {
  TLvPos* entry = GetLvPosItems(index);
  if (entry == nullptr) return;
  entry->Changes.Add(reason);
  changes_.Add(reason);
}

void TLVPosList::RegisterCData(TModelChangeListener* listener) {
  std::vector<TModelChangeListener*>& items = listeners_.items;
  if (listener != nullptr && std::find(items.begin(), items.end(), listener) == items.end())
    items.push_back(listener);
}

void TLVPosList::UnRegisterCData(TModelChangeListener* listener) {
  std::erase(listeners_.items, listener);
}

void TLVPosList::Idle() {
  if (changes_.Empty()) return;
  const TModelChanges changes = changes_;
  changes_.Clear();
  for (TLvPos& entry : entries_) entry.Changes.Clear();
  // A listener may unregister itself or another one while it is told.
  const std::vector<TModelChangeListener*> listeners = listeners_.items;
  for (TModelChangeListener* listener : listeners) {
    if (std::find(listeners_.items.begin(), listeners_.items.end(), listener) !=
        listeners_.items.end())
      listener->ModelChanged(*this, changes);
  }
}

int TLVPosList::GetItemsForSameParent(const t_Struktur& row, std::vector<int>* result) const {
  if (result == nullptr) return -1;
  int own = -1;
  for (int i = 0; i < Count(); ++i) {
    const TLvPos& entry = (*this)[i];
    if (entry.Struktur.ZuBg != row.ZuBg) continue;
    if (entry.Struktur.IdBgBeschr == row.IdBgBeschr) own = static_cast<int>(result->size());
    result->push_back(i);
  }
  return own;
}

int TLVPosList::GetNextMengePosIndex(int index) const {
  for (int i = std::max(index, 0); i < Count(); ++i) {
    if ((*this)[i].IsQuantityItem()) return i;
  }
  return -1;
}

void TLVPosList::RefreshGroupKinds() {
  for (TLvPos& entry : entries_) {
    if (!entry.IsGroup()) continue;
    entry.LvBgBeschr.Titelart = entry.LvBgBeschr.ZZWahl > 0 ? 'A' : entry.LvBgBeschr.Bedarf;
  }
}

bool TLVPosList::HasEntriesWithoutParentGroup() const {
  for (const TLvPos& entry : entries_) {
    if (entry.Struktur.ZuBg != data::kRootParentId) continue;
    const std::string_view oz = entry.Oz();
    const int level = oz_mask_.GetOzLevel(oz);
    const bool indexed_level_two = level == 2 && oz_mask_.IsIndexedOz(oz);
    if (level > 1 && !indexed_level_two && oz.find('_') == std::string_view::npos) return true;
  }
  return false;
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
