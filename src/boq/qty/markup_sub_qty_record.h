#pragma once

#include <cstddef>
#include <cstdint>

#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"

namespace korvan::boq {

// The owner kind of a markup partial quantity that belongs to an LV item.
inline constexpr char kMarkupOwnerItem = 'P';

#pragma pack(push, 1)

// A markup (surcharge or rounding) quantity of an owner on a partial quantity.
struct t_MarkupSubQty {
  data::TDbRecordHeader Header;
  int32_t ID;
  char KzBezug;  // the owner's kind; kMarkupOwnerItem for an LV item
  int32_t IDBezug;
  uint16_t SzBezug;
  int32_t IdRef;  // the partial quantity it refers to
  double SubQty;  // the markup quantity
};

#pragma pack(pop)

static_assert(sizeof(t_MarkupSubQty) == 71);
static_assert(offsetof(t_MarkupSubQty, ID) == 48);
static_assert(offsetof(t_MarkupSubQty, KzBezug) == 52);
static_assert(offsetof(t_MarkupSubQty, IDBezug) == 53);
static_assert(offsetof(t_MarkupSubQty, SzBezug) == 57);
static_assert(offsetof(t_MarkupSubQty, IdRef) == 59);
static_assert(offsetof(t_MarkupSubQty, SubQty) == 63);

inline constexpr data::FieldDescriptor kMarkupSubQtyFields[] = {
    data::HeaderField(),
    {"ID", offsetof(t_MarkupSubQty, ID), 4, data::FieldType::kInt32},
    {"KzBezug", offsetof(t_MarkupSubQty, KzBezug), 1, data::FieldType::kChar},
    {"IDBezug", offsetof(t_MarkupSubQty, IDBezug), 4, data::FieldType::kInt32},
    {"SzBezug", offsetof(t_MarkupSubQty, SzBezug), 2, data::FieldType::kUInt16},
    {"IdRef", offsetof(t_MarkupSubQty, IdRef), 4, data::FieldType::kInt32},
    {"SubQty", offsetof(t_MarkupSubQty, SubQty), 8, data::FieldType::kDouble},
};
inline constexpr data::RecordLayout kMarkupSubQtyLayout{"t_MarkupSubQty", sizeof(t_MarkupSubQty),
                                                        kMarkupSubQtyFields};
static_assert(data::DescribesLayoutExactly(kMarkupSubQtyLayout));

}  // namespace korvan::boq
