#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"
#include "data/records/wae_betrag.h"

namespace korvan::billing {

#pragma pack(push, 1)

// A deduction of a contract or an invoice: an amount (or a formula kept with its name in
// the short texts) that the invoices of its kinds subtract, net or gross.
struct t_Abzug {
  data::TDbRecordHeader Header;
  int32_t ID;
  int32_t IDBezug;                     // the owning contract or invoice
  char KzBezug;                        // kDeductionOfContract or kDeductionOfInvoice
  data::ShortString<10> Rechnungstyp;  // the invoice kinds it applies to, one letter each
  uint16_t SzBezug;                    // the owner's version
  data::t_WaeBetrag AbzugBetrag;
  char KzBruttoNetto;  // kGrossDeduction or kNetDeduction
  char Typ;            // "U=Umlagen,R=Rückstellungen,E=Einbehalte, ..."
  char SubTyp;         // "L=leistungsmindernde Abzüge, S=sonstige Abzüge"
};

// The same bytes as the limits of the measurement rules: the size limits below which
// openings and niches are not deducted.
struct t_AbzugLimits {
  data::TDbRecordHeader Header;
  int32_t ID;
  int32_t IDBezug;
  char KzBezug;
  double OpeningLimit;
  std::array<uint8_t, 5> Reserved1;
  double NicheLimit;
  std::array<uint8_t, 5> Reserved2;
};

#pragma pack(pop)

using TAbzug = t_Abzug;

static_assert(sizeof(TAbzug) == 83);
static_assert(offsetof(TAbzug, ID) == 48);
static_assert(offsetof(TAbzug, IDBezug) == 52);
static_assert(offsetof(TAbzug, KzBezug) == 56);
static_assert(offsetof(TAbzug, Rechnungstyp) == 57);
static_assert(offsetof(TAbzug, SzBezug) == 68);
static_assert(offsetof(TAbzug, AbzugBetrag) == 70);
static_assert(offsetof(TAbzug, KzBruttoNetto) == 80);
static_assert(offsetof(TAbzug, Typ) == 81);
static_assert(offsetof(TAbzug, SubTyp) == 82);

static_assert(sizeof(t_AbzugLimits) == sizeof(TAbzug));
static_assert(offsetof(t_AbzugLimits, KzBezug) == 56);
static_assert(offsetof(t_AbzugLimits, OpeningLimit) == 57);
static_assert(offsetof(t_AbzugLimits, NicheLimit) == 70);

#define KORVAN_ABZUG_FIELD(name, type) \
  { #name, offsetof(TAbzug, name), sizeof(TAbzug::name), type }

// The shared bytes are shown raw under the names of both their meanings.
inline constexpr data::FieldDescriptor kAbzugFields[] = {
    data::HeaderField(),
    KORVAN_ABZUG_FIELD(ID, data::FieldType::kInt32),
    KORVAN_ABZUG_FIELD(IDBezug, data::FieldType::kInt32),
    KORVAN_ABZUG_FIELD(KzBezug, data::FieldType::kChar),
    {"Rechnungstyp_oder_Öffnungslimit", offsetof(TAbzug, Rechnungstyp),
     sizeof(TAbzug::Rechnungstyp), data::FieldType::kBytes},
    KORVAN_ABZUG_FIELD(SzBezug, data::FieldType::kUInt16),
    {"AbzugBetrag_oder_Nischenlimit", offsetof(TAbzug, AbzugBetrag), sizeof(TAbzug::AbzugBetrag),
     data::FieldType::kBytes},
    KORVAN_ABZUG_FIELD(KzBruttoNetto, data::FieldType::kChar),
    KORVAN_ABZUG_FIELD(Typ, data::FieldType::kChar),
    KORVAN_ABZUG_FIELD(SubTyp, data::FieldType::kChar),
};

#undef KORVAN_ABZUG_FIELD

inline constexpr data::RecordLayout kAbzugLayout{"t_Abzug", sizeof(TAbzug), kAbzugFields};
static_assert(data::DescribesLayoutExactly(kAbzugLayout));

}  // namespace korvan::billing
