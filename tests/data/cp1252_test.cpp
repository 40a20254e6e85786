#include "data/cp1252.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace korvan::data {
namespace {

std::string AllBytes() {
  std::string bytes;
  for (int b = 0; b < 256; ++b) bytes.push_back(static_cast<char>(b));
  return bytes;
}

TEST(Cp1252, EveryByteRoundTripsThroughUtf8) {
  const std::string bytes = AllBytes();
  const std::string utf8 = Cp1252ToUtf8(bytes);
  Cp1252Report report;
  EXPECT_EQ(Utf8ToCp1252(utf8, &report), bytes);
  EXPECT_TRUE(report.Exact()) << report.Describe();

  // No two bytes share a character, so nothing is invented on the way back.
  std::set<char32_t> seen;
  for (int b = 0; b < 256; ++b) seen.insert(Cp1252ToCodePoint(static_cast<uint8_t>(b)));
  EXPECT_EQ(seen.size(), 256u);
}

TEST(Cp1252, HighBlockDecodesToWindowsCharacters) {
  EXPECT_EQ(Cp1252ToUtf8("\x80"), "€");
  EXPECT_EQ(Cp1252ToUtf8("\x82\x83\x84\x85\x86\x87"), "‚ƒ„…†‡");
  EXPECT_EQ(Cp1252ToUtf8("\x88\x89\x8A\x8B\x8C\x8E"), "ˆ‰Š‹ŒŽ");
  EXPECT_EQ(Cp1252ToUtf8("\x91\x92\x93\x94\x95\x96\x97"), "‘’“”•–—");
  EXPECT_EQ(Cp1252ToUtf8("\x98\x99\x9A\x9B\x9C\x9E\x9F"), "˜™š›œžŸ");
  EXPECT_EQ(Cp1252ToUtf8("Stra\xDF"
                         "e \xC4\xD6\xDC\xE4\xF6\xFC \xA7 \xB2"),
            "Straße ÄÖÜäöü § ²");
  // Undefined bytes keep the C1 control code point.
  EXPECT_EQ(Cp1252ToCodePoint(0x81), U'\u0081');
  EXPECT_EQ(Cp1252ToCodePoint(0x8D), U'\u008D');
  EXPECT_EQ(Cp1252ToCodePoint(0x8F), U'\u008F');
  EXPECT_EQ(Cp1252ToCodePoint(0x90), U'\u0090');
  EXPECT_EQ(Cp1252ToCodePoint(0x9D), U'\u009D');
}

TEST(Cp1252, EncodesGermanAndTypographicText) {
  Cp1252Report report;
  EXPECT_EQ(Utf8ToCp1252("Maße „Beton“ – 12 € ™", &report),
            "Ma\xDF"
            "e \x84"
            "Beton\x93 \x96 12 \x80 \x99");
  EXPECT_TRUE(report.Exact());
  EXPECT_EQ(report.Describe(), "");
}

TEST(Cp1252, UnmappableCharactersBecomeQuestionMarksAndAreReported) {
  Cp1252Report report;
  // Greek alpha (2 bytes), ideograph (3 bytes), emoji (4 bytes), and C1 control U+0080
  // which has no byte of its own (0x80 is the euro sign).
  EXPECT_EQ(Utf8ToCp1252("a\u03B1b\u6C34c\U0001F600d\u0080", &report), "a?b?c?d?");
  ASSERT_EQ(report.UnmappableCount(), 4);
  EXPECT_EQ(report.InvalidUtf8Count(), 0);
  EXPECT_EQ(report.problems[0].code_point, U'\u03B1');
  EXPECT_EQ(report.problems[0].utf8_offset, 1u);
  EXPECT_EQ(report.problems[1].code_point, U'\u6C34');
  EXPECT_EQ(report.problems[1].utf8_offset, 4u);
  EXPECT_EQ(report.problems[2].code_point, U'\U0001F600');
  EXPECT_EQ(report.problems[3].code_point, U'\u0080');
  EXPECT_NE(report.Describe().find("U+03B1"), std::string::npos);
  EXPECT_NE(report.Describe().find("\"?\""), std::string::npos);

  // A literal "?" in the input is not a problem.
  Cp1252Report clean;
  EXPECT_EQ(Utf8ToCp1252("Wer?", &clean), "Wer?");
  EXPECT_TRUE(clean.Exact());
}

TEST(Cp1252, MalformedUtf8IsReportedNotCrashedOn) {
  struct Case {
    std::string input;
    std::string expected;
    int invalid;
  };
  const Case cases[] = {
      {"a\x80"
       "b",
       "a?b", 1},                       // stray continuation byte
      {"a\xC3", "a?", 1},               // truncated at the end
      {"\xC3(", "?(", 1},               // bad continuation
      {"\xC0\xAF", "??", 2},            // overlong "/"
      {"\xE0\x80\xAF", "???", 3},       // overlong three-byte form
      {"\xED\xA0\x80", "???", 3},       // UTF-16 surrogate
      {"\xF4\x90\x80\x80", "????", 4},  // beyond U+10FFFF
      {"\xE2\x82", "?", 1},             // truncated euro sign
      {"\xE2\x82"
       "x\xE2\x82\xAC",
       "?x\x80", 1},  // resynchronises on the next character
      {"\xFF\xFE", "??", 2},
  };
  for (const Case& c : cases) {
    Cp1252Report report;
    EXPECT_EQ(Utf8ToCp1252(c.input, &report), c.expected) << testing::PrintToString(c.input);
    EXPECT_EQ(report.InvalidUtf8Count(), c.invalid) << testing::PrintToString(c.input);
    EXPECT_EQ(report.UnmappableCount(), 0);
  }
  // Without a report the conversion still substitutes.
  EXPECT_EQ(Utf8ToCp1252("x\xC3"), "x?");
}

TEST(Cp1252, DecodeUtf8AcceptsTheWholeScalarRange) {
  for (char32_t cp : {U'\u0000', U'\u007F', U'\u0080', U'\u07FF', U'\u0800', U'\uD7FF', U'\uE000',
                      U'\uFFFF', U'\U00010000', U'\U0010FFFF'}) {
    std::string utf8;
    AppendUtf8(cp, &utf8);
    std::size_t length = 0;
    const auto decoded = DecodeUtf8(utf8, &length);
    ASSERT_TRUE(decoded.has_value()) << static_cast<uint32_t>(cp);
    EXPECT_EQ(*decoded, cp);
    EXPECT_EQ(length, utf8.size());
  }
}

}  // namespace
}  // namespace korvan::data
