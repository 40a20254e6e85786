#pragma once

#include <string>
#include <string_view>

#include "boq/text/rich_text.h"

namespace korvan::boq {

// The byte that opens and closes a text complement in a stored text. Every stored long
// text keeps its gaps as this byte, then the complement's body, then this byte again, so
// an unfilled gap is the two bytes 0xFF 0xFF. In rich text it is written "\'ff"; the
// letter "ÿ" (the same byte in code page 1252) is therefore always written "\u255?".
inline constexpr unsigned char kComplementDelimiter = 0xFF;

// Canonical RTF of a text: ANSI code page 1252, one font, formats switched only where
// they change, characters of the code page as "\'xx", all others as "\uN?" (two of them
// for characters beyond U+FFFF). The result is 7-bit ASCII.
std::string WriteRtf(const TRichText& text);

// Appends the RTF of a piece of UTF-8 text; "\n" becomes `line_break`. Malformed UTF-8
// bytes are written as the characters code page 1252 gives them, never dropped.
void AppendRtfEscaped(std::string_view utf8, std::string_view line_break, std::string& out);

}  // namespace korvan::boq
