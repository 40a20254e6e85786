#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "data/records/int_date.h"

namespace korvan::data {
namespace {

TEST(RecordIntDate, NoDateAndDamagedValues) {
  for (int32_t value : {0, 1, 10000, -5, -20240315, 20240000, 20240100}) {
    EXPECT_TRUE(IsNoIntDate(value)) << value;
    EXPECT_EQ(ClassifyIntDate(value), IntDateKind::kNone) << value;
    EXPECT_EQ(IntDateToDateTime(value), 0.0) << value;
    EXPECT_EQ(FormatIntDate(value), "") << value;
  }
  EXPECT_FALSE(IsNoIntDate(10101));  // 0101 is the smallest last-four-digit part that is a date
  for (int32_t value : {20241301, 20230229, 20240431, 19991200, 2147483647, 100000101}) {
    EXPECT_EQ(ClassifyIntDate(value), IntDateKind::kInvalid) << value;
    EXPECT_FALSE(IntDateToDateTime(value).has_value()) << value;
    EXPECT_FALSE(FormatIntDate(value).empty()) << value;  // still displayable
  }
  EXPECT_EQ(ClassifyIntDate(20240229), IntDateKind::kValid);
  EXPECT_EQ(FormatIntDate(20241399), "99.13.2024");
  for (double bad : {std::numeric_limits<double>::quiet_NaN(),
                     std::numeric_limits<double>::infinity(), 1e300, -1e9}) {
    EXPECT_FALSE(DateTimeToIntDate(bad).has_value()) << bad;
    EXPECT_FALSE(DecodeDateTime(bad).has_value()) << bad;
    EXPECT_EQ(FormatDateTime(bad).rfind("<ungültig", 0), 0u) << bad;
  }
}

TEST(RecordIntDate, ConvertsToAndFromDateTime) {
  EXPECT_EQ(IntDateToDateTime(18991230), 0.0);   // the epoch itself
  EXPECT_EQ(IntDateToDateTime(19000301), 61.0);  // 1900 is no leap year
  EXPECT_EQ(IntDateToDateTime(20240315), 45366.0);
  EXPECT_EQ(DateTimeToIntDate(45366.75), 20240315);  // the time of day is dropped
  EXPECT_EQ(DateTimeToIntDate(0.0), kNoIntDate);
  EXPECT_EQ(DateTimeToIntDate(-1.25), 18991229);
  for (int32_t value : {20000229, 19991231, 99991231, 10101}) {
    const std::optional<double> dt = IntDateToDateTime(value);
    ASSERT_TRUE(dt.has_value()) << value;
    EXPECT_EQ(DateTimeToIntDate(*dt), value) << value;
  }
  EXPECT_FALSE(EncodeDate({2023, 2, 29}).has_value());
  EXPECT_FALSE(EncodeDate({0, 1, 1}).has_value());
  EXPECT_FALSE(EncodeDate({10000, 1, 1}).has_value());
}

TEST(RecordIntDate, DisplayFormats) {
  EXPECT_EQ(FormatIntDate(20240315), "15.03.2024");
  EXPECT_EQ(FormatIntDate(20240315, {ShortDateFormat::Order::kMonthDayYear, '/'}), "03/15/2024");
  EXPECT_EQ(FormatIntDate(20240315, {ShortDateFormat::Order::kYearMonthDay, '-'}), "2024-03-15");
  EXPECT_EQ(FormatIntDate(1230101), "01.01.0123");  // a year of three digits keeps 4 places
  EXPECT_EQ(FormatDateTime(0.0), "30.12.1899");
  EXPECT_EQ(FormatDateTime(45366.0 + (13 * 3600 + 5 * 60 + 9) / 86400.0), "15.03.2024 13:05:09");
  EXPECT_EQ(FormatDateTime(-1.25), "29.12.1899 06:00:00");
  EXPECT_EQ(FormatDateTime(45366.9999999), "15.03.2024 23:59:59");  // never rolls over

  // Six-digit values: year part 24 widens to 2024; month and day come from
  // 240315 - 20240000 = -19999685 and are shown as they are.
  EXPECT_EQ(FormatIntDate(240315), "-85.-96.2024");
  EXPECT_EQ(ClassifyIntDate(240315), IntDateKind::kValid);  // still a (year 24) date
  EXPECT_EQ(IntDateDisplayParts(500101).year, 1950);        // 50 and above widen to 19xx
  EXPECT_EQ(IntDateDisplayParts(490101).year, 2049);
  EXPECT_EQ(IntDateDisplayParts(10101).year, 2001);
  EXPECT_EQ(IntDateDisplayParts(19990101), (CivilDate{1999, 1, 1}));  // eight digits stay
}

}  // namespace
}  // namespace korvan::data
