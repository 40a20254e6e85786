#pragma once

#include <cstddef>
#include <cstdint>

#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"

namespace korvan::boq {

#pragma pack(push, 1)

// The description of an LV entry (text and catalog data), shared in layout with the
// catalogs. Only its identity is laid down so far; the rest of the 1024 bytes is kept as
// it is read and written, so that records written by a fuller layout lose nothing here.
struct t_Beschr_DB_VERSION_201601 {
  data::TDbRecordHeader Header;
  int32_t Id;     // description id (key)
  int32_t SzKat;  // sort number within its catalog
  char KzBeschr;  // kind of description
  uint8_t SizePadding[967];
};

#pragma pack(pop)

static_assert(sizeof(t_Beschr_DB_VERSION_201601) == 1024);
static_assert(offsetof(t_Beschr_DB_VERSION_201601, Header) == 0);
static_assert(offsetof(t_Beschr_DB_VERSION_201601, Id) == 48);
static_assert(offsetof(t_Beschr_DB_VERSION_201601, SzKat) == 52);
static_assert(offsetof(t_Beschr_DB_VERSION_201601, KzBeschr) == 56);
static_assert(offsetof(t_Beschr_DB_VERSION_201601, SizePadding) == 57);

inline constexpr data::FieldDescriptor kBeschrFields[] = {
    data::HeaderField(),
    {"Id", offsetof(t_Beschr_DB_VERSION_201601, Id), 4, data::FieldType::kInt32},
    {"SzKat", offsetof(t_Beschr_DB_VERSION_201601, SzKat), 4, data::FieldType::kInt32},
    {"KzBeschr", offsetof(t_Beschr_DB_VERSION_201601, KzBeschr), 1, data::FieldType::kChar},
    {"SizePadding", offsetof(t_Beschr_DB_VERSION_201601, SizePadding), 967,
     data::FieldType::kBytes},
};
inline constexpr data::RecordLayout kBeschrLayout{
    "t_Beschr_DB_VERSION_201601", sizeof(t_Beschr_DB_VERSION_201601), kBeschrFields};
static_assert(data::DescribesLayoutExactly(kBeschrLayout));

}  // namespace korvan::boq
