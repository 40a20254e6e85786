#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "data/common/cp1252.h"

namespace korvan::data {

// What storing a text in a short string did to it.
struct ShortStringStore {
  bool truncated = false;         // characters beyond the capacity were cut off
  std::size_t stored_chars = 0;   // characters kept (each is one stored byte)
  std::size_t dropped_chars = 0;  // characters cut off at the end

  bool Exact(const Cp1252Report& report) const { return !truncated && report.Exact(); }
};

#pragma pack(push, 1)

// A short string as records store it: one length byte, then N bytes of Windows-1252
// characters. Bytes after the length are undefined on disk; a length byte above N comes
// only from damaged data and reads as N.
template <std::size_t N>
struct ShortString {
  static_assert(N >= 1 && N <= 255, "a short string holds 1 to 255 characters");
  static constexpr std::size_t kCapacity = N;

  uint8_t length;
  char chars[N];

  // Length as it can be used: the stored length clamped to the capacity.
  std::size_t Length() const { return std::min<std::size_t>(length, N); }
  bool LengthIsValid() const { return length <= N; }

  // The stored bytes (Windows-1252).
  std::string_view Raw() const { return std::string_view(chars, Length()); }

  // The text in UTF-8.
  std::string Get() const { return Cp1252ToUtf8(Raw()); }

  // Stores a UTF-8 text: characters outside the code page become "?" (listed in
  // *report), and the text is cut after N characters. Since every stored character is one
  // byte, the cut always falls between whole characters of the UTF-8 input. The unused
  // bytes are zeroed so that equal texts give equal records on disk.
  ShortStringStore Set(std::string_view utf8, Cp1252Report* report = nullptr) {
    const std::string encoded = Utf8ToCp1252(utf8, report);
    return SetRaw(encoded);
  }

  // Stores bytes that are already Windows-1252.
  ShortStringStore SetRaw(std::string_view cp1252) {
    ShortStringStore result;
    result.stored_chars = std::min(cp1252.size(), N);
    result.dropped_chars = cp1252.size() - result.stored_chars;
    result.truncated = result.dropped_chars > 0;
    std::fill(std::begin(chars), std::end(chars), '\0');
    std::copy_n(cp1252.data(), result.stored_chars, chars);
    length = static_cast<uint8_t>(result.stored_chars);
    return result;
  }

  void Clear() { SetRaw({}); }

  // Equal when the used characters are equal; the undefined bytes do not count.
  friend bool operator==(const ShortString& a, const ShortString& b) { return a.Raw() == b.Raw(); }
};

#pragma pack(pop)

static_assert(sizeof(ShortString<1>) == 2);
static_assert(sizeof(ShortString<10>) == 11);
static_assert(sizeof(ShortString<255>) == 256);
static_assert(alignof(ShortString<10>) == 1);

// The names the record layouts use.
using string3 = ShortString<3>;
using string4 = ShortString<4>;
using string6 = ShortString<6>;
using string10 = ShortString<10>;
using string11 = ShortString<11>;
using string20 = ShortString<20>;
using string22 = ShortString<22>;
using string40 = ShortString<40>;
using string55 = ShortString<55>;
using string100 = ShortString<100>;

// The same view for a short string inside a record buffer of unknown layout (dumps,
// comparisons): `field` must hold capacity + 1 bytes.
inline std::string_view ShortStringRaw(const char* field, std::size_t capacity) {
  const auto stored = static_cast<uint8_t>(field[0]);
  return std::string_view(field + 1, std::min<std::size_t>(stored, capacity));
}

}  // namespace korvan::data
