#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"
#include "data/records/wae_betrag.h"

// The group and item records of an LV: both start with the same common part (OZ,
// codes, totals, catalog codes); the group part holds a group's sums, the item part an
// item's quantities and prices.
namespace korvan::boq {

enum class TAlterBidStatus : uint8_t { absNONE, absIdentical, absNA, absModified, absNew };
enum class THoldOutType : uint8_t { hotNONE, hotBaseUseItem, hotExtUseItem, hotRentUseItem };
enum class TUseDurLblTime : uint8_t { ultNONE, ultMinute, ultHour, ultDay, ultWeek, ultMonth };
enum class TPriceInfo : uint8_t { piNONE, piScope, piTo, piApprox, piLump };

inline constexpr std::string_view kAlterBidStatusNames[] = {"absNONE", "absIdentical", "absNA",
                                                            "absModified", "absNew"};
inline constexpr std::string_view kHoldOutTypeNames[] = {"hotNONE", "hotBaseUseItem",
                                                         "hotExtUseItem", "hotRentUseItem"};
inline constexpr std::string_view kUseDurLblTimeNames[] = {"ultNONE", "ultMinute", "ultHour",
                                                           "ultDay",  "ultWeek",   "ultMonth"};
inline constexpr std::string_view kPriceInfoNames[] = {"piNONE", "piScope", "piTo", "piApprox",
                                                       "piLump"};

#pragma pack(push, 1)

// What groups and items have in common; at offset 48 of both records.
struct t_LvBgBeschr_3000 {
  int32_t ID;  // entry id (key)
  int32_t
      IDBeschr;  // id of the description record (text and catalog data, t_Beschr_DB_VERSION_201601)
  data::ShortString<30> OZ;  // the OZ
  int16_t ZZWahl;            // alternative number (Wahlposition number); 0 = basic item
  int16_t ZZGruppe;          // alternative group number
  char Beauftragt;  // B commissioned (for alternative items in GAEB), Z deferred (for basic items)
  uint8_t AutoLvStatus;  // status of automatic LV generation
  char NachtrStatus;     // supplement status: 1 … 8, Z additional item (Zusatzposition)
  char Bedarf;           // E contingency item without total (Bedarfsposition ohne Gesamtpreis), M
                         // contingency item with total
  uint8_t KzEntfaellt;   // entry is omitted (entfällt)
  uint8_t KzNachtrag;    // entry is a supplement (Nachtrag)
  char Titelart;         // title kind code A, E, N or M
  data::ShortString<30> GXmlAttID;     // GAEB XML attribute id
  uint8_t Reserve1[3];                 // reserved
  uint8_t GUID[16];                    // global id
  uint8_t Reserve2[2];                 // reserved
  int32_t IdLkt;                       // linked cost-element id
  double Deckungsbeitrag;              // contribution margin
  data::t_WaeBetrag SchaetzGPDeckung;  // estimated total covered
  uint8_t Reserve3[3];                 // reserved
  char Status;                         // status, same codes as the LV status
  data::t_WaeBetrag SchaetzGP;         // estimated total (cost estimate)
  data::t_WaeBetrag VergabeGP;         // awarded total
  data::t_WaeBetrag AngebotsGP;        // bid total
  data::t_WaeBetrag AbrechnungsGP;     // billing total
  double NachlassProz;                 // discount percent
  data::t_WaeBetrag EinzelkostenGP;    // direct-cost total
  int32_t IdVertrag;                   // contract id
  uint8_t markiert;                    // marked in lists
  int32_t IdAngebot;                   // bid id the awarded price came from
  uint8_t Reserve4[6];                 // reserved
  double ZeitAufwand;                  // time effort
  uint8_t KZPageBreak;                 // page break before the entry when printing
  data::t_WaeBetrag Dummy;             // reserved amount
  uint8_t AlterBidStatus;  // TAlterBidStatus: absNONE, absIdentical, absNA, absModified, absNew
  data::t_WaeBetrag NotContractedNachtragGP;  // supplement total not yet contracted
  data::ShortString<50> CtlgAssignCode1;      // catalog assignment code 1
  data::ShortString<50> CtlgAssignCode2;      // catalog assignment code 2
  data::ShortString<50> CtlgAssignCode3;      // catalog assignment code 3
  data::ShortString<50> CtlgAssignCode4;      // catalog assignment code 4
  data::ShortString<50> CtlgAssignCode5;      // catalog assignment code 5
  data::ShortString<50> CtlgAssignCode6;      // catalog assignment code 6
  data::ShortString<50> CtlgAssignCode7;      // catalog assignment code 7
  data::ShortString<50> CtlgAssignCode8;      // catalog assignment code 8
  data::ShortString<50> CtlgAssignCode9;      // catalog assignment code 9
  data::ShortString<50> CtlgAssignCode10;     // catalog assignment code 10
  data::ShortString<30> LktCode;              // cost-element code
  uint8_t SizePadding[4];                     // reserved
};

// The group part; at offset 824 of the group record.
struct t_LvBg2_DB_VERSION_201401 {
  data::t_WaeBetrag NachlassAbs;               // absolute discount on the group
  data::t_WaeBetrag SummePsch;                 // lump-sum total of the group
  double Ust;                                  // VAT percent
  data::t_WaeBetrag VergabeSum;                // awarded total of the group
  data::t_WaeBetrag AngebotsSum;               // bid total
  data::t_WaeBetrag NachtrSum;                 // supplements total
  data::t_WaeBetrag AbrechnungsSum;            // billed total
  data::t_WaeBetrag PauschalAbrechnungsSum;    // lump-sum billed total
  data::TArray6OfWaeBetrag GPAnteil;           // totals of the six unit-price components
  data::t_WaeBetrag EinzelkostenSum;           // direct-cost total
  data::t_WaeBetrag NotContractedNachtragSum;  // supplements not yet contracted
  data::t_WaeBetrag VergabeSumExclNachlass;    // awarded total without discount
};

// The item part; at offset 824 of the item record.
struct t_LvBeschr2_DB_VERSION_201401 {
  uint8_t KzSchwerpunktPos;  // key item (Schwerpunktposition)
  uint8_t KzZuschl;          // item is subject to surcharges / is a surcharge item (see ZuschArt)
  uint8_t KzTMgueltig;       // the partial quantities are valid
  uint8_t KzTeilmengen;      // quantity comes from partial quantities
  uint8_t KzFrMenge;         // free quantity (Freimenge)
  uint8_t KzMengenlimit;     // quantity limit applies
  char ZuschArt;    // surcharge kind: Z surcharge item (Zuschlagsposition), A, S, B item carrying
                    // surcharges (Bezuschlagung)
  int32_t IdBezug;  // reference id (e.g. the item a surcharge or repetition refers to)
  double FMenge;    // LV quantity (Vergabemenge)
  double VaMenge;   // forecast quantity (Prognosemenge)
  double ReMenge;   // billed quantity (Rechnungsmenge)
  data::t_WaeBetrag SchaetzEP;      // estimated unit price
  data::t_WaeBetrag VergabeEP;      // awarded unit price
  data::t_WaeBetrag AngebotsEP;     // bid unit price
  data::t_WaeBetrag AbrechnungsEP;  // billing unit price
  data::TArray6OfWaeBetrag
      EPAnteil;          // six unit-price components (e.g. wage, material, equipment …)
  uint8_t AnzEPAnteile;  // number of unit-price components used
  data::t_WaeBetrag EinzelkostenEP;  // direct cost per unit
  double AngMenge;                   // bid quantity
  double ZeitFaktor;                 // time factor (hours per unit)
  uint8_t LumpSumItem;               // lump-sum item
  uint8_t HourIt;                    // hourly-wage item (Stundenlohnarbeit)
  uint8_t HoldOutType;     // THoldOutType: hotNONE, hotBaseUseItem, hotExtUseItem, hotRentUseItem
                           // (reserve/rent items)
  double UseDur;           // duration of use
  uint8_t UseDurLblTime;   // TUseDurLblTime: ultNONE, ultMinute, ultHour, ultDay, ultWeek, ultMonth
  uint8_t PriceInfo;       // TPriceInfo: piNONE, piScope, piTo, piApprox, piLump
  uint8_t SizePadding[1];  // reserved
};

// A group (kind "B") of an LV.
struct t_LVBg_3000 {
  data::TDbRecordHeader Header;
  t_LvBgBeschr_3000 LvBgBeschr1;
  t_LvBg2_DB_VERSION_201401 LvBg2;
};

// An item or text entry (every kind but "B") of an LV.
struct t_LVBeschr_3000 {
  data::TDbRecordHeader Header;
  t_LvBgBeschr_3000 LvBgBeschr1;
  t_LvBeschr2_DB_VERSION_201401 LvBeschr2;
};

#pragma pack(pop)

static_assert(sizeof(t_LvBgBeschr_3000) == 776);
static_assert(offsetof(t_LvBgBeschr_3000, ID) == 0);
static_assert(offsetof(t_LvBgBeschr_3000, IDBeschr) == 4);
static_assert(offsetof(t_LvBgBeschr_3000, OZ) == 8);
static_assert(offsetof(t_LvBgBeschr_3000, ZZWahl) == 39);
static_assert(offsetof(t_LvBgBeschr_3000, ZZGruppe) == 41);
static_assert(offsetof(t_LvBgBeschr_3000, Beauftragt) == 43);
static_assert(offsetof(t_LvBgBeschr_3000, AutoLvStatus) == 44);
static_assert(offsetof(t_LvBgBeschr_3000, NachtrStatus) == 45);
static_assert(offsetof(t_LvBgBeschr_3000, Bedarf) == 46);
static_assert(offsetof(t_LvBgBeschr_3000, KzEntfaellt) == 47);
static_assert(offsetof(t_LvBgBeschr_3000, KzNachtrag) == 48);
static_assert(offsetof(t_LvBgBeschr_3000, Titelart) == 49);
static_assert(offsetof(t_LvBgBeschr_3000, GXmlAttID) == 50);
static_assert(offsetof(t_LvBgBeschr_3000, Reserve1) == 81);
static_assert(offsetof(t_LvBgBeschr_3000, GUID) == 84);
static_assert(offsetof(t_LvBgBeschr_3000, Reserve2) == 100);
static_assert(offsetof(t_LvBgBeschr_3000, IdLkt) == 102);
static_assert(offsetof(t_LvBgBeschr_3000, Deckungsbeitrag) == 106);
static_assert(offsetof(t_LvBgBeschr_3000, SchaetzGPDeckung) == 114);
static_assert(offsetof(t_LvBgBeschr_3000, Reserve3) == 124);
static_assert(offsetof(t_LvBgBeschr_3000, Status) == 127);
static_assert(offsetof(t_LvBgBeschr_3000, SchaetzGP) == 128);
static_assert(offsetof(t_LvBgBeschr_3000, VergabeGP) == 138);
static_assert(offsetof(t_LvBgBeschr_3000, AngebotsGP) == 148);
static_assert(offsetof(t_LvBgBeschr_3000, AbrechnungsGP) == 158);
static_assert(offsetof(t_LvBgBeschr_3000, NachlassProz) == 168);
static_assert(offsetof(t_LvBgBeschr_3000, EinzelkostenGP) == 176);
static_assert(offsetof(t_LvBgBeschr_3000, IdVertrag) == 186);
static_assert(offsetof(t_LvBgBeschr_3000, markiert) == 190);
static_assert(offsetof(t_LvBgBeschr_3000, IdAngebot) == 191);
static_assert(offsetof(t_LvBgBeschr_3000, Reserve4) == 195);
static_assert(offsetof(t_LvBgBeschr_3000, ZeitAufwand) == 201);
static_assert(offsetof(t_LvBgBeschr_3000, KZPageBreak) == 209);
static_assert(offsetof(t_LvBgBeschr_3000, Dummy) == 210);
static_assert(offsetof(t_LvBgBeschr_3000, AlterBidStatus) == 220);
static_assert(offsetof(t_LvBgBeschr_3000, NotContractedNachtragGP) == 221);
static_assert(offsetof(t_LvBgBeschr_3000, CtlgAssignCode1) == 231);
static_assert(offsetof(t_LvBgBeschr_3000, CtlgAssignCode2) == 282);
static_assert(offsetof(t_LvBgBeschr_3000, CtlgAssignCode3) == 333);
static_assert(offsetof(t_LvBgBeschr_3000, CtlgAssignCode4) == 384);
static_assert(offsetof(t_LvBgBeschr_3000, CtlgAssignCode5) == 435);
static_assert(offsetof(t_LvBgBeschr_3000, CtlgAssignCode6) == 486);
static_assert(offsetof(t_LvBgBeschr_3000, CtlgAssignCode7) == 537);
static_assert(offsetof(t_LvBgBeschr_3000, CtlgAssignCode8) == 588);
static_assert(offsetof(t_LvBgBeschr_3000, CtlgAssignCode9) == 639);
static_assert(offsetof(t_LvBgBeschr_3000, CtlgAssignCode10) == 690);
static_assert(offsetof(t_LvBgBeschr_3000, LktCode) == 741);
static_assert(offsetof(t_LvBgBeschr_3000, SizePadding) == 772);

static_assert(sizeof(t_LvBg2_DB_VERSION_201401) == 168);
static_assert(offsetof(t_LvBg2_DB_VERSION_201401, NachlassAbs) == 0);
static_assert(offsetof(t_LvBg2_DB_VERSION_201401, SummePsch) == 10);
static_assert(offsetof(t_LvBg2_DB_VERSION_201401, Ust) == 20);
static_assert(offsetof(t_LvBg2_DB_VERSION_201401, VergabeSum) == 28);
static_assert(offsetof(t_LvBg2_DB_VERSION_201401, AngebotsSum) == 38);
static_assert(offsetof(t_LvBg2_DB_VERSION_201401, NachtrSum) == 48);
static_assert(offsetof(t_LvBg2_DB_VERSION_201401, AbrechnungsSum) == 58);
static_assert(offsetof(t_LvBg2_DB_VERSION_201401, PauschalAbrechnungsSum) == 68);
static_assert(offsetof(t_LvBg2_DB_VERSION_201401, GPAnteil) == 78);
static_assert(offsetof(t_LvBg2_DB_VERSION_201401, EinzelkostenSum) == 138);
static_assert(offsetof(t_LvBg2_DB_VERSION_201401, NotContractedNachtragSum) == 148);
static_assert(offsetof(t_LvBg2_DB_VERSION_201401, VergabeSumExclNachlass) == 158);

static_assert(sizeof(t_LvBeschr2_DB_VERSION_201401) == 176);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, KzSchwerpunktPos) == 0);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, KzZuschl) == 1);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, KzTMgueltig) == 2);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, KzTeilmengen) == 3);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, KzFrMenge) == 4);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, KzMengenlimit) == 5);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, ZuschArt) == 6);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, IdBezug) == 7);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, FMenge) == 11);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, VaMenge) == 19);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, ReMenge) == 27);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, SchaetzEP) == 35);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, VergabeEP) == 45);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, AngebotsEP) == 55);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, AbrechnungsEP) == 65);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, EPAnteil) == 75);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, AnzEPAnteile) == 135);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, EinzelkostenEP) == 136);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, AngMenge) == 146);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, ZeitFaktor) == 154);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, LumpSumItem) == 162);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, HourIt) == 163);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, HoldOutType) == 164);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, UseDur) == 165);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, UseDurLblTime) == 173);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, PriceInfo) == 174);
static_assert(offsetof(t_LvBeschr2_DB_VERSION_201401, SizePadding) == 175);

