#pragma once

#include <cstddef>
#include <cstdint>

#include "data/records/field_descriptor.h"

namespace korvan::boq {

#pragma pack(push, 1)

// A reference to an entity of a CAD drawing: the drawing, then the entity in it. Both
// unset (null ids) when the record came from no drawing.
struct t_IdCad {
  int16_t IdDrawing;
  int32_t IdEntity;
};

#pragma pack(pop)

static_assert(sizeof(t_IdCad) == 6);
static_assert(offsetof(t_IdCad, IdDrawing) == 0);
static_assert(offsetof(t_IdCad, IdEntity) == 2);

inline constexpr data::FieldDescriptor kIdCadFields[] = {
    {"IdDrawing", offsetof(t_IdCad, IdDrawing), 2, data::FieldType::kInt16},
    {"IdEntity", offsetof(t_IdCad, IdEntity), 4, data::FieldType::kInt32},
};
inline constexpr data::RecordLayout kIdCadLayout{"t_IdCad", sizeof(t_IdCad), kIdCadFields};

}  // namespace korvan::boq
