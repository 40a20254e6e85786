#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvan::data {

// Stored texts are Windows-1252; in memory every text is UTF-8. The conversion is
// lossless in both directions for everything the code page can hold: all 256 byte
// values decode to a distinct code point (the five bytes Windows leaves undefined,
// 0x81 0x8D 0x8F 0x90 0x9D, become the C1 controls U+0081 etc., as Windows does), and
// encoding that text gives back the same bytes.

// Decodes one stored byte.
char32_t Cp1252ToCodePoint(uint8_t byte);

// Encodes one code point; nullopt when the code page has no byte for it.
std::optional<uint8_t> CodePointToCp1252(char32_t code_point);

// Stored bytes to UTF-8. Cannot fail: every byte has a character.
std::string Cp1252ToUtf8(std::string_view cp1252);

// One character that could not be stored as it was.
struct Cp1252Problem {
  enum class Kind {
    kUnmappable,  // valid UTF-8, but the code page has no byte for the character
    kInvalidUtf8  // the input bytes are not well-formed UTF-8
  };
  Kind kind;
  std::size_t utf8_offset;  // where the character or bad sequence starts in the input
  char32_t code_point;      // the character (kUnmappable); 0 for kInvalidUtf8
};

// What an encoding replaced by "?". Empty when the text was stored exactly.
struct Cp1252Report {
  std::vector<Cp1252Problem> problems;

  bool Exact() const { return problems.empty(); }
  int UnmappableCount() const { return Count(Cp1252Problem::Kind::kUnmappable); }
  int InvalidUtf8Count() const { return Count(Cp1252Problem::Kind::kInvalidUtf8); }
  // A one-line German description for protocols and message boxes, e.g.
  // "2 Zeichen nicht darstellbar (U+20AC ...), durch \"?\" ersetzt".
  std::string Describe() const;

 private:
  int Count(Cp1252Problem::Kind kind) const;
};

// UTF-8 to stored bytes. Characters outside the code page and every malformed UTF-8
// sequence (bad lead byte, truncated or overlong sequence, surrogate, beyond U+10FFFF)
// become one "?" each and are listed in *report when it is given.
std::string Utf8ToCp1252(std::string_view utf8, Cp1252Report* report = nullptr);

// Strict UTF-8 decoding of the character at the start of `utf8`. Sets *length to the
// bytes consumed (at least 1 for non-empty input); nullopt for a malformed sequence, in
// which case *length is the length of the maximal invalid prefix.
std::optional<char32_t> DecodeUtf8(std::string_view utf8, std::size_t* length);

// Appends the UTF-8 form of a code point (must be a scalar value).
void AppendUtf8(char32_t code_point, std::string* out);

}  // namespace korvan::data
