#include "data/common/guid_text.h"

#include <algorithm>
#include <cctype>

namespace korvan::data {

std::string NormalizedGuid(std::string_view text) {
  if (text.size() >= 2 && text.front() == '{' && text.back() == '}') {
    text = text.substr(1, text.size() - 2);
  }
  std::string normalized(text);
  for (char& c : normalized) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return normalized;
}

bool IsNullGuid(std::string_view text) {
  const std::string normalized = NormalizedGuid(text);
  return std::all_of(normalized.begin(), normalized.end(),
                     [](char c) { return c == '0' || c == '-' || c == ' '; });
}

TGuidGenerator::TGuidGenerator() {
  std::random_device entropy;
  std::seed_seq seed{entropy(), entropy(), entropy(), entropy()};
  FRandom.seed(seed);
}

std::string TGuidGenerator::Next(bool braced) {
  // "4" marks version 4 (random); "y" takes the variant bits 10xx, i.e. 8 to B.
  constexpr std::string_view kForm = "xxxxxxxx-xxxx-4xxx-yxxx-xxxxxxxxxxxx";
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string guid;
  guid.reserve(kGuidBracedLength);
  if (braced) guid += '{';
  uint64_t bits = FRandom();
  int bits_left = 64;
  for (char c : kForm) {
    if (c != 'x' && c != 'y') {
      guid += c;
      continue;
    }
    if (bits_left < 4) {
      bits = FRandom();
      bits_left = 64;
    }
    const unsigned nibble = static_cast<unsigned>(bits & 0xF);
    bits >>= 4;
    bits_left -= 4;
    guid += c == 'x' ? kHex[nibble] : kHex[8 + nibble % 4];
  }
  if (braced) guid += '}';
  return guid;
}

}  // namespace korvan::data
