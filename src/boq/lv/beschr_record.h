#pragma once

#include <cstddef>
#include <cstdint>

#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"

namespace korvan::boq {

#pragma pack(push, 1)

// The description of an LV entry (text and catalog data), shared in layout with the
// catalogs. Beyond its identity it holds the entry's unit; the rest of the 1024 bytes is
// kept as it is read and written, so that records written by a fuller layout lose nothing.
struct t_Beschr_DB_VERSION_201601 {
  data::TDbRecordHeader Header;
  int32_t Id;             // description id (key)
  int32_t SzKat;          // sort number within its catalog
  char KzBeschr;          // kind of description
  int16_t IdEinheit;      // the unit in the unit table, or null when it is not listed there
  data::string6 Einheit;  // unit symbol as printed and exchanged
  uint8_t SizePadding[958];
};

#pragma pack(pop)

static_assert(sizeof(t_Beschr_DB_VERSION_201601) == 1024);
static_assert(offsetof(t_Beschr_DB_VERSION_201601, Header) == 0);
static_assert(offsetof(t_Beschr_DB_VERSION_201601, Id) == 48);
static_assert(offsetof(t_Beschr_DB_VERSION_201601, SzKat) == 52);
static_assert(offsetof(t_Beschr_DB_VERSION_201601, KzBeschr) == 56);
static_assert(offsetof(t_Beschr_DB_VERSION_201601, IdEinheit) == 57);
static_assert(offsetof(t_Beschr_DB_VERSION_201601, Einheit) == 59);
static_assert(offsetof(t_Beschr_DB_VERSION_201601, SizePadding) == 66);

inline constexpr data::FieldDescriptor kBeschrFields[] = {
    data::HeaderField(),
    {"Id", offsetof(t_Beschr_DB_VERSION_201601, Id), 4, data::FieldType::kInt32},
    {"SzKat", offsetof(t_Beschr_DB_VERSION_201601, SzKat), 4, data::FieldType::kInt32},
    {"KzBeschr", offsetof(t_Beschr_DB_VERSION_201601, KzBeschr), 1, data::FieldType::kChar},
    {"IdEinheit", offsetof(t_Beschr_DB_VERSION_201601, IdEinheit), 2, data::FieldType::kInt16},
    {"Einheit", offsetof(t_Beschr_DB_VERSION_201601, Einheit), 7, data::FieldType::kShortString},
    {"SizePadding", offsetof(t_Beschr_DB_VERSION_201601, SizePadding), 958,
     data::FieldType::kBytes},
};
inline constexpr data::RecordLayout kBeschrLayout{
    "t_Beschr_DB_VERSION_201601", sizeof(t_Beschr_DB_VERSION_201601), kBeschrFields};
static_assert(data::DescribesLayoutExactly(kBeschrLayout));

}  // namespace korvan::boq
