#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"

namespace korvan::exchange {

#pragma pack(push, 1)

// The GAEB header information of one LV that has no other home in the LV records: award
// and contract data, labels of the unit-price components, bonds and the contract penalty.
struct t_Gaeb_DB_VERSION_201401 {
  data::TDbRecordHeader Header;
  int32_t IdLv;
  data::ShortString<3> BIETERAG;  // bidder number at the client
  data::ShortString<15> VERGAN;   // award number (Vergabenummer)
  data::ShortString<8> DVNRAN;    // data-processing number of the contractor
  uint8_t KZLOHN;                 // Boolean: wage flag of the unit-price breakdown
  data::ShortString<60> ProjectName;
  data::ShortString<60> AGBEZ;                    // client designation
  data::ShortString<60> ANBEZ;                    // contractor designation
  data::ShortString<14> BEZEITAN;                 // label of the time unit
  std::array<data::ShortString<14>, 4> BEZEPAN;   // labels of unit-price components
  data::ShortString<9> KOSTENNR;                  // cost number
  data::ShortString<20> LOKALIT;                  // locality
  data::ShortString<12> LOKALNR;                  // locality number
  data::ShortString<6> WAEKU;                     // currency code (Cur)
  data::ShortString<50> WAEBEZ;                   // currency label (CurLbl)
  std::array<data::ShortString<14>, 6> KENNWORT;  // labels of the components 1 ... 6
  double AusfProz;                                // performance bond in percent (PerformPcnt)
  double GwlProzent;                              // warranty bond in percent (WarrantPcnt)
  data::ShortString<60> Baustelle;
  data::ShortString<60> Planer;
  data::ShortString<60> Vergabepruefstelle;
  uint8_t VStProz;            // Boolean: the contract penalty is a percentage
  double Vertragsstrafe;      // contract penalty
  uint8_t MultilineKurztext;  // Boolean: short texts of this LV are multi-line
  data::string20 ContrNo;
  data::ShortString<60> AcceptType;
  int32_t ContrDate;       // integer date
  int32_t AcceptDate;      // integer date
  uint8_t BidCommPerm;     // Boolean: bidder comments permitted
  uint8_t AlterBidPerm;    // Boolean: alternative bids permitted
  data::string100 PROBEZ;  // project designation
  std::array<uint8_t, 10> Reserved;
};

#pragma pack(pop)

static_assert(sizeof(t_Gaeb_DB_VERSION_201401) == 944);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, IdLv) == 48);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, BIETERAG) == 52);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, VERGAN) == 56);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, DVNRAN) == 72);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, KZLOHN) == 81);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, ProjectName) == 82);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, AGBEZ) == 143);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, ANBEZ) == 204);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, BEZEITAN) == 265);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, BEZEPAN) == 280);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, KOSTENNR) == 340);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, LOKALIT) == 350);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, LOKALNR) == 371);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, WAEKU) == 384);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, WAEBEZ) == 391);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, KENNWORT) == 442);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, AusfProz) == 532);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, GwlProzent) == 540);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, Baustelle) == 548);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, Planer) == 609);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, Vergabepruefstelle) == 670);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, VStProz) == 731);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, Vertragsstrafe) == 732);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, MultilineKurztext) == 740);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, ContrNo) == 741);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, AcceptType) == 762);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, ContrDate) == 823);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, AcceptDate) == 827);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, BidCommPerm) == 831);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, AlterBidPerm) == 832);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, PROBEZ) == 833);
static_assert(offsetof(t_Gaeb_DB_VERSION_201401, Reserved) == 934);

#define KORVAN_GAEB_FIELD(name, type) \
  { #name, offsetof(t_Gaeb_DB_VERSION_201401, name), sizeof(t_Gaeb_DB_VERSION_201401::name), type }

inline constexpr data::FieldDescriptor kGaebFields[] = {
    data::HeaderField(),
    KORVAN_GAEB_FIELD(IdLv, data::FieldType::kInt32),
    KORVAN_GAEB_FIELD(BIETERAG, data::FieldType::kShortString),
    KORVAN_GAEB_FIELD(VERGAN, data::FieldType::kShortString),
    KORVAN_GAEB_FIELD(DVNRAN, data::FieldType::kShortString),
    KORVAN_GAEB_FIELD(KZLOHN, data::FieldType::kBool),
    KORVAN_GAEB_FIELD(ProjectName, data::FieldType::kShortString),
    KORVAN_GAEB_FIELD(AGBEZ, data::FieldType::kShortString),
    KORVAN_GAEB_FIELD(ANBEZ, data::FieldType::kShortString),
    KORVAN_GAEB_FIELD(BEZEITAN, data::FieldType::kShortString),
    KORVAN_GAEB_FIELD(BEZEPAN, data::FieldType::kBytes),
    KORVAN_GAEB_FIELD(KOSTENNR, data::FieldType::kShortString),
    KORVAN_GAEB_FIELD(LOKALIT, data::FieldType::kShortString),
    KORVAN_GAEB_FIELD(LOKALNR, data::FieldType::kShortString),
    KORVAN_GAEB_FIELD(WAEKU, data::FieldType::kShortString),
    KORVAN_GAEB_FIELD(WAEBEZ, data::FieldType::kShortString),
    KORVAN_GAEB_FIELD(KENNWORT, data::FieldType::kBytes),
    KORVAN_GAEB_FIELD(AusfProz, data::FieldType::kDouble),
    KORVAN_GAEB_FIELD(GwlProzent, data::FieldType::kDouble),
    KORVAN_GAEB_FIELD(Baustelle, data::FieldType::kShortString),
    KORVAN_GAEB_FIELD(Planer, data::FieldType::kShortString),
    KORVAN_GAEB_FIELD(Vergabepruefstelle, data::FieldType::kShortString),
    KORVAN_GAEB_FIELD(VStProz, data::FieldType::kBool),
    KORVAN_GAEB_FIELD(Vertragsstrafe, data::FieldType::kDouble),
    KORVAN_GAEB_FIELD(MultilineKurztext, data::FieldType::kBool),
    KORVAN_GAEB_FIELD(ContrNo, data::FieldType::kShortString),
    KORVAN_GAEB_FIELD(AcceptType, data::FieldType::kShortString),
    KORVAN_GAEB_FIELD(ContrDate, data::FieldType::kIntDate),
    KORVAN_GAEB_FIELD(AcceptDate, data::FieldType::kIntDate),
    KORVAN_GAEB_FIELD(BidCommPerm, data::FieldType::kBool),
    KORVAN_GAEB_FIELD(AlterBidPerm, data::FieldType::kBool),
    KORVAN_GAEB_FIELD(PROBEZ, data::FieldType::kShortString),
    KORVAN_GAEB_FIELD(Reserved, data::FieldType::kBytes),
};

#undef KORVAN_GAEB_FIELD

inline constexpr data::RecordLayout kGaebLayout{"t_Gaeb_DB_VERSION_201401",
                                                sizeof(t_Gaeb_DB_VERSION_201401), kGaebFields};
static_assert(data::DescribesLayoutExactly(kGaebLayout));

}  // namespace korvan::exchange
