#include "data/common/cp1252.h"

#include <array>
#include <cstdio>

namespace korvan::data {
namespace {

// The bytes 0x80..0x9F; all other bytes equal their code point (Latin-1). The five
// bytes without a printable character keep their C1 control code point.
constexpr std::array<char32_t, 32> kHighBlock = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 80..87
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  // 88..8F
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 90..97
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,  // 98..9F
};

constexpr bool IsContinuation(uint8_t byte) {
  return (byte & 0xC0) == 0x80;
}

void AppendCodePointName(char32_t code_point, std::string* out) {
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "U+%04X", static_cast<unsigned>(code_point));
  out->append(buffer);
}

}  // namespace

char32_t Cp1252ToCodePoint(uint8_t byte) {
  if (byte >= 0x80 && byte <= 0x9F) return kHighBlock[byte - 0x80];
  return byte;
}

std::optional<uint8_t> CodePointToCp1252(char32_t code_point) {
  if (code_point < 0x80 || (code_point >= 0xA0 && code_point <= 0xFF)) {
    return static_cast<uint8_t>(code_point);
  }
  for (std::size_t i = 0; i < kHighBlock.size(); ++i) {
    if (kHighBlock[i] == code_point) return static_cast<uint8_t>(0x80 + i);
  }
  return std::nullopt;
}

void AppendUtf8(char32_t code_point, std::string* out) {
  const auto cp = static_cast<uint32_t>(code_point);
  if (cp < 0x80) {
    out->push_back(static_cast<char>(cp));
  } else if (cp < 0x800) {
    out->push_back(static_cast<char>(0xC0 | (cp >> 6)));
    out->push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else if (cp < 0x10000) {
    out->push_back(static_cast<char>(0xE0 | (cp >> 12)));
    out->push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else {
    out->push_back(static_cast<char>(0xF0 | (cp >> 18)));
    out->push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  }
}

std::optional<char32_t> DecodeUtf8(std::string_view utf8, std::size_t* length) {
  *length = utf8.empty() ? 0 : 1;
  if (utf8.empty()) return std::nullopt;
  const auto lead = static_cast<uint8_t>(utf8[0]);
  if (lead < 0x80) return lead;

  // Sequence length and the allowed range of the second byte (which rules out
  // overlong forms, surrogates and code points beyond U+10FFFF).
  std::size_t needed = 0;
  uint8_t low = 0x80, high = 0xBF;
  char32_t cp = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    needed = 2, cp = lead & 0x1F;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    needed = 3, cp = lead & 0x0F;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    needed = 4, cp = lead & 0x07;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
  } else {
    return std::nullopt;
  }

  for (std::size_t i = 1; i < needed; ++i) {
    if (i >= utf8.size()) return std::nullopt;
    const auto byte = static_cast<uint8_t>(utf8[i]);
    const bool in_range = (i == 1) ? (byte >= low && byte <= high) : IsContinuation(byte);
    if (!in_range) return std::nullopt;
    cp = (cp << 6) | (byte & 0x3F);
    *length = i + 1;
  }
  return cp;
}

std::string Cp1252ToUtf8(std::string_view cp1252) {
  std::string out;
  out.reserve(cp1252.size());
  for (char c : cp1252) AppendUtf8(Cp1252ToCodePoint(static_cast<uint8_t>(c)), &out);
  return out;
}

std::string Utf8ToCp1252(std::string_view utf8, Cp1252Report* report) {
  std::string out;
  out.reserve(utf8.size());
  std::size_t pos = 0;
  while (pos < utf8.size()) {
    std::size_t length = 0;
    const std::optional<char32_t> cp = DecodeUtf8(utf8.substr(pos), &length);
    std::optional<uint8_t> byte;
    if (cp) byte = CodePointToCp1252(*cp);
    if (byte) {
      out.push_back(static_cast<char>(*byte));
    } else {
      out.push_back('?');
      if (report) {
        report->problems.push_back(cp ? Cp1252Problem{Cp1252Problem::Kind::kUnmappable, pos, *cp}
                                      : Cp1252Problem{Cp1252Problem::Kind::kInvalidUtf8, pos, 0});
      }
    }
    pos += length;
  }
  return out;
}

int Cp1252Report::Count(Cp1252Problem::Kind kind) const {
  int count = 0;
  for (const Cp1252Problem& problem : problems) count += (problem.kind == kind) ? 1 : 0;
  return count;
}

std::string Cp1252Report::Describe() const {
  std::string text;
  const int unmappable = UnmappableCount();
  if (unmappable > 0) {
    text = std::to_string(unmappable) + " Zeichen in Windows-1252 nicht darstellbar (";
    int listed = 0;
    for (const Cp1252Problem& problem : problems) {
      if (problem.kind != Cp1252Problem::Kind::kUnmappable) continue;
      if (listed == 5) {
        text += ", ...";
        break;
      }
      if (listed++ > 0) text += ", ";
      AppendCodePointName(problem.code_point, &text);
    }
    text += ")";
  }
  const int invalid = InvalidUtf8Count();
  if (invalid > 0) {
    if (!text.empty()) text += ", ";
    text += std::to_string(invalid) + " ungültige UTF-8-Folgen";
  }
  if (!text.empty()) text += "; durch \"?\" ersetzt";
  return text;
}

}  // namespace korvan::data
