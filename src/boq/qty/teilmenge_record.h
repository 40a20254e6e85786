#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "boq/qty/lv_teilmenge_record.h"
#include "data/records/wae_betrag.h"

namespace korvan::boq {

#pragma pack(push, 1)

// A partial quantity of the cost planning: a cost element's share in a building
// component, an LV item or a CAD entity, with its total price.
struct t_Teilmenge_201501 {
  data::TDbRecordHeader Header;
  int32_t ID;
  int32_t IdBT;
  uint16_t SzBT;
  int32_t IdLkt;
  uint16_t SzLkt;
  int32_t IdLVBeschr;
  uint16_t SzLVBeschr;
  t_IdCad IdCAD;
  uint16_t SzCad;
  uint8_t Reserve1[62];
  char Bedarf;
  uint8_t KzNachtrag;
  uint8_t KzEntfaellt;
  data::t_WaeBetrag GP;
  uint8_t Reserve2[31];
  std::array<string50, 10> CtlgAssignCode;
  uint8_t SizePadding[2];
};

#pragma pack(pop)

static_assert(sizeof(t_Teilmenge_201501) == 696);
static_assert(offsetof(t_Teilmenge_201501, ID) == 48);
static_assert(offsetof(t_Teilmenge_201501, IdBT) == 52);
static_assert(offsetof(t_Teilmenge_201501, SzBT) == 56);
static_assert(offsetof(t_Teilmenge_201501, IdLkt) == 58);
static_assert(offsetof(t_Teilmenge_201501, SzLkt) == 62);
static_assert(offsetof(t_Teilmenge_201501, IdLVBeschr) == 64);
static_assert(offsetof(t_Teilmenge_201501, SzLVBeschr) == 68);
static_assert(offsetof(t_Teilmenge_201501, IdCAD) == 70);
static_assert(offsetof(t_Teilmenge_201501, SzCad) == 76);
static_assert(offsetof(t_Teilmenge_201501, Reserve1) == 78);
static_assert(offsetof(t_Teilmenge_201501, Bedarf) == 140);
static_assert(offsetof(t_Teilmenge_201501, KzNachtrag) == 141);
static_assert(offsetof(t_Teilmenge_201501, KzEntfaellt) == 142);
static_assert(offsetof(t_Teilmenge_201501, GP) == 143);
static_assert(offsetof(t_Teilmenge_201501, Reserve2) == 153);
static_assert(offsetof(t_Teilmenge_201501, CtlgAssignCode) == 184);
static_assert(offsetof(t_Teilmenge_201501, SizePadding) == 694);

inline constexpr data::FieldDescriptor kTeilmengeFields[] = {
    data::HeaderField(),
    {"ID", offsetof(t_Teilmenge_201501, ID), 4, data::FieldType::kInt32},
    {"IdBT", offsetof(t_Teilmenge_201501, IdBT), 4, data::FieldType::kInt32},
    {"SzBT", offsetof(t_Teilmenge_201501, SzBT), 2, data::FieldType::kUInt16},
    {"IdLkt", offsetof(t_Teilmenge_201501, IdLkt), 4, data::FieldType::kInt32},
    {"SzLkt", offsetof(t_Teilmenge_201501, SzLkt), 2, data::FieldType::kUInt16},
    {"IdLVBeschr", offsetof(t_Teilmenge_201501, IdLVBeschr), 4, data::FieldType::kInt32},
    {"SzLVBeschr", offsetof(t_Teilmenge_201501, SzLVBeschr), 2, data::FieldType::kUInt16},
    {"IdCAD", offsetof(t_Teilmenge_201501, IdCAD), 6, data::FieldType::kNested, &kIdCadLayout},
    {"SzCad", offsetof(t_Teilmenge_201501, SzCad), 2, data::FieldType::kUInt16},
    {"Reserve1", offsetof(t_Teilmenge_201501, Reserve1), 62, data::FieldType::kBytes},
    {"Bedarf", offsetof(t_Teilmenge_201501, Bedarf), 1, data::FieldType::kChar},
    {"KzNachtrag", offsetof(t_Teilmenge_201501, KzNachtrag), 1, data::FieldType::kBool},
    {"KzEntfaellt", offsetof(t_Teilmenge_201501, KzEntfaellt), 1, data::FieldType::kBool},
    {"GP", offsetof(t_Teilmenge_201501, GP), 10, data::FieldType::kWaeBetrag},
    {"Reserve2", offsetof(t_Teilmenge_201501, Reserve2), 31, data::FieldType::kBytes},
    {"CtlgAssignCode", offsetof(t_Teilmenge_201501, CtlgAssignCode), 510, data::FieldType::kBytes},
    {"SizePadding", offsetof(t_Teilmenge_201501, SizePadding), 2, data::FieldType::kBytes},
};
inline constexpr data::RecordLayout kTeilmengeLayout{"t_Teilmenge_201501",
                                                     sizeof(t_Teilmenge_201501), kTeilmengeFields};
static_assert(data::DescribesLayoutExactly(kTeilmengeLayout));

}  // namespace korvan::boq
