#pragma once

#include <cstddef>
#include <cstdint>

#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"
#include "data/records/wae_betrag.h"

// The settings records of the calculation: surcharges, average wage, work keys, end-sum
// settings. Each exists as a master record of the company's defaults (t_Kr..., database
// DB_KR) and most as a per-LV copy (t_Kp..., database DB_KP) filled from the master.
namespace korvan::calc {

#pragma pack(push, 1)

// One surcharge percentage of a calculation kind (Z or E) and cost type, master.
struct t_KrZU {
  data::TDbRecordHeader Header;
  char KZKALKART;  // Z or E
  char KZKA;       // cost type
  double ZU;       // percent
};

// The same per LV.
struct t_KpZU {
  data::TDbRecordHeader Header;
  int32_t IDLV;
  char KZKALKART;
  char KZKA;
  double ZU;
};

// The two percentages of the average wage on the base wage A, master.
struct t_KrMLOHN {
  data::TDbRecordHeader Header;
  double MLL;  // wage-related incidental costs
  double MLS;  // social costs
};

struct t_KpMLOHN {
  data::TDbRecordHeader Header;
  int32_t IDLV;
  double MLL;
  double MLS;
};

// A work key (wage group) with its own average wage A and surcharge, master.
struct t_KrBAS_729 {
  data::TDbRecordHeader Header;
  data::string10 ID;
  data::ShortString<55> BEZ;
  data::t_WaeBetrag MLA;
  double ZUWG;
};

struct t_KpBAS_729 {
  data::TDbRecordHeader Header;
  data::string10 ID;
  data::t_WaeBetrag MLA;
  double ZUWG;
};

// The end-sum settings of an LV: allocation and overhead percentages.
struct t_KpENDS {
  data::TDbRecordHeader Header;
  int32_t IDLV;
  double UMLPRZMAT;
  double UMLPRZRSV;
  double UMLPRZSOKO;
  double UMLPRZAVR;
  double UMLPRZBS;
  double UMLPRZFL;
  double ENDSAGKPRZEL;
  double ENDSAGKPRZFL;
  double ENDSWUGPRZEL;
  double ENDSWUGPRZFL;
  double UMLLOHN;
  int32_t IDUMLLV;  // the LV whose total is the site overheads; null when none
};

// The prices and surcharges of a cost-type group (the same layout in master and project).
struct t_KpKAGR_729 {
  data::TDbRecordHeader Header;
  char KZKA;
  int32_t ID;
  double MATM;
  data::t_WaeBetrag MATW;
  double MATZU;
  double ZEITM;
  data::t_WaeBetrag RSVW;
  double RSVZU;
  data::t_WaeBetrag SOKOW;
  double SOKOZU;
  double MLLB;
  double MLBA;
  data::t_WaeBetrag MLAVR;
  data::t_WaeBetrag MLBS;
  double MLTL;
  double MLZUAVR;
  double MLZUBS;
  data::ShortString<255> MLKOMMENTAR;
  char KZTYP;
};
using t_KrKAGR_729 = t_KpKAGR_729;

// A sub-item of an item: its quantity per unit of the item.
struct t_KpUPos {
  data::TDbRecordHeader Header;
  int32_t IDBES;
  int32_t IDUPOS;
  char KZUPOS;
  double MENGE;
  data::string4 EINHEIT;
  data::ShortString<128> BEZ;
  data::string10 STLBBKAT;
  int32_t STLBBTLG;
};

#pragma pack(pop)

static_assert(sizeof(t_KrZU) == 58);
static_assert(offsetof(t_KrZU, KZKALKART) == 48);
static_assert(offsetof(t_KrZU, KZKA) == 49);
static_assert(offsetof(t_KrZU, ZU) == 50);

static_assert(sizeof(t_KpZU) == 62);
static_assert(offsetof(t_KpZU, IDLV) == 48);
static_assert(offsetof(t_KpZU, KZKALKART) == 52);
static_assert(offsetof(t_KpZU, KZKA) == 53);
static_assert(offsetof(t_KpZU, ZU) == 54);

static_assert(sizeof(t_KrMLOHN) == 64);
static_assert(offsetof(t_KrMLOHN, MLL) == 48);
static_assert(offsetof(t_KrMLOHN, MLS) == 56);

static_assert(sizeof(t_KpMLOHN) == 68);
static_assert(offsetof(t_KpMLOHN, IDLV) == 48);
static_assert(offsetof(t_KpMLOHN, MLL) == 52);
static_assert(offsetof(t_KpMLOHN, MLS) == 60);

static_assert(sizeof(t_KrBAS_729) == 133);
static_assert(offsetof(t_KrBAS_729, ID) == 48);
static_assert(offsetof(t_KrBAS_729, BEZ) == 59);
static_assert(offsetof(t_KrBAS_729, MLA) == 115);
static_assert(offsetof(t_KrBAS_729, ZUWG) == 125);

static_assert(sizeof(t_KpBAS_729) == 77);
static_assert(offsetof(t_KpBAS_729, ID) == 48);
static_assert(offsetof(t_KpBAS_729, MLA) == 59);
static_assert(offsetof(t_KpBAS_729, ZUWG) == 69);

static_assert(sizeof(t_KpENDS) == 144);
static_assert(offsetof(t_KpENDS, IDLV) == 48);
static_assert(offsetof(t_KpENDS, UMLPRZMAT) == 52);
static_assert(offsetof(t_KpENDS, UMLPRZRSV) == 60);
static_assert(offsetof(t_KpENDS, UMLPRZSOKO) == 68);
static_assert(offsetof(t_KpENDS, UMLPRZAVR) == 76);
static_assert(offsetof(t_KpENDS, UMLPRZBS) == 84);
static_assert(offsetof(t_KpENDS, UMLPRZFL) == 92);
static_assert(offsetof(t_KpENDS, ENDSAGKPRZEL) == 100);
static_assert(offsetof(t_KpENDS, ENDSAGKPRZFL) == 108);
static_assert(offsetof(t_KpENDS, ENDSWUGPRZEL) == 116);
static_assert(offsetof(t_KpENDS, ENDSWUGPRZFL) == 124);
static_assert(offsetof(t_KpENDS, UMLLOHN) == 132);
static_assert(offsetof(t_KpENDS, IDUMLLV) == 140);

static_assert(sizeof(t_KpKAGR_729) == 440);
static_assert(offsetof(t_KpKAGR_729, KZKA) == 48);
static_assert(offsetof(t_KpKAGR_729, ID) == 49);
static_assert(offsetof(t_KpKAGR_729, MATM) == 53);
static_assert(offsetof(t_KpKAGR_729, MATW) == 61);
static_assert(offsetof(t_KpKAGR_729, MATZU) == 71);
static_assert(offsetof(t_KpKAGR_729, ZEITM) == 79);
static_assert(offsetof(t_KpKAGR_729, RSVW) == 87);
static_assert(offsetof(t_KpKAGR_729, RSVZU) == 97);
static_assert(offsetof(t_KpKAGR_729, SOKOW) == 105);
static_assert(offsetof(t_KpKAGR_729, SOKOZU) == 115);
static_assert(offsetof(t_KpKAGR_729, MLLB) == 123);
static_assert(offsetof(t_KpKAGR_729, MLBA) == 131);
static_assert(offsetof(t_KpKAGR_729, MLAVR) == 139);
static_assert(offsetof(t_KpKAGR_729, MLBS) == 149);
static_assert(offsetof(t_KpKAGR_729, MLTL) == 159);
static_assert(offsetof(t_KpKAGR_729, MLZUAVR) == 167);
static_assert(offsetof(t_KpKAGR_729, MLZUBS) == 175);
static_assert(offsetof(t_KpKAGR_729, MLKOMMENTAR) == 183);
static_assert(offsetof(t_KpKAGR_729, KZTYP) == 439);

static_assert(sizeof(t_KpUPos) == 214);
static_assert(offsetof(t_KpUPos, IDBES) == 48);
static_assert(offsetof(t_KpUPos, IDUPOS) == 52);
static_assert(offsetof(t_KpUPos, KZUPOS) == 56);
static_assert(offsetof(t_KpUPos, MENGE) == 57);
static_assert(offsetof(t_KpUPos, EINHEIT) == 65);
static_assert(offsetof(t_KpUPos, BEZ) == 70);
static_assert(offsetof(t_KpUPos, STLBBKAT) == 199);
static_assert(offsetof(t_KpUPos, STLBBTLG) == 210);

// How dumps and the currency conversion see these records.
inline constexpr data::FieldDescriptor kKrZUFields[] = {
    data::HeaderField(),
    {"KZKALKART", offsetof(t_KrZU, KZKALKART), 1, data::FieldType::kChar},
    {"KZKA", offsetof(t_KrZU, KZKA), 1, data::FieldType::kChar},
    {"ZU", offsetof(t_KrZU, ZU), 8, data::FieldType::kDouble},
};
inline constexpr data::RecordLayout kKrZULayout{"t_KrZU", sizeof(t_KrZU), kKrZUFields};
static_assert(data::DescribesLayoutExactly(kKrZULayout));

inline constexpr data::FieldDescriptor kKpZUFields[] = {
    data::HeaderField(),
    {"IDLV", offsetof(t_KpZU, IDLV), 4, data::FieldType::kInt32},
    {"KZKALKART", offsetof(t_KpZU, KZKALKART), 1, data::FieldType::kChar},
    {"KZKA", offsetof(t_KpZU, KZKA), 1, data::FieldType::kChar},
    {"ZU", offsetof(t_KpZU, ZU), 8, data::FieldType::kDouble},
};
inline constexpr data::RecordLayout kKpZULayout{"t_KpZU", sizeof(t_KpZU), kKpZUFields};
static_assert(data::DescribesLayoutExactly(kKpZULayout));

inline constexpr data::FieldDescriptor kKrMLOHNFields[] = {
    data::HeaderField(),
    {"MLL", offsetof(t_KrMLOHN, MLL), 8, data::FieldType::kDouble},
    {"MLS", offsetof(t_KrMLOHN, MLS), 8, data::FieldType::kDouble},
};
inline constexpr data::RecordLayout kKrMLOHNLayout{"t_KrMLOHN", sizeof(t_KrMLOHN), kKrMLOHNFields};
static_assert(data::DescribesLayoutExactly(kKrMLOHNLayout));

inline constexpr data::FieldDescriptor kKpMLOHNFields[] = {
    data::HeaderField(),
    {"IDLV", offsetof(t_KpMLOHN, IDLV), 4, data::FieldType::kInt32},
    {"MLL", offsetof(t_KpMLOHN, MLL), 8, data::FieldType::kDouble},
    {"MLS", offsetof(t_KpMLOHN, MLS), 8, data::FieldType::kDouble},
};
inline constexpr data::RecordLayout kKpMLOHNLayout{"t_KpMLOHN", sizeof(t_KpMLOHN), kKpMLOHNFields};
static_assert(data::DescribesLayoutExactly(kKpMLOHNLayout));

inline constexpr data::FieldDescriptor kKrBAS_729Fields[] = {
    data::HeaderField(),
    {"ID", offsetof(t_KrBAS_729, ID), 11, data::FieldType::kShortString},
    {"BEZ", offsetof(t_KrBAS_729, BEZ), 56, data::FieldType::kShortString},
    {"MLA", offsetof(t_KrBAS_729, MLA), 10, data::FieldType::kWaeBetrag},
    {"ZUWG", offsetof(t_KrBAS_729, ZUWG), 8, data::FieldType::kDouble},
};
inline constexpr data::RecordLayout kKrBAS_729Layout{"t_KrBAS_729", sizeof(t_KrBAS_729),
                                                     kKrBAS_729Fields};
static_assert(data::DescribesLayoutExactly(kKrBAS_729Layout));

inline constexpr data::FieldDescriptor kKpBAS_729Fields[] = {
    data::HeaderField(),
    {"ID", offsetof(t_KpBAS_729, ID), 11, data::FieldType::kShortString},
    {"MLA", offsetof(t_KpBAS_729, MLA), 10, data::FieldType::kWaeBetrag},
    {"ZUWG", offsetof(t_KpBAS_729, ZUWG), 8, data::FieldType::kDouble},
};
inline constexpr data::RecordLayout kKpBAS_729Layout{"t_KpBAS_729", sizeof(t_KpBAS_729),
                                                     kKpBAS_729Fields};
static_assert(data::DescribesLayoutExactly(kKpBAS_729Layout));

inline constexpr data::FieldDescriptor kKpENDSFields[] = {
    data::HeaderField(),
    {"IDLV", offsetof(t_KpENDS, IDLV), 4, data::FieldType::kInt32},
    {"UMLPRZMAT", offsetof(t_KpENDS, UMLPRZMAT), 8, data::FieldType::kDouble},
    {"UMLPRZRSV", offsetof(t_KpENDS, UMLPRZRSV), 8, data::FieldType::kDouble},
    {"UMLPRZSOKO", offsetof(t_KpENDS, UMLPRZSOKO), 8, data::FieldType::kDouble},
    {"UMLPRZAVR", offsetof(t_KpENDS, UMLPRZAVR), 8, data::FieldType::kDouble},
    {"UMLPRZBS", offsetof(t_KpENDS, UMLPRZBS), 8, data::FieldType::kDouble},
    {"UMLPRZFL", offsetof(t_KpENDS, UMLPRZFL), 8, data::FieldType::kDouble},
    {"ENDSAGKPRZEL", offsetof(t_KpENDS, ENDSAGKPRZEL), 8, data::FieldType::kDouble},
    {"ENDSAGKPRZFL", offsetof(t_KpENDS, ENDSAGKPRZFL), 8, data::FieldType::kDouble},
    {"ENDSWUGPRZEL", offsetof(t_KpENDS, ENDSWUGPRZEL), 8, data::FieldType::kDouble},
    {"ENDSWUGPRZFL", offsetof(t_KpENDS, ENDSWUGPRZFL), 8, data::FieldType::kDouble},
    {"UMLLOHN", offsetof(t_KpENDS, UMLLOHN), 8, data::FieldType::kDouble},
    {"IDUMLLV", offsetof(t_KpENDS, IDUMLLV), 4, data::FieldType::kInt32},
};
inline constexpr data::RecordLayout kKpENDSLayout{"t_KpENDS", sizeof(t_KpENDS), kKpENDSFields};
static_assert(data::DescribesLayoutExactly(kKpENDSLayout));

inline constexpr data::FieldDescriptor kKpKAGR_729Fields[] = {
    data::HeaderField(),
    {"KZKA", offsetof(t_KpKAGR_729, KZKA), 1, data::FieldType::kChar},
    {"ID", offsetof(t_KpKAGR_729, ID), 4, data::FieldType::kInt32},
    {"MATM", offsetof(t_KpKAGR_729, MATM), 8, data::FieldType::kDouble},
    {"MATW", offsetof(t_KpKAGR_729, MATW), 10, data::FieldType::kWaeBetrag},
    {"MATZU", offsetof(t_KpKAGR_729, MATZU), 8, data::FieldType::kDouble},
    {"ZEITM", offsetof(t_KpKAGR_729, ZEITM), 8, data::FieldType::kDouble},
    {"RSVW", offsetof(t_KpKAGR_729, RSVW), 10, data::FieldType::kWaeBetrag},
    {"RSVZU", offsetof(t_KpKAGR_729, RSVZU), 8, data::FieldType::kDouble},
    {"SOKOW", offsetof(t_KpKAGR_729, SOKOW), 10, data::FieldType::kWaeBetrag},
    {"SOKOZU", offsetof(t_KpKAGR_729, SOKOZU), 8, data::FieldType::kDouble},
    {"MLLB", offsetof(t_KpKAGR_729, MLLB), 8, data::FieldType::kDouble},
    {"MLBA", offsetof(t_KpKAGR_729, MLBA), 8, data::FieldType::kDouble},
    {"MLAVR", offsetof(t_KpKAGR_729, MLAVR), 10, data::FieldType::kWaeBetrag},
    {"MLBS", offsetof(t_KpKAGR_729, MLBS), 10, data::FieldType::kWaeBetrag},
    {"MLTL", offsetof(t_KpKAGR_729, MLTL), 8, data::FieldType::kDouble},
    {"MLZUAVR", offsetof(t_KpKAGR_729, MLZUAVR), 8, data::FieldType::kDouble},
    {"MLZUBS", offsetof(t_KpKAGR_729, MLZUBS), 8, data::FieldType::kDouble},
    {"MLKOMMENTAR", offsetof(t_KpKAGR_729, MLKOMMENTAR), 256, data::FieldType::kShortString},
    {"KZTYP", offsetof(t_KpKAGR_729, KZTYP), 1, data::FieldType::kChar},
};
inline constexpr data::RecordLayout kKpKAGR_729Layout{"t_KpKAGR_729", sizeof(t_KpKAGR_729),
                                                      kKpKAGR_729Fields};
static_assert(data::DescribesLayoutExactly(kKpKAGR_729Layout));

inline constexpr data::FieldDescriptor kKpUPosFields[] = {
    data::HeaderField(),
    {"IDBES", offsetof(t_KpUPos, IDBES), 4, data::FieldType::kInt32},
    {"IDUPOS", offsetof(t_KpUPos, IDUPOS), 4, data::FieldType::kInt32},
    {"KZUPOS", offsetof(t_KpUPos, KZUPOS), 1, data::FieldType::kChar},
    {"MENGE", offsetof(t_KpUPos, MENGE), 8, data::FieldType::kDouble},
    {"EINHEIT", offsetof(t_KpUPos, EINHEIT), 5, data::FieldType::kShortString},
    {"BEZ", offsetof(t_KpUPos, BEZ), 129, data::FieldType::kShortString},
    {"STLBBKAT", offsetof(t_KpUPos, STLBBKAT), 11, data::FieldType::kShortString},
    {"STLBBTLG", offsetof(t_KpUPos, STLBBTLG), 4, data::FieldType::kInt32},
};
inline constexpr data::RecordLayout kKpUPosLayout{"t_KpUPos", sizeof(t_KpUPos), kKpUPosFields};
static_assert(data::DescribesLayoutExactly(kKpUPosLayout));

}  // namespace korvan::calc