static_assert(sizeof(t_LVBg_3000) == 992);
static_assert(offsetof(t_LVBg_3000, LvBgBeschr1) == 48);
static_assert(offsetof(t_LVBg_3000, LvBg2) == 824);
static_assert(sizeof(t_LVBeschr_3000) == 1000);
static_assert(offsetof(t_LVBeschr_3000, LvBgBeschr1) == 48);
static_assert(offsetof(t_LVBeschr_3000, LvBeschr2) == 824);

inline constexpr data::FieldDescriptor kLvBgBeschrFields[] = {
    {"ID", offsetof(t_LvBgBeschr_3000, ID), 4, data::FieldType::kInt32},
    {"IDBeschr", offsetof(t_LvBgBeschr_3000, IDBeschr), 4, data::FieldType::kInt32},
    {"OZ", offsetof(t_LvBgBeschr_3000, OZ), 31, data::FieldType::kShortString},
    {"ZZWahl", offsetof(t_LvBgBeschr_3000, ZZWahl), 2, data::FieldType::kInt16},
    {"ZZGruppe", offsetof(t_LvBgBeschr_3000, ZZGruppe), 2, data::FieldType::kInt16},
    {"Beauftragt", offsetof(t_LvBgBeschr_3000, Beauftragt), 1, data::FieldType::kChar},
    {"AutoLvStatus", offsetof(t_LvBgBeschr_3000, AutoLvStatus), 1, data::FieldType::kByte},
    {"NachtrStatus", offsetof(t_LvBgBeschr_3000, NachtrStatus), 1, data::FieldType::kChar},
    {"Bedarf", offsetof(t_LvBgBeschr_3000, Bedarf), 1, data::FieldType::kChar},
    {"KzEntfaellt", offsetof(t_LvBgBeschr_3000, KzEntfaellt), 1, data::FieldType::kBool},
    {"KzNachtrag", offsetof(t_LvBgBeschr_3000, KzNachtrag), 1, data::FieldType::kBool},
    {"Titelart", offsetof(t_LvBgBeschr_3000, Titelart), 1, data::FieldType::kChar},
    {"GXmlAttID", offsetof(t_LvBgBeschr_3000, GXmlAttID), 31, data::FieldType::kShortString},
    {"Reserve1", offsetof(t_LvBgBeschr_3000, Reserve1), 3, data::FieldType::kBytes},
    {"GUID", offsetof(t_LvBgBeschr_3000, GUID), 16, data::FieldType::kBytes},
    {"Reserve2", offsetof(t_LvBgBeschr_3000, Reserve2), 2, data::FieldType::kBytes},
    {"IdLkt", offsetof(t_LvBgBeschr_3000, IdLkt), 4, data::FieldType::kInt32},
    {"Deckungsbeitrag", offsetof(t_LvBgBeschr_3000, Deckungsbeitrag), 8, data::FieldType::kDouble},
    {"SchaetzGPDeckung", offsetof(t_LvBgBeschr_3000, SchaetzGPDeckung), 10,
     data::FieldType::kWaeBetrag},
    {"Reserve3", offsetof(t_LvBgBeschr_3000, Reserve3), 3, data::FieldType::kBytes},
    {"Status", offsetof(t_LvBgBeschr_3000, Status), 1, data::FieldType::kChar},
    {"SchaetzGP", offsetof(t_LvBgBeschr_3000, SchaetzGP), 10, data::FieldType::kWaeBetrag},
    {"VergabeGP", offsetof(t_LvBgBeschr_3000, VergabeGP), 10, data::FieldType::kWaeBetrag},
    {"AngebotsGP", offsetof(t_LvBgBeschr_3000, AngebotsGP), 10, data::FieldType::kWaeBetrag},
    {"AbrechnungsGP", offsetof(t_LvBgBeschr_3000, AbrechnungsGP), 10, data::FieldType::kWaeBetrag},
    {"NachlassProz", offsetof(t_LvBgBeschr_3000, NachlassProz), 8, data::FieldType::kDouble},
    {"EinzelkostenGP", offsetof(t_LvBgBeschr_3000, EinzelkostenGP), 10,
     data::FieldType::kWaeBetrag},
    {"IdVertrag", offsetof(t_LvBgBeschr_3000, IdVertrag), 4, data::FieldType::kInt32},
    {"markiert", offsetof(t_LvBgBeschr_3000, markiert), 1, data::FieldType::kBool},
    {"IdAngebot", offsetof(t_LvBgBeschr_3000, IdAngebot), 4, data::FieldType::kInt32},
    {"Reserve4", offsetof(t_LvBgBeschr_3000, Reserve4), 6, data::FieldType::kBytes},
    {"ZeitAufwand", offsetof(t_LvBgBeschr_3000, ZeitAufwand), 8, data::FieldType::kDouble},
    {"KZPageBreak", offsetof(t_LvBgBeschr_3000, KZPageBreak), 1, data::FieldType::kBool},
    {"Dummy", offsetof(t_LvBgBeschr_3000, Dummy), 10, data::FieldType::kWaeBetrag},
    {"AlterBidStatus", offsetof(t_LvBgBeschr_3000, AlterBidStatus), 1, data::FieldType::kEnum8,
     nullptr, kAlterBidStatusNames},
    {"NotContractedNachtragGP", offsetof(t_LvBgBeschr_3000, NotContractedNachtragGP), 10,
     data::FieldType::kWaeBetrag},
    {"CtlgAssignCode1", offsetof(t_LvBgBeschr_3000, CtlgAssignCode1), 51,
     data::FieldType::kShortString},
    {"CtlgAssignCode2", offsetof(t_LvBgBeschr_3000, CtlgAssignCode2), 51,
     data::FieldType::kShortString},
    {"CtlgAssignCode3", offsetof(t_LvBgBeschr_3000, CtlgAssignCode3), 51,
     data::FieldType::kShortString},
    {"CtlgAssignCode4", offsetof(t_LvBgBeschr_3000, CtlgAssignCode4), 51,
     data::FieldType::kShortString},
    {"CtlgAssignCode5", offsetof(t_LvBgBeschr_3000, CtlgAssignCode5), 51,
     data::FieldType::kShortString},
    {"CtlgAssignCode6", offsetof(t_LvBgBeschr_3000, CtlgAssignCode6), 51,
     data::FieldType::kShortString},
    {"CtlgAssignCode7", offsetof(t_LvBgBeschr_3000, CtlgAssignCode7), 51,
     data::FieldType::kShortString},
    {"CtlgAssignCode8", offsetof(t_LvBgBeschr_3000, CtlgAssignCode8), 51,
     data::FieldType::kShortString},
    {"CtlgAssignCode9", offsetof(t_LvBgBeschr_3000, CtlgAssignCode9), 51,
     data::FieldType::kShortString},
    {"CtlgAssignCode10", offsetof(t_LvBgBeschr_3000, CtlgAssignCode10), 51,
     data::FieldType::kShortString},
    {"LktCode", offsetof(t_LvBgBeschr_3000, LktCode), 31, data::FieldType::kShortString},
    {"SizePadding", offsetof(t_LvBgBeschr_3000, SizePadding), 4, data::FieldType::kBytes},
};
inline constexpr data::RecordLayout kLvBgBeschrLayout{"t_LvBgBeschr_3000",
                                                      sizeof(t_LvBgBeschr_3000), kLvBgBeschrFields};
