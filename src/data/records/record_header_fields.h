#pragma once

#include <cstddef>

#include "data/records/field_descriptor.h"
#include "storage/record_header.h"

namespace korvan::data {

using storage::TDbRecordHeader;

// The header every stored record starts with, as dumps and comparisons see it.
inline constexpr FieldDescriptor kRecordHeaderFields[] = {
    {"RecLen", offsetof(TDbRecordHeader, RecLen), 4, FieldType::kInt32},
    {"RecTyp", offsetof(TDbRecordHeader, RecTyp), 1, FieldType::kChar},
    {"Size", offsetof(TDbRecordHeader, Size), 2, FieldType::kUInt16},
    {"Version", offsetof(TDbRecordHeader, Version), 2, FieldType::kUInt16},
    {"LastModified", offsetof(TDbRecordHeader, LastModified), 8, FieldType::kDateTime},
    {"CreationDate", offsetof(TDbRecordHeader, CreationDate), 8, FieldType::kDateTime},
    {"ModifiedById", offsetof(TDbRecordHeader, ModifiedById), 23, FieldType::kShortString},
};
inline constexpr RecordLayout kRecordHeaderLayout{"TDbRecordHeader", sizeof(TDbRecordHeader),
                                                  kRecordHeaderFields};
static_assert(DescribesLayoutExactly(kRecordHeaderLayout));

// The first field of every stored layout's description.
inline constexpr FieldDescriptor HeaderField() {
  return {"Header", 0, sizeof(TDbRecordHeader), FieldType::kNested, &kRecordHeaderLayout};
}

}  // namespace korvan::data
