#pragma once

#include <cstddef>
#include <cstdint>

#include "boq/vars/id_cad.h"
#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"
#include "formula/reb/reb_line.h"

namespace korvan::formula {

// Whether a line was written by people or generated from the LV.
enum class TRebGeneratorEnum : uint8_t { rgDefault = 0, rgAutoLV = 1 };

// A sheet number: the sheet (4 digits) and the line on it (2 digits).
using TBlattNr = data::ShortString<7>;

#pragma pack(push, 1)

// One stored measurement line: a line of a measurement sheet or of an item's quantity
// calculation. `Formel` holds a free formula, or for a numbered formula the values 1 to 5
// and the signs 1 to 5 separated by "|"; its unused bytes are zero.
struct t_RebAnsatz_2900 {
  data::TDbRecordHeader Header;
  int32_t ID;
  int32_t IdBezug;   // the owner
  char KzBezug;      // the owner's kind
  uint16_t SzBezug;  // the owner's version
  char KZ;           // line mark: "*", "H", "V", "L", "E", "P", "Z", "1" ... "5"
  data::ShortString<56> Erlaeuterung;
  char Vorzeichen;         // "-": a deduction
  double Faktor;           // multiplier of the result; 0 for none
  data::string3 FormelNr;  // REB formula number; empty for a free formula
  double Ergebnis;         // computed result
  char Formel[70];         // formula text or values and signs
  TBlattNr BlattNr;        // the line's address
  data::string20 VarName;  // the name under which the result is a variable
  boq::t_IdCad IdCad;      // the CAD entity
  int32_t IdAufmass;       // measurement position
  uint16_t SzLvBeschr;
  int32_t IdRechnung;      // the invoice
  int32_t IdBlattNrBezug;  // referenced sheet
  char ZwSumIndex;         // sub-total index
  uint8_t zbV[5];          // reserved
  TRebGeneratorEnum Generator;
};

#pragma pack(pop)

static_assert(sizeof(t_RebAnsatz_2900) == 264);
static_assert(offsetof(t_RebAnsatz_2900, ID) == 48);
static_assert(offsetof(t_RebAnsatz_2900, IdBezug) == 52);
static_assert(offsetof(t_RebAnsatz_2900, KzBezug) == 56);
static_assert(offsetof(t_RebAnsatz_2900, SzBezug) == 57);
static_assert(offsetof(t_RebAnsatz_2900, KZ) == 59);
static_assert(offsetof(t_RebAnsatz_2900, Erlaeuterung) == 60);
static_assert(offsetof(t_RebAnsatz_2900, Vorzeichen) == 117);
static_assert(offsetof(t_RebAnsatz_2900, Faktor) == 118);
static_assert(offsetof(t_RebAnsatz_2900, FormelNr) == 126);
static_assert(offsetof(t_RebAnsatz_2900, Ergebnis) == 130);
static_assert(offsetof(t_RebAnsatz_2900, Formel) == 138);
static_assert(offsetof(t_RebAnsatz_2900, BlattNr) == 208);
static_assert(offsetof(t_RebAnsatz_2900, VarName) == 216);
static_assert(offsetof(t_RebAnsatz_2900, IdCad) == 237);
static_assert(offsetof(t_RebAnsatz_2900, IdAufmass) == 243);
static_assert(offsetof(t_RebAnsatz_2900, SzLvBeschr) == 247);
static_assert(offsetof(t_RebAnsatz_2900, IdRechnung) == 249);
static_assert(offsetof(t_RebAnsatz_2900, IdBlattNrBezug) == 253);
static_assert(offsetof(t_RebAnsatz_2900, ZwSumIndex) == 257);
static_assert(offsetof(t_RebAnsatz_2900, zbV) == 258);
static_assert(offsetof(t_RebAnsatz_2900, Generator) == 263);

inline constexpr std::string_view kRebGeneratorNames[] = {"rgDefault", "rgAutoLV"};

inline constexpr data::FieldDescriptor kRebAnsatzFields[] = {
    data::HeaderField(),
    {"ID", offsetof(t_RebAnsatz_2900, ID), 4, data::FieldType::kInt32},
    {"IdBezug", offsetof(t_RebAnsatz_2900, IdBezug), 4, data::FieldType::kInt32},
    {"KzBezug", offsetof(t_RebAnsatz_2900, KzBezug), 1, data::FieldType::kChar},
    {"SzBezug", offsetof(t_RebAnsatz_2900, SzBezug), 2, data::FieldType::kUInt16},
    {"KZ", offsetof(t_RebAnsatz_2900, KZ), 1, data::FieldType::kChar},
    {"Erlaeuterung", offsetof(t_RebAnsatz_2900, Erlaeuterung), 57, data::FieldType::kShortString},
    {"Vorzeichen", offsetof(t_RebAnsatz_2900, Vorzeichen), 1, data::FieldType::kChar},
    {"Faktor", offsetof(t_RebAnsatz_2900, Faktor), 8, data::FieldType::kDouble},
    {"FormelNr", offsetof(t_RebAnsatz_2900, FormelNr), 4, data::FieldType::kShortString},
    {"Ergebnis", offsetof(t_RebAnsatz_2900, Ergebnis), 8, data::FieldType::kDouble},
    {"Formel", offsetof(t_RebAnsatz_2900, Formel), 70, data::FieldType::kCharArray},
    {"BlattNr", offsetof(t_RebAnsatz_2900, BlattNr), 8, data::FieldType::kShortString},
    {"VarName", offsetof(t_RebAnsatz_2900, VarName), 21, data::FieldType::kShortString},
    {"IdCad", offsetof(t_RebAnsatz_2900, IdCad), 6, data::FieldType::kNested, &boq::kIdCadLayout},
    {"IdAufmass", offsetof(t_RebAnsatz_2900, IdAufmass), 4, data::FieldType::kInt32},
    {"SzLvBeschr", offsetof(t_RebAnsatz_2900, SzLvBeschr), 2, data::FieldType::kUInt16},
    {"IdRechnung", offsetof(t_RebAnsatz_2900, IdRechnung), 4, data::FieldType::kInt32},
    {"IdBlattNrBezug", offsetof(t_RebAnsatz_2900, IdBlattNrBezug), 4, data::FieldType::kInt32},
    {"ZwSumIndex", offsetof(t_RebAnsatz_2900, ZwSumIndex), 1, data::FieldType::kChar},
    {"zbV", offsetof(t_RebAnsatz_2900, zbV), 5, data::FieldType::kBytes},
    {"Generator", offsetof(t_RebAnsatz_2900, Generator), 1, data::FieldType::kEnum8, nullptr,
     kRebGeneratorNames},
};
inline constexpr data::RecordLayout kRebAnsatzLayout{"t_RebAnsatz_2900", sizeof(t_RebAnsatz_2900),
                                                     kRebAnsatzFields};
static_assert(data::DescribesLayoutExactly(kRebAnsatzLayout));

// The line as the interpreter reads it: texts in UTF-8, the formula text up to its first
// zero byte, a zero mark or sign read as blank, the sheet number as the line's address.
TRebLine RebLineOf(const t_RebAnsatz_2900& record);

// Stores a line's text fields and result back into its record. Whether the formula text
// fit its 70 bytes whole.
bool StoreRebLine(const TRebLine& line, t_RebAnsatz_2900& record);

}  // namespace korvan::formula
