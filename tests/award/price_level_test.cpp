// "Mittelwerte bilden" and the price database: the mean of an item under every exclusion
// mode and the weighting, the quarter's level, and price entries passed, averaged and
// stated relative to a base.
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

#include "award/award_tables.h"
#include "award/prices/dm_price_levels.h"
#include "award/prices/mean_value.h"
#include "award/prices/price_table_types.h"
#include "data/records/int_date.h"
#include "data/records/null_values.h"
#include "data/tables/data_tables.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "testing/temp_dir.h"

namespace korvan::award::price_level_tests {
namespace {

template <class T>
T Val(T value) {
  return value;
}

TEST(MeanValue, ArithmeticMeanSkipsZeroBidsAndNeedsOne) {
  const TMeanValueOptions options;
  EXPECT_DOUBLE_EQ(*MeanItemPrice({10, 0, 20, 30}, options), 20.0);
  EXPECT_FALSE(MeanItemPrice({0, 0}, options));
  EXPECT_FALSE(MeanItemPrice({}, options));
}

TEST(MeanValue, ExclusionModes) {
  TMeanValueOptions options;
  options.exclusion = true;
  // Mode 1: the mean of 10, 11 and 15 is 12; 15 lies 25 % above it, 10 16.7 % below.
  options.mode = TExclusionMode::kFromMean;
  options.mean_threshold = 20;
  EXPECT_DOUBLE_EQ(*MeanItemPrice({10, 11, 15}, options), 10.5);
  options.mean_threshold = 0;
  EXPECT_FALSE(MeanItemPrice({10, 11, 15}, options));
  // Mode 2: against the second bidder's 10; 13 lies 30 % above.
  options.mode = TExclusionMode::kFromBidder;
  options.deviation_bidder = 1;
  options.bidder_threshold = 25;
  EXPECT_DOUBLE_EQ(*MeanItemPrice({12, 10, 13}, options), 11.0);
  options.deviation_bidder = 7;  // no such bidder: nothing to measure against
  EXPECT_FALSE(MeanItemPrice({12, 10, 13}, options));
  // Mode 3: against the cheapest; a single zero bid makes it 0 and takes nothing.
  options.mode = TExclusionMode::kFromCheapest;
  options.cheapest_threshold = 10;
  EXPECT_DOUBLE_EQ(*MeanItemPrice({10, 10.5, 12}, options), 10.25);
  EXPECT_FALSE(MeanItemPrice({10, 0, 12}, options));
}

TEST(MeanValue, WeightedWithABaseBidder) {
  TMeanValueOptions options;
  options.weighted = true;
  options.base_bidder = 0;
  options.SetBaseShare(40);
  EXPECT_DOUBLE_EQ(options.rest_share, 60.0);
  // (100 × 40 + mean(50, 70) × 60) / 100; the base does not count among the others.
  EXPECT_DOUBLE_EQ(*MeanItemPrice({100, 50, 70}, options), 76.0);
  EXPECT_FALSE(MeanItemPrice({100, 0, 0}, options));  // a base alone gives no result
  options.base_share = 50;  // shares not adding up to 100 scale the result
  options.rest_share = 60;
  EXPECT_DOUBLE_EQ(*MeanItemPrice({100, 50, 70}, options), 86.0);
}

TEST(MeanValue, QuarterNamesAndAveraging) {
  EXPECT_EQ(QuarterLevelName(20240101), "1/2024");
  EXPECT_EQ(QuarterLevelName(20240331), "1/2024");
  EXPECT_EQ(QuarterLevelName(20240701), "3/2024");
  EXPECT_EQ(QuarterLevelName(20241231), "4/2024");
  EXPECT_EQ(QuarterLevelName(240515), "2/2024");  // a two-digit year
  EXPECT_DOUBLE_EQ(AveragedPrice(std::nullopt, 12), 12.0);
  // Each repetition halves the weight of what was there: 8, then 16, then 16.
  double price = AveragedPrice(std::nullopt, 8);
  price = AveragedPrice(price, 24);
  EXPECT_DOUBLE_EQ(price, 16.0);
  EXPECT_DOUBLE_EQ(AveragedPrice(price, 16), 16.0);
}

class PriceDb : public ::testing::Test {
 protected:
  void SetUp() override {
    data::TTableRegistry registry;
    data::RegisterDataTables(registry);
    RegisterAwardTables(registry);
    db_ =
        std::make_unique<data::TStdDb>(kPriceDbGroup, dir_.path().string() + "/", kPriceDbType, 70);
    db_->SetModifiedById("ALICE");
    ASSERT_EQ(db_->DbCreate(), 0);
  }
  void TearDown() override {
    db_.reset();
    data::TStdDbDatas::Instance().ReleaseEmpty();
  }
  korvan::testing::TempDir dir_;
  std::unique_ptr<data::TStdDb> db_;
};

TEST_F(PriceDb, LevelsAreFoundByNameOrCreated) {
  TdmPrNiveau levels(*db_, "ALICE");
  EXPECT_FALSE(levels.Find("3/2024"));
  const t_PrNiveau created = levels.FindOrCreate("3/2024");
  const t_PrNiveau other = levels.FindOrCreate("Kostenstand Ö-Süd");
  EXPECT_NE(Val(created.Id), Val(other.Id));
  EXPECT_EQ(Val(levels.FindOrCreate("3/2024").Id), Val(created.Id));
  EXPECT_EQ(levels.Find("Kostenstand Ö-Süd")->Bez.Get(), "Kostenstand Ö-Süd");
  EXPECT_EQ(created.CreateUser.Get(), "ALICE");
  EXPECT_EQ(Val(created.CreateDate), data::TodayAsIntDate());
  EXPECT_FALSE(levels.Find("3/202"));  // a name is matched whole
}

TEST_F(PriceDb, PricesArePassedLimitedAveragedAndRelative) {
  TdmPrEntry entries(*db_, "BOB");
  const TPriceOrigin origin{5, 9};
  EXPECT_TRUE(entries.PassPrice(1, 100, 20.0, origin));
  EXPECT_DOUBLE_EQ(Val(entries.Find(1, 100)->Wert.Betrag), 20.0);
  EXPECT_EQ(Val(entries.Find(1, 100)->IdBieter), 9);
  EXPECT_FALSE(entries.Find(2, 100));
  // 25 lies 25 % above 20: refused with a 10 % limit, taken and averaged with 30 %.
  EXPECT_FALSE(entries.PassPrice(1, 100, 25.0, origin, {10.0, true}));
  EXPECT_DOUBLE_EQ(Val(entries.Find(1, 100)->Wert.Betrag), 20.0);
  EXPECT_TRUE(entries.PassPrice(1, 100, 25.0, origin, {30.0, true}));
  EXPECT_DOUBLE_EQ(Val(entries.Find(1, 100)->Wert.Betrag), 22.5);
  EXPECT_TRUE(entries.PassPrice(1, 100, 30.0, origin));
  const t_PrEntry base = *entries.Find(1, 100);
  EXPECT_DOUBLE_EQ(entries.BasePrice(base), 30.0);

  entries.PassPrice(1, 200, 99.0, origin);
  const int32_t relative = entries.Find(1, 200)->Id;
  entries.SetPercentOfBase(base.Id, 110);  // the base at 110 %: 33
  const t_PrEntry stated = entries.SetBase(relative, base.Id, 50);
  EXPECT_DOUBLE_EQ(Val(stated.ProzFak), 0.5);
  EXPECT_DOUBLE_EQ(entries.BasePrice(stated), 16.5);
  EXPECT_EQ(stated.ModifyUser.Get(), "BOB");
  EXPECT_THROW(entries.SetPercentOfBase(4711, 10), EPriceDbError);
  EXPECT_THROW(entries.SetBase(relative, relative, 10), EPriceDbError);
}

}  // namespace
}  // namespace korvan::award::price_level_tests
