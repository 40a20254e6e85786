#pragma once

#include <cstddef>
#include <cstdint>

#include "boq/vars/id_cad.h"
#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"

namespace korvan::boq {

#pragma pack(push, 1)

// A named quantity of an object of the project (cost element, building component,
// partial quantity, LV item or LV partial quantity), used by the quantity formulas and
// the partial quantities.
struct t_Variable_2600 {
  data::TDbRecordHeader Header;
  int32_t ID;
  int32_t IdBezug;         // the owner's id
  char KzBezug;            // the owner's kind (kVariableOwnerCodes)
  char Typ;                // the variable's type (kVariableTypeCodes)
  data::string20 Name;     // as formulas name it
  double Menge;            // the value
  uint8_t ProjektEckwert;  // a key figure of the project
  uint8_t InAktiv;         // inactive
  data::string6 Einheit;   // unit symbol; "%" for a percentage
  t_IdCad IdCad;           // the CAD entity the value came from
  int16_t SzBezug;         // sort number below the owner
  int16_t IdEinheit;       // unit id of the unit list
  int32_t IdProperty;      // linked property of the property sets
};

#pragma pack(pop)

static_assert(sizeof(t_Variable_2600) == 110);
static_assert(offsetof(t_Variable_2600, ID) == 48);
static_assert(offsetof(t_Variable_2600, IdBezug) == 52);
static_assert(offsetof(t_Variable_2600, KzBezug) == 56);
static_assert(offsetof(t_Variable_2600, Typ) == 57);
static_assert(offsetof(t_Variable_2600, Name) == 58);
static_assert(offsetof(t_Variable_2600, Menge) == 79);
static_assert(offsetof(t_Variable_2600, ProjektEckwert) == 87);
static_assert(offsetof(t_Variable_2600, InAktiv) == 88);
static_assert(offsetof(t_Variable_2600, Einheit) == 89);
static_assert(offsetof(t_Variable_2600, IdCad) == 96);
static_assert(offsetof(t_Variable_2600, SzBezug) == 102);
static_assert(offsetof(t_Variable_2600, IdEinheit) == 104);
static_assert(offsetof(t_Variable_2600, IdProperty) == 106);

inline constexpr data::FieldDescriptor kVariableFields[] = {
    data::HeaderField(),
    {"ID", offsetof(t_Variable_2600, ID), 4, data::FieldType::kInt32},
    {"IdBezug", offsetof(t_Variable_2600, IdBezug), 4, data::FieldType::kInt32},
    {"KzBezug", offsetof(t_Variable_2600, KzBezug), 1, data::FieldType::kChar},
    {"Typ", offsetof(t_Variable_2600, Typ), 1, data::FieldType::kChar},
    {"Name", offsetof(t_Variable_2600, Name), 21, data::FieldType::kShortString},
    {"Menge", offsetof(t_Variable_2600, Menge), 8, data::FieldType::kDouble},
    {"ProjektEckwert", offsetof(t_Variable_2600, ProjektEckwert), 1, data::FieldType::kBool},
    {"InAktiv", offsetof(t_Variable_2600, InAktiv), 1, data::FieldType::kBool},
    {"Einheit", offsetof(t_Variable_2600, Einheit), 7, data::FieldType::kShortString},
    {"IdCad", offsetof(t_Variable_2600, IdCad), 6, data::FieldType::kNested, &kIdCadLayout},
    {"SzBezug", offsetof(t_Variable_2600, SzBezug), 2, data::FieldType::kInt16},
    {"IdEinheit", offsetof(t_Variable_2600, IdEinheit), 2, data::FieldType::kInt16},
    {"IdProperty", offsetof(t_Variable_2600, IdProperty), 4, data::FieldType::kInt32},
};
inline constexpr data::RecordLayout kVariableLayout{"t_Variable_2600", sizeof(t_Variable_2600),
                                                    kVariableFields};
static_assert(data::DescribesLayoutExactly(kVariableLayout));

}  // namespace korvan::boq
