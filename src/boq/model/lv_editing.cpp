#include "boq/model/lv_editing.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

#include "boq/model/lv_references.h"
#include "boq/oz/boq_oz_builder.h"
#include "boq/oz/oz_format.h"
#include "data/records/null_values.h"

namespace korvan::boq {
namespace {

// The OZ characters a mask may have (without separators, with the index).
constexpr std::size_t kMaxOzCharacters = 14;

bool IsNumberedKind(char kind) {
  return kind == 'B' || kind == 'P' || kind == 'L';
}

int32_t ParentOf(const TLVPosList& list, int index) {
  return list[index].Struktur.ZuBg;
}

// Depth of each entry in the tree, 1 directly below the LV.
std::vector<int> Depths(const TLVPosList& list) {
  std::unordered_map<int32_t, int> depth_of_group;
  std::vector<int> depths(static_cast<std::size_t>(list.Count()), 1);
  for (int i = 0; i < list.Count(); ++i) {
    const auto parent = depth_of_group.find(ParentOf(list, i));
    if (parent != depth_of_group.end()) depths[static_cast<std::size_t>(i)] = parent->second + 1;
    if (list[i].IsGroup())
      depth_of_group[list[i].Struktur.IdBgBeschr] = depths[static_cast<std::size_t>(i)];
  }
  return depths;
}

// A number of the right level for the builder to renumber: a group below `parent_oz`
// gets one part more, any other entry enough parts to reach the item level.
std::string SeedOz(const TLVPosList& list, std::string_view parent_oz, bool group) {
  std::string oz(parent_oz);
  auto add_part = [&oz]() { oz += oz.empty() ? "1" : ".1"; };
  if (group) {
    add_part();
  } else {
    while (PlainOzLevel(oz) < list.FOzMask().FMaxLevel()) add_part();
  }
  return FormLvOZ(oz, list.FOzMask().FMask());
}

// New entries get temporary ids below zero until they are saved, so that entries placed
// below them in the same edit can name them.
int32_t TemporaryId(const TLVPosList& list) {
  int32_t lowest = 0;
  for (const TLvPos& entry : list.Entries()) lowest = std::min(lowest, entry.Struktur.IdBgBeschr);
  return lowest - 1;
}

int LastGroup(const TLVPosList& list) {
  for (int i = list.Count() - 1; i >= 0; --i) {
    if (list[i].IsGroup()) return i;
  }
  return -1;
}

}  // namespace

int SubtreeEnd(const TLVPosList& list, int index) {
  if (!list[index].IsGroup()) {
    int end = index + 1;
    // Entries hanging below an item (sub-descriptions, elements) follow it.
    while (end < list.Count() && list[end].Struktur.ZuPos == list[index].Struktur.IdBgBeschr &&
           list[index].Struktur.IdBgBeschr != 0) {
      ++end;
    }
    return end;
  }
  std::vector<int32_t> open = {list[index].Struktur.IdBgBeschr};
  int end = index + 1;
  for (; end < list.Count(); ++end) {
    const int32_t parent = ParentOf(list, end);
    while (!open.empty() && open.back() != parent) open.pop_back();
    if (open.empty()) break;
    if (list[end].IsGroup()) open.push_back(list[end].Struktur.IdBgBeschr);
  }
  return end;
}

int FindEntryByOz(const TLVPosList& list, std::string_view oz) {
  const int exact = list.IndexOfOz(oz);
  if (exact >= 0) return exact;
  return list.IndexOfOz(FormLvOZ(oz, list.FOzMask().FMask()));
}

int AddEntry(TLVPosList& list, TLvPos entry, const TLvPlace& place, std::string_view oz) {
  int at = list.Count();
  int32_t parent = data::kRootParentId;
  std::string parent_oz;
  int parent_index = -1;
  if (place.kind == TLvPlace::Kind::kUnder) {
    parent_index = place.index;
    at = SubtreeEnd(list, place.index);
  } else if (place.kind == TLvPlace::Kind::kAfter) {
    at = SubtreeEnd(list, place.index);
    parent = ParentOf(list, place.index);
    for (int i = place.index - 1; i >= 0 && parent != data::kRootParentId; --i) {
      if (list[i].Struktur.IdBgBeschr == parent) parent_index = i;
    }
  } else if (!entry.IsGroup()) {
    parent_index = LastGroup(list);
  }
  if (parent_index >= 0) {
    parent = list[parent_index].Struktur.IdBgBeschr;
    parent_oz = list[parent_index].Oz();
  }
  if (entry.Struktur.IdBgBeschr == data::kNullId || entry.Struktur.IdBgBeschr == 0) {
    entry.Struktur.IdBgBeschr = TemporaryId(list);
  }
  entry.Struktur.ZuBg = parent;
  if (!oz.empty()) {
    entry.SetOz(FormLvOZ(oz, list.FOzMask().FMask()));
    list.Insert(at, std::move(entry));
    return at;
  }
  entry.SetOz(IsNumberedKind(entry.Kind()) ? SeedOz(list, parent_oz, entry.IsGroup()) : "");
  list.Insert(at, std::move(entry));
  TBoqOzBuilder(list).BuildOzForItem(at);
  return at;
}

std::string MoveEntry(TLVPosList& list, int index, int after) {
  const int end = SubtreeEnd(list, index);
  if (after >= index && after < end)
    return "ein Eintrag kann nicht hinter sich selbst oder seine Untereinträge";
  const int target_end = SubtreeEnd(list, after);
  std::vector<TLvPos>& entries = list.Entries();
  std::vector<TLvPos> moved(entries.begin() + index, entries.begin() + end);
  moved.front().Struktur.ZuBg = ParentOf(list, after);
  entries.erase(entries.begin() + index, entries.begin() + end);
  const int insert_at = target_end > index ? target_end - (end - index) : target_end;
  entries.insert(entries.begin() + insert_at, moved.begin(), moved.end());
  RenumberLv(list);
  return {};
}

std::string RemoveEntry(TLVPosList& list, int index) {
  if (std::string problem = RemovalProblem(list, index); !problem.empty()) return problem;
  std::vector<TLvPos>& entries = list.Entries();
  entries.erase(entries.begin() + index, entries.begin() + SubtreeEnd(list, index));
  CountReferences(list);
  list.Changed(TModelChangedReason::crUnspecified);
  TBoqOzBuilder builder(list);
  if (list.FAutoNum()) builder.BuildOzForItems(index);
  return {};
}

void RenumberLv(TLVPosList& list) {
  if (list.FReadOnly()) return;
  TBoqOzBuilder builder(list);
  builder.BuildOzForItems(0);
  // Texts carry the numbers of the entries they belong to, which have just changed.
  for (int i = 0; i < list.Count(); ++i) {
    if (!IsNumberedKind(list[i].Kind())) builder.CheckOZPerZeilenart(i);
  }
}

std::string CheckOzMask(std::string_view mask) {
  if (mask.empty()) return "die OZ-Maske ist leer";
  if (mask.size() > kMaxOzMaskLength) {
    return "die OZ-Maske \"" + std::string(mask) + "\" ist länger als " +
           std::to_string(kMaxOzMaskLength) + " Zeichen";
  }
  const auto oz_characters = std::count_if(mask.begin(), mask.end(), IsOzChar);
  if (static_cast<std::size_t>(oz_characters) > kMaxOzCharacters) {
    return "die OZ-Maske \"" + std::string(mask) + "\" hat mehr als " +
           std::to_string(kMaxOzCharacters) + " Stellen";
  }
  if (mask.find('P') == std::string_view::npos) {
    return "die OZ-Maske \"" + std::string(mask) + "\" hat keinen Positionsteil (\"P\")";
  }
  return {};
}

std::string RestructureLv(TLVPosList& list, std::string_view mask) {
  if (std::string problem = CheckOzMask(mask); !problem.empty()) return problem;
  t_Lv_DB_VERSION_3100 lv = list.FLv();
  lv.PosMaske.SetRaw(mask);
  list.RefreshLvProperties(lv);
  const int group_levels = list.FOzMask().FMaxLevel() - 1;
  const std::vector<int> depths = Depths(list);
  for (int i = 0; i < list.Count(); ++i) {
    if (list[i].IsGroup() && depths[static_cast<std::size_t>(i)] > group_levels) {
      return "die OZ-Maske \"" + std::string(mask) + "\" hat " + std::to_string(group_levels) +
             " Gruppenstufe(n), das LV hat Gruppen in Stufe " +
             std::to_string(depths[static_cast<std::size_t>(i)]);
    }
  }
  // Every number anew from the tree: the builder takes the levels from these.
  std::unordered_map<int32_t, std::string> group_oz;
  for (int i = 0; i < list.Count(); ++i) {
    TLvPos& entry = list[i];
    const auto parent = group_oz.find(entry.Struktur.ZuBg);
    const std::string parent_oz = parent == group_oz.end() ? std::string() : parent->second;
    entry.SetOz(IsNumberedKind(entry.Kind()) ? SeedOz(list, parent_oz, entry.IsGroup()) : "");
    if (entry.IsGroup()) group_oz[entry.Struktur.IdBgBeschr] = std::string(entry.Oz());
  }
  RenumberLv(list);
  return {};
}

}  // namespace korvan::boq
