#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"

namespace korvan::boq {

// How the part of a level is aligned inside its width.
enum class TBoQBkdnAligment : uint8_t { bbaLeft, bbaRight };
inline constexpr std::string_view kBoQBkdnAligmentNames[] = {"bbaLeft", "bbaRight"};

#pragma pack(push, 1)

// One level of an LV's OZ structure: levels 1 to 5, 6 for the item level.
struct t_Hierarchie_DB_VERSION_201401 {
  data::TDbRecordHeader Header;
  int32_t IdLv;               // LV id
  int32_t SzLv;               // level number 1 … 5, 6 for the item level
  uint8_t Laenge;             // length of the level part
  data::ShortString<40> Bez;  // label of the level
  data::ShortString<8> Typ;   // level type: "LVStufe", "Position", "Raum"
  uint8_t Num;                // the part is numeric
  uint8_t Alignment;          // TBoQBkdnAligment: bbaLeft, bbaRight
  uint8_t SizePadding[3];     // reserved
};

#pragma pack(pop)

static_assert(sizeof(t_Hierarchie_DB_VERSION_201401) == 112);
static_assert(offsetof(t_Hierarchie_DB_VERSION_201401, Header) == 0);
static_assert(offsetof(t_Hierarchie_DB_VERSION_201401, IdLv) == 48);
static_assert(offsetof(t_Hierarchie_DB_VERSION_201401, SzLv) == 52);
static_assert(offsetof(t_Hierarchie_DB_VERSION_201401, Laenge) == 56);
static_assert(offsetof(t_Hierarchie_DB_VERSION_201401, Bez) == 57);
static_assert(offsetof(t_Hierarchie_DB_VERSION_201401, Typ) == 98);
static_assert(offsetof(t_Hierarchie_DB_VERSION_201401, Num) == 107);
static_assert(offsetof(t_Hierarchie_DB_VERSION_201401, Alignment) == 108);
static_assert(offsetof(t_Hierarchie_DB_VERSION_201401, SizePadding) == 109);

inline constexpr data::FieldDescriptor kHierarchieFields[] = {
    data::HeaderField(),
    {"IdLv", offsetof(t_Hierarchie_DB_VERSION_201401, IdLv), 4, data::FieldType::kInt32},
    {"SzLv", offsetof(t_Hierarchie_DB_VERSION_201401, SzLv), 4, data::FieldType::kInt32},
    {"Laenge", offsetof(t_Hierarchie_DB_VERSION_201401, Laenge), 1, data::FieldType::kByte},
    {"Bez", offsetof(t_Hierarchie_DB_VERSION_201401, Bez), 41, data::FieldType::kShortString},
    {"Typ", offsetof(t_Hierarchie_DB_VERSION_201401, Typ), 9, data::FieldType::kShortString},
    {"Num", offsetof(t_Hierarchie_DB_VERSION_201401, Num), 1, data::FieldType::kBool},
    {"Alignment", offsetof(t_Hierarchie_DB_VERSION_201401, Alignment), 1, data::FieldType::kEnum8,
     nullptr, kBoQBkdnAligmentNames},
    {"SizePadding", offsetof(t_Hierarchie_DB_VERSION_201401, SizePadding), 3,
     data::FieldType::kBytes},
};
inline constexpr data::RecordLayout kHierarchieLayout{
    "t_Hierarchie_DB_VERSION_201401", sizeof(t_Hierarchie_DB_VERSION_201401), kHierarchieFields};
static_assert(data::DescribesLayoutExactly(kHierarchieLayout));

}  // namespace korvan::boq
