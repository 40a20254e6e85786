#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"

namespace korvan::boq {

// How quantities in a unit are written.
enum class TValFormat : uint8_t {
  vfNONE = 0,
  vfDec = 1,     // decimal
  vfFtIn64 = 2,  // feet and inches in 1/64
  vfFtIn10 = 3,  // feet and inches in tenths
  vfInFrc = 4,   // inch fractions
};

// A stored ValFormat byte; bytes beyond the known notations read as vfNONE.
constexpr TValFormat DecodeValFormat(uint8_t stored) {
  return stored <= static_cast<uint8_t>(TValFormat::vfInFrc) ? static_cast<TValFormat>(stored)
                                                             : TValFormat::vfNONE;
}

inline constexpr std::string_view kValFormatNames[] = {"vfNONE", "vfDec", "vfFtIn64", "vfFtIn10",
                                                       "vfInFrc"};

#pragma pack(push, 1)

// A unit of measure of one language.
struct t_Einheit {
  data::TDbRecordHeader Header;
  int16_t IdLang;
  int16_t IdEinheit;
  int16_t Sz;                  // sort number
  data::string40 Bezeichnung;  // long name
  data::string6 Einheit;       // symbol as printed and exchanged
  char Preisanteile;           // unit-price split: '1', '2', '3', 'A', 'B'
  uint8_t Nachkommastellen;
  uint8_t ValFormat;  // TValFormat; kept as a byte so damaged values stay readable
  data::string3 FN003;
  data::string3 FN004;
};

#pragma pack(pop)

static_assert(sizeof(t_Einheit) == 113);
static_assert(offsetof(t_Einheit, IdLang) == 48);
static_assert(offsetof(t_Einheit, IdEinheit) == 50);
static_assert(offsetof(t_Einheit, Sz) == 52);
static_assert(offsetof(t_Einheit, Bezeichnung) == 54);
static_assert(sizeof(t_Einheit::Bezeichnung) == 41);
static_assert(offsetof(t_Einheit, Einheit) == 95);
static_assert(sizeof(t_Einheit::Einheit) == 7);
static_assert(offsetof(t_Einheit, Preisanteile) == 102);
static_assert(offsetof(t_Einheit, Nachkommastellen) == 103);
static_assert(offsetof(t_Einheit, ValFormat) == 104);
static_assert(offsetof(t_Einheit, FN003) == 105);
static_assert(offsetof(t_Einheit, FN004) == 109);

inline constexpr data::FieldDescriptor kEinheitFields[] = {
    data::HeaderField(),
    {"IdLang", offsetof(t_Einheit, IdLang), 2, data::FieldType::kInt16},
    {"IdEinheit", offsetof(t_Einheit, IdEinheit), 2, data::FieldType::kInt16},
    {"Sz", offsetof(t_Einheit, Sz), 2, data::FieldType::kInt16},
    {"Bezeichnung", offsetof(t_Einheit, Bezeichnung), 41, data::FieldType::kShortString},
    {"Einheit", offsetof(t_Einheit, Einheit), 7, data::FieldType::kShortString},
    {"Preisanteile", offsetof(t_Einheit, Preisanteile), 1, data::FieldType::kChar},
    {"Nachkommastellen", offsetof(t_Einheit, Nachkommastellen), 1, data::FieldType::kByte},
    {"ValFormat", offsetof(t_Einheit, ValFormat), 1, data::FieldType::kEnum8, nullptr,
     kValFormatNames},
    {"FN003", offsetof(t_Einheit, FN003), 4, data::FieldType::kShortString},
    {"FN004", offsetof(t_Einheit, FN004), 4, data::FieldType::kShortString},
};
inline constexpr data::RecordLayout kEinheitLayout{"t_Einheit", sizeof(t_Einheit), kEinheitFields};
static_assert(data::DescribesLayoutExactly(kEinheitLayout));

}  // namespace korvan::boq
