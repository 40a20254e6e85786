#include "data/common/cp1252.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace korvan::data {
namespace {

TEST(Cp1252, EveryByteRoundTripsThroughUtf8) {
  std::string bytes;
  std::set<char32_t> seen;
  for (int b = 0; b < 256; ++b) {
    bytes.push_back(static_cast<char>(b));
    seen.insert(Cp1252ToCodePoint(static_cast<uint8_t>(b)));
  }
  Cp1252Report report;
  EXPECT_EQ(Utf8ToCp1252(Cp1252ToUtf8(bytes), &report), bytes);
  EXPECT_TRUE(report.Exact()) << report.Describe();
  EXPECT_EQ(seen.size(), 256u) << "no two bytes share a character";
}

TEST(Cp1252, WindowsCharactersBothWays) {
  EXPECT_EQ(Cp1252ToUtf8("\x80\x82\x83\x84\x85\x86\x87\x88\x89\x8A\x8B\x8C\x8E\x91\x92\x93\x94\x95"
                         "\x96\x97\x98\x99\x9A\x9B\x9C\x9E\x9F"),
            "€‚ƒ„…†‡ˆ‰Š‹ŒŽ‘’“”•–—˜™š›œžŸ");
  EXPECT_EQ(Cp1252ToUtf8("Stra\337e \xC4\xD6\xDC\xE4\xF6\xFC \xA7 \xB2"), "Straße ÄÖÜäöü § ²");
  for (uint8_t undefined : {0x81, 0x8D, 0x8F, 0x90, 0x9D}) {
    EXPECT_EQ(Cp1252ToCodePoint(undefined), undefined) << "keeps the C1 control code point";
  }
  Cp1252Report report;
  EXPECT_EQ(Utf8ToCp1252("Maße „Beton“ – 12 € ™ Wer?", &report),
            "Ma\337e \x84"
            "Beton\x93 \x96 12 \x80 \x99 Wer?");
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
  EXPECT_EQ(report.problems[1].code_point, U'\u6C34');
  EXPECT_EQ(report.problems[1].utf8_offset, 4u);
  EXPECT_EQ(report.problems[2].code_point, U'\U0001F600');
  EXPECT_EQ(report.problems[3].code_point, U'\u0080');
  EXPECT_NE(report.Describe().find("U+03B1"), std::string::npos);
  EXPECT_NE(report.Describe().find("\"?\""), std::string::npos);
}

TEST(Cp1252, MalformedUtf8IsReportedNotCrashedOn) {
  const struct {
    std::string input, expected;
    int invalid;
  } cases[] = {
      {"a\x80z", "a?z", 1},                    // stray continuation byte
      {"a\xC3", "a?", 1},                      // truncated at the end
      {"\xC3(", "?(", 1},                      // bad continuation
      {"\xC0\xAF", "??", 2},                   // overlong "/"
      {"\xE0\x80\xAF", "???", 3},              // overlong three-byte form
      {"\xED\xA0\x80", "???", 3},              // UTF-16 surrogate
      {"\xF4\x90\x80\x80", "????", 4},         // beyond U+10FFFF
      {"\xE2\x82x\xE2\x82\xAC", "?x\x80", 1},  // resynchronises on the next character
      {"\xFF\xFE", "??", 2},
  };
  for (const auto& c : cases) {
    Cp1252Report report;
    EXPECT_EQ(Utf8ToCp1252(c.input, &report), c.expected) << testing::PrintToString(c.input);
    EXPECT_EQ(report.InvalidUtf8Count(), c.invalid) << testing::PrintToString(c.input);
    EXPECT_EQ(report.UnmappableCount(), 0);
  }
  EXPECT_EQ(Utf8ToCp1252("x\xC3"), "x?");  // without a report the conversion still substitutes
}

TEST(Cp1252, DecodeUtf8AcceptsTheWholeScalarRange) {
  for (char32_t cp : {U'\u0000', U'\u007F', U'\u0080', U'\u07FF', U'\u0800', U'\uD7FF', U'\uE000',
                      U'\uFFFF', U'\U00010000', U'\U0010FFFF'}) {
    std::string utf8;
    AppendUtf8(cp, &utf8);
    std::size_t length = 0;
    EXPECT_EQ(DecodeUtf8(utf8, &length), cp) << static_cast<uint32_t>(cp);
    EXPECT_EQ(length, utf8.size());
  }
}

}  // namespace
}  // namespace korvan::data
