#include "storage/data_file_banner.h"

#include <algorithm>
#include <cstring>

#include "storage/db_kernel_codes.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

// Banners as written by the releases that created the files. Each string literal
// holds exactly the banner bytes; the size check below guards against a lost blank.
constexpr char kCurrentBanner[] = "3DB \xA9 2023 Torvelin AG  ";
constexpr char kBanner2018[] = "3DB \xA9 2018 Torvelin AG  \0";
constexpr char kBanner2016[] = "3DB Datenbankkern 2016 (C) Torvelin AG              \x1A";
constexpr char kBanner2014[] = "3DB Datenbankkern 2014 (C) Torvelin AG              \x1A";
constexpr char kBanner2013[] = "3DB Datenbankkern 2013 (C) Torvelin GmbH           \x1A";
constexpr char kBanner2011[] = "3DB Datenbankkern 2011 (C) Torvelin GmbH           \x1A";
constexpr char kBannerOstrell20[] = "3Ostrell 2.0 Datenbank (C) 2006 Torvelin Software GmbH\x1A";
constexpr char kBannerVesko60[] = "3Vesko 6.0 Datenbank (C) 2002 Torvelin Software GmbH\x1A";
constexpr char kBannerVesko53[] =
    "3Vesko 5.3 / Ostrell 1.0 Datenbank (C) 2000 Torvelin Software GmbH\x1A";
constexpr char kBannerVesko52[] = "3Vesko 5.2 Datenbank (C) 1998 Torvelin Software GmbH\x1A";
constexpr char kBannerVesko50[] = "3Vesko 5.0 Datenbank (C) 1996 Torvelin Software GmbH\x1A";
constexpr char kLibraryBanner[] = "3Daten und Index Bibliothek (C) 1994 Torvelin Software GmbH\x1A";

constexpr size_t kLibraryPrefixSize = 9;  // "3Daten un"

template <size_t N>
constexpr size_t BannerSize(const char (&)[N]) {
  return N - 1;  // without the literal's terminating zero
}

static_assert(BannerSize(kCurrentBanner) == 24);
static_assert(BannerSize(kBanner2018) == 25);
static_assert(BannerSize(kBanner2016) == 53 && BannerSize(kBanner2014) == 53);
static_assert(BannerSize(kBanner2013) == 52 && BannerSize(kBanner2011) == 52);
static_assert(BannerSize(kBannerVesko53) <= kDataFileHeaderSize);
static_assert(BannerSize(kLibraryBanner) <= kDataFileHeaderSize);

template <size_t N>
std::span<const uint8_t> Bytes(const char (&banner)[N]) {
  return {reinterpret_cast<const uint8_t*>(banner), N - 1};
}

struct FormatBanner {
  int format_code;
  std::span<const uint8_t> banner;
};

// In the order in which files are tested. The current prefix comes first, so the
// 2018 entry is never reached; it stays so that the order reads as it always did.
const FormatBanner* CheckOrder(size_t* count) {
  static const FormatBanner kOrder[] = {
      {kDkFormatCurrent, Bytes(kCurrentBanner).first(kBannerPrefixSize)},
      {kDkFormat2018, Bytes(kBanner2018)},
      {kDkFormat2016, Bytes(kBanner2016)},
      {kDkFormat2014, Bytes(kBanner2014)},
      {kDkFormat2013, Bytes(kBanner2013)},
      {kDkFormat2011, Bytes(kBanner2011)},
      {kDkFormatOstrell20, Bytes(kBannerOstrell20)},
      {kDkFormatVesko60, Bytes(kBannerVesko60)},
      {kDkFormatVesko53, Bytes(kBannerVesko53)},
      {kDkFormatVesko52, Bytes(kBannerVesko52)},
      {kDkFormatVesko50, Bytes(kBannerVesko50)},
  };
  *count = std::size(kOrder);
  return kOrder;
}

bool StartsWith(std::span<const uint8_t> bytes, std::span<const uint8_t> prefix) {
  return bytes.size() >= prefix.size() && std::equal(prefix.begin(), prefix.end(), bytes.begin());
}

}  // namespace

TDataFileHeader MakeDataFileHeader(uint32_t file_version, double time_stamp) {
  TDataFileHeader header{};
  std::memcpy(header.Banner, kCurrentBanner, BannerSize(kCurrentBanner));
  header.FileVersion = file_version;
  header.FileTimeStamp = time_stamp;
  return header;
}

int ClassifyDataFileBanner(std::span<const uint8_t> first_bytes) {
  if (first_bytes.size() < static_cast<size_t>(kDataFileHeaderSize)) return kDkIoError;
  size_t count = 0;
  const FormatBanner* order = CheckOrder(&count);
  for (size_t i = 0; i < count; ++i) {
    if (StartsWith(first_bytes, order[i].banner)) return order[i].format_code;
  }
  return kDkNoCopyright;
}

int ClassifyLibraryBanner(std::span<const uint8_t> first_bytes) {
  if (first_bytes.size() < BannerSize(kLibraryBanner)) return kDkIoError;
  return StartsWith(first_bytes, LibraryBanner().first(kLibraryPrefixSize)) ? kOk
                                                                            : kDkNotADatabaseFile;
}

std::span<const uint8_t> BannerForFormat(int format_code) {
  if (format_code == kDkFormatCurrent) return Bytes(kCurrentBanner);
  size_t count = 0;
  const FormatBanner* order = CheckOrder(&count);
  for (size_t i = 0; i < count; ++i) {
    if (order[i].format_code == format_code) return order[i].banner;
  }
  return {};
}

std::span<const uint8_t> LibraryBanner() {
  return Bytes(kLibraryBanner);
}

}  // namespace korvan::storage