static_assert(data::DescribesLayoutExactly(kLvBgBeschrLayout));

inline constexpr data::FieldDescriptor kLvBg2Fields[] = {
    {"NachlassAbs", offsetof(t_LvBg2_DB_VERSION_201401, NachlassAbs), 10,
     data::FieldType::kWaeBetrag},
    {"SummePsch", offsetof(t_LvBg2_DB_VERSION_201401, SummePsch), 10, data::FieldType::kWaeBetrag},
    {"Ust", offsetof(t_LvBg2_DB_VERSION_201401, Ust), 8, data::FieldType::kDouble},
    {"VergabeSum", offsetof(t_LvBg2_DB_VERSION_201401, VergabeSum), 10,
     data::FieldType::kWaeBetrag},
    {"AngebotsSum", offsetof(t_LvBg2_DB_VERSION_201401, AngebotsSum), 10,
     data::FieldType::kWaeBetrag},
    {"NachtrSum", offsetof(t_LvBg2_DB_VERSION_201401, NachtrSum), 10, data::FieldType::kWaeBetrag},
    {"AbrechnungsSum", offsetof(t_LvBg2_DB_VERSION_201401, AbrechnungsSum), 10,
     data::FieldType::kWaeBetrag},
    {"PauschalAbrechnungsSum", offsetof(t_LvBg2_DB_VERSION_201401, PauschalAbrechnungsSum), 10,
     data::FieldType::kWaeBetrag},
    {"GPAnteil", offsetof(t_LvBg2_DB_VERSION_201401, GPAnteil), 60,
     data::FieldType::kWaeBetragArray},
    {"EinzelkostenSum", offsetof(t_LvBg2_DB_VERSION_201401, EinzelkostenSum), 10,
     data::FieldType::kWaeBetrag},
    {"NotContractedNachtragSum", offsetof(t_LvBg2_DB_VERSION_201401, NotContractedNachtragSum), 10,
     data::FieldType::kWaeBetrag},
    {"VergabeSumExclNachlass", offsetof(t_LvBg2_DB_VERSION_201401, VergabeSumExclNachlass), 10,
     data::FieldType::kWaeBetrag},
};
inline constexpr data::RecordLayout kLvBg2Layout{"t_LvBg2_DB_VERSION_201401",
                                                 sizeof(t_LvBg2_DB_VERSION_201401), kLvBg2Fields};
