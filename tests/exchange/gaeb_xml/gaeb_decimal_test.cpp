#include <gtest/gtest.h>

#include <locale>
#include <stdexcept>

#include "exchange/gaeb_xml/gaeb_decimal.h"

namespace korvan::exchange::gaeb_xml {
namespace {

TEST(GaebDecimal, WritesFixedPointWithAPointAndNeverAnExponent) {
  EXPECT_EQ(FormatGaebDecimal(1234567.891, 2), "1234567.89");
  EXPECT_EQ(FormatGaebDecimal(1e15, 3), "1000000000000000.000");
  EXPECT_EQ(FormatGaebDecimal(0.00001, 3), "0.000");
  EXPECT_EQ(FormatGaebDecimal(2.5, 0), "2");  // to_chars rounds half to even
  EXPECT_EQ(FormatGaebDecimal(12.5, 3), "12.500");
  EXPECT_EQ(FormatGaebDecimal(-0.0001, 2), "0.00");
  EXPECT_EQ(FormatGaebDecimal(-3.456, 2), "-3.46");
}

TEST(GaebDecimal, WritesTheSameWhateverTheProcessLocale) {
  const std::locale previous = std::locale::global(std::locale::classic());
  try {
    std::locale::global(std::locale("de_DE.UTF-8"));
  } catch (const std::runtime_error&) {
    // Without a German locale installed the classic one stands in; the check still runs.
  }
  EXPECT_EQ(FormatGaebDecimal(1234.5, 2), "1234.50");
  std::locale::global(previous);
}

TEST(GaebDecimal, ReadsOnlyTheSchemaForm) {
  EXPECT_EQ(ParseGaebDecimal("12.50"), 12.5);
  EXPECT_EQ(ParseGaebDecimal(" -3 "), -3.0);
  EXPECT_EQ(ParseGaebDecimal("+.5"), 0.5);
  EXPECT_EQ(ParseGaebDecimal("12,50"), std::nullopt);
  EXPECT_EQ(ParseGaebDecimal("1e3"), std::nullopt);
  EXPECT_EQ(ParseGaebDecimal("1.2.3"), std::nullopt);
  EXPECT_EQ(ParseGaebDecimal(""), std::nullopt);
  EXPECT_EQ(ParseGaebDecimal("."), std::nullopt);
}

}  // namespace
}  // namespace korvan::exchange::gaeb_xml
