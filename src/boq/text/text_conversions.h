#pragma once

#include <string>
#include <string_view>

#include "boq/text/rich_text.h"

// The conversions a text goes through between the user, the text tables and the exchange
// formats. They work on bytes; the markers they look for are ASCII, so they apply alike
// to stored Windows-1252 and to UTF-8.
namespace korvan::boq {

// Separates complement texts in exported plain text.
inline constexpr std::string_view kComplementTextSeparator = "\xFE\xFF\xFE";

// Before a text is stored: a carriage return not followed by a line feed gets one.
std::string InsertMissingLineFeeds(std::string_view text);

// The gap markers of a plain description text become the internal gap 0xFF 0xFF: a run
// of two or more dots, "XX" or "xx" standing alone (not part of a longer word), and the
// word "variabel".
std::string MarkComplementGaps(std::string_view text);

// For exchange: every complement becomes its body, an empty one "..", and the single
// 0xFF delimiters go.
std::string UnmarkComplementGaps(std::string_view text);

// A plain text (UTF-8) with gap markers as rich text whose gaps are empty complements.
TRichText RichTextFromPlainWithGaps(const std::string& utf8);

// A plain text stored as rich text: "{\rtf1\ " ... "}" with every line break "\par".
std::string WrapPlainAsRtf(std::string_view utf8);

// When a rich text is read: "\'0a" becomes "\par" and a carriage return and line feed.
std::string ExpandEscapedLineFeeds(std::string_view rtf);

}  // namespace korvan::boq
