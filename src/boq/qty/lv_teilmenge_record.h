#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "boq/vars/id_cad.h"
#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"

namespace korvan::boq {

using string50 = data::ShortString<50>;

// How a partial quantity was made.
enum class TGeneratorEnum : uint8_t { gDefault, gAutoLV };

#pragma pack(push, 1)

// A partial quantity of an LV item: where it was taken from (building component, cost
// element, CAD entity, measurement sheet; each with a sort number below it) and its
// contract, forecast and billed quantities.
struct t_LvTeilmenge_2700 {
  data::TDbRecordHeader Header;
  int32_t ID;
  int32_t IdBT;  // building component
  uint16_t SzBT;
  int32_t IdLkt;  // cost element
  uint16_t SzLkt;
  int32_t IdLVBeschr;  // the LV item
  uint16_t SzLVBeschr;
  t_IdCad IdCad;
  uint16_t SzCad;
  int32_t IdAufmass;  // measurement sheet
  uint16_t SzAufmass;
  uint32_t Reserved;
  uint8_t GUID[16];
  uint8_t MengenVersion;  // version of the quantity calculation
  uint8_t Generator;      // TGeneratorEnum
  uint8_t Reserve1[40];
  char PosKz;  // kPosKzText
  uint8_t KzNachtrag;
  uint8_t KzEntfaellt;
  double VMenge;  // contract quantity
  double PMenge;  // forecast quantity
  double AMenge;  // billed quantity
  uint8_t Reserve2[31];
  double VQtyPcnt;
  double PQtyPcnt;
  double AQtyPcnt;
  std::array<string50, 10> CtlgAssignCode;
  string50 BimLvContainerCode;  // where the quantity came from
  uint8_t SizePadding[3];
};

#pragma pack(pop)

static_assert(sizeof(t_LvTeilmenge_2700) == 792);
static_assert(offsetof(t_LvTeilmenge_2700, ID) == 48);
static_assert(offsetof(t_LvTeilmenge_2700, IdBT) == 52);
static_assert(offsetof(t_LvTeilmenge_2700, SzBT) == 56);
static_assert(offsetof(t_LvTeilmenge_2700, IdLkt) == 58);
static_assert(offsetof(t_LvTeilmenge_2700, SzLkt) == 62);
static_assert(offsetof(t_LvTeilmenge_2700, IdLVBeschr) == 64);
static_assert(offsetof(t_LvTeilmenge_2700, SzLVBeschr) == 68);
static_assert(offsetof(t_LvTeilmenge_2700, IdCad) == 70);
static_assert(offsetof(t_LvTeilmenge_2700, SzCad) == 76);
static_assert(offsetof(t_LvTeilmenge_2700, IdAufmass) == 78);
static_assert(offsetof(t_LvTeilmenge_2700, SzAufmass) == 82);
static_assert(offsetof(t_LvTeilmenge_2700, Reserved) == 84);
static_assert(offsetof(t_LvTeilmenge_2700, GUID) == 88);
static_assert(offsetof(t_LvTeilmenge_2700, MengenVersion) == 104);
static_assert(offsetof(t_LvTeilmenge_2700, Generator) == 105);
static_assert(offsetof(t_LvTeilmenge_2700, Reserve1) == 106);
static_assert(offsetof(t_LvTeilmenge_2700, PosKz) == 146);
static_assert(offsetof(t_LvTeilmenge_2700, KzNachtrag) == 147);
static_assert(offsetof(t_LvTeilmenge_2700, KzEntfaellt) == 148);
static_assert(offsetof(t_LvTeilmenge_2700, VMenge) == 149);
static_assert(offsetof(t_LvTeilmenge_2700, PMenge) == 157);
static_assert(offsetof(t_LvTeilmenge_2700, AMenge) == 165);
static_assert(offsetof(t_LvTeilmenge_2700, Reserve2) == 173);
static_assert(offsetof(t_LvTeilmenge_2700, VQtyPcnt) == 204);
static_assert(offsetof(t_LvTeilmenge_2700, PQtyPcnt) == 212);
static_assert(offsetof(t_LvTeilmenge_2700, AQtyPcnt) == 220);
static_assert(offsetof(t_LvTeilmenge_2700, CtlgAssignCode) == 228);
static_assert(offsetof(t_LvTeilmenge_2700, BimLvContainerCode) == 738);
static_assert(offsetof(t_LvTeilmenge_2700, SizePadding) == 789);

inline constexpr std::string_view kPosKzCodes = "NLZ";
inline constexpr std::string_view kPosKzText = "N=Nachtrag, L=Entfällt, Z=Zuschläge und Rundungen";

inline constexpr data::FieldDescriptor kLvTeilmengeFields[] = {
    data::HeaderField(),
    {"ID", offsetof(t_LvTeilmenge_2700, ID), 4, data::FieldType::kInt32},
    {"IdBT", offsetof(t_LvTeilmenge_2700, IdBT), 4, data::FieldType::kInt32},
    {"SzBT", offsetof(t_LvTeilmenge_2700, SzBT), 2, data::FieldType::kUInt16},
    {"IdLkt", offsetof(t_LvTeilmenge_2700, IdLkt), 4, data::FieldType::kInt32},
    {"SzLkt", offsetof(t_LvTeilmenge_2700, SzLkt), 2, data::FieldType::kUInt16},
    {"IdLVBeschr", offsetof(t_LvTeilmenge_2700, IdLVBeschr), 4, data::FieldType::kInt32},
    {"SzLVBeschr", offsetof(t_LvTeilmenge_2700, SzLVBeschr), 2, data::FieldType::kUInt16},
    {"IdCad", offsetof(t_LvTeilmenge_2700, IdCad), 6, data::FieldType::kNested, &kIdCadLayout},
    {"SzCad", offsetof(t_LvTeilmenge_2700, SzCad), 2, data::FieldType::kUInt16},
    {"IdAufmass", offsetof(t_LvTeilmenge_2700, IdAufmass), 4, data::FieldType::kInt32},
    {"SzAufmass", offsetof(t_LvTeilmenge_2700, SzAufmass), 2, data::FieldType::kUInt16},
    {"Reserved", offsetof(t_LvTeilmenge_2700, Reserved), 4, data::FieldType::kUInt32},
    {"GUID", offsetof(t_LvTeilmenge_2700, GUID), 16, data::FieldType::kBytes},
    {"MengenVersion", offsetof(t_LvTeilmenge_2700, MengenVersion), 1, data::FieldType::kByte},
    {"Generator", offsetof(t_LvTeilmenge_2700, Generator), 1, data::FieldType::kByte},
    {"Reserve1", offsetof(t_LvTeilmenge_2700, Reserve1), 40, data::FieldType::kBytes},
    {"PosKz", offsetof(t_LvTeilmenge_2700, PosKz), 1, data::FieldType::kChar},
    {"KzNachtrag", offsetof(t_LvTeilmenge_2700, KzNachtrag), 1, data::FieldType::kBool},
    {"KzEntfaellt", offsetof(t_LvTeilmenge_2700, KzEntfaellt), 1, data::FieldType::kBool},
    {"VMenge", offsetof(t_LvTeilmenge_2700, VMenge), 8, data::FieldType::kDouble},
    {"PMenge", offsetof(t_LvTeilmenge_2700, PMenge), 8, data::FieldType::kDouble},
    {"AMenge", offsetof(t_LvTeilmenge_2700, AMenge), 8, data::FieldType::kDouble},
    {"Reserve2", offsetof(t_LvTeilmenge_2700, Reserve2), 31, data::FieldType::kBytes},
    {"VQtyPcnt", offsetof(t_LvTeilmenge_2700, VQtyPcnt), 8, data::FieldType::kDouble},
    {"PQtyPcnt", offsetof(t_LvTeilmenge_2700, PQtyPcnt), 8, data::FieldType::kDouble},
    {"AQtyPcnt", offsetof(t_LvTeilmenge_2700, AQtyPcnt), 8, data::FieldType::kDouble},
    {"CtlgAssignCode", offsetof(t_LvTeilmenge_2700, CtlgAssignCode), 510, data::FieldType::kBytes},
    {"BimLvContainerCode", offsetof(t_LvTeilmenge_2700, BimLvContainerCode), 51,
     data::FieldType::kShortString},
    {"SizePadding", offsetof(t_LvTeilmenge_2700, SizePadding), 3, data::FieldType::kBytes},
};
inline constexpr data::RecordLayout kLvTeilmengeLayout{
    "t_LvTeilmenge_2700", sizeof(t_LvTeilmenge_2700), kLvTeilmengeFields};
static_assert(data::DescribesLayoutExactly(kLvTeilmengeLayout));

}  // namespace korvan::boq