static_assert(data::DescribesLayoutExactly(kLvBg2Layout));

inline constexpr data::FieldDescriptor kLvBeschr2Fields[] = {
    {"KzSchwerpunktPos", offsetof(t_LvBeschr2_DB_VERSION_201401, KzSchwerpunktPos), 1,
     data::FieldType::kBool},
    {"KzZuschl", offsetof(t_LvBeschr2_DB_VERSION_201401, KzZuschl), 1, data::FieldType::kBool},
    {"KzTMgueltig", offsetof(t_LvBeschr2_DB_VERSION_201401, KzTMgueltig), 1,
     data::FieldType::kBool},
    {"KzTeilmengen", offsetof(t_LvBeschr2_DB_VERSION_201401, KzTeilmengen), 1,
     data::FieldType::kBool},
    {"KzFrMenge", offsetof(t_LvBeschr2_DB_VERSION_201401, KzFrMenge), 1, data::FieldType::kBool},
    {"KzMengenlimit", offsetof(t_LvBeschr2_DB_VERSION_201401, KzMengenlimit), 1,
     data::FieldType::kBool},
    {"ZuschArt", offsetof(t_LvBeschr2_DB_VERSION_201401, ZuschArt), 1, data::FieldType::kChar},
    {"IdBezug", offsetof(t_LvBeschr2_DB_VERSION_201401, IdBezug), 4, data::FieldType::kInt32},
    {"FMenge", offsetof(t_LvBeschr2_DB_VERSION_201401, FMenge), 8, data::FieldType::kDouble},
    {"VaMenge", offsetof(t_LvBeschr2_DB_VERSION_201401, VaMenge), 8, data::FieldType::kDouble},
    {"ReMenge", offsetof(t_LvBeschr2_DB_VERSION_201401, ReMenge), 8, data::FieldType::kDouble},
    {"SchaetzEP", offsetof(t_LvBeschr2_DB_VERSION_201401, SchaetzEP), 10,
     data::FieldType::kWaeBetrag},
    {"VergabeEP", offsetof(t_LvBeschr2_DB_VERSION_201401, VergabeEP), 10,
     data::FieldType::kWaeBetrag},
    {"AngebotsEP", offsetof(t_LvBeschr2_DB_VERSION_201401, AngebotsEP), 10,
     data::FieldType::kWaeBetrag},
    {"AbrechnungsEP", offsetof(t_LvBeschr2_DB_VERSION_201401, AbrechnungsEP), 10,
     data::FieldType::kWaeBetrag},
    {"EPAnteil", offsetof(t_LvBeschr2_DB_VERSION_201401, EPAnteil), 60,
     data::FieldType::kWaeBetragArray},
    {"AnzEPAnteile", offsetof(t_LvBeschr2_DB_VERSION_201401, AnzEPAnteile), 1,
     data::FieldType::kByte},
    {"EinzelkostenEP", offsetof(t_LvBeschr2_DB_VERSION_201401, EinzelkostenEP), 10,
     data::FieldType::kWaeBetrag},
    {"AngMenge", offsetof(t_LvBeschr2_DB_VERSION_201401, AngMenge), 8, data::FieldType::kDouble},
    {"ZeitFaktor", offsetof(t_LvBeschr2_DB_VERSION_201401, ZeitFaktor), 8,
     data::FieldType::kDouble},
    {"LumpSumItem", offsetof(t_LvBeschr2_DB_VERSION_201401, LumpSumItem), 1,
     data::FieldType::kBool},
    {"HourIt", offsetof(t_LvBeschr2_DB_VERSION_201401, HourIt), 1, data::FieldType::kBool},
    {"HoldOutType", offsetof(t_LvBeschr2_DB_VERSION_201401, HoldOutType), 1,
     data::FieldType::kEnum8, nullptr, kHoldOutTypeNames},
    {"UseDur", offsetof(t_LvBeschr2_DB_VERSION_201401, UseDur), 8, data::FieldType::kDouble},
    {"UseDurLblTime", offsetof(t_LvBeschr2_DB_VERSION_201401, UseDurLblTime), 1,
     data::FieldType::kEnum8, nullptr, kUseDurLblTimeNames},
    {"PriceInfo", offsetof(t_LvBeschr2_DB_VERSION_201401, PriceInfo), 1, data::FieldType::kEnum8,
     nullptr, kPriceInfoNames},
    {"SizePadding", offsetof(t_LvBeschr2_DB_VERSION_201401, SizePadding), 1,
     data::FieldType::kBytes},
};
inline constexpr data::RecordLayout kLvBeschr2Layout{
    "t_LvBeschr2_DB_VERSION_201401", sizeof(t_LvBeschr2_DB_VERSION_201401), kLvBeschr2Fields};
