#pragma once

#include <cstddef>
#include <cstdint>

namespace korvan::storage {

#pragma pack(push, 1)

// The part of every record block the kernel reads when it scans a data file. A
// negative RecLen marks a free block of that many bytes.
struct TDbCoreHeader {
  int32_t RecLen;
  char RecTyp;
};
static_assert(sizeof(TDbCoreHeader) == 5);

// The 48-byte header every stored record starts with. Dates are day counts since
// 30 December 1899 (the fraction is the time of day). ModifiedById is a short string:
// a length byte and 22 Windows-1252 characters.
struct TDbRecordHeader {
  int32_t RecLen;
  char RecTyp;
  uint16_t Size;
  uint16_t Version;
  double LastModified;
  double CreationDate;
  uint8_t ModifiedById[23];
};

#pragma pack(pop)

static_assert(sizeof(TDbRecordHeader) == 48);
static_assert(offsetof(TDbRecordHeader, RecLen) == 0);
static_assert(offsetof(TDbRecordHeader, RecTyp) == 4);
static_assert(offsetof(TDbRecordHeader, Size) == 5);
static_assert(offsetof(TDbRecordHeader, Version) == 7);
static_assert(offsetof(TDbRecordHeader, LastModified) == 9);
static_assert(offsetof(TDbRecordHeader, CreationDate) == 17);
static_assert(offsetof(TDbRecordHeader, ModifiedById) == 25);

inline constexpr int kRecordHeaderSize = sizeof(TDbRecordHeader);

}  // namespace korvan::storage
