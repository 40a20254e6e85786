#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/wae_betrag.h"

namespace korvan::award {

#pragma pack(push, 1)

// One bid line: a bidder's prices for one line (group or item) of the LV.
struct t_Angebot_DB_VERSION_201501 {
  data::TDbRecordHeader Header;
  int32_t ID;
  int32_t IdBieter;
  int32_t IdLvBgBeschr;  // the LV line (its entry id)
  double AMenge;         // the quantity the bid is computed with
  data::t_WaeBetrag EP;  // for surcharge items the percentage
  data::TArray6OfWaeBetrag EPAnteil;
  data::t_WaeBetrag GP;  // total (items) or sum (groups) before discount
  float NachlassProz;
  data::t_WaeBetrag GPnachNL;
  data::t_WaeBetrag GPPsch;          // lump sum of a group; StatedTotalWithoutQuantity
  char Kennz;                        // blank, or one of the marks below
  double Zeit;                       // working time per unit, minutes
  data::t_WaeBetrag GPExclNachlass;  // group sum before the group's discount
  data::t_WaeBetrag DiscountAmt;     // absolute discount on a group
  std::array<uint8_t, 7> SizePadding;
};

#pragma pack(pop)

static_assert(sizeof(t_Angebot_DB_VERSION_201501) == 208);
static_assert(offsetof(t_Angebot_DB_VERSION_201501, ID) == 48);
static_assert(offsetof(t_Angebot_DB_VERSION_201501, IdBieter) == 52);
static_assert(offsetof(t_Angebot_DB_VERSION_201501, IdLvBgBeschr) == 56);
static_assert(offsetof(t_Angebot_DB_VERSION_201501, AMenge) == 60);
static_assert(offsetof(t_Angebot_DB_VERSION_201501, EP) == 68);
static_assert(offsetof(t_Angebot_DB_VERSION_201501, EPAnteil) == 78);
static_assert(offsetof(t_Angebot_DB_VERSION_201501, GP) == 138);
static_assert(offsetof(t_Angebot_DB_VERSION_201501, NachlassProz) == 148);
static_assert(offsetof(t_Angebot_DB_VERSION_201501, GPnachNL) == 152);
static_assert(offsetof(t_Angebot_DB_VERSION_201501, GPPsch) == 162);
static_assert(offsetof(t_Angebot_DB_VERSION_201501, Kennz) == 172);
static_assert(offsetof(t_Angebot_DB_VERSION_201501, Zeit) == 173);
static_assert(offsetof(t_Angebot_DB_VERSION_201501, GPExclNachlass) == 181);
static_assert(offsetof(t_Angebot_DB_VERSION_201501, DiscountAmt) == 191);
static_assert(offsetof(t_Angebot_DB_VERSION_201501, SizePadding) == 201);

// The marks of a bid line (Kennz), as the record documents them; F marks a line whose
// imported components do not add up to its unit price.
inline constexpr char kMarkNone = ' ';
inline constexpr char kMarkNotOffered = 'N';     // nicht angeboten
inline constexpr char kMarkInOther = 'E';        // in anderer Pos. enthalten
inline constexpr char kMarkComponents = 'A';     // EP-Anteile <> EP
inline constexpr char kMarkTotal = 'G';          // Menge * EP <> GP
inline constexpr char kMarkSum = 'S';            // Summenfehler
inline constexpr char kMarkMiscalculated = 'K';  // offenbar fehlkalkuliert
inline constexpr char kMarkFaulty = 'F';         // fehlerhaft (Import)

#define KORVAN_ANGEBOT_FIELD(name, type)                                                           \
  {                                                                                                \
#name, offsetof(t_Angebot_DB_VERSION_201501, name), sizeof(t_Angebot_DB_VERSION_201501::name), \
        type                                                                                       \
  }

inline constexpr data::FieldDescriptor kAngebotFields[] = {
    data::HeaderField(),
    KORVAN_ANGEBOT_FIELD(ID, data::FieldType::kInt32),
    KORVAN_ANGEBOT_FIELD(IdBieter, data::FieldType::kInt32),
    KORVAN_ANGEBOT_FIELD(IdLvBgBeschr, data::FieldType::kInt32),
    KORVAN_ANGEBOT_FIELD(AMenge, data::FieldType::kDouble),
    KORVAN_ANGEBOT_FIELD(EP, data::FieldType::kWaeBetrag),
    KORVAN_ANGEBOT_FIELD(EPAnteil, data::FieldType::kWaeBetragArray),
    KORVAN_ANGEBOT_FIELD(GP, data::FieldType::kWaeBetrag),
    KORVAN_ANGEBOT_FIELD(NachlassProz, data::FieldType::kSingle),
    KORVAN_ANGEBOT_FIELD(GPnachNL, data::FieldType::kWaeBetrag),
    KORVAN_ANGEBOT_FIELD(GPPsch, data::FieldType::kWaeBetrag),
    KORVAN_ANGEBOT_FIELD(Kennz, data::FieldType::kChar),
    KORVAN_ANGEBOT_FIELD(Zeit, data::FieldType::kDouble),
    KORVAN_ANGEBOT_FIELD(GPExclNachlass, data::FieldType::kWaeBetrag),
    KORVAN_ANGEBOT_FIELD(DiscountAmt, data::FieldType::kWaeBetrag),
    KORVAN_ANGEBOT_FIELD(SizePadding, data::FieldType::kBytes),
};

#undef KORVAN_ANGEBOT_FIELD

inline constexpr data::RecordLayout kAngebotLayout{
    "t_Angebot_DB_VERSION_201501", sizeof(t_Angebot_DB_VERSION_201501), kAngebotFields};
static_assert(data::DescribesLayoutExactly(kAngebotLayout));

}  // namespace korvan::award
