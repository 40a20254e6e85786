#pragma once

#include <cstddef>
#include <cstdint>

#include "data/records/field_descriptor.h"
#include "data/records/record_header_fields.h"
#include "data/records/short_string.h"

namespace korvan::data {

#pragma pack(push, 1)

// One record per database: the data version of its contents and when it was created.
struct t_DbInfo {
  TDbRecordHeader Header;
  int32_t Version;
  double CreateDate;
};

// The in-memory copy of t_DbInfo's contents.
struct t_VersionInfo {
  int32_t Version;
  double CreateDate;
};

// An id counter: for a kind letter and a name, the last id handed out. The next id is
// LastId + 1.
struct t_Counter {
  TDbRecordHeader Header;
  char KzBezug;
  string10 Kennung;
  int32_t LastId;
};

// One access right of a user group.
struct t_Recht {
  int32_t ID;
  uint8_t Recht;
};

#pragma pack(pop)

static_assert(sizeof(t_DbInfo) == 60);
static_assert(offsetof(t_DbInfo, Header) == 0);
static_assert(offsetof(t_DbInfo, Version) == 48);
static_assert(offsetof(t_DbInfo, CreateDate) == 52);

static_assert(sizeof(t_VersionInfo) == 12);
static_assert(offsetof(t_VersionInfo, Version) == 0);
static_assert(offsetof(t_VersionInfo, CreateDate) == 4);

static_assert(sizeof(t_Counter) == 64);
static_assert(offsetof(t_Counter, Header) == 0);
static_assert(offsetof(t_Counter, KzBezug) == 48);
static_assert(offsetof(t_Counter, Kennung) == 49);
static_assert(offsetof(t_Counter, LastId) == 60);

static_assert(sizeof(t_Recht) == 5);
static_assert(offsetof(t_Recht, ID) == 0);
static_assert(offsetof(t_Recht, Recht) == 4);

inline constexpr FieldDescriptor kDbInfoFields[] = {
    HeaderField(),
    {"Version", offsetof(t_DbInfo, Version), 4, FieldType::kInt32},
    {"CreateDate", offsetof(t_DbInfo, CreateDate), 8, FieldType::kDateTime},
};
inline constexpr RecordLayout kDbInfoLayout{"t_DbInfo", sizeof(t_DbInfo), kDbInfoFields};
static_assert(DescribesLayoutExactly(kDbInfoLayout));

inline constexpr FieldDescriptor kCounterFields[] = {
    HeaderField(),
    {"KzBezug", offsetof(t_Counter, KzBezug), 1, FieldType::kChar},
    {"Kennung", offsetof(t_Counter, Kennung), sizeof(string10), FieldType::kShortString},
    {"LastId", offsetof(t_Counter, LastId), 4, FieldType::kInt32},
};
inline constexpr RecordLayout kCounterLayout{"t_Counter", sizeof(t_Counter), kCounterFields};
static_assert(DescribesLayoutExactly(kCounterLayout));

}  // namespace korvan::data
