#include "boq/oz/oz_hierarchy.h"

#include <algorithm>

namespace korvan::boq {
namespace {

int Count(std::string_view mask, char c) {
  return static_cast<int>(std::count(mask.begin(), mask.end(), c));
}

THierarchyLevel GroupLevel(int32_t number, int length) {
  return {number, static_cast<uint8_t>(length), "Hierarchiestufe " + std::to_string(number),
          "LVStufe"};
}

THierarchyLevel LastLevel(int length, std::string label, std::string type) {
  return {kItemLevelNumber, static_cast<uint8_t>(length), std::move(label), std::move(type)};
}

}  // namespace

std::string MaskFromHierarchy(const std::vector<THierarchyLevel>& levels, bool indexed) {
  std::string mask;
  for (const THierarchyLevel& level : levels) {
    if (level.Laenge == 0) continue;
    if (!mask.empty()) mask += '.';
    mask.append(level.Laenge, std::to_string(level.SzLv).front());
  }
  std::size_t item_end = mask.size();
  if (indexed && mask.size() > 2 && mask[mask.size() - 2] == '.') {
    mask.back() = 'I';
    item_end = mask.size() - 2;
  }
  const std::size_t dot = mask.rfind('.', item_end == 0 ? 0 : item_end - 1);
  const std::size_t item_begin = dot == std::string::npos || dot >= item_end ? 0 : dot + 1;
  std::fill(mask.begin() + static_cast<std::ptrdiff_t>(item_begin),
            mask.begin() + static_cast<std::ptrdiff_t>(item_end), 'P');
  return mask;
}

std::vector<THierarchyLevel> HierarchyFromMask(std::string_view mask, TOzStructureKind kind) {
  std::vector<THierarchyLevel> levels;
  for (int32_t number = 1; number <= 5; ++number) {
    const int count = Count(mask, static_cast<char>('0' + number));
    if (count == 0) continue;
    const bool level_five_quirk = number == 5 && kind == TOzStructureKind::kItems;
    levels.push_back(GroupLevel(number, level_five_quirk ? Count(mask, '4') : count));
  }
  switch (kind) {
    case TOzStructureKind::kItems:
      if (Count(mask, 'P') > 0)
        levels.push_back(LastLevel(Count(mask, 'P'), "Teilleistung", "Position"));
      break;
    case TOzStructureKind::kRooms:
      if (Count(mask, 'R') > 0) levels.push_back(LastLevel(Count(mask, 'R'), "Raum", "Raum"));
      break;
    case TOzStructureKind::kComponents:
      if (Count(mask, 'B') > 0) levels.push_back(LastLevel(Count(mask, 'B'), "Bauteil", "Bauteil"));
      if (Count(mask, 'T') > 0)
        levels.push_back(LastLevel(Count(mask, 'T'), "Teilleistung", "Position"));
      break;
  }
  return levels;
}

void FillHierarchieRecord(const THierarchyLevel& level, int32_t lv_id,
                          t_Hierarchie_DB_VERSION_201401& record) {
  record.IdLv = lv_id;
  record.SzLv = level.SzLv;
  record.Laenge = level.Laenge;
  record.Bez.Set(level.Bez);
  record.Typ.Set(level.Typ);
  record.Num = level.Num ? 1 : 0;
  record.Alignment = static_cast<uint8_t>(level.Alignment);
}

THierarchyLevel LevelOfRecord(const t_Hierarchie_DB_VERSION_201401& record) {
  THierarchyLevel level;
  level.SzLv = record.SzLv;
  level.Laenge = record.Laenge;
  level.Bez = record.Bez.Get();
  level.Typ = record.Typ.Get();
  level.Num = record.Num != 0;
  level.Alignment = record.Alignment == 1 ? TBoQBkdnAligment::bbaRight : TBoQBkdnAligment::bbaLeft;
  return level;
}

}  // namespace korvan::boq
