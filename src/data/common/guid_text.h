#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace korvan::data {

// GUIDs as records keep them: text in a short string, either in registry form with
// braces, "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" (38 characters), or bare (36).
inline constexpr size_t kGuidBareLength = 36;
inline constexpr size_t kGuidBracedLength = 38;

// The form in which two GUID texts compare: braces dropped, letters upper case, so
// that "{ab...}" and "AB..." are the same GUID.
std::string NormalizedGuid(std::string_view text);

// A GUID kept as 16 bytes (the first three groups little-endian, as Windows stores it)
// in registry form with braces.
std::string GuidBytesToText(const uint8_t (&bytes)[16]);

// Whether a GUID text stands for no GUID: empty, blank, or the all-zero GUID.
bool IsNullGuid(std::string_view text);

// Hands out random (version 4) GUIDs in upper-case hex. One generator serves a whole
// run, so that it is seeded once from the system's entropy source.
class TGuidGenerator {
 public:
  TGuidGenerator();

  // A fresh GUID; with braces when `braced`.
  std::string Next(bool braced);

 private:
  std::mt19937_64 FRandom;
};

}  // namespace korvan::data
