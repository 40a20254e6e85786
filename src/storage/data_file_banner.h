#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace korvan::storage {

inline constexpr int kDataFileHeaderSize = 80;
// Records and free blocks start right after the header.
inline constexpr int32_t kFirstBlockPosition = kDataFileHeaderSize;
inline constexpr int kBannerFieldSize = 40;
inline constexpr int kBannerPrefixSize = 5;  // "3DB", blank, 0xA9: a current data file

#pragma pack(push, 1)

// The 80 bytes at the start of every current data file.
struct TDataFileHeader {
  uint8_t Banner[kBannerFieldSize];
  uint32_t FileVersion;
  double FileTimeStamp;
  uint8_t Reserved[28];
};

#pragma pack(pop)

static_assert(sizeof(TDataFileHeader) == kDataFileHeaderSize);
static_assert(offsetof(TDataFileHeader, FileVersion) == 40);
static_assert(offsetof(TDataFileHeader, FileTimeStamp) == 44);

// Files of the oldest layout start with "3", carry 17 at offset 80 and "V" at 84, and
// keep version and time stamp behind that mark.
inline constexpr int kOldestLayoutProbeSize = 97;
inline constexpr int kOldestLayoutTagOffset = 80;
inline constexpr uint8_t kOldestLayoutTag = 17;
inline constexpr int kOldestLayoutMarkOffset = 84;
inline constexpr int kOldestLayoutVersionOffset = 85;
inline constexpr int kOldestLayoutStampOffset = 89;

// Database type whose files are libraries with a banner of their own.
inline constexpr char kLibraryDatabaseType = 'G';

// A fresh header: the current banner, zeros, the version and the time stamp.
TDataFileHeader MakeDataFileHeader(uint32_t file_version, double time_stamp);

// The format code of a file start: 4345 current (the 2018 banner too, because the
// current prefix is tested first), 4344..4338, 4331, 4303, 4312, 4311 for the old
// banners, 4310 when none matches, 4320 when fewer than 80 bytes are given.
int ClassifyDataFileBanner(std::span<const uint8_t> first_bytes);

// For the library type: 0 when the file starts like a library banner, 4309 when not,
// 4320 when it is shorter than the library banner.
int ClassifyLibraryBanner(std::span<const uint8_t> first_bytes);

// The banner bytes an old format was marked with (4338..4345, 4331, 4303, 4311, 4312),
// empty for any other code. For 4345 it is the current 24-byte banner.
std::span<const uint8_t> BannerForFormat(int format_code);

// The library banner of type "G" files.
std::span<const uint8_t> LibraryBanner();

}  // namespace korvan::storage
