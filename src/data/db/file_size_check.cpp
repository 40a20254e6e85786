#include "data/db/file_size_check.h"

#include <sys/stat.h>

#include <cstdio>

namespace korvan::data {
namespace {

constexpr int64_t kOneAndAHalfGigabytes = 1610612736;

// The divisor of the "bald die max Größe" message; it is one byte short of 2^30, and
// the figures users know depend on it.
constexpr double kGigabyteDivisor = 1073741823.0;

// Language text 46233. The text catalogue is not part of the program yet; until it is,
// the German wording is kept here.
std::string CatalogueText46233() {
  return "Die Datei \"%s\" hat die maximale Größe von 2 GB erreicht. Bitte reorganisieren "
         "Sie die Datenbank.";
}

// A printf-style text with one %s and optionally one %f, formatted.
std::string Format(const std::string& pattern, const std::string& file, double value = 0.0) {
  const int length = std::snprintf(nullptr, 0, pattern.c_str(), file.c_str(), value);
  if (length < 0) return pattern;
  std::string result(static_cast<std::size_t>(length), '\0');
  std::snprintf(result.data(), result.size() + 1, pattern.c_str(), file.c_str(), value);
  return result;
}

// The message for a file at or above the limit.
std::string OversizeMessage(const std::string& file, int64_t size, int64_t limit) {
  if (limit == kFileSizeHardLimit) return Format(CatalogueText46233(), file);
  if (size <= kOneAndAHalfGigabytes) return Format("Datei \"%s\" ist größer als 1 GB", file);
  return Format("Datei \"%s\" erreicht mit %f GB bald die max Größe von 2 GB", file,
                static_cast<double>(size) / kGigabyteDivisor);
}

}  // namespace

bool CheckFileSizes(const std::vector<std::string>& files, int64_t limit,
                    std::vector<std::string>& messages, uint32_t option_word) {
  if (option_word & kSkipFileSizeCheck) return true;
  bool all_passed = true;
  for (const std::string& file : files) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) continue;
    const int64_t size = status.st_size;
    if (size < limit) continue;
    messages.push_back(OversizeMessage(file, size, limit));
    all_passed = false;
  }
  return all_passed;
}

}  // namespace korvan::data
