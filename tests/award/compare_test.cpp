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

// "nur Positionen ausgeben, die mindestens ... % der Angebotssumme enthalten": the mean
// bid's total is 1000; at 10 % an item needs a mean total of 100 to be shown.
TEST_F(Comparison, MinimumShareHidesSmallItemsButNoGroups) {
  const int group = Group();
  const int big = Item(group, 1);
  const int edge = Item(group, 1);
  const int small = Item(group, 1);
  Bid("Eins", {{big, 800}, {edge, 100}, {small, 89}});
  Bid("Zwei", {{big, 820}, {edge, 100}, {small, 91}});
  TCompareOptions options;
  EXPECT_TRUE(Compare(options)->Shows(small));
  options.min_share = 10.0;
  const std::unique_ptr<TPriceComparison> comparison = Compare(options);
  ASSERT_DOUBLE_EQ(comparison->Mean().totals.checked,
                   (800.0 + 820.0) / 2 + 100.0 + (89.0 + 91.0) / 2);
  EXPECT_TRUE(comparison->Shows(group));
  EXPECT_TRUE(comparison->Shows(big));
  EXPECT_TRUE(comparison->Shows(edge));  // 100 of 1000: exactly the share
  EXPECT_FALSE(comparison->Shows(small));
  options.min_share = 95.0;
  EXPECT_TRUE(Compare(options)->Shows(group));
}

// The bidders taken are the marked ones, or all when none is marked.
TEST_F(Comparison, MarkedBiddersAloneAreCompared) {
  const int item = Item(Group(), 2);
  Bid("Eins", {{item, 10}});
  Bid("Zwei", {{item, 20}});
  Bid("Drei", {{item, 60}});
  EXPECT_EQ(MarkedOrAll(Bidders().Bidders()).size(), 3U);
  for (int b : {0, 2}) {
    std::unique_ptr<TdmAngebot> bid = Bidders().OpenBid(Bidders().Bidders()[b]);
    bid->Bidder().markiert = 1;
    bid->Save();
  }
  const std::vector<t_Bieter_DB_VERSION_3100> marked = MarkedOrAll(Bidders().Bidders());
  ASSERT_EQ(marked.size(), 2U);
  EXPECT_EQ(marked[0].Bietername.Get(), "Eins");
  EXPECT_EQ(marked[1].Bietername.Get(), "Drei");
  TPriceComparison comparison(Bidders(), lv_);
  comparison.Run(marked);
  EXPECT_DOUBLE_EQ(Up(comparison.Mean().lines, item), (10.0 + 60.0) / 2);
  EXPECT_DOUBLE_EQ(comparison.Ideal().totals.checked, 2 * 10.0);
  EXPECT_EQ(comparison.ReferenceBidder(), std::nullopt);
}

