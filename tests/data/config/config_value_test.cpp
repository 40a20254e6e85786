#include "data/config/config_value.h"

#include <gtest/gtest.h>

#include <climits>

namespace korvan::data {
namespace {

TEST(ConfigValue, ParsesBooleansIntegersAndDoubles) {
  for (const char* text : {"1", "-1", "TRUE"}) EXPECT_EQ(ParseConfigBool(text), true) << text;
  for (const char* text : {"0", "False"}) EXPECT_EQ(ParseConfigBool(text), false) << text;
  for (const char* text : {"ja", ""}) EXPECT_EQ(ParseConfigBool(text), std::nullopt) << text;

  EXPECT_EQ(ParseConfigInteger("-7", -10, 10), -7);
  EXPECT_EQ(ParseConfigInteger("$1F", 0, 100), 31);
  EXPECT_EQ(ParseConfigInteger("0x10", 0, 100), 16);
  EXPECT_EQ(ParseConfigInteger("-9223372036854775808", INT64_MIN, INT64_MAX), INT64_MIN);
  EXPECT_EQ(ParseConfigInteger("101", 0, 100), std::nullopt);
  EXPECT_EQ(ParseConfigInteger("32768", INT16_MIN, INT16_MAX), std::nullopt);
  for (const char* text : {"12a", "--1", "99999999999999999999"}) {
    EXPECT_EQ(ParseConfigInteger(text, INT64_MIN, INT64_MAX), std::nullopt) << text;
  }

  EXPECT_EQ(ParseConfigDouble("1,95583"), 1.95583);
  EXPECT_EQ(ParseConfigDouble("-19"), -19.0);
  for (const char* text : {"1.000,5", "abc", "inf", "-"}) {
    EXPECT_EQ(ParseConfigDouble(text), std::nullopt) << text;
  }
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
