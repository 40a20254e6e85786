#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "boq/lv/lv_record.h"
#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"
#include "data/records/wae_betrag.h"

namespace korvan::award {

#pragma pack(push, 1)

// How the days of a cash-discount term count.
enum class TCashDiscDaysTypeOfDays : uint8_t {
  cddtNONE = 0,
  cddtWorkDays = 1,
  cddtWeekDays = 2,
  cddtCalendarDays = 3,
};

// The bid's cash-discount terms are the LV's: one layout for both (Kind holds a
// TCashDiscDaysTypeOfDays).
using TCashDiscDays = boq::TCashDiscDays;
using TCashDiscount = boq::TCashDiscount;
using TCashDiscountArray = boq::TCashDiscountArray;

// The members of TBidderStates, by bit.
inline constexpr uint8_t kBidsIncomplete = 1 << 0;  // some priced item has no price
inline constexpr uint8_t kBidsBlanko = 1 << 1;      // no prices yet

// One bidder of an LV with the sums of its bid.
struct t_Bieter_DB_VERSION_3100 {
  data::TDbRecordHeader Header;
  int32_t ID;
  int32_t IDLv;
  uint16_t SzLv;
  int32_t IdAdresse;
  int16_t IdWaehrung;  // bid currency; -1 the LV's
  uint8_t BieterNrIntern;
  data::ShortString<40> Bietername;
  std::array<uint8_t, 25> Reserved;
  data::ShortString<20> KreditorNr;
  data::ShortString<8> BieterNr;
  data::ShortString<10> ArtStaat;
  data::ShortString<3> NameStaat;
  uint8_t ArtBevBew;
  uint8_t ArtNU;
  data::t_WaeBetrag SummeUngeprueft;  // as the bidder states it
  data::t_WaeBetrag Summe;            // checked, from the bid lines
  float NachlassProz;
  data::t_WaeBetrag NachlassAbs;
  data::t_WaeBetrag SummeNachNL;
  data::t_WaeBetrag SummePsch;  // lump sum for the whole bid; 0 none
  float USt;                    // VAT percent; -1 not set
  data::t_WaeBetrag SummeBrutto;
  double TotalTime;  // hours
  int32_t VersandDatum;
  int32_t Rueckgabedatum;
  uint8_t markiert;
  double Waehrungsfaktor;  // -1 not set
  int32_t Waehrungskursdatum;
  float LohngleitFaktor;
  uint8_t Status;  // TBidderStates
  TCashDiscountArray CashDiscount;
  float Weighting;
  data::ShortString<60> DvNr;
  data::ShortString<60> VergNr;
  std::array<uint8_t, 7> SizePadding;
};

#pragma pack(pop)

static_assert(sizeof(TCashDiscount) == 17);
static_assert(sizeof(t_Bieter_DB_VERSION_3100) == 464);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, ID) == 48);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, IDLv) == 52);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, SzLv) == 56);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, IdAdresse) == 58);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, IdWaehrung) == 62);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, BieterNrIntern) == 64);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, Bietername) == 65);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, Reserved) == 106);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, KreditorNr) == 131);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, BieterNr) == 152);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, ArtStaat) == 161);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, NameStaat) == 172);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, ArtBevBew) == 176);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, ArtNU) == 177);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, SummeUngeprueft) == 178);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, Summe) == 188);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, NachlassProz) == 198);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, NachlassAbs) == 202);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, SummeNachNL) == 212);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, SummePsch) == 222);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, USt) == 232);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, SummeBrutto) == 236);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, TotalTime) == 246);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, VersandDatum) == 254);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, Rueckgabedatum) == 258);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, markiert) == 262);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, Waehrungsfaktor) == 263);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, Waehrungskursdatum) == 271);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, LohngleitFaktor) == 275);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, Status) == 279);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, CashDiscount) == 280);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, Weighting) == 331);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, DvNr) == 335);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, VergNr) == 396);
static_assert(offsetof(t_Bieter_DB_VERSION_3100, SizePadding) == 457);

inline constexpr std::string_view kBidderStateNames[] = {"Incomplete", "Blanko"};