static_assert(data::DescribesLayoutExactly(kLvBeschr2Layout));

inline constexpr data::FieldDescriptor kLvBgFields[] = {
    data::HeaderField(),
    {"LvBgBeschr1", offsetof(t_LVBg_3000, LvBgBeschr1), sizeof(t_LvBgBeschr_3000),
     data::FieldType::kNested, &kLvBgBeschrLayout},
    {"LvBg2", offsetof(t_LVBg_3000, LvBg2), sizeof(t_LvBg2_DB_VERSION_201401),
     data::FieldType::kNested, &kLvBg2Layout},
};
inline constexpr data::RecordLayout kLvBgLayout{"t_LVBg_3000", sizeof(t_LVBg_3000), kLvBgFields};
static_assert(data::DescribesLayoutExactly(kLvBgLayout));

inline constexpr data::FieldDescriptor kLvBeschrFields[] = {
    data::HeaderField(),
    {"LvBgBeschr1", offsetof(t_LVBeschr_3000, LvBgBeschr1), sizeof(t_LvBgBeschr_3000),
     data::FieldType::kNested, &kLvBgBeschrLayout},
    {"LvBeschr2", offsetof(t_LVBeschr_3000, LvBeschr2), sizeof(t_LvBeschr2_DB_VERSION_201401),
     data::FieldType::kNested, &kLvBeschr2Layout},
};
inline constexpr data::RecordLayout kLvBeschrLayout{"t_LVBeschr_3000", sizeof(t_LVBeschr_3000),
                                                    kLvBeschrFields};
static_assert(data::DescribesLayoutExactly(kLvBeschrLayout));

}  // namespace korvan::boq
