#pragma once

#include <cstddef>
#include <cstdint>

#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"
#include "data/records/wae_betrag.h"

// Further records of an item's calculation (project) and the sub-item catalogue (master,
// database DB_UP).
namespace korvan::calc {

#pragma pack(push, 1)

// A material assigned to a cost approach line: factor, manual value and surcharge.
struct t_KpMAT_729 {
  data::TDbRecordHeader Header;
  char KZMD;  // from the master data
  int32_t ID;
  int32_t IDLIEF;  // supplier
  double FAKTOR;
  char KZWMAN;  // "N": no manual value, the group's value times FAKTOR applies
  data::t_WaeBetrag WMAN;
  double ZU;
  int32_t SORT;
};

// The standard-text identifiers of a sub-item.
struct t_KpSIDENT {
  data::TDbRecordHeader Header;
  int32_t IDBES;
  int32_t IDUPOS;
  int16_t SME;
  int16_t SMI;
  int16_t TYP;
  int16_t APR;
};

// One line of a sub-item's long text. The text's LENTEXT bytes follow the fixed part in the
// same record; TEXT is the place the text's reference had in memory and is stored as zeros.
struct t_KpLTEXT {
  data::TDbRecordHeader Header;
  int32_t IDBES;
  int32_t IDUPOS;
  int32_t IDZEILE;  // from 1
  int32_t LENTEXT;  // bytes of text after the fixed part
  uint8_t TEXT[8];
};

// The tree of the sub-item catalogue: groups and sub-items in order.
struct t_UpStruktur {
  data::TDbRecordHeader Header;
  int32_t ZuBg;  // parent group
  int32_t SzBg;  // sort number below it
  int32_t IdBgUPos;
  char KzBgUPos;  // group or sub-item
};

// One cost type of a catalogue sub-item: quantity and value.
struct t_UpKa_729 {
  char KzKa;
  double Menge;
  data::t_WaeBetrag Wert;
};

// A catalogue sub-item with up to seven cost types.
struct t_UpBg_729 {
  data::TDbRecordHeader Header;
  int32_t ID;
  int32_t IDLbTlg;
  data::ShortString<55> Bez;
  t_UpKa_729 Ka[7];
};

#pragma pack(pop)

static_assert(sizeof(t_KpMAT_729) == 88);
static_assert(offsetof(t_KpMAT_729, KZMD) == 48);
static_assert(offsetof(t_KpMAT_729, ID) == 49);
static_assert(offsetof(t_KpMAT_729, IDLIEF) == 53);
static_assert(offsetof(t_KpMAT_729, FAKTOR) == 57);
static_assert(offsetof(t_KpMAT_729, KZWMAN) == 65);
static_assert(offsetof(t_KpMAT_729, WMAN) == 66);
static_assert(offsetof(t_KpMAT_729, ZU) == 76);
static_assert(offsetof(t_KpMAT_729, SORT) == 84);

static_assert(sizeof(t_KpSIDENT) == 64);
static_assert(offsetof(t_KpSIDENT, IDBES) == 48);
static_assert(offsetof(t_KpSIDENT, IDUPOS) == 52);
static_assert(offsetof(t_KpSIDENT, SME) == 56);
static_assert(offsetof(t_KpSIDENT, APR) == 62);

static_assert(sizeof(t_KpLTEXT) == 72);
static_assert(offsetof(t_KpLTEXT, IDBES) == 48);
static_assert(offsetof(t_KpLTEXT, IDUPOS) == 52);
static_assert(offsetof(t_KpLTEXT, IDZEILE) == 56);
static_assert(offsetof(t_KpLTEXT, LENTEXT) == 60);
static_assert(offsetof(t_KpLTEXT, TEXT) == 64);

static_assert(sizeof(t_UpStruktur) == 61);
static_assert(offsetof(t_UpStruktur, ZuBg) == 48);
static_assert(offsetof(t_UpStruktur, SzBg) == 52);
static_assert(offsetof(t_UpStruktur, IdBgUPos) == 56);
static_assert(offsetof(t_UpStruktur, KzBgUPos) == 60);

static_assert(sizeof(t_UpKa_729) == 19);
static_assert(sizeof(t_UpBg_729) == 245);
static_assert(offsetof(t_UpBg_729, ID) == 48);
static_assert(offsetof(t_UpBg_729, IDLbTlg) == 52);
static_assert(offsetof(t_UpBg_729, Bez) == 56);
static_assert(offsetof(t_UpBg_729, Ka) == 112);

// How dumps and the currency conversion see these records.
inline constexpr data::FieldDescriptor kKpMAT_729Fields[] = {
    data::HeaderField(),
    {"KZMD", offsetof(t_KpMAT_729, KZMD), 1, data::FieldType::kChar},
    {"ID", offsetof(t_KpMAT_729, ID), 4, data::FieldType::kInt32},
    {"IDLIEF", offsetof(t_KpMAT_729, IDLIEF), 4, data::FieldType::kInt32},
    {"FAKTOR", offsetof(t_KpMAT_729, FAKTOR), 8, data::FieldType::kDouble},
    {"KZWMAN", offsetof(t_KpMAT_729, KZWMAN), 1, data::FieldType::kChar},
    {"WMAN", offsetof(t_KpMAT_729, WMAN), 10, data::FieldType::kWaeBetrag},
    {"ZU", offsetof(t_KpMAT_729, ZU), 8, data::FieldType::kDouble},
    {"SORT", offsetof(t_KpMAT_729, SORT), 4, data::FieldType::kInt32},
};
inline constexpr data::RecordLayout kKpMAT_729Layout{"t_KpMAT_729", sizeof(t_KpMAT_729),
                                                     kKpMAT_729Fields};
static_assert(data::DescribesLayoutExactly(kKpMAT_729Layout));

inline constexpr data::FieldDescriptor kKpSIDENTFields[] = {
    data::HeaderField(),
    {"IDBES", offsetof(t_KpSIDENT, IDBES), 4, data::FieldType::kInt32},
    {"IDUPOS", offsetof(t_KpSIDENT, IDUPOS), 4, data::FieldType::kInt32},
    {"SME", offsetof(t_KpSIDENT, SME), 2, data::FieldType::kInt16},
    {"SMI", offsetof(t_KpSIDENT, SMI), 2, data::FieldType::kInt16},
    {"TYP", offsetof(t_KpSIDENT, TYP), 2, data::FieldType::kInt16},
    {"APR", offsetof(t_KpSIDENT, APR), 2, data::FieldType::kInt16},
};
inline constexpr data::RecordLayout kKpSIDENTLayout{"t_KpSIDENT", sizeof(t_KpSIDENT),
                                                    kKpSIDENTFields};
static_assert(data::DescribesLayoutExactly(kKpSIDENTLayout));

// The fixed part only; the dump names the number of text bytes after it.
inline constexpr data::FieldDescriptor kKpLTEXTFields[] = {
    data::HeaderField(),
    {"IDBES", offsetof(t_KpLTEXT, IDBES), 4, data::FieldType::kInt32},
    {"IDUPOS", offsetof(t_KpLTEXT, IDUPOS), 4, data::FieldType::kInt32},
    {"IDZEILE", offsetof(t_KpLTEXT, IDZEILE), 4, data::FieldType::kInt32},
    {"LENTEXT", offsetof(t_KpLTEXT, LENTEXT), 4, data::FieldType::kInt32},
    {"TEXT", offsetof(t_KpLTEXT, TEXT), 8, data::FieldType::kBytes},
};
inline constexpr data::RecordLayout kKpLTEXTLayout{"t_KpLTEXT", sizeof(t_KpLTEXT), kKpLTEXTFields};
static_assert(data::DescribesLayoutExactly(kKpLTEXTLayout));

inline constexpr data::FieldDescriptor kUpStrukturFields[] = {
    data::HeaderField(),
    {"ZuBg", offsetof(t_UpStruktur, ZuBg), 4, data::FieldType::kInt32},
    {"SzBg", offsetof(t_UpStruktur, SzBg), 4, data::FieldType::kInt32},
    {"IdBgUPos", offsetof(t_UpStruktur, IdBgUPos), 4, data::FieldType::kInt32},
    {"KzBgUPos", offsetof(t_UpStruktur, KzBgUPos), 1, data::FieldType::kChar},
};
inline constexpr data::RecordLayout kUpStrukturLayout{"t_UpStruktur", sizeof(t_UpStruktur),
                                                      kUpStrukturFields};
static_assert(data::DescribesLayoutExactly(kUpStrukturLayout));

inline constexpr data::FieldDescriptor kUpKa_729Fields[] = {
    {"KzKa", offsetof(t_UpKa_729, KzKa), 1, data::FieldType::kChar},
    {"Menge", offsetof(t_UpKa_729, Menge), 8, data::FieldType::kDouble},
    {"Wert", offsetof(t_UpKa_729, Wert), 10, data::FieldType::kWaeBetrag},
};
inline constexpr data::RecordLayout kUpKa_729Layout{"t_UpKa_729", sizeof(t_UpKa_729),
                                                    kUpKa_729Fields};
static_assert(data::DescribesLayoutExactly(kUpKa_729Layout));

inline constexpr data::FieldDescriptor kUpBg_729Fields[] = {
    data::HeaderField(),
    {"ID", offsetof(t_UpBg_729, ID), 4, data::FieldType::kInt32},
    {"IDLbTlg", offsetof(t_UpBg_729, IDLbTlg), 4, data::FieldType::kInt32},
    {"Bez", offsetof(t_UpBg_729, Bez), 56, data::FieldType::kShortString},
    {"Ka1", offsetof(t_UpBg_729, Ka) + 0 * sizeof(t_UpKa_729), sizeof(t_UpKa_729),
     data::FieldType::kNested, &kUpKa_729Layout},
    {"Ka2", offsetof(t_UpBg_729, Ka) + 1 * sizeof(t_UpKa_729), sizeof(t_UpKa_729),
     data::FieldType::kNested, &kUpKa_729Layout},
    {"Ka3", offsetof(t_UpBg_729, Ka) + 2 * sizeof(t_UpKa_729), sizeof(t_UpKa_729),
     data::FieldType::kNested, &kUpKa_729Layout},
    {"Ka4", offsetof(t_UpBg_729, Ka) + 3 * sizeof(t_UpKa_729), sizeof(t_UpKa_729),
     data::FieldType::kNested, &kUpKa_729Layout},
    {"Ka5", offsetof(t_UpBg_729, Ka) + 4 * sizeof(t_UpKa_729), sizeof(t_UpKa_729),
     data::FieldType::kNested, &kUpKa_729Layout},
    {"Ka6", offsetof(t_UpBg_729, Ka) + 5 * sizeof(t_UpKa_729), sizeof(t_UpKa_729),
     data::FieldType::kNested, &kUpKa_729Layout},
    {"Ka7", offsetof(t_UpBg_729, Ka) + 6 * sizeof(t_UpKa_729), sizeof(t_UpKa_729),
     data::FieldType::kNested, &kUpKa_729Layout},
};
inline constexpr data::RecordLayout kUpBg_729Layout{"t_UpBg_729", sizeof(t_UpBg_729),
                                                    kUpBg_729Fields};
static_assert(data::DescribesLayoutExactly(kUpBg_729Layout));

}  // namespace korvan::calc
