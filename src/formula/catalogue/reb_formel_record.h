#pragma once

#include <cstddef>

#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"

namespace korvan::formula {

#pragma pack(push, 1)

// A numbered formula of the REB catalogue (master data shared by all projects). In
// `Formel` a number between "<" and ">" stands for a value of the measurement line: <n>
// is value n (1 to 5), <-n> (and <0> for the first) the line's arithmetic sign n.
struct t_REBFormel {
  data::TDbRecordHeader Header;
  data::string3 FormelNr;             // up to three digits, the key
  data::ShortString<50> Bezeichnung;  // name of the formula
  data::ShortString<255> Formel;      // the formula with its value references
  data::string100 Spaltentext;        // captions of the value columns, "|" between
};

#pragma pack(pop)

static_assert(sizeof(t_REBFormel) == 460);
static_assert(offsetof(t_REBFormel, FormelNr) == 48);
static_assert(offsetof(t_REBFormel, Bezeichnung) == 52);
static_assert(offsetof(t_REBFormel, Formel) == 103);
static_assert(offsetof(t_REBFormel, Spaltentext) == 359);

inline constexpr data::FieldDescriptor kRebFormelFields[] = {
    data::HeaderField(),
    {"FormelNr", offsetof(t_REBFormel, FormelNr), 4, data::FieldType::kShortString},
    {"Bezeichnung", offsetof(t_REBFormel, Bezeichnung), 51, data::FieldType::kShortString},
    {"Formel", offsetof(t_REBFormel, Formel), 256, data::FieldType::kShortString},
    {"Spaltentext", offsetof(t_REBFormel, Spaltentext), 101, data::FieldType::kShortString},
};
inline constexpr data::RecordLayout kRebFormelLayout{"t_REBFormel", sizeof(t_REBFormel),
                                                     kRebFormelFields};
static_assert(data::DescribesLayoutExactly(kRebFormelLayout));

}  // namespace korvan::formula
