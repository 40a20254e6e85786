#include "boq/units/qty_notation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "boq/units/value_converter.h"

namespace korvan::boq {
namespace {

using F = TValFormat;

TEST(QtyNotation, WritesFeetInchesAndReducedFractions) {
  struct Case {
    double value;
    F format;
    const char* text;
  };
  const Case cases[] = {
      {12.5, F::vfFtIn64, "12' 6\""},
      {3.0, F::vfFtIn64, "3'"},
      {0.0, F::vfFtIn64, "0'"},
      {1.0 + 1.0 / 24, F::vfFtIn64, "1' 1/2\""},  // half an inch, no whole inch
      {3.0 + (1 + 13.0 / 64) / 12, F::vfFtIn64, "3' 1 13/64\""},
      {-(2.0 + 3.25 / 12), F::vfFtIn64, "-2' 3 1/4\""},
      {11.999 / 12 + 3, F::vfFtIn64, "4'"},  // rounds up into the next foot
      {3.0 + 1.2 / 12, F::vfFtIn10, "3' 1,2\""},
      {3.0 + 1.0 / 12, F::vfFtIn10, "3' 1\""},
      {37.203125, F::vfInFrc, "37 13/64\""},
      {0.5, F::vfInFrc, "1/2\""},
      {-0.001, F::vfInFrc, "0\""},  // no "-0"
      {1e300, F::vfFtIn64, "####"},
      {NAN, F::vfInFrc, "####"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(FormatImperialQty(c.value, c.format), c.text);
  }
}

TEST(QtyNotation, ReadsWhatPeopleTypeAndRefusesTheRest) {
  struct Case {
    const char* text;
    F format;
    std::optional<double> value;
  };
  const Case cases[] = {
      {"12' 6\"", F::vfFtIn64, 12.5},
      {"12'6-1/2", F::vfFtIn64, 12.0 + 6.5 / 12},
      {"12 ft 6 in", F::vfFtIn64, 12.5},
      {"12'", F::vfFtIn64, 12.0},
      {"6\"", F::vfFtIn64, 0.5},
      {"6''", F::vfFtIn64, 0.5},  // two apostrophes for the inch mark
      {"12\xE2\x80\xB2 6\xE2\x80\xB3", F::vfFtIn64, 12.5},
      {"12' 14\"", F::vfFtIn64, 13.0 + 2.0 / 12},  // taken as written
      {"3' 1,2\"", F::vfFtIn10, 3.1},
      {"3' 1.2\"", F::vfFtIn10, 3.1},
      {"  -2' 3 1/4\" ", F::vfFtIn64, -(2.0 + 3.25 / 12)},
      {"12,5", F::vfFtIn64, 12.5},  // a bare number is in the unit itself
      {"37 13/64\"", F::vfInFrc, 37.203125},
      {"3'", F::vfInFrc, 36.0},
      {"37", F::vfInFrc, 37.0},
      {"", F::vfFtIn64, std::nullopt},
      {"zwölf", F::vfFtIn64, std::nullopt},
      {"12' 6\" 3", F::vfFtIn64, std::nullopt},
      {"1/0\"", F::vfInFrc, std::nullopt},
      {"1,5/2\"", F::vfInFrc, std::nullopt},
      {"12'' 6'", F::vfFtIn64, std::nullopt},
      {"'", F::vfFtIn64, std::nullopt},
      {"--3'", F::vfFtIn64, std::nullopt},
      {"3' -1\"", F::vfFtIn64, std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const std::optional<double> read = ParseImperialQty(c.text, c.format);
    ASSERT_EQ(read.has_value(), c.value.has_value());
    if (read) {
      EXPECT_NEAR(*read, *c.value, 1e-12);
    }
  }
}

// Every value comes back from its text as the value at the notation's resolution, and
// writing that again gives the same text.
TEST(QtyNotation, WriteThenReadKeepsEveryStepOfResolution) {
  std::mt19937_64 random(20261123);
  const F formats[] = {F::vfFtIn64, F::vfFtIn10, F::vfInFrc};
  for (int round = 0; round < 20000; ++round) {
    const F format = formats[round % 3];
    const double per_unit = (format == F::vfFtIn10 ? 10.0 : 64.0) * (format == F::vfInFrc ? 1 : 12);
    const auto steps = static_cast<int64_t>(random() % 10'000'000) - 5'000'000;
    const double value = static_cast<double>(steps) / per_unit;
    const std::string text = FormatImperialQty(value, format);
    SCOPED_TRACE(text);
    const std::optional<double> read = ParseImperialQty(text, format);
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(std::llround(*read * per_unit), steps);
    EXPECT_EQ(FormatImperialQty(*read, format), text);
  }
}

TEST(QtyNotation, RandomTextsAreReadOrRefusedWithoutFault) {
  std::mt19937 random(7);
  const std::string alphabet = "0123456789 '\"/-,.ftinchx\t";
  for (int round = 0; round < 50000; ++round) {
    std::string text(random() % 12, ' ');
    for (char& c : text) c = alphabet[random() % alphabet.size()];
    const std::optional<double> read = ParseImperialQty(text, F::vfFtIn64);
    if (read) {
      EXPECT_TRUE(std::isfinite(*read)) << text;
    }
  }
}

TEST(QtyNotation, TheConverterWritesAndReadsByTheUnitsNotation) {
  const TAvaUiValueConverter converter(TCurrencyList(), TValueConverterSettings{});
  EXPECT_EQ(converter.QtyToStringFmt(12.5, 3, F::vfDec), "12,500");
  EXPECT_EQ(converter.QtyToStringFmt(12.5, 3, F::vfNONE), "12,500");
  EXPECT_EQ(converter.QtyToStringFmt(12.5, 3, F::vfFtIn64), "12' 6\"");
  EXPECT_EQ(TAvaUiValueConverter::StrToQtyQU("12' 6\"", F::vfFtIn64), 12.5);
  EXPECT_EQ(TAvaUiValueConverter::StrToQtyQU("1.234,5", F::vfDec), 1234.5);
  EXPECT_FALSE(TAvaUiValueConverter::StrToQtyQU("12' 6\"", F::vfDec).has_value());
}

}  // namespace
}  // namespace korvan::boq
