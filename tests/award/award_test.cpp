// The award: a bid's prices into the LV's award or estimated prices, the discounts and lump
// sums kept whole or spread in two passes, foreign currencies, free quantities, second
// awards of supplement items, and the check before anything changes.
#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "award/award/award_run.h"
#include "award/award/bid_price_transfer.h"
#include "award/award_tables.h"
#include "award/bid/dm_bieter.h"
#include "boq/boq_tables.h"
#include "boq/lv/lv_table_types.h"
#include "boq/model/lv_pos.h"
#include "data/records/null_values.h"
#include "data/tables/data_tables.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "testing/temp_dir.h"

#include "bid_lv_test.h"

namespace korvan::award {
namespace {

template <class T>
T Copied(T value) {
  return value;
}

// The transfer options of a test: spreading, the bid's quantities, the target column.
TTransferOptions Options(bool spread, std::optional<bool> quantities = std::nullopt,
                         TBidPriceTarget target = TBidPriceTarget::kAward) {
  TTransferOptions options;
  options.spread = spread;
  options.bid_quantities = quantities;
  options.target = target;
  return options;
}

class Award : public BidLvTest {
 protected:
  void SetUp() override {
    BidLvTest::SetUp();
    boq::t_Lv_DB_VERSION_3100 header = lv_.FLv();
    header.Status = 'B';
    lv_.RefreshLvProperties(header);
  }

  int Group(const char* oz) {
    const int group = BidLvTest::Group();
    lv_[group].SetOz(oz);
    return group;
  }
  int Item(int group, const char* oz, double quantity) {
    const int item = BidLvTest::Item(group, quantity);
    lv_[item].SetOz(oz);
    return item;
  }
  std::unique_ptr<TdmAngebot> Open() {
    TdmBieter bidders(*db_, nullptr, lv_, converter_);
    return bidders.OpenBid(bidders.AddBidder("Musterbau", ""));
  }
  static t_Angebot_DB_VERSION_201501& Line(TdmAngebot& bid, int line) {
    return bid.FAList()[static_cast<std::size_t>(line)].Angebot;
  }
  double AwardPrice(int line) const { return lv_[line].LvBeschr.VergabeEP.Betrag; }

  // A group "01" with two items priced 10 and 20, opened and recalculated.
  std::unique_ptr<TdmAngebot> TwoItemBid() {
    const int group = Group("01");
    first_ = Item(group, "01.0001", 10);
    second_ = Item(group, "01.0002", 5);
    std::unique_ptr<TdmAngebot> bid = Open();
    Line(*bid, first_).EP.Betrag = 10;
    Line(*bid, second_).EP.Betrag = 20;
    bid->Recalculate();
    return bid;
  }