// "alle Eventualpositionen mit einrechnen": a contingency item without total counts in
// every bid, the pseudo-bids and the unpriced count, for the comparison only.
TEST_F(Comparison, ContingencyItemsCountOnlyWhenAsked) {
  const int group = Group();
  const int item = Item(group, 2);
  const int contingency = Item(group, 3);
  lv_[contingency].LvBgBeschr.Bedarf = 'E';
  Bid("Eins", {{item, 10}, {contingency, 5}});
  Bid("Zwei", {{item, 12}});
  const std::unique_ptr<TPriceComparison> without = Compare();
  EXPECT_DOUBLE_EQ(without->Bidders()[0].totals.checked, 2 * 10.0);
  EXPECT_DOUBLE_EQ(without->Mean().totals.checked, 2 * (10.0 + 12.0) / 2);
  EXPECT_EQ(without->Bidders()[1].unpriced, 0);
  EXPECT_FALSE(without->IsPriced(contingency));
  TCompareOptions options;
  options.with_contingency = true;
  const std::unique_ptr<TPriceComparison> with = Compare(options);
  EXPECT_DOUBLE_EQ(with->Bidders()[0].totals.checked, 2 * 10.0 + 3 * 5.0);
  EXPECT_DOUBLE_EQ(with->Cell(contingency, 0).total, 3 * 5.0);
  EXPECT_DOUBLE_EQ(with->Mean().totals.checked, 2 * (10.0 + 12.0) / 2 + 3 * 5.0);
  EXPECT_DOUBLE_EQ(with->Ideal().totals.checked, 2 * 10.0 + 3 * 5.0);
  EXPECT_EQ(with->Bidders()[1].unpriced, 1);
  // What is stored stays without it.
  EXPECT_DOUBLE_EQ(Bidders().Bidders()[0].Summe.Betrag, 2 * 10.0);
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

// The check: three bidders on a 20-item LV in three groups, worked out on paper.
// Beta gives 5 % off its whole bid and marks item 5 "in anderer Pos. enthalten" at EP 0;
// Gamma leaves item 12 unpriced. Every expected figure below is the arithmetic a person
// writes down from this table.
class ByHand : public Comparison {
 protected:
  struct Row {
    double quantity, alpha, beta, gamma;
  };
  static constexpr Row kRows[20] = {
      // group 1
      {100, 12.00, 13.50, 11.40},    // 1
      {40, 25.00, 24.00, 26.60},     // 2
      {12, 80.00, 75.00, 85.00},     // 3
      {250, 4.20, 3.90, 4.50},       // 4
      {6, 150.00, 0.00, 135.00},     // 5: Beta "E"
      {30, 18.00, 19.20, 17.40},     // 6
      {1, 900.00, 750.00, 1200.00},  // 7
      // group 2
      {80, 45.00, 42.00, 48.00},     // 8
      {24, 60.00, 66.00, 57.00},     // 9
      {15, 110.00, 104.00, 113.00},  // 10
      {200, 2.40, 2.70, 2.10},       // 11
      {9, 210.00, 195.00, 0.00},     // 12: Gamma unpriced
      {50, 14.00, 15.50, 13.10},     // 13
      {3, 330.00, 345.00, 300.00},   // 14
      // group 3
      {120, 22.00, 20.50, 23.50},   // 15
      {60, 9.90, 10.50, 9.00},      // 16
      {18, 36.00, 33.00, 39.00},    // 17
      {300, 1.50, 1.80, 1.20},      // 18
      {10, 75.00, 72.00, 84.00},    // 19
      {2, 420.00, 450.00, 390.00},  // 20
  };

  void SetUp() override {
    Comparison::SetUp();
    for (int n = 0; n < 20; ++n) {
      if (n == 0 || n == 7 || n == 14) groups_.push_back(Group());
      items_.push_back(Item(groups_.back(), kRows[n].quantity));
    }
    std::map<int, double> alpha, beta, gamma;
    for (int n = 0; n < 20; ++n) {
      alpha[items_[n]] = kRows[n].alpha;
      beta[items_[n]] = kRows[n].beta;
      gamma[items_[n]] = kRows[n].gamma;
    }
    Bid("Alpha", alpha);
    Bid("Beta", beta, {{Pos(5), kMarkInOther}});
    Bid("Gamma", gamma);
    std::unique_ptr<TdmAngebot> bid = Bidders().OpenBid(Bidders().Bidders()[1]);
    bid->Bidder().NachlassProz = 5.0F;
    bid->Recalculate();
    bid->Save();
  }
  // Each bidder's group totals: quantity times price, item by item.
  static constexpr double kAlpha[3] = {
      100 * 12.00 + 40 * 25.00 + 12 * 80.00 + 250 * 4.20 + 6 * 150.00 + 30 * 18.00 + 900.00,
      80 * 45.00 + 24 * 60.00 + 15 * 110.00 + 200 * 2.40 + 9 * 210.00 + 50 * 14.00 + 3 * 330.00,
      120 * 22.00 + 60 * 9.90 + 18 * 36.00 + 300 * 1.50 + 10 * 75.00 + 2 * 420.00};
  static constexpr double kBeta[3] = {
      100 * 13.50 + 40 * 24.00 + 12 * 75.00 + 250 * 3.90 + 6 * 0.00 + 30 * 19.20 + 750.00,
      80 * 42.00 + 24 * 66.00 + 15 * 104.00 + 200 * 2.70 + 9 * 195.00 + 50 * 15.50 + 3 * 345.00,
      120 * 20.50 + 60 * 10.50 + 18 * 33.00 + 300 * 1.80 + 10 * 72.00 + 2 * 450.00};
  static constexpr double kGamma[3] = {
      100 * 11.40 + 40 * 26.60 + 12 * 85.00 + 250 * 4.50 + 6 * 135.00 + 30 * 17.40 + 1200.00,
      80 * 48.00 + 24 * 57.00 + 15 * 113.00 + 200 * 2.10 + 9 * 0.00 + 50 * 13.10 + 3 * 300.00,
      120 * 23.50 + 60 * 9.00 + 18 * 39.00 + 300 * 1.20 + 10 * 84.00 + 2 * 390.00};

  // The line of item n (1 to 20).
  int Pos(int n) const { return items_[static_cast<std::size_t>(n - 1)]; }
  int GroupLine(int g) const { return groups_[static_cast<std::size_t>(g - 1)]; }

  std::vector<int> groups_;
  std::vector<int> items_;
};

TEST_F(ByHand, TotalsDiscountAndRanks) {
  const std::unique_ptr<TPriceComparison> comparison = Compare();
  const double* per_bidder[] = {kAlpha, kBeta, kGamma};
  for (int b = 0; b < 3; ++b) {
    double sum = 0.0;
    for (int g = 1; g <= 3; ++g) {
      EXPECT_NEAR(comparison->Cell(GroupLine(g), b).total, per_bidder[b][g - 1], 0.001)
          << "bidder " << b << " group " << g;
      sum += per_bidder[b][g - 1];
    }
    EXPECT_NEAR(comparison->Bidders()[static_cast<std::size_t>(b)].totals.checked, sum, 0.001);
  }
  const double beta_total = kBeta[0] + kBeta[1] + kBeta[2];
  EXPECT_NEAR(comparison->Bidders()[1].totals.after_discount, beta_total * 0.95, 0.001);
  // Beta is cheapest only after its discount: 20 865,80 against Gamma's 21 801,00.
  const std::vector<TRankRow> ranks = comparison->RankList();
  ASSERT_EQ(ranks.size(), 3U);
  EXPECT_EQ(ranks[0].bidder, 1);
  EXPECT_EQ(ranks[1].bidder, 2);
  EXPECT_EQ(ranks[2].bidder, 0);
  // Both EP-0 items count as unpriced, the deliberate one too.
  EXPECT_EQ(comparison->Bidders()[0].unpriced, 0);
  EXPECT_EQ(comparison->Bidders()[1].unpriced, 1);
  EXPECT_EQ(comparison->Bidders()[2].unpriced, 1);
}

TEST_F(ByHand, MeanMedianIdealAndReference) {
  const std::unique_ptr<TPriceComparison> comparison = Compare({TReferenceMode::kIdeal, 20.0});
  // Mean EPs: the three prices over 3; item 5 counts Beta's deliberate 0, item 12 only
  // the two priced bids.
  const double mean_groups[] = {
      100 * (12.00 + 13.50 + 11.40) / 3 + 40 * (25.00 + 24.00 + 26.60) / 3 +
          12 * (80.00 + 75.00 + 85.00) / 3 + 250 * (4.20 + 3.90 + 4.50) / 3 +
          6 * (150.00 + 0.00 + 135.00) / 3 + 30 * (18.00 + 19.20 + 17.40) / 3 +
          (900.00 + 750.00 + 1200.00) / 3,
      80 * (45.00 + 42.00 + 48.00) / 3 + 24 * (60.00 + 66.00 + 57.00) / 3 +
          15 * (110.00 + 104.00 + 113.00) / 3 + 200 * (2.40 + 2.70 + 2.10) / 3 +
          9 * (210.00 + 195.00) / 2 + 50 * (14.00 + 15.50 + 13.10) / 3 +
          3 * (330.00 + 345.00 + 300.00) / 3,
      120 * (22.00 + 20.50 + 23.50) / 3 + 60 * (9.90 + 10.50 + 9.00) / 3 +
          18 * (36.00 + 33.00 + 39.00) / 3 + 300 * (1.50 + 1.80 + 1.20) / 3 +
          10 * (75.00 + 72.00 + 84.00) / 3 + 2 * (420.00 + 450.00 + 390.00) / 3};
  const TPseudoBid& mean = comparison->Mean();
  EXPECT_NEAR(Up(mean.lines, Pos(5)), (150.00 + 0.00 + 135.00) / 3, 0.001);
  EXPECT_NEAR(Up(mean.lines, Pos(12)), (210.00 + 195.00) / 2, 0.001);
  for (int g = 1; g <= 3; ++g) {
    EXPECT_NEAR(Total(mean.lines, GroupLine(g)), mean_groups[g - 1], 0.001) << g;
  }
  const double mean_total = mean_groups[0] + mean_groups[1] + mean_groups[2];
  EXPECT_NEAR(mean.totals.checked, mean_total, 0.001);
  // The mean bid's discount is the bidders' discounts over 3: Beta's 5 % alone.
  const double beta_discount = 0.05 * (kBeta[0] + kBeta[1] + kBeta[2]);
  EXPECT_NEAR(mean.totals.after_discount, mean_total - std::round(beta_discount / 3 * 100) / 100,
              0.001);

  // Median: the middle price, which is Alpha's on every item but 5 and 12, where only two
  // prices are non-zero and their mean is taken.
  const double alpha_total = kAlpha[0] + kAlpha[1] + kAlpha[2];
  const double median_total =
      alpha_total - 6 * 150.00 + 6 * (150.00 + 135.00) / 2 - 9 * 210.00 + 9 * (210.00 + 195.00) / 2;
  EXPECT_NEAR(comparison->Median().totals.checked, median_total, 0.001);
  EXPECT_NEAR(Up(comparison->Median().lines, Pos(5)), (150.00 + 135.00) / 2, 0.001);

  // Ideal: the lowest non-zero total of every item.
  const double ideal_groups[] = {
      100 * 11.40 + 40 * 24.00 + 12 * 75.00 + 250 * 3.90 + 6 * 135.00 + 30 * 17.40 + 750.00,
      80 * 42.00 + 24 * 57.00 + 15 * 104.00 + 200 * 2.10 + 9 * 195.00 + 50 * 13.10 + 3 * 300.00,
      120 * 20.50 + 60 * 9.00 + 18 * 33.00 + 300 * 1.20 + 10 * 72.00 + 2 * 390.00};
  const double ideal_total = ideal_groups[0] + ideal_groups[1] + ideal_groups[2];
  EXPECT_NEAR(comparison->Ideal().totals.checked, ideal_total, 0.001);
  EXPECT_NEAR(Up(comparison->Ideal().lines, Pos(5)), 135.00, 0.001);
  EXPECT_NEAR(Up(comparison->Highest(), Pos(7)), 1200.00, 0.001);
  EXPECT_NEAR(Up(comparison->Lowest(), Pos(12)), 195.00, 0.001);

  // Percentages against the ideal bid's lines.
  EXPECT_NEAR(*comparison->PercentOfReference(Pos(7), 1200.00, 1200.00), 1200.00 / 750.00 * 100,
              1e-9);
  // In total the ideal mode takes the lowest checked total of a bidder as 100 %: Gamma's,
  // for Beta's is only lower after its discount.
  const double gamma_total = kGamma[0] + kGamma[1] + kGamma[2];
  EXPECT_NEAR(comparison->ReferenceTotals().checked, gamma_total, 0.001);
  EXPECT_NEAR(*comparison->TotalPercentOfReference(0), alpha_total / gamma_total * 100, 1e-9);
  // More than 20 % from the mean: item 7 at 750 and 1200 against 950, the two zeros.
  EXPECT_FALSE(comparison->Deviates(Pos(7), 0));  // 900: 5.3 %
  EXPECT_TRUE(comparison->Deviates(Pos(7), 1));   // 750: 21.1 %
  EXPECT_TRUE(comparison->Deviates(Pos(7), 2));   // 1200: 26.3 %
  EXPECT_TRUE(comparison->Deviates(Pos(5), 1));
  EXPECT_TRUE(comparison->Deviates(Pos(12), 2));
  EXPECT_FALSE(comparison->Deviates(Pos(14), 2));  // 900 against 975: 7.7 %
}

}  // namespace
}  // namespace korvan::award::compare_tests
