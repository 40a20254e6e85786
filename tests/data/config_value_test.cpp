#include "data/config_value.h"

#include <gtest/gtest.h>

#include <climits>

namespace korvan::data {
namespace {

TEST(ConfigValue, ParsesBooleansIntegersAndDoubles) {
  EXPECT_EQ(ParseConfigBool("1"), true);
  EXPECT_EQ(ParseConfigBool("0"), false);
  EXPECT_EQ(ParseConfigBool("-1"), true);
  EXPECT_EQ(ParseConfigBool("TRUE"), true);
  EXPECT_EQ(ParseConfigBool("False"), false);
  EXPECT_EQ(ParseConfigBool("ja"), std::nullopt);
  EXPECT_EQ(ParseConfigBool(""), std::nullopt);

  EXPECT_EQ(ParseConfigInteger("42", 0, 100), 42);
  EXPECT_EQ(ParseConfigInteger("-7", -10, 10), -7);
  EXPECT_EQ(ParseConfigInteger("$1F", 0, 100), 31);
  EXPECT_EQ(ParseConfigInteger("0x10", 0, 100), 16);
  EXPECT_EQ(ParseConfigInteger("101", 0, 100), std::nullopt);
  EXPECT_EQ(ParseConfigInteger("32768", INT16_MIN, INT16_MAX), std::nullopt);
  EXPECT_EQ(ParseConfigInteger("12a", 0, 100), std::nullopt);
  EXPECT_EQ(ParseConfigInteger("--1", -10, 10), std::nullopt);
  EXPECT_EQ(ParseConfigInteger("99999999999999999999", INT64_MIN, INT64_MAX), std::nullopt);
  EXPECT_EQ(ParseConfigInteger("-9223372036854775808", INT64_MIN, INT64_MAX), INT64_MIN);

  EXPECT_EQ(ParseConfigDouble("1.95583"), 1.95583);
  EXPECT_EQ(ParseConfigDouble("1,95583"), 1.95583);
  EXPECT_EQ(ParseConfigDouble("-19"), -19.0);
  EXPECT_EQ(ParseConfigDouble("1.000,5"), std::nullopt);
  EXPECT_EQ(ParseConfigDouble("abc"), std::nullopt);
  EXPECT_EQ(ParseConfigDouble("inf"), std::nullopt);
  EXPECT_EQ(ParseConfigDouble("-"), std::nullopt);
  for (double value : {1.95583, 0.1, 19.0, 1e-300, -123456.789}) {
    EXPECT_EQ(ParseConfigDouble(FormatConfigDouble(value)), value);
  }
}

TEST(ConfigValue, SplitsAndJoinsLists) {
  EXPECT_EQ(SplitConfigList("10,10, 5 ,1"), (std::vector<std::string>{"10", "10", "5", "1"}));
  EXPECT_EQ(SplitConfigList(""), std::vector<std::string>{});
  EXPECT_EQ(SplitConfigList("a,,"), (std::vector<std::string>{"a", "", ""}));
  EXPECT_EQ(SplitConfigList("\"a\"\"b\", \"c,d\" ,e"),
            (std::vector<std::string>{"a\"b", "c,d", "e"}));
  EXPECT_EQ(SplitConfigList("\"open"), std::nullopt);
  EXPECT_EQ(SplitConfigList("\"a\"x,b"), std::nullopt);

  const std::vector<std::string> items = {"plain", "with,comma", "\"quoted\"", " blank ", "", "ä"};
  EXPECT_EQ(JoinConfigList(items), "plain,\"with,comma\",\"\"\"quoted\"\"\",\" blank \",,ä");
  EXPECT_EQ(SplitConfigList(JoinConfigList(items)), items);
}

}  // namespace
}  // namespace korvan::data
