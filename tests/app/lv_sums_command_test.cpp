// The totals of groups and of the LV through the commands: every change of a price sums the
// LV, and discounts and lump sums show in `lv show --json`.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "testing/json_value.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

class LvSums : public ::testing::Test {
 protected:
  void SetUp() override {
    Korvan({"demo", "--setup-only"});
    Korvan({"lv", "new", "Summen", "--mask", "11.22.PPPP"});
  }
  std::string Korvan(std::vector<std::string> args, int exit_code = 0) {
    return testing::ExpectKorvanOn(base_, std::move(args), exit_code).out;
  }
  void Add(const std::string& kind, const std::string& oz, const std::string& under,
           const std::string& qty = {}, const std::string& up = {}) {
    std::vector<std::string> args = {"lv", "add", "Summen", kind, "--oz", oz};
    if (!under.empty()) args.insert(args.end(), {"--under", under});
    if (!qty.empty()) args.insert(args.end(), {"--qty", qty, "--up", up});
    Korvan(args);
  }
  std::string Show() { return Korvan({"lv", "show", "Summen", "--json"}); }

  korvan::testing::TempDir dir_;
  std::filesystem::path base_ = dir_.path() / "sample";
};

// The LV part and each entry's object of `lv show --json`, as text.
std::vector<std::string> Parts(const std::string& json) {
  std::vector<std::string> parts;
  const std::string mark = "{\"oz\": ";
  std::size_t start = 0;
  for (std::size_t next; (next = json.find(mark, start + 1)) != std::string::npos; start = next)
    parts.push_back(json.substr(start, next - start));
  parts.push_back(json.substr(start));
  return parts;
}

int64_t Cents(const testing::JsonValue& value) {
  return std::llround(value.Number() * 100);
}

TEST_F(LvSums, APriceChangeReachesItsGroupsAndTheLvOnlyAndDiscountsShow) {
  Add("B", "1", "");
  Add("B", "1.1", "1");
  Add("P", "1.1.10", "1.1", "10", "12,50");  // 125,00
  Add("P", "1.1.20", "1.1", "2", "100");     // 200,00
  Add("B", "1.2", "1");
  Add("P", "1.2.10", "1.2", "3", "33,33");  // 99,99
  Add("B", "2", "");
  Add("B", "2.1", "2");
  Add("P", "2.1.10", "2.1", "1", "1000");  // 1000,00

  // Without awarded prices the LV's lump sum is its awarded total.
  Korvan({"lv", "set", "Summen", "lumpsum=5000"});
  testing::JsonValue lv = testing::ParseJson(Show())["lv"]["totals"];
  EXPECT_EQ(Cents(lv["estimate"]), 142499);
  EXPECT_EQ(Cents(lv["after_discount"]), 500000);

  // With them it is not applied (and kept).
  Korvan({"prices", "copy", "Summen", "--from", "schaetz", "--to", "vergabe"});
  const std::string before = Show();
  lv = testing::ParseJson(before)["lv"]["totals"];
  EXPECT_EQ(Cents(lv["after_discount"]), 142499);
  EXPECT_EQ(Cents(lv["lump_sum"]), 500000);

  Korvan({"lv", "set", "Summen", "1.1.10", "up=13"});
  const std::string after = Show();
  const std::vector<std::string> was = Parts(before), now = Parts(after);
  ASSERT_EQ(was.size(), now.size());
  std::set<std::size_t> changed;
  for (std::size_t i = 0; i < was.size(); ++i) {
    if (was[i] != now[i]) changed.insert(i);
  }
  // The LV, group 1, group 1.1 and the item 1.1.10; nothing else.
  EXPECT_EQ(changed, (std::set<std::size_t>{0, 1, 2, 3})) << before << '\n' << after;
  const testing::JsonValue entries = testing::ParseJson(after)["entries"];
  EXPECT_EQ(Cents(entries.Items()[0]["totals"]["estimate"]), 42999);
  EXPECT_EQ(Cents(testing::ParseJson(after)["lv"]["totals"]["estimate"]), 142999);

  // 5 % off group 1.2: 99,99 less 5,00 (4,9995 rounded on its own), carried up.
  Korvan({"lv", "set", "Summen", "1.2", "discount=5"});
  const testing::JsonValue shown = testing::ParseJson(Show());
  const testing::JsonValue& group = shown["entries"].Items()[4]["totals"];
  EXPECT_EQ(Cents(group["award"]), 9999);
  EXPECT_EQ(Cents(group["after_discount"]), 9499);
  EXPECT_EQ(Cents(shown["entries"].Items()[0]["totals"]["after_discount"]), 41999);
  EXPECT_EQ(Cents(shown["lv"]["totals"]["after_discount"]), 141999);
  Korvan({"lv", "set", "Summen", "1.1.10", "discount=5"}, 2);

  // Filtered sums are only shown: no item is marked, so all count; no item names contract 7.
  const std::string stored = Show();
  const testing::JsonValue marked =
      testing::ParseJson(Korvan({"calc", "sums", "Summen", "--marked", "--json"}));
  EXPECT_EQ(Cents(marked["totals"]["after_discount"]), 141999);
  EXPECT_FALSE(marked["stored"].Bool());
  Korvan({"calc", "sums", "Summen", "--contract", "7"}, 1);
  EXPECT_EQ(Show(), stored);
}

}  // namespace
}  // namespace korvan::app
