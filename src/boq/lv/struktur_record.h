#pragma once

#include <cstddef>
#include <cstdint>

#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/table_dump_columns.h"

namespace korvan::boq {

#pragma pack(push, 1)

// One entry of an LV in its tree: where it hangs (group and, below an item, the item),
// its place in document order, and the group or item record that holds its data.
struct t_Struktur {
  data::TDbRecordHeader Header;
  int32_t IdLv;  // LV id
  int32_t SzLv;  // running sort number of the entry within the LV
  int32_t ZuBg;  // id of the parent group entry; 2147483646 for an entry directly below the LV root
  int32_t SzBg;  // sort number within the parent group
  int32_t ZuPos;       // id of the parent item (for entries that hang below an item, such as
                       // sub-descriptions and execution-description elements)
  int32_t SzPos;       // sort number below the parent item
  int32_t IdBgBeschr;  // id of the entry's group record (kind B) or item record (all other kinds)
  char KzBgBeschr;     // entry kind code
};

#pragma pack(pop)

static_assert(sizeof(t_Struktur) == 77);
static_assert(offsetof(t_Struktur, Header) == 0);
static_assert(offsetof(t_Struktur, IdLv) == 48);
static_assert(offsetof(t_Struktur, SzLv) == 52);
static_assert(offsetof(t_Struktur, ZuBg) == 56);
static_assert(offsetof(t_Struktur, SzBg) == 60);
static_assert(offsetof(t_Struktur, ZuPos) == 64);
static_assert(offsetof(t_Struktur, SzPos) == 68);
static_assert(offsetof(t_Struktur, IdBgBeschr) == 72);
static_assert(offsetof(t_Struktur, KzBgBeschr) == 76);

inline constexpr data::FieldDescriptor kStrukturFields[] = {
    data::HeaderField(),
    {"IdLv", offsetof(t_Struktur, IdLv), 4, data::FieldType::kInt32},
    {"SzLv", offsetof(t_Struktur, SzLv), 4, data::FieldType::kInt32},
    {"ZuBg", offsetof(t_Struktur, ZuBg), 4, data::FieldType::kInt32},
    {"SzBg", offsetof(t_Struktur, SzBg), 4, data::FieldType::kInt32},
    {"ZuPos", offsetof(t_Struktur, ZuPos), 4, data::FieldType::kInt32},
    {"SzPos", offsetof(t_Struktur, SzPos), 4, data::FieldType::kInt32},
    {"IdBgBeschr", offsetof(t_Struktur, IdBgBeschr), 4, data::FieldType::kInt32},
    {"KzBgBeschr", offsetof(t_Struktur, KzBgBeschr), 1, data::FieldType::kChar},
};
inline constexpr data::RecordLayout kStrukturLayout{"t_Struktur", sizeof(t_Struktur),
                                                    kStrukturFields};
static_assert(data::DescribesLayoutExactly(kStrukturLayout));
static_assert(data::ColumnsResolve(kStrukturLayout, data::kStrukturDumpColumns));

}  // namespace korvan::boq
