#include "data/common/guid_text.h"

#include <algorithm>
#include <cctype>

namespace korvan::data {

std::string GuidBytesToText(const uint8_t (&bytes)[16]) {
  // Byte order of the text: the first three groups are stored least significant first.
  constexpr int kOrder[16] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  constexpr char kHex[] = "0123456789ABCDEF";
  std::string text = "{";
  for (int i = 0; i < 16; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    const uint8_t byte = bytes[kOrder[i]];
    text += kHex[byte >> 4];
    text += kHex[byte & 0x0F];
  }
  return text + "}";
}

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
