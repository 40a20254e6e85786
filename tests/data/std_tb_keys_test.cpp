#include <gtest/gtest.h>

#include "data/table_key.h"
#include "data/tb_counter.h"
#include "data/tb_einheit.h"
#include "data/tb_waehrung.h"
#include "std_tb_test_support.h"

namespace korvan::data::testing {
namespace {

const std::string kPad(1, kKeyPadChar);

std::string Pads(size_t count) {
  return std::string(count, kKeyPadChar);
}

TEST(TableKeyEncoding, NumbersNullValuesAndTexts) {
  EXPECT_EQ(KeyNumber(42), "00000000042");
  EXPECT_EQ(KeyNumber(-1), "-0000000001");
  EXPECT_EQ(KeyNumber(0), "00000000000");
  EXPECT_EQ(KeyNumber(2147483646), "02147483646");
  EXPECT_EQ(KeyNumber(-2147483647 - 1), "-2147483648");
  EXPECT_EQ(KeyNumber(kNullId), Pads(11));
  EXPECT_EQ(KeyNumber16(7), "000007");
  EXPECT_EQ(KeyNumber16(-3), "-00003");
  EXPECT_EQ(KeyNumber16(kNullId16), Pads(6));
  EXPECT_EQ(KeyText("m2", 4), "m2  ");
  EXPECT_EQ(KeyText("Kubikmeter", 4), "Kubi");
  // Negative numbers sort before positive ones and in reverse among themselves.
  EXPECT_LT(KeyNumber(-1), KeyNumber(0));
  EXPECT_LT(KeyNumber(-1), KeyNumber(-2));
}

TEST(TableKeyEncoding, FullKeysAreCutAndPadded) {
  EXPECT_EQ(BuildFullKey('W', '1', "00000000042", 20), "W100000000042" + Pads(7));
  EXPECT_EQ(BuildFullKey('W', '2', "0123456789", 8), "W2012345");
  EXPECT_EQ(BuildFullKey('W', '1', "", 5), "W1" + Pads(3));
  EXPECT_TRUE(KeyMatchesPattern("W1000042", "W1" + Pads(2) + "0042"));
  EXPECT_FALSE(KeyMatchesPattern("W2000042", "W1" + Pads(6)));
  EXPECT_EQ(KeyStringOf("E1000001" + Pads(4)), "000001");
}

TEST_F(TableTest, KeysOfTheFirstTables) {
  TTbWaehrung currencies(*db_);
  currencies.Rec().ID = 42;
  currencies.Rec().IdLand = 49;
  EXPECT_EQ(currencies.CurrentKey('1'), "W100000000042" + Pads(kKeyLength - 13));
  EXPECT_EQ(currencies.CurrentKey('2'), "W200000000049" + Pads(kKeyLength - 13));
  currencies.Rec().ID = -1;
  EXPECT_EQ(currencies.CurrentKey('1'), "W1-0000000001" + Pads(kKeyLength - 13));
  currencies.InitRecord();
  EXPECT_EQ(currencies.CurrentKey('1'), "W1" + Pads(kKeyLength - 2));  // null id

  TTbEinheit units(*db_);
  units.Rec().IdLang = 1;
  units.Rec().IdEinheit = 12;
  units.Rec().Sz = 3;
  EXPECT_EQ(units.CurrentKey('1'), "E1000001000012" + Pads(kKeyLength - 14));
  EXPECT_EQ(units.CurrentKey('2'), "E2000001000003" + Pads(kKeyLength - 14));

  TTbCounter counters(*db_);
  counters.Rec().KzBezug = 'L';
  counters.Rec().Kennung.Set("LV");
  EXPECT_EQ(counters.CurrentKey('1'), "Z1LLV        " + Pads(kKeyLength - 13));
  EXPECT_EQ(counters.GetMaxIndex(), '1');
}

}  // namespace
}  // namespace korvan::data::testing
