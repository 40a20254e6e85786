// The price comparison over bids stored in an LV database: pseudo-bids, the reference in
// each mode, percentages, deviation marks, unpriced items and the rank list, and a
// property test against an independent computation.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "award/award_tables.h"
#include "award/bid/dm_angebot.h"
#include "award/bid/dm_bieter.h"
#include "award/compare/price_comparison.h"
#include "boq/boq_tables.h"
#include "boq/lv/lv_table_types.h"
#include "boq/model/lv_pos.h"
#include "data/records/null_values.h"
#include "data/tables/data_tables.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "testing/temp_dir.h"

#include "bid_lv_test.h"

namespace korvan::award::compare_tests {
namespace {

template <class T>
T Val(T value) {
  return value;
}

class Comparison : public BidLvTest {
 protected:
  void SetUp() override {
    BidLvTest::SetUp();
    boq::t_Lv_DB_VERSION_3100 header = lv_.FLv();
    header.Ust = 19.0;
    lv_.RefreshLvProperties(header);
  }

  TdmBieter& Bidders() {
    if (!bidders_) bidders_ = std::make_unique<TdmBieter>(*db_, nullptr, lv_, converter_);
    return *bidders_;
  }
  // A bidder with unit prices per line (0: left unpriced), marks and a currency factor.
  void Bid(const std::string& name, const std::map<int, double>& prices,
           const std::map<int, char>& marks = {}, double factor = -1.0) {
    const t_Bieter_DB_VERSION_3100 bidder = Bidders().AddBidder(name, "");
    std::unique_ptr<TdmAngebot> bid = Bidders().OpenBid(bidder);
    for (const auto& [line, price] : prices) bid->SetUnitPrice(line, price);
    for (const auto& [line, mark] : marks) {
      bid->FAList()[static_cast<std::size_t>(line)].Angebot.Kennz = mark;
    }
    bid->Bidder().Waehrungsfaktor = factor;
    bid->Recalculate();
    bid->Save();
  }
  std::unique_ptr<TPriceComparison> Compare(TCompareOptions options = {}) {
    auto comparison = std::make_unique<TPriceComparison>(Bidders(), lv_, options);
    comparison->Run(Bidders().Bidders());
    return comparison;
  }
  static double Up(const TAngebotList& lines, int line) {
    return lines[static_cast<std::size_t>(line)].Angebot.EP.Betrag;
  }
  static double Total(const TAngebotList& lines, int line) {
    return lines[static_cast<std::size_t>(line)].Angebot.GP.Betrag;
  }