#define KORVAN_BIETER_FIELD(name, type) \
  { #name, offsetof(t_Bieter_DB_VERSION_3100, name), sizeof(t_Bieter_DB_VERSION_3100::name), type }

inline constexpr data::FieldDescriptor kBieterFields[] = {
    data::HeaderField(),
    KORVAN_BIETER_FIELD(ID, data::FieldType::kInt32),
    KORVAN_BIETER_FIELD(IDLv, data::FieldType::kInt32),
    KORVAN_BIETER_FIELD(SzLv, data::FieldType::kUInt16),
    KORVAN_BIETER_FIELD(IdAdresse, data::FieldType::kInt32),
    KORVAN_BIETER_FIELD(IdWaehrung, data::FieldType::kInt16),
    KORVAN_BIETER_FIELD(BieterNrIntern, data::FieldType::kByte),
    KORVAN_BIETER_FIELD(Bietername, data::FieldType::kShortString),
    KORVAN_BIETER_FIELD(Reserved, data::FieldType::kBytes),
    KORVAN_BIETER_FIELD(KreditorNr, data::FieldType::kShortString),
    KORVAN_BIETER_FIELD(BieterNr, data::FieldType::kShortString),
    KORVAN_BIETER_FIELD(ArtStaat, data::FieldType::kShortString),
    KORVAN_BIETER_FIELD(NameStaat, data::FieldType::kShortString),
    KORVAN_BIETER_FIELD(ArtBevBew, data::FieldType::kByte),
    KORVAN_BIETER_FIELD(ArtNU, data::FieldType::kByte),
    KORVAN_BIETER_FIELD(SummeUngeprueft, data::FieldType::kWaeBetrag),
    KORVAN_BIETER_FIELD(Summe, data::FieldType::kWaeBetrag),
    KORVAN_BIETER_FIELD(NachlassProz, data::FieldType::kSingle),
    KORVAN_BIETER_FIELD(NachlassAbs, data::FieldType::kWaeBetrag),
    KORVAN_BIETER_FIELD(SummeNachNL, data::FieldType::kWaeBetrag),
    KORVAN_BIETER_FIELD(SummePsch, data::FieldType::kWaeBetrag),
    KORVAN_BIETER_FIELD(USt, data::FieldType::kSingle),
    KORVAN_BIETER_FIELD(SummeBrutto, data::FieldType::kWaeBetrag),
    KORVAN_BIETER_FIELD(TotalTime, data::FieldType::kDouble),
    KORVAN_BIETER_FIELD(VersandDatum, data::FieldType::kIntDate),
    KORVAN_BIETER_FIELD(Rueckgabedatum, data::FieldType::kIntDate),
    KORVAN_BIETER_FIELD(markiert, data::FieldType::kBool),
    KORVAN_BIETER_FIELD(Waehrungsfaktor, data::FieldType::kDouble),
    KORVAN_BIETER_FIELD(Waehrungskursdatum, data::FieldType::kIntDate),
    KORVAN_BIETER_FIELD(LohngleitFaktor, data::FieldType::kSingle),
    {"Status", offsetof(t_Bieter_DB_VERSION_3100, Status), 1, data::FieldType::kSet8, nullptr,
     kBidderStateNames},
    KORVAN_BIETER_FIELD(CashDiscount, data::FieldType::kBytes),
    KORVAN_BIETER_FIELD(Weighting, data::FieldType::kSingle),
    KORVAN_BIETER_FIELD(DvNr, data::FieldType::kShortString),
    KORVAN_BIETER_FIELD(VergNr, data::FieldType::kShortString),
    KORVAN_BIETER_FIELD(SizePadding, data::FieldType::kBytes),
};

#undef KORVAN_BIETER_FIELD

inline constexpr data::RecordLayout kBieterLayout{"t_Bieter_DB_VERSION_3100",
                                                  sizeof(t_Bieter_DB_VERSION_3100), kBieterFields};
static_assert(data::DescribesLayoutExactly(kBieterLayout));

}  // namespace korvan::award
