#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "boq/lv/hierarchie_record.h"

// An LV's OZ structure is kept twice: as the mask in the LV header and as one hierarchy
// row per level. These convert between the two.
namespace korvan::boq {

// The level number of the item level (also of a room or component level).
inline constexpr int32_t kItemLevelNumber = 6;

// One level as the hierarchy table keeps it, without the record around it.
struct THierarchyLevel {
  int32_t SzLv = 0;    // 1 … 5, 6 for the item level
  uint8_t Laenge = 0;  // characters of the level's part
  std::string Bez;     // label
  std::string Typ;     // "LVStufe", "Position", "Raum", "Bauteil"
  bool Num = true;
  TBoQBkdnAligment Alignment = TBoQBkdnAligment::bbaLeft;

  friend bool operator==(const THierarchyLevel&, const THierarchyLevel&) = default;
};

// What the last level of a structure stands for.
enum class TOzStructureKind { kItems, kRooms, kComponents };

// The mask of the levels, in key order: each level with a length is as many copies of its
// level digit, levels separated by "."; the last part becomes "P". With `indexed`, a
// last part of one character after "." becomes the index "I" and the part before it the
// item part. Levels 1, 1 | 2, 2 | item 4 give "11.22.PPPP".
std::string MaskFromHierarchy(const std::vector<THierarchyLevel>& levels, bool indexed);

// The levels a mask describes, one per level digit that occurs and one for the item part.
// In an item structure the level-5 row takes the count of "4" as its length, as the
// system always did (11.22.33.4.55.PP gives level 5 the length 1); room and component
// structures count "5" for level 5, and take "R" (room) or "B"/"T" (component, item) for
// their last level.
std::vector<THierarchyLevel> HierarchyFromMask(std::string_view mask,
                                               TOzStructureKind kind = TOzStructureKind::kItems);

// The level as a record of the hierarchy table for the LV `lv_id`; the header is left as
// the table's InitRecord made it in `record`.
void FillHierarchieRecord(const THierarchyLevel& level, int32_t lv_id,
                          t_Hierarchie_DB_VERSION_201401& record);
THierarchyLevel LevelOfRecord(const t_Hierarchie_DB_VERSION_201401& record);

}  // namespace korvan::boq
