#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>

namespace korvan::data {

// A message or log line from a printf format, as the fixed message texts are written;
// cut at 511 bytes, which no single line comes near.
template <class... Args>
std::string Printf(const char* format, Args... args) {
  char text[512];
  const int length = std::snprintf(text, sizeof text, format, args...);
  return std::string(text, static_cast<size_t>(std::clamp(length, 0, 511)));
}

// A type or code letter as shown between quotes: control bytes are not shown (their code
// is printed beside them).
inline std::string Letter(char value) {
  return static_cast<uint8_t>(value) < 0x20 ? std::string() : std::string(1, value);
}

inline unsigned Code(char value) {
  return static_cast<uint8_t>(value);
}

}  // namespace korvan::data
