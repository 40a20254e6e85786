#pragma once

#include <cstddef>
#include <cstdint>

#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"
#include "data/records/wae_betrag.h"

namespace korvan::calc {

#pragma pack(push, 1)

// One cost approach line (cost element) of a sub-item of an item. Values entered by hand
// end in MAN, factors in F; the one-letter source fields say which level (entered, master,
// project, effective) each number comes from.
struct t_KpAUPos_729 {
  data::TDbRecordHeader Header;
  int32_t IDBES;                          // item description the line belongs to
  int32_t IDUPOS;                         // sub-item id
  int32_t IDKA;                           // cost-type group id
  char KZKOART;                           // cost type of the line
  char KZMATMENGE;                        // source of the material quantity
  char KZMATWERTZU;                       // source of the material value
  char KZMATZU;                           // source of the material surcharge
  char KZLOHNMENGE;                       // source of the wage quantity (hours)
  char KZLOHNWERT;                        // source of the wage value
  char KZRSVMENGE;                        // source of the RSV quantity
  char KZRSVWERTZU;                       // source of the RSV value
  char KZRSVZU;                           // source of the RSV surcharge
  char KZSOKOMENGE;                       // source of the other-costs quantity
  char KZSOKOWERTZU;                      // source of the other-costs value
  char KZSOKOZU;                          // source of the other-costs surcharge
  char KZMLAVR;                           // source of the equipment (AVR) value
  char KZMLBS;                            // source of the operating-supplies value
  char KZMLLB;                            // source of the equipment wage share
  char KZMLBATL;                          // source of the equipment time share
  char KZMLZU;                            // source of the equipment surcharge
  char KZMLLOHNWERT;                      // source of the equipment wage value
  char KZMLGBLZU;                         // level of the equipment surcharge
  char KZMATMD;                           // material from master data
  int32_t IDMAT;                          // material id
  int32_t IDLIEF;                         // supplier id
  int32_t MATKAGR;                        // material cost-type group
  int32_t MATKAGRIX;                      // index within the group
  double MATMF;                           // material quantity factor
  double MATMMAN;                         // material quantity entered
  int32_t ZEITKAGR;                       // time cost-type group
  int32_t ZEITKAGRIX;                     // index
  double ZEITMF;                          // time factor
  double ZEITMMAN;                        // time entered (hours per unit)
  data::string10 ZEITBAS;                 // work key of the time
  int32_t RSVKAGR;                        // RSV group
  int32_t RSVKAGRIX;                      // index
  double RSVMF;                           // RSV quantity factor
  double RSVMMAN;                         // RSV quantity entered
  double RSVWF;                           // RSV value factor
  data::t_WaeBetrag RSVWMAN;              // RSV value entered
  int32_t SOKOKAGR;                       // other-costs group
  int32_t SOKOKAGRIX;                     // index
  double SOKOMF;                          // other-costs quantity factor
  double SOKOMMAN;                        // other-costs quantity entered
  double SOKOWF;                          // other-costs value factor
  data::t_WaeBetrag SOKOWMAN;             // other-costs value entered
  int32_t MLKAGR;                         // equipment group
  int32_t MLKAGRIX;                       // index
  double MLLBMAN;                         // equipment wage share entered
  double MLBAMAN;                         // equipment operating time entered
  data::t_WaeBetrag MLAVRMAN;             // equipment AVR value entered
  data::t_WaeBetrag MLBSMAN;              // equipment operating-supplies value entered
  double MLTLMAN;                         // equipment time share entered
  double MLTLF;                           // equipment time factor
  data::string10 MLBAS;                   // work key of the equipment
  double FMMAN;                           // subcontract quantity entered
  data::t_WaeBetrag FWMAN;                // subcontract value entered
  data::ShortString<55> BEZMAN;           // description entered
  data::string4 MEMAN;                    // unit entered
  data::ShortString<55> BEZMLLOHNMAN;     // wage description entered
  data::ShortString<55> BEZMLAVRMAN;      // AVR description entered
  data::ShortString<55> BEZMLBSMAN;       // operating-supplies description entered
  data::ShortString<255> MLKOMMENTARMAN;  // comment entered
  data::ShortString<55> BEZ;              // description
  data::string4 ME;                       // unit
  data::ShortString<55> BEZMLLOHN;        // wage description
  data::ShortString<55> BEZMLAVR;         // AVR description
  data::ShortString<55> BEZMLBS;          // operating-supplies description
  uint8_t FILLER[16];                     // reserved
};

#pragma pack(pop)

static_assert(sizeof(t_KpAUPos_729) == 1050);
static_assert(offsetof(t_KpAUPos_729, IDBES) == 48);
static_assert(offsetof(t_KpAUPos_729, IDUPOS) == 52);
static_assert(offsetof(t_KpAUPos_729, IDKA) == 56);
static_assert(offsetof(t_KpAUPos_729, KZKOART) == 60);
static_assert(offsetof(t_KpAUPos_729, KZMATMENGE) == 61);
static_assert(offsetof(t_KpAUPos_729, KZMATWERTZU) == 62);
static_assert(offsetof(t_KpAUPos_729, KZMATZU) == 63);
static_assert(offsetof(t_KpAUPos_729, KZLOHNMENGE) == 64);
static_assert(offsetof(t_KpAUPos_729, KZLOHNWERT) == 65);
static_assert(offsetof(t_KpAUPos_729, KZRSVMENGE) == 66);
static_assert(offsetof(t_KpAUPos_729, KZRSVWERTZU) == 67);
static_assert(offsetof(t_KpAUPos_729, KZRSVZU) == 68);
static_assert(offsetof(t_KpAUPos_729, KZSOKOMENGE) == 69);
static_assert(offsetof(t_KpAUPos_729, KZSOKOWERTZU) == 70);
static_assert(offsetof(t_KpAUPos_729, KZSOKOZU) == 71);
static_assert(offsetof(t_KpAUPos_729, KZMLAVR) == 72);
static_assert(offsetof(t_KpAUPos_729, KZMLBS) == 73);
static_assert(offsetof(t_KpAUPos_729, KZMLLB) == 74);
static_assert(offsetof(t_KpAUPos_729, KZMLBATL) == 75);
static_assert(offsetof(t_KpAUPos_729, KZMLZU) == 76);
static_assert(offsetof(t_KpAUPos_729, KZMLLOHNWERT) == 77);
static_assert(offsetof(t_KpAUPos_729, KZMLGBLZU) == 78);
static_assert(offsetof(t_KpAUPos_729, KZMATMD) == 79);
static_assert(offsetof(t_KpAUPos_729, IDMAT) == 80);
static_assert(offsetof(t_KpAUPos_729, IDLIEF) == 84);
static_assert(offsetof(t_KpAUPos_729, MATKAGR) == 88);
static_assert(offsetof(t_KpAUPos_729, MATKAGRIX) == 92);
static_assert(offsetof(t_KpAUPos_729, MATMF) == 96);
static_assert(offsetof(t_KpAUPos_729, MATMMAN) == 104);
static_assert(offsetof(t_KpAUPos_729, ZEITKAGR) == 112);
static_assert(offsetof(t_KpAUPos_729, ZEITKAGRIX) == 116);
static_assert(offsetof(t_KpAUPos_729, ZEITMF) == 120);
static_assert(offsetof(t_KpAUPos_729, ZEITMMAN) == 128);
static_assert(offsetof(t_KpAUPos_729, ZEITBAS) == 136);
static_assert(offsetof(t_KpAUPos_729, RSVKAGR) == 147);
static_assert(offsetof(t_KpAUPos_729, RSVKAGRIX) == 151);
static_assert(offsetof(t_KpAUPos_729, RSVMF) == 155);
static_assert(offsetof(t_KpAUPos_729, RSVMMAN) == 163);
static_assert(offsetof(t_KpAUPos_729, RSVWF) == 171);
static_assert(offsetof(t_KpAUPos_729, RSVWMAN) == 179);
static_assert(offsetof(t_KpAUPos_729, SOKOKAGR) == 189);
static_assert(offsetof(t_KpAUPos_729, SOKOKAGRIX) == 193);
static_assert(offsetof(t_KpAUPos_729, SOKOMF) == 197);
static_assert(offsetof(t_KpAUPos_729, SOKOMMAN) == 205);
static_assert(offsetof(t_KpAUPos_729, SOKOWF) == 213);
static_assert(offsetof(t_KpAUPos_729, SOKOWMAN) == 221);
static_assert(offsetof(t_KpAUPos_729, MLKAGR) == 231);
static_assert(offsetof(t_KpAUPos_729, MLKAGRIX) == 235);
static_assert(offsetof(t_KpAUPos_729, MLLBMAN) == 239);
static_assert(offsetof(t_KpAUPos_729, MLBAMAN) == 247);
static_assert(offsetof(t_KpAUPos_729, MLAVRMAN) == 255);
static_assert(offsetof(t_KpAUPos_729, MLBSMAN) == 265);
static_assert(offsetof(t_KpAUPos_729, MLTLMAN) == 275);
static_assert(offsetof(t_KpAUPos_729, MLTLF) == 283);
static_assert(offsetof(t_KpAUPos_729, MLBAS) == 291);
static_assert(offsetof(t_KpAUPos_729, FMMAN) == 302);
static_assert(offsetof(t_KpAUPos_729, FWMAN) == 310);
static_assert(offsetof(t_KpAUPos_729, BEZMAN) == 320);
static_assert(offsetof(t_KpAUPos_729, MEMAN) == 376);
static_assert(offsetof(t_KpAUPos_729, BEZMLLOHNMAN) == 381);
static_assert(offsetof(t_KpAUPos_729, BEZMLAVRMAN) == 437);
static_assert(offsetof(t_KpAUPos_729, BEZMLBSMAN) == 493);
static_assert(offsetof(t_KpAUPos_729, MLKOMMENTARMAN) == 549);
static_assert(offsetof(t_KpAUPos_729, BEZ) == 805);
static_assert(offsetof(t_KpAUPos_729, ME) == 861);
static_assert(offsetof(t_KpAUPos_729, BEZMLLOHN) == 866);
static_assert(offsetof(t_KpAUPos_729, BEZMLAVR) == 922);
static_assert(offsetof(t_KpAUPos_729, BEZMLBS) == 978);
static_assert(offsetof(t_KpAUPos_729, FILLER) == 1034);

// How dumps and the currency conversion see these records.
inline constexpr data::FieldDescriptor kKpAUPos_729Fields[] = {
    data::HeaderField(),
    {"IDBES", offsetof(t_KpAUPos_729, IDBES), 4, data::FieldType::kInt32},
    {"IDUPOS", offsetof(t_KpAUPos_729, IDUPOS), 4, data::FieldType::kInt32},
    {"IDKA", offsetof(t_KpAUPos_729, IDKA), 4, data::FieldType::kInt32},
    {"KZKOART", offsetof(t_KpAUPos_729, KZKOART), 1, data::FieldType::kChar},
    {"KZMATMENGE", offsetof(t_KpAUPos_729, KZMATMENGE), 1, data::FieldType::kChar},
    {"KZMATWERTZU", offsetof(t_KpAUPos_729, KZMATWERTZU), 1, data::FieldType::kChar},
    {"KZMATZU", offsetof(t_KpAUPos_729, KZMATZU), 1, data::FieldType::kChar},
    {"KZLOHNMENGE", offsetof(t_KpAUPos_729, KZLOHNMENGE), 1, data::FieldType::kChar},
    {"KZLOHNWERT", offsetof(t_KpAUPos_729, KZLOHNWERT), 1, data::FieldType::kChar},
    {"KZRSVMENGE", offsetof(t_KpAUPos_729, KZRSVMENGE), 1, data::FieldType::kChar},
    {"KZRSVWERTZU", offsetof(t_KpAUPos_729, KZRSVWERTZU), 1, data::FieldType::kChar},
    {"KZRSVZU", offsetof(t_KpAUPos_729, KZRSVZU), 1, data::FieldType::kChar},
    {"KZSOKOMENGE", offsetof(t_KpAUPos_729, KZSOKOMENGE), 1, data::FieldType::kChar},
    {"KZSOKOWERTZU", offsetof(t_KpAUPos_729, KZSOKOWERTZU), 1, data::FieldType::kChar},
    {"KZSOKOZU", offsetof(t_KpAUPos_729, KZSOKOZU), 1, data::FieldType::kChar},
    {"KZMLAVR", offsetof(t_KpAUPos_729, KZMLAVR), 1, data::FieldType::kChar},
    {"KZMLBS", offsetof(t_KpAUPos_729, KZMLBS), 1, data::FieldType::kChar},
    {"KZMLLB", offsetof(t_KpAUPos_729, KZMLLB), 1, data::FieldType::kChar},
    {"KZMLBATL", offsetof(t_KpAUPos_729, KZMLBATL), 1, data::FieldType::kChar},
    {"KZMLZU", offsetof(t_KpAUPos_729, KZMLZU), 1, data::FieldType::kChar},
    {"KZMLLOHNWERT", offsetof(t_KpAUPos_729, KZMLLOHNWERT), 1, data::FieldType::kChar},
    {"KZMLGBLZU", offsetof(t_KpAUPos_729, KZMLGBLZU), 1, data::FieldType::kChar},
    {"KZMATMD", offsetof(t_KpAUPos_729, KZMATMD), 1, data::FieldType::kChar},
    {"IDMAT", offsetof(t_KpAUPos_729, IDMAT), 4, data::FieldType::kInt32},
    {"IDLIEF", offsetof(t_KpAUPos_729, IDLIEF), 4, data::FieldType::kInt32},
    {"MATKAGR", offsetof(t_KpAUPos_729, MATKAGR), 4, data::FieldType::kInt32},
    {"MATKAGRIX", offsetof(t_KpAUPos_729, MATKAGRIX), 4, data::FieldType::kInt32},
    {"MATMF", offsetof(t_KpAUPos_729, MATMF), 8, data::FieldType::kDouble},
    {"MATMMAN", offsetof(t_KpAUPos_729, MATMMAN), 8, data::FieldType::kDouble},
    {"ZEITKAGR", offsetof(t_KpAUPos_729, ZEITKAGR), 4, data::FieldType::kInt32},
    {"ZEITKAGRIX", offsetof(t_KpAUPos_729, ZEITKAGRIX), 4, data::FieldType::kInt32},
    {"ZEITMF", offsetof(t_KpAUPos_729, ZEITMF), 8, data::FieldType::kDouble},
    {"ZEITMMAN", offsetof(t_KpAUPos_729, ZEITMMAN), 8, data::FieldType::kDouble},
    {"ZEITBAS", offsetof(t_KpAUPos_729, ZEITBAS), 11, data::FieldType::kShortString},
    {"RSVKAGR", offsetof(t_KpAUPos_729, RSVKAGR), 4, data::FieldType::kInt32},
    {"RSVKAGRIX", offsetof(t_KpAUPos_729, RSVKAGRIX), 4, data::FieldType::kInt32},
    {"RSVMF", offsetof(t_KpAUPos_729, RSVMF), 8, data::FieldType::kDouble},
    {"RSVMMAN", offsetof(t_KpAUPos_729, RSVMMAN), 8, data::FieldType::kDouble},
    {"RSVWF", offsetof(t_KpAUPos_729, RSVWF), 8, data::FieldType::kDouble},
    {"RSVWMAN", offsetof(t_KpAUPos_729, RSVWMAN), 10, data::FieldType::kWaeBetrag},
    {"SOKOKAGR", offsetof(t_KpAUPos_729, SOKOKAGR), 4, data::FieldType::kInt32},
    {"SOKOKAGRIX", offsetof(t_KpAUPos_729, SOKOKAGRIX), 4, data::FieldType::kInt32},
    {"SOKOMF", offsetof(t_KpAUPos_729, SOKOMF), 8, data::FieldType::kDouble},
    {"SOKOMMAN", offsetof(t_KpAUPos_729, SOKOMMAN), 8, data::FieldType::kDouble},
    {"SOKOWF", offsetof(t_KpAUPos_729, SOKOWF), 8, data::FieldType::kDouble},
    {"SOKOWMAN", offsetof(t_KpAUPos_729, SOKOWMAN), 10, data::FieldType::kWaeBetrag},
    {"MLKAGR", offsetof(t_KpAUPos_729, MLKAGR), 4, data::FieldType::kInt32},
    {"MLKAGRIX", offsetof(t_KpAUPos_729, MLKAGRIX), 4, data::FieldType::kInt32},
    {"MLLBMAN", offsetof(t_KpAUPos_729, MLLBMAN), 8, data::FieldType::kDouble},
    {"MLBAMAN", offsetof(t_KpAUPos_729, MLBAMAN), 8, data::FieldType::kDouble},
    {"MLAVRMAN", offsetof(t_KpAUPos_729, MLAVRMAN), 10, data::FieldType::kWaeBetrag},
    {"MLBSMAN", offsetof(t_KpAUPos_729, MLBSMAN), 10, data::FieldType::kWaeBetrag},
    {"MLTLMAN", offsetof(t_KpAUPos_729, MLTLMAN), 8, data::FieldType::kDouble},
    {"MLTLF", offsetof(t_KpAUPos_729, MLTLF), 8, data::FieldType::kDouble},
    {"MLBAS", offsetof(t_KpAUPos_729, MLBAS), 11, data::FieldType::kShortString},
    {"FMMAN", offsetof(t_KpAUPos_729, FMMAN), 8, data::FieldType::kDouble},
    {"FWMAN", offsetof(t_KpAUPos_729, FWMAN), 10, data::FieldType::kWaeBetrag},
    {"BEZMAN", offsetof(t_KpAUPos_729, BEZMAN), 56, data::FieldType::kShortString},
    {"MEMAN", offsetof(t_KpAUPos_729, MEMAN), 5, data::FieldType::kShortString},
    {"BEZMLLOHNMAN", offsetof(t_KpAUPos_729, BEZMLLOHNMAN), 56, data::FieldType::kShortString},
    {"BEZMLAVRMAN", offsetof(t_KpAUPos_729, BEZMLAVRMAN), 56, data::FieldType::kShortString},
    {"BEZMLBSMAN", offsetof(t_KpAUPos_729, BEZMLBSMAN), 56, data::FieldType::kShortString},
    {"MLKOMMENTARMAN", offsetof(t_KpAUPos_729, MLKOMMENTARMAN), 256, data::FieldType::kShortString},
    {"BEZ", offsetof(t_KpAUPos_729, BEZ), 56, data::FieldType::kShortString},
    {"ME", offsetof(t_KpAUPos_729, ME), 5, data::FieldType::kShortString},
    {"BEZMLLOHN", offsetof(t_KpAUPos_729, BEZMLLOHN), 56, data::FieldType::kShortString},
    {"BEZMLAVR", offsetof(t_KpAUPos_729, BEZMLAVR), 56, data::FieldType::kShortString},
    {"BEZMLBS", offsetof(t_KpAUPos_729, BEZMLBS), 56, data::FieldType::kShortString},
    {"FILLER", offsetof(t_KpAUPos_729, FILLER), 16, data::FieldType::kBytes},
};
inline constexpr data::RecordLayout kKpAUPos_729Layout{"t_KpAUPos_729", sizeof(t_KpAUPos_729),
                                                       kKpAUPos_729Fields};
static_assert(data::DescribesLayoutExactly(kKpAUPos_729Layout));

}  // namespace korvan::calc
