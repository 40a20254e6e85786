#pragma once

#include <cstddef>
#include <cstdint>

#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"

namespace korvan::boq {

// The id of the euro, the base currency of the built-in list.
inline constexpr int32_t kEuroCurrencyId = 32766;

#pragma pack(push, 1)

// A currency and its rate against the base currency.
struct t_Waehrung {
  data::TDbRecordHeader Header;
  int32_t ID;            // the IdWaehrung of amounts
  data::string55 Land;   // country
  data::string55 Bez;    // currency name
  data::string4 Symbol;  // ISO code or symbol
  double Faktor;         // units of this currency per unit of the base currency
  int32_t Nachkomma;     // decimals of amounts
  uint8_t kzBasis;       // Boolean: the base currency
  uint8_t kzLand;        // Boolean: the national currency
  int32_t Nachkomma2;    // decimals of unit prices
  int32_t IdLand;        // country number (international telephone code)
};

// A project's own rate for a currency, valid from a date.
struct t_PrjWaeFaktor {
  data::TDbRecordHeader Header;
  data::string20 PrjNr;  // project number
  int32_t IdLand;
  double Faktor;
  uint8_t NachKomma;
  int32_t Datum;  // integer date
};

#pragma pack(pop)

static_assert(sizeof(t_Waehrung) == 191);
static_assert(offsetof(t_Waehrung, ID) == 48);
static_assert(offsetof(t_Waehrung, Land) == 52);
static_assert(sizeof(t_Waehrung::Land) == 56);
static_assert(offsetof(t_Waehrung, Bez) == 108);
static_assert(sizeof(t_Waehrung::Bez) == 56);
static_assert(offsetof(t_Waehrung, Symbol) == 164);
static_assert(sizeof(t_Waehrung::Symbol) == 5);
static_assert(offsetof(t_Waehrung, Faktor) == 169);
static_assert(offsetof(t_Waehrung, Nachkomma) == 177);
static_assert(offsetof(t_Waehrung, kzBasis) == 181);
static_assert(offsetof(t_Waehrung, kzLand) == 182);
static_assert(offsetof(t_Waehrung, Nachkomma2) == 183);
static_assert(offsetof(t_Waehrung, IdLand) == 187);

static_assert(sizeof(t_PrjWaeFaktor) == 86);
static_assert(offsetof(t_PrjWaeFaktor, PrjNr) == 48);
static_assert(offsetof(t_PrjWaeFaktor, IdLand) == 69);
static_assert(offsetof(t_PrjWaeFaktor, Faktor) == 73);
static_assert(offsetof(t_PrjWaeFaktor, NachKomma) == 81);
static_assert(offsetof(t_PrjWaeFaktor, Datum) == 82);

inline constexpr data::FieldDescriptor kWaehrungFields[] = {
    data::HeaderField(),
    {"ID", offsetof(t_Waehrung, ID), 4, data::FieldType::kInt32},
    {"Land", offsetof(t_Waehrung, Land), 56, data::FieldType::kShortString},
    {"Bez", offsetof(t_Waehrung, Bez), 56, data::FieldType::kShortString},
    {"Symbol", offsetof(t_Waehrung, Symbol), 5, data::FieldType::kShortString},
    {"Faktor", offsetof(t_Waehrung, Faktor), 8, data::FieldType::kDouble},
    {"Nachkomma", offsetof(t_Waehrung, Nachkomma), 4, data::FieldType::kInt32},
    {"kzBasis", offsetof(t_Waehrung, kzBasis), 1, data::FieldType::kBool},
    {"kzLand", offsetof(t_Waehrung, kzLand), 1, data::FieldType::kBool},
    {"Nachkomma2", offsetof(t_Waehrung, Nachkomma2), 4, data::FieldType::kInt32},
    {"IdLand", offsetof(t_Waehrung, IdLand), 4, data::FieldType::kInt32},
};
inline constexpr data::RecordLayout kWaehrungLayout{"t_Waehrung", sizeof(t_Waehrung),
                                                    kWaehrungFields};
static_assert(data::DescribesLayoutExactly(kWaehrungLayout));

inline constexpr data::FieldDescriptor kPrjWaeFaktorFields[] = {
    data::HeaderField(),
    {"PrjNr", offsetof(t_PrjWaeFaktor, PrjNr), 21, data::FieldType::kShortString},
    {"IdLand", offsetof(t_PrjWaeFaktor, IdLand), 4, data::FieldType::kInt32},
    {"Faktor", offsetof(t_PrjWaeFaktor, Faktor), 8, data::FieldType::kDouble},
    {"NachKomma", offsetof(t_PrjWaeFaktor, NachKomma), 1, data::FieldType::kByte},
    {"Datum", offsetof(t_PrjWaeFaktor, Datum), 4, data::FieldType::kIntDate},
};
inline constexpr data::RecordLayout kPrjWaeFaktorLayout{"t_PrjWaeFaktor", sizeof(t_PrjWaeFaktor),
                                                        kPrjWaeFaktorFields};
static_assert(data::DescribesLayoutExactly(kPrjWaeFaktorLayout));

}  // namespace korvan::boq
