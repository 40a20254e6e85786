// The bidders by rank and the price comparison as lists a window drives: the figures of
// `korvan bidder list` and `korvan compare`, columns that follow the bidders, marks where a
// price is far from the mean.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/commands/lv/lv_project.h"
#include "app/modules/dm_preisspiegel.h"
#include "app/modules/dm_rangliste.h"
#include "data/component/column_view.h"
#include "testing/small_lv.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

using testing::kSmallLv;
using testing::kSmallLvProject;

class AwardLists : public ::testing::Test {
 protected:
  void SetUp() override {
    base_ = testing::MakeSmallLv(dir_).string();
    testing::AddSmallBids(base_);
    LvProject target(base_, kSmallLvProject);
    target.Db(false);
    lv_id_ = target.ResolveLv(kSmallLv);
  }
  korvan::testing::TempDir dir_;
  std::string base_;
  int32_t lv_id_ = 0;
};

TEST_F(AwardLists, BiddersComeInTheOrderOfTheirRanks) {
  TdmRangliste ranks(base_, kSmallLvProject, lv_id_);
  ASSERT_TRUE(ranks.Loaded()) << ranks.LastError();
  ASSERT_EQ(ranks.CData1.GetRmax(), 2);
  const data::TStringList first = ranks.CData1.Data2Screen(1);
  EXPECT_EQ(first[TdmRangliste::cRang], "1");
  EXPECT_EQ(first[TdmRangliste::cBieter], "Musterbau GmbH");
  EXPECT_EQ(first[TdmRangliste::cGeprueft], "69,00");  // 10 × 5,50 + 2 × 7,00
  EXPECT_EQ(ranks.BidderNumberOf(2), 2);
  EXPECT_EQ(ranks.CData1.Data2Screen(2)[TdmRangliste::cGeprueft], "88,00");
  EXPECT_EQ(data::ColumnCaption(ranks.CData1.Struktur()[TdmRangliste::cNachNl]), "Summe ./. NL");
}

TEST_F(AwardLists, ComparisonShowsTheBiddersSideBySideAndMarksFarPrices) {
  TdmPreisspiegel comparison(base_, kSmallLvProject, lv_id_, 10.0);
  ASSERT_TRUE(comparison.Loaded()) << comparison.LastError();
  data::TCData& cdata = comparison.CData1;
  std::vector<std::string> captions;
  for (const data::TColumnDef& column : cdata.Struktur().Columns()) {
    captions.push_back(data::ColumnCaption(column));
  }
  EXPECT_EQ(captions, (std::vector<std::string>{"OZ", "Kurztext", "Musterbau GmbH", "Zweitbau",
                                                "Mittelwert", "Medianwert", "Idealangebot"}));
  int verfuellen = 0;
  for (int z = 1; z <= cdata.GetRmax(); ++z) {
    if (cdata.Data2Screen(z)[0] == "01.01.0002") verfuellen = z;
  }
  ASSERT_NE(verfuellen, 0);
  const int first = TdmPreisspiegel::kFirstBidColumn;
  EXPECT_EQ(cdata.Data2Screen(verfuellen)[first], "14,00");
  EXPECT_EQ(cdata.Data2Screen(verfuellen)[first + 1], "40,00");
  // The mean is 27,00: both are more than 10 % away from it.
  EXPECT_TRUE(comparison.Deviates(verfuellen, first));
  EXPECT_TRUE(comparison.Deviates(verfuellen, first + 1));
  EXPECT_FALSE(comparison.Deviates(verfuellen, 1));
  const data::TStringList total = cdata.Data2Screen(cdata.GetRmax());
  EXPECT_EQ(total[1], "Summe geprüft");
  EXPECT_EQ(total[first], "69,00");
  ASSERT_EQ(comparison.Totals().size(), 2u);
  EXPECT_EQ(comparison.Totals()[1].first, "Zweitbau");
  EXPECT_DOUBLE_EQ(comparison.Totals()[1].second, 88.0);

  TdmPreisspiegel unmarked(base_, kSmallLvProject, lv_id_, 0.0);
  ASSERT_TRUE(unmarked.Loaded());
  EXPECT_FALSE(unmarked.Deviates(verfuellen, first));
}

}  // namespace
}  // namespace korvan::app