  int first_ = 0;
  int second_ = 0;
};

TEST_F(Award, ForeignCurrencyPricesAreConvertedBeforeRounding) {
  std::unique_ptr<TdmAngebot> bid = TwoItemBid();
  Line(*bid, first_).EPAnteil[0].Betrag = 4;
  Line(*bid, first_).EPAnteil[1].Betrag = 6;
  bid->Recalculate();
  bid->Bidder().Waehrungsfaktor = 1.23456;
  const TTransferResult result = TransferBidPrices(*bid, lv_, {});
  EXPECT_EQ(result.items, 2);
  EXPECT_DOUBLE_EQ(AwardPrice(first_), 12.35);                              // 12.3456
  EXPECT_DOUBLE_EQ(AwardPrice(second_), 24.69);                             // 24.6912
  EXPECT_DOUBLE_EQ(Copied(lv_[first_].LvBeschr.EPAnteil[0].Betrag), 4.94);  // 4.93824
  EXPECT_DOUBLE_EQ(Copied(lv_[first_].LvBeschr.AbrechnungsEP.Betrag), 12.35);
  EXPECT_EQ(Copied(lv_[first_].LvBgBeschr.IdAngebot), Copied(bid->Bidder().ID));
  // The estimate column takes the same converted price and leaves the award price alone.
  lv_[second_].LvBeschr.VergabeEP.Betrag = 0;
  TransferBidPrices(*bid, lv_, Options(false, std::nullopt, TBidPriceTarget::kEstimate));
  EXPECT_DOUBLE_EQ(Copied(lv_[second_].LvBeschr.SchaetzEP.Betrag), 24.69);
  EXPECT_DOUBLE_EQ(AwardPrice(second_), 0.0);
}

TEST_F(Award, WithoutSpreadingTheLvTakesTheBidsDiscountLumpSumAndCashDiscount) {
  std::unique_ptr<TdmAngebot> bid = TwoItemBid();
  bid->Bidder().NachlassProz = 3;
  bid->Bidder().NachlassAbs.Betrag = 50;
  bid->Bidder().Waehrungsfaktor = 2;
  bid->Bidder().CashDiscount[0].DiscountPcnt = 2;
  bid->Bidder().CashDiscount[0].CashDiscDays.Days = 14;
  const TTransferResult result = TransferBidPrices(*bid, lv_, {});
  EXPECT_TRUE(result.whole_bid_values);
  EXPECT_DOUBLE_EQ(result.factor, 1.0);
  EXPECT_DOUBLE_EQ(AwardPrice(first_), 20.0);
  EXPECT_DOUBLE_EQ(Copied(lv_.FLv().NachlassProz), 3.0);
  EXPECT_DOUBLE_EQ(Copied(lv_.FLv().NachlassAbs.Betrag), 100.0);
  EXPECT_DOUBLE_EQ(Copied(lv_.FLv().CashDiscount[0].DiscountPcnt), 2.0);
  EXPECT_EQ(Copied(lv_.FLv().CashDiscount[0].CashDiscDays.Days), 14);
}

TEST_F(Award, SpreadFactorsOfTheWholeBid) {
  std::unique_ptr<TdmAngebot> bid = TwoItemBid();  // checked total 200
  const TTransferOptions spread = Options(true, false);
  // A lump sum equal to the checked total changes nothing.
  bid->Bidder().SummePsch.Betrag = 200;
  TTransferResult result = TransferBidPrices(*bid, lv_, spread);
  EXPECT_FALSE(result.whole_bid_values);
  EXPECT_DOUBLE_EQ(result.factor, 1.0);
  EXPECT_DOUBLE_EQ(AwardPrice(first_), 10.0);
  EXPECT_DOUBLE_EQ(AwardPrice(second_), 20.0);
  EXPECT_DOUBLE_EQ(Copied(lv_.FLv().SummePsch.Betrag), 0.0);
  // A lump sum of 150 is 3/4 of it; a discount percent then wins over the lump sum.
  bid->Bidder().SummePsch.Betrag = 150;
  EXPECT_DOUBLE_EQ(TransferBidPrices(*bid, lv_, spread).factor, 0.75);
  EXPECT_DOUBLE_EQ(AwardPrice(second_), 15.0);
  bid->Bidder().NachlassProz = 5;
  result = TransferBidPrices(*bid, lv_, spread);
  EXPECT_DOUBLE_EQ(result.factor, 0.95);
  EXPECT_DOUBLE_EQ(AwardPrice(first_), 9.5);
  EXPECT_DOUBLE_EQ(AwardPrice(second_), 19.0);
  // An absolute discount alone: 1 - 20 / 200.
  bid->Bidder().NachlassProz = 0;
  bid->Bidder().SummePsch.Betrag = 0;
  bid->Bidder().NachlassAbs.Betrag = 20;
  EXPECT_DOUBLE_EQ(TransferBidPrices(*bid, lv_, spread).factor, 0.9);
}

TEST_F(Award, SecondPassScalesByItemDiscountsAndThirdByGroupsButNotAtOnePercent) {
  const int one = Group("01");
  const int in_one = Item(one, "01.0001", 1);
  const int two = Group("02");
  const int in_two = Item(two, "02.0001", 1);
  const int in_two_discounted = Item(two, "02.0002", 1);
  std::unique_ptr<TdmAngebot> bid = Open();
  for (int line : {in_one, in_two, in_two_discounted}) Line(*bid, line).EP.Betrag = 100;
  Line(*bid, one).NachlassProz = 1;
  Line(*bid, two).NachlassProz = 2;
  Line(*bid, in_two_discounted).NachlassProz = 10;
  bid->Recalculate();
  const TTransferResult result = TransferBidPrices(*bid, lv_, Options(true, false));
  EXPECT_EQ(result.scaled_by_item_discount, 1);
  EXPECT_EQ(result.scaled_groups, 1);
  EXPECT_DOUBLE_EQ(AwardPrice(in_one), 100.0);  // 1 % is the mark for "nothing to do"
  EXPECT_DOUBLE_EQ(AwardPrice(in_two), 98.0);
  EXPECT_DOUBLE_EQ(AwardPrice(in_two_discounted), 100.0 * 0.9 * 0.98);
  // Without spreading the groups keep their discounts as the LV's own.
  TransferBidPrices(*bid, lv_, {});
  EXPECT_DOUBLE_EQ(Copied(lv_[two].LvBgBeschr.NachlassProz), 2.0);
  EXPECT_DOUBLE_EQ(AwardPrice(in_two), 100.0);
}

TEST_F(Award, FreeQuantitiesAlwaysTakeTheBidQuantity) {
  const int group = Group("01");
  const int free = Item(group, "01.0001", 0);
  lv_[free].LvBeschr.KzFrMenge = 1;
  const int split = Item(group, "01.0002", 3);
  lv_[split].LvBeschr.KzTeilmengen = 1;
  std::unique_ptr<TdmAngebot> bid = Open();
  Line(*bid, free).EP.Betrag = 2;
  Line(*bid, free).AMenge = 7;
  Line(*bid, split).EP.Betrag = 2;
  bid->Recalculate();
  Line(*bid, split).AMenge = 4;  // as a bid with its own quantity states it
  TTransferResult result = TransferBidPrices(*bid, lv_, Options(false, false));
  EXPECT_DOUBLE_EQ(Copied(lv_[free].LvBeschr.FMenge), 7.0);
  EXPECT_DOUBLE_EQ(Copied(lv_[free].LvBeschr.AngMenge), 7.0);
  EXPECT_DOUBLE_EQ(Copied(lv_[split].LvBeschr.FMenge), 3.0);
  EXPECT_EQ(result.quantities_refused, 0);
  // Taking the bid's quantities cannot change one made of partial quantities.
  result = TransferBidPrices(*bid, lv_, Options(false, true));
  EXPECT_EQ(result.quantities_refused, 1);
  EXPECT_DOUBLE_EQ(Copied(lv_[split].LvBeschr.FMenge), 3.0);
}

TEST_F(Award, ASecondAwardPricesOnlyTheSupplementItemsWithoutContract) {
  std::unique_ptr<TdmAngebot> bid = TwoItemBid();
  boq::t_Lv_DB_VERSION_3100 header = lv_.FLv();
  header.Status = 'V';
  lv_.RefreshLvProperties(header);
  lv_[first_].LvBgBeschr.IdVertrag = 1;
  lv_[first_].LvBeschr.VergabeEP.Betrag = 11;
  lv_[second_].LvBgBeschr.IdVertrag = 1;
  EXPECT_FALSE(HasUncontractedSupplements(lv_));
  EXPECT_THROW(TransferBidPrices(*bid, lv_, {}), ETransferRefused);
  lv_[second_].LvBgBeschr.IdVertrag = data::kNullId;
  lv_[second_].LvBgBeschr.KzNachtrag = 1;
  bid->Bidder().NachlassProz = 4;
  const TTransferResult result = TransferBidPrices(*bid, lv_, {});
  EXPECT_EQ(result.items, 1);
  EXPECT_FALSE(result.whole_bid_values);  // the supplement does not carry the bid's discount
  EXPECT_DOUBLE_EQ(AwardPrice(first_), 11.0);
  EXPECT_DOUBLE_EQ(AwardPrice(second_), 20.0);
  EXPECT_DOUBLE_EQ(Copied(lv_.FLv().NachlassProz), 0.0);
}

TEST_F(Award, CheckFindingsStopTheAwardUnlessAcceptedThenTheLvIsAwarded) {
  const int group = Group("01");
  const int priced = Item(group, "01.0001", 2);
  const int gap = Item(group, "01.0002", 2);
  std::unique_ptr<TdmAngebot> bid = Open();
  Line(*bid, priced).EP.Betrag = 5;
  bid->Recalculate();
  try {
    AwardBid(*bid, lv_, {});
    ADD_FAILURE() << "the award went on despite the check";
  } catch (const EAwardRefused& error) {
    EXPECT_NE(std::string(error.what()).find("1 Positionen ohne Angebotspreis"), std::string::npos)
        << error.what();
  }
  EXPECT_EQ(Copied(lv_.FLv().Status), 'B');
  EXPECT_DOUBLE_EQ(AwardPrice(priced), 0.0);
  TAwardOptions accept;
  accept.accept_check_findings = true;
  const TAwardResult result = AwardBid(*bid, lv_, accept);
  EXPECT_TRUE(result.check.Found());
  EXPECT_EQ(result.items_without_award_price, 1);
  EXPECT_EQ(Copied(lv_.FLv().Status), 'V');
  EXPECT_DOUBLE_EQ(AwardPrice(priced), 5.0);
  EXPECT_DOUBLE_EQ(AwardPrice(gap), 0.0);
}

}  // namespace
}  // namespace korvan::award
