#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"
#include "data/records/wae_betrag.h"

// The records of the price database (DB_QPR, "Preisverwaltung Tabellen"): price levels
// and the price entries at a level.
namespace korvan::award {

#pragma pack(push, 1)

// A price level (Preisniveau), e.g. the quarter "3/2024" of the mean-value formation.
struct t_PrNiveau {
  data::TDbRecordHeader Header;
  int32_t Id;
  data::ShortString<255> Bez;  // the level's name
  int32_t Sz;
  int32_t IdBezug;  // the level this one is based on
  int32_t CreateDate;
  int32_t ModifyDate;
  int32_t CreateUserId;
  int32_t ModifyUserId;
  data::ShortString<10> CreateUser;
  data::ShortString<10> ModifyUser;
};

// A unit price of a catalog item or price group at a level, absolute or relative to a
// base entry ("% zu Basis").
struct t_PrEntry {
  data::TDbRecordHeader Header;
  int32_t Id;
  int32_t IdPrNiveau;
  int32_t IdBezug;     // the catalog item or price group priced
  int32_t IdIdxBezug;  // the base entry of a relative price; none for an absolute one
  int32_t IdProjekt;
  int32_t IdBieter;
  double ProzFak;  // factor to the base, shown × 100 as percent
  data::t_WaeBetrag Wert;
  int32_t CreateDate;
  int32_t ModifyDate;
  int32_t CreateUserId;
  int32_t ModifyUserId;
  data::ShortString<10> CreateUser;
  data::ShortString<10> ModifyUser;
  int32_t Sz;
  data::ShortString<10> Catalog;
};

#pragma pack(pop)

static_assert(sizeof(t_PrNiveau) == 354);
static_assert(offsetof(t_PrNiveau, Id) == 48);
static_assert(offsetof(t_PrNiveau, Bez) == 52);
static_assert(offsetof(t_PrNiveau, Sz) == 308);
static_assert(offsetof(t_PrNiveau, IdBezug) == 312);
static_assert(offsetof(t_PrNiveau, CreateDate) == 316);
static_assert(offsetof(t_PrNiveau, ModifyDate) == 320);
static_assert(offsetof(t_PrNiveau, CreateUserId) == 324);
static_assert(offsetof(t_PrNiveau, ModifyUserId) == 328);
static_assert(offsetof(t_PrNiveau, CreateUser) == 332);
static_assert(offsetof(t_PrNiveau, ModifyUser) == 343);

static_assert(sizeof(t_PrEntry) == 143);
static_assert(offsetof(t_PrEntry, Id) == 48);
static_assert(offsetof(t_PrEntry, IdPrNiveau) == 52);
static_assert(offsetof(t_PrEntry, IdBezug) == 56);
static_assert(offsetof(t_PrEntry, IdIdxBezug) == 60);
static_assert(offsetof(t_PrEntry, IdProjekt) == 64);
static_assert(offsetof(t_PrEntry, IdBieter) == 68);
static_assert(offsetof(t_PrEntry, ProzFak) == 72);
static_assert(offsetof(t_PrEntry, Wert) == 80);
static_assert(offsetof(t_PrEntry, CreateDate) == 90);
static_assert(offsetof(t_PrEntry, ModifyDate) == 94);
static_assert(offsetof(t_PrEntry, CreateUserId) == 98);
static_assert(offsetof(t_PrEntry, ModifyUserId) == 102);
static_assert(offsetof(t_PrEntry, CreateUser) == 106);
static_assert(offsetof(t_PrEntry, ModifyUser) == 117);
static_assert(offsetof(t_PrEntry, Sz) == 128);
static_assert(offsetof(t_PrEntry, Catalog) == 132);

#define KORVAN_PR_FIELD(record, name, type) \
  { #name, offsetof(record, name), sizeof(record::name), type }

inline constexpr data::FieldDescriptor kPrNiveauFields[] = {
    data::HeaderField(),
    KORVAN_PR_FIELD(t_PrNiveau, Id, data::FieldType::kInt32),
    KORVAN_PR_FIELD(t_PrNiveau, Bez, data::FieldType::kShortString),
    KORVAN_PR_FIELD(t_PrNiveau, Sz, data::FieldType::kInt32),
    KORVAN_PR_FIELD(t_PrNiveau, IdBezug, data::FieldType::kInt32),
    KORVAN_PR_FIELD(t_PrNiveau, CreateDate, data::FieldType::kIntDate),
    KORVAN_PR_FIELD(t_PrNiveau, ModifyDate, data::FieldType::kIntDate),
    KORVAN_PR_FIELD(t_PrNiveau, CreateUserId, data::FieldType::kInt32),
    KORVAN_PR_FIELD(t_PrNiveau, ModifyUserId, data::FieldType::kInt32),
    KORVAN_PR_FIELD(t_PrNiveau, CreateUser, data::FieldType::kShortString),
    KORVAN_PR_FIELD(t_PrNiveau, ModifyUser, data::FieldType::kShortString),
};

inline constexpr data::FieldDescriptor kPrEntryFields[] = {
    data::HeaderField(),
    KORVAN_PR_FIELD(t_PrEntry, Id, data::FieldType::kInt32),
    KORVAN_PR_FIELD(t_PrEntry, IdPrNiveau, data::FieldType::kInt32),
    KORVAN_PR_FIELD(t_PrEntry, IdBezug, data::FieldType::kInt32),
    KORVAN_PR_FIELD(t_PrEntry, IdIdxBezug, data::FieldType::kInt32),
    KORVAN_PR_FIELD(t_PrEntry, IdProjekt, data::FieldType::kInt32),
    KORVAN_PR_FIELD(t_PrEntry, IdBieter, data::FieldType::kInt32),
    KORVAN_PR_FIELD(t_PrEntry, ProzFak, data::FieldType::kDouble),
    KORVAN_PR_FIELD(t_PrEntry, Wert, data::FieldType::kWaeBetrag),
    KORVAN_PR_FIELD(t_PrEntry, CreateDate, data::FieldType::kIntDate),
    KORVAN_PR_FIELD(t_PrEntry, ModifyDate, data::FieldType::kIntDate),
    KORVAN_PR_FIELD(t_PrEntry, CreateUserId, data::FieldType::kInt32),
    KORVAN_PR_FIELD(t_PrEntry, ModifyUserId, data::FieldType::kInt32),
    KORVAN_PR_FIELD(t_PrEntry, CreateUser, data::FieldType::kShortString),
    KORVAN_PR_FIELD(t_PrEntry, ModifyUser, data::FieldType::kShortString),
    KORVAN_PR_FIELD(t_PrEntry, Sz, data::FieldType::kInt32),
    KORVAN_PR_FIELD(t_PrEntry, Catalog, data::FieldType::kShortString),
};

#undef KORVAN_PR_FIELD

inline constexpr data::RecordLayout kPrNiveauLayout{"t_PrNiveau", sizeof(t_PrNiveau),
                                                    kPrNiveauFields};
inline constexpr data::RecordLayout kPrEntryLayout{"t_PrEntry", sizeof(t_PrEntry), kPrEntryFields};
static_assert(data::DescribesLayoutExactly(kPrNiveauLayout));
static_assert(data::DescribesLayoutExactly(kPrEntryLayout));

}  // namespace korvan::award