  std::unique_ptr<TdmBieter> bidders_;
};

// Three bidders on three items, as a person works it out on paper:
//   A (10 m): Alpha 10, Beta 12, Gamma 15   B (2 St): 50, 40, 45   C (5 m): 20, -, 30
class ThreeBidders : public Comparison {
 protected:
  void SetUp() override {
    Comparison::SetUp();
    first_ = Group();
    a_ = Item(first_, 10);
    b_ = Item(first_, 2);
    second_ = Group();
    c_ = Item(second_, 5);
    lv_[a_].LvBeschr.SchaetzEP.Betrag = 11.0;
    lv_[a_].LvBgBeschr.SchaetzGP.Betrag = 110.0;
    Bid("Alpha", {{a_, 10}, {b_, 50}, {c_, 20}});  // 100 + 100 + 100 = 300
    Bid("Beta", {{a_, 12}, {b_, 40}});             // 120 +  80 +   0 = 200
    Bid("Gamma", {{a_, 15}, {b_, 45}, {c_, 30}});  // 150 +  90 + 150 = 390
  }
  int first_ = 0, a_ = 0, b_ = 0, second_ = 0, c_ = 0;
};

TEST_F(ThreeBidders, PseudoBidsPerLineAndInTotal) {
  const std::unique_ptr<TPriceComparison> comparison = Compare();
  const TAngebotList& mean = comparison->Mean().lines;
  EXPECT_DOUBLE_EQ(Up(mean, a_), 12.33);  // 37 / 3, rounded as any unit price
  EXPECT_DOUBLE_EQ(Total(mean, a_), 123.3);
  EXPECT_DOUBLE_EQ(Up(mean, c_), 25.0);  // the unpriced bid does not count
  EXPECT_DOUBLE_EQ(Total(mean, first_), 213.3);
  EXPECT_DOUBLE_EQ(comparison->Mean().totals.checked, 338.3);
  EXPECT_DOUBLE_EQ(Up(comparison->Median().lines, a_), 12.0);
  EXPECT_DOUBLE_EQ(Up(comparison->Median().lines, c_), 25.0);  // even count: the middle two
  EXPECT_DOUBLE_EQ(comparison->Median().totals.checked, 335.0);
  EXPECT_DOUBLE_EQ(Up(comparison->Ideal().lines, b_), 40.0);
  EXPECT_DOUBLE_EQ(comparison->Ideal().totals.checked, 280.0);
  EXPECT_DOUBLE_EQ(Up(comparison->Highest(), a_), 15.0);
  EXPECT_DOUBLE_EQ(Up(comparison->Lowest(), c_), 20.0);
  EXPECT_DOUBLE_EQ(Total(comparison->Highest(), second_), 150.0);
  EXPECT_DOUBLE_EQ(Val(comparison->Mean().bidder.USt), 19.0F);
  EXPECT_EQ(comparison->Bidders()[0].unpriced, 0);
  EXPECT_EQ(comparison->Bidders()[1].unpriced, 1);
}

TEST_F(ThreeBidders, EveryReferenceMode) {
  struct Case {
    TReferenceMode mode;
    std::optional<int> bidder;
    double total, a_total;
  };
  const Case cases[] = {
      {TReferenceMode::kCheapest, 1, 200, 120},
      {TReferenceMode::kMostExpensive, 2, 390, 150},
      {TReferenceMode::kFirstBidder, 0, 300, 100},
      {TReferenceMode::kMean, {}, 338.3, 123.3},
      {TReferenceMode::kIdeal, {}, 200, 100},
      {TReferenceMode::kEstimate, {}, 0, 110},
      {TReferenceMode::kHighestPerLine, {}, 390, 150},
  };
  for (const Case& c : cases) {
    const std::unique_ptr<TPriceComparison> comparison = Compare({c.mode, 0.0});
    SCOPED_TRACE(ReferenceModeText(c.mode));
    EXPECT_EQ(comparison->ReferenceBidder(), c.bidder);
    EXPECT_DOUBLE_EQ(comparison->ReferenceTotals().checked, c.total);
    EXPECT_DOUBLE_EQ(Total(comparison->Reference(), a_), c.a_total);
    // Gamma's 150 for A against the reference line.
    EXPECT_DOUBLE_EQ(*comparison->PercentOfReference(a_, 15.0, 150.0), 150.0 / c.a_total * 100.0);
  }
}

TEST_F(ThreeBidders, PercentagesMarksAndRanks) {
  const std::unique_ptr<TPriceComparison> comparison = Compare({TReferenceMode::kIdeal, 20.0});
  EXPECT_DOUBLE_EQ(*comparison->PercentOfReference(a_, 10, comparison->Cell(a_, 0).total), 100.0);
  EXPECT_FALSE(comparison->PercentOfReference(c_, 0, comparison->Cell(c_, 1).total));
  EXPECT_DOUBLE_EQ(*comparison->TotalPercentOfReference(0), 150.0);  // 300 against 200
  // A's mean total is 123.30: Gamma's 150 lies 21.7 % above, Alpha's 100 18.9 % below.
  EXPECT_TRUE(comparison->Deviates(a_, 2));
  EXPECT_FALSE(comparison->Deviates(a_, 0));
  EXPECT_FALSE(comparison->Deviates(a_, 1));
  EXPECT_TRUE(comparison->Deviates(c_, 1));       // unpriced: 100 % off the mean
  EXPECT_FALSE(comparison->Deviates(first_, 1));  // groups too: 200 against 213.30
  const std::vector<TRankRow> ranks = comparison->RankList();
  ASSERT_EQ(ranks.size(), 3U);
  EXPECT_EQ(ranks[0].bidder, 1);
  EXPECT_EQ(ranks[1].bidder, 0);
  EXPECT_EQ(ranks[2].bidder, 2);
  EXPECT_EQ(ranks[2].rank, 3);
  EXPECT_FALSE(Compare({TReferenceMode::kIdeal, 0.0})->Deviates(a_, 2));
}

TEST_F(Comparison, TiesKeepTheEarlierBidderAndForeignCurrenciesAreConverted) {
  const int group = Group();
  const int item = Item(group, 4);
  Bid("Erster", {{item, 25}});
  Bid("Zweiter", {{item, 25}});
  Bid("Ausland", {{item, 10}}, {}, 2.0);  // 40 in its currency, 80 in ours
  const std::unique_ptr<TPriceComparison> comparison = Compare({TReferenceMode::kCheapest, 0.0});
  EXPECT_EQ(comparison->ReferenceBidder(), 2);
  EXPECT_DOUBLE_EQ(comparison->Cell(item, 2).up, 20.0);
  EXPECT_DOUBLE_EQ(Up(comparison->Ideal().lines, item), 20.0);
  const std::unique_ptr<TPriceComparison> dearest = Compare({TReferenceMode::kMostExpensive, 0.0});
  EXPECT_EQ(dearest->ReferenceBidder(), 0);  // 100 twice: the first stays
  EXPECT_EQ(dearest->RankList()[0].bidder, 2);
  EXPECT_EQ(dearest->RankList()[1].rank, dearest->RankList()[2].rank);
}

TEST_F(Comparison, DeliberateZeroCountsInTheMeanAnUnmarkedOneDoesNot) {
  const int group = Group();
  const int marked = Item(group, 1);
  const int plain = Item(group, 1);
  Bid("Eins", {{marked, 10}, {plain, 10}});
  Bid("Zwei", {{plain, 0}}, {{marked, kMarkInOther}});
  const std::unique_ptr<TPriceComparison> comparison = Compare();
  EXPECT_DOUBLE_EQ(Up(comparison->Mean().lines, marked), 5.0);
  EXPECT_DOUBLE_EQ(Up(comparison->Mean().lines, plain), 10.0);
  EXPECT_DOUBLE_EQ(Up(comparison->Median().lines, marked), 10.0);  // the median takes no zeros
}

TEST_F(Comparison, NoBiddersNoPseudoBids) {
  Item(Group(), 1);
  const std::unique_ptr<TPriceComparison> comparison = Compare();
  EXPECT_TRUE(comparison->Bidders().empty());
  EXPECT_TRUE(comparison->Mean().lines.empty());
  EXPECT_TRUE(comparison->RankList().empty());
}

// For random bids the pseudo-bids equal a computation of their own, and the rank list is
// the bidders sorted by their checked totals.
TEST_F(Comparison, RandomBidsAgreeWithAnIndependentComputation) {
  std::mt19937 random(24);
  std::vector<int> items;
  for (int g = 0; g < 3; ++g) {
    const int group = Group();
    for (int i = 0; i < 8; ++i) items.push_back(Item(group, 1 + static_cast<int>(random() % 20)));
  }
  const int bidders = 2 + static_cast<int>(random() % 5);
  std::vector<std::map<int, double>> prices(static_cast<std::size_t>(bidders));
  for (int b = 0; b < bidders; ++b) {
    for (int item : items) {
      const double price = random() % 4 == 0 ? 0.0 : static_cast<double>(random() % 100000) / 100;
      prices[static_cast<std::size_t>(b)][item] = price;
    }
    prices[static_cast<std::size_t>(b)][items.front()] = 1.0 + b;  // every bid has a price
    Bid("Bieter " + std::to_string(b), prices[static_cast<std::size_t>(b)]);
  }
  const std::unique_ptr<TPriceComparison> comparison = Compare();
  for (int item : items) {
    std::vector<double> given;
    for (const std::map<int, double>& bid : prices) {
      if (bid.at(item) != 0.0) given.push_back(bid.at(item));
    }
    std::sort(given.begin(), given.end());
    double mean = 0.0, median = 0.0, ideal = 0.0;
    if (!given.empty()) {
      for (double price : given) mean += price;
      mean /= static_cast<double>(given.size());
      const std::size_t n = given.size();
      median = n % 2 == 1 ? given[n / 2] : (given[n / 2 - 1] + given[n / 2]) / 2;
      ideal = given.front();
    }
    EXPECT_NEAR(Up(comparison->Mean().lines, item), mean, 0.005 + 1e-9) << item;
    EXPECT_NEAR(Up(comparison->Median().lines, item), median, 0.005 + 1e-9) << item;
    EXPECT_DOUBLE_EQ(Up(comparison->Ideal().lines, item), ideal) << item;
    EXPECT_DOUBLE_EQ(Up(comparison->Highest(), item), given.empty() ? 0.0 : given.back());
  }
  std::vector<int> expected(static_cast<std::size_t>(bidders));
  for (int b = 0; b < bidders; ++b) expected[static_cast<std::size_t>(b)] = b;
  std::vector<double> totals(static_cast<std::size_t>(bidders), 0.0);
  for (int b = 0; b < bidders; ++b) {
    double total = 0.0;
    for (const auto& [item, price] : prices[static_cast<std::size_t>(b)]) {
      total += std::round(price * lv_[item].LvBeschr.FMenge * 100) / 100;
    }
    totals[static_cast<std::size_t>(b)] = total;
  }
  std::stable_sort(expected.begin(), expected.end(), [&](int x, int y) {
    return totals[static_cast<std::size_t>(x)] < totals[static_cast<std::size_t>(y)];
  });
  std::vector<int> ranked;
  for (const TRankRow& row : comparison->RankList()) {
    ranked.push_back(row.bidder);
    EXPECT_NEAR(comparison->Bidders()[static_cast<std::size_t>(row.bidder)].totals.checked,
                totals[static_cast<std::size_t>(row.bidder)], 0.005);
  }
  EXPECT_EQ(ranked, expected);
}

}  // namespace
}  // namespace korvan::award::compare_tests
