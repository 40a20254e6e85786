// Bidders and their bids through the data modules: line totals, group sums, the bidder's
// sums, the bid check, conversions, storing and the delete cascades.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "award/award/bid_price_transfer.h"
#include "award/award_tables.h"
#include "award/bid/bid_texts.h"
#include "award/bid/bidder_sums.h"
#include "award/bid/dm_angebot.h"
#include "award/bid/dm_bieter.h"
#include "award/bid/estimate_bidder.h"
#include "award/tables/tb_angebot.h"
#include "award/tables/tb_bieter.h"
#include "boq/boq_tables.h"
#include "boq/lv/lv_table_types.h"
#include "boq/lv/project_lvs.h"
#include "boq/model/lv_pos.h"
#include "boq/model/lv_pos_list_io.h"
#include "boq/text/long_text_store.h"
#include "boq/text/rich_text.h"
#include "boq/text/rtf_writer.h"
#include "data/records/null_values.h"
#include "data/tables/data_tables.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "testing/temp_dir.h"

#include "bid_lv_test.h"

namespace korvan::award {
namespace {

using boq::TLvPos;

// A copy of a packed record field, which a reference must not bind to.
template <class T>
T Val(T value) {
  return value;
}

class Bids : public BidLvTest {
 protected:
  void TearDown() override {
    texts_.reset();
    BidLvTest::TearDown();
  }

  int32_t IdOf(int line) const { return lv_[line].Struktur.IdBgBeschr; }

  std::unique_ptr<TdmAngebot> Open(TBidSettings settings = {}) {
    TdmBieter bidders(*db_, nullptr, lv_, converter_, settings);
    const t_Bieter_DB_VERSION_3100 bidder = bidders.AddBidder("Musterbau", "");
    return bidders.OpenBid(bidder);
  }
  static t_Angebot_DB_VERSION_201501& Line(TdmAngebot& bid, int line) {
    return bid.FAList()[static_cast<std::size_t>(line)].Angebot;
  }

  // The project's text database, made on first use.
  data::TStdDb& Texts() {
    if (!texts_) {
      texts_ = std::make_unique<data::TStdDb>("DB_Texte", dir_.path().string() + "/", 'C', 45);
      texts_->SetModifiedById("ALICE");
      EXPECT_EQ(texts_->DbCreate(), 0);
    }
    return *texts_;
  }
  // Gives an item a long text with its gaps, by their bodies ("" leaves the gap empty).
  void LongTextWithGaps(int line, int32_t description, const std::vector<std::string>& gaps) {
    lv_[line].LvBgBeschr.IDBeschr = description;
    boq::TRichText text;
    boq::AppendRunText(text.blocks[0].runs, "Beton ", {});
    for (std::size_t i = 0; i < gaps.size(); ++i) {
      text.blocks[0].runs.push_back({gaps[i], {}, static_cast<int>(i + 1)});
      boq::AppendRunText(text.blocks[0].runs, " und ", {});
    }
    boq::TLongTextStore store(Texts());
    ASSERT_EQ(store.Store(description, 'L', boq::kEntryTextLanguage, boq::WriteRtf(text), {}), 0);
  }

  std::unique_ptr<data::TStdDb> texts_;
};

TEST_F(Bids, NewRecordsHaveTheirDefaults) {
  TTbBieter bidders(*db_);
  ASSERT_EQ(bidders.NewBieter(7, "Erster"), 0);
  ASSERT_EQ(bidders.UpDateRec(), 0);
  ASSERT_EQ(bidders.NewBieter(7, "Zweiter"), 0);
  const t_Bieter_DB_VERSION_3100& bidder = bidders.Rec();
  EXPECT_EQ(Val(bidder.BieterNrIntern), 2);
  EXPECT_EQ(Val(bidder.Status), kBidsBlanko);
  EXPECT_FLOAT_EQ(Val(bidder.USt), -1.0F);
  EXPECT_DOUBLE_EQ(Val(bidder.Waehrungsfaktor), -1.0);
  EXPECT_EQ(Val(bidder.IdAdresse), data::kNullId);
  EXPECT_EQ(Val(bidder.CashDiscount[2].CashDiscDays.Kind),
            static_cast<uint8_t>(TCashDiscDaysTypeOfDays::cddtCalendarDays));
  TTbAngebot lines(*db_);
  EXPECT_EQ(Val(lines.Rec().Kennz), ' ');
  EXPECT_EQ(Val(lines.Rec().EPAnteil[5].IdWaehrung), -1);
  EXPECT_EQ(Val(lines.Rec().IdLvBgBeschr), data::kNullId);
}

TEST_F(Bids, LineTotalsFollowKindsAndComponents) {
  const int group = Group();
  const int plain = Item(group, 10);
  const int parts = Item(group, 10);
  const int alternative = Item(group, 10);
  lv_[alternative].LvBgBeschr.ZZWahl = 1;
  const int omitted = Item(group, 10);
  lv_[omitted].LvBgBeschr.KzEntfaellt = 1;
  const int contingency = Item(group, 10);
  lv_[contingency].LvBgBeschr.Bedarf = 'E';
  const int note = Item(group, 0, 'H');
  for (bool with_contingency : {false, true}) {
    std::unique_ptr<TdmAngebot> bid = Open({with_contingency});
    for (int line : {plain, parts, alternative, omitted, contingency, note}) {
      Line(*bid, line).EP.Betrag = 12.345;
    }
    Line(*bid, parts).EPAnteil[0].Betrag = 1.5;
    Line(*bid, parts).EPAnteil[3].Betrag = 2.25;
    bid->Recalculate();
    EXPECT_DOUBLE_EQ(Val(Line(*bid, plain).EP.Betrag), 12.35);  // rounded to the LV's decimals
    EXPECT_DOUBLE_EQ(Val(Line(*bid, plain).GP.Betrag), 123.5);
    EXPECT_DOUBLE_EQ(Val(Line(*bid, parts).EP.Betrag), 3.75);
    EXPECT_DOUBLE_EQ(Val(Line(*bid, alternative).GP.Betrag), 0.0);
    EXPECT_DOUBLE_EQ(Val(Line(*bid, omitted).GP.Betrag), 0.0);
    EXPECT_DOUBLE_EQ(Val(Line(*bid, note).EP.Betrag), 0.0);
    EXPECT_DOUBLE_EQ(Val(Line(*bid, contingency).GP.Betrag), with_contingency ? 123.5 : 0.0);
    EXPECT_DOUBLE_EQ(Val(bid->Bidder().Summe.Betrag), with_contingency ? 284.5 : 161.0);
  }
}

TEST_F(Bids, SurchargeItemStepsOverTheOneDirectlyAboveButStopsAtAnEarlierOne) {
  const int group = Group();
  const int before = Item(group, 1);
  const int first = Item(group, 1);
  lv_[first].LvBeschr.ZuschArt = 'A';
  const int priced = Item(group, 2);
  const int second = Item(group, 1);
  lv_[second].LvBeschr.ZuschArt = 'A';
  const int third = Item(group, 1);
  lv_[third].LvBeschr.ZuschArt = 'A';
  std::unique_ptr<TdmAngebot> bid = Open();
  Line(*bid, before).EP.Betrag = 1000;
  Line(*bid, priced).EP.Betrag = 50;
  for (int surcharge : {first, second, third}) Line(*bid, surcharge).EP.Betrag = 10;
  bid->Recalculate();
  EXPECT_DOUBLE_EQ(Val(Line(*bid, first).GP.Betrag), 100.0);  // 10 % of 1000
  EXPECT_DOUBLE_EQ(Val(Line(*bid, second).GP.Betrag), 10.0);  // 10 % of 100, stops at the first
  EXPECT_DOUBLE_EQ(Val(Line(*bid, third).GP.Betrag), 10.0);   // steps over the second
}

TEST_F(Bids, GroupDiscountsTakePrecedenceOverTheLumpSum) {
  struct Case {
    float percent;
    double amount, lump_sum, after, lump_sum_kept;
  };
  const Case cases[] = {
      {10.0F, 0, 500, 900, 0},  // the percent wins and clears the lump sum
      {0.0F, 75, 500, 925, 0},
      {0.0F, 0, 500, 500, 500},
      {0.0F, 0, 0, 1000, 0},
  };
  const int outer = Group();
  const int inner = Group(IdOf(outer));
  const int item = Item(inner, 4);
  for (const Case& c : cases) {
    std::unique_ptr<TdmAngebot> bid = Open();
    Line(*bid, item).EP.Betrag = 250;
    Line(*bid, inner).NachlassProz = c.percent;
    Line(*bid, inner).DiscountAmt.Betrag = c.amount;
    Line(*bid, inner).GPPsch.Betrag = c.lump_sum;
    bid->Recalculate();
    EXPECT_DOUBLE_EQ(Val(Line(*bid, inner).GP.Betrag), 1000.0);
    EXPECT_DOUBLE_EQ(Val(Line(*bid, inner).GPnachNL.Betrag), c.after)
        << c.percent << ' ' << c.amount;
    EXPECT_DOUBLE_EQ(Val(Line(*bid, inner).GPPsch.Betrag), c.lump_sum_kept);
    EXPECT_DOUBLE_EQ(Val(Line(*bid, outer).GPnachNL.Betrag), c.after);
    EXPECT_DOUBLE_EQ(Val(bid->Bidder().Summe.Betrag), c.after);
    EXPECT_DOUBLE_EQ(bid->FAngebotGP(), 1000.0);
  }
}

TEST_F(Bids, BidderSumsToTheCent) {
  struct Case {
    double checked;
    float discount, vat;
    double discount_amount, lump_sum, net, vat_amount, gross;
  };
  const Case cases[] = {
      {9649.00, 5.0F, 19.0F, 0, 0, 9166.55, 1741.64, 10908.19},
      {1000.00, 0.0F, -1.0F, 0, 0, 1000.00, 0.0, 1000.00},   // no VAT rate entered
      {1000.00, 10.0F, 7.0F, 50, 0, 850.00, 59.50, 909.50},  // percent, then the amount
      {1000.00, 10.0F, 19.0F, 0, 800, 800.00, 152.00, 952.00},
  };
  calc::TItemCalculation rounding(converter_, 2);
  for (const Case& c : cases) {
    t_Bieter_DB_VERSION_3100 bidder{};
    bidder.Summe.Betrag = c.checked;
    bidder.NachlassProz = c.discount;
    bidder.NachlassAbs.Betrag = c.discount_amount;
    bidder.SummePsch.Betrag = c.lump_sum;
    bidder.USt = c.vat;
    bidder.CashDiscount[0].DiscountPcnt = 2.0;
    const TBidderTotals totals = ComputeBidderSums(bidder, rounding);
    EXPECT_DOUBLE_EQ(Val(totals.net), c.net) << c.checked;
    EXPECT_DOUBLE_EQ(Val(totals.vat), c.vat_amount) << c.checked;
    EXPECT_DOUBLE_EQ(Val(totals.gross), c.gross) << c.checked;
    EXPECT_DOUBLE_EQ(Val(bidder.SummeBrutto.Betrag), c.gross);
    EXPECT_NEAR(Val(totals.cash_discount + totals.gross_after_cash_discount), c.gross, 1e-9);
  }
  EXPECT_STREQ(BidderStatusText(kBidsBlanko | kBidsIncomplete), "UV");
  EXPECT_STREQ(BidderStatusText(kBidsBlanko), "BA");
}

// A display currency converts every sum from the LV's currency and rounds it to its own
// decimals; the LV's own currency shows the sums as they are.
TEST(BidderSums, ShownInADisplayCurrency) {
  boq::TCurrencyList currencies;
  currencies.Add({1, "EUR", 1.0, 2, 2, 49});
  currencies.Add({2, "CHF", 0.94, 2, 2, 41});
  boq::TValueConverterSettings settings;
  settings.project_currency = 1;
  const boq::TAvaUiValueConverter converter(currencies, settings);
  TBidderTotals totals;
  totals.checked = 2299.2;
  totals.net = 1000.0;
  totals.vat_rate = 19.0;
  totals.gross = 1190.0;
  const TBidderTotals francs = InDisplayCurrency(totals, converter, 2);
  EXPECT_DOUBLE_EQ(francs.checked, 2161.25);  // 2161,248
  EXPECT_DOUBLE_EQ(francs.net, 940.0);
  EXPECT_DOUBLE_EQ(francs.gross, 1118.6);
  EXPECT_DOUBLE_EQ(francs.vat_rate, 19.0);
  EXPECT_DOUBLE_EQ(InDisplayCurrency(totals, converter, 1).checked, 2299.2);
}

TEST_F(Bids, CheckFindsGapsAndArithmetic) {
  const int group = Group();
  const int priced = Item(group, 5);
  const int gap = Item(group, 5);
  const int no_quantity = Item(group, 0);
  const int free = Item(group, 5);
  lv_[free].LvBeschr.KzFrMenge = 1;
  std::unique_ptr<TdmAngebot> bid = Open();
  Line(*bid, priced).EP.Betrag = 10;
  Line(*bid, no_quantity).EP.Betrag = 10;
  Line(*bid, free).EP.Betrag = 10;
  Line(*bid, free).AMenge = 7;
  bid->Recalculate();
  Line(*bid, priced).EPAnteil[0].Betrag = 4;  // components that miss the price
  const TBidCheck check = bid->AngebotsCheck();
  EXPECT_EQ(Val(check.without_price), std::vector<int>{gap});
  EXPECT_EQ(Val(check.without_quantity), std::vector<int>{no_quantity});
  EXPECT_EQ(Val(check.other_quantity), std::vector<int>{free});
  EXPECT_EQ(Val(check.components_differ), std::vector<int>{priced});
  EXPECT_EQ(Val(bid->Bidder().Status), kBidsIncomplete);
}

TEST_F(Bids, LumpSumAndMarkupBecomeUnitPrices) {
  const int group = Group();
  const int a = Item(group, 10);
  const int b = Item(group, 2);
  std::unique_ptr<TdmAngebot> bid = Open();
  EXPECT_FALSE(bid->ConvertLumpSum());  // no lump sum: nothing happens
  EXPECT_FALSE(bid->ApplyMarkup(0, 0));
  Line(*bid, a).EP.Betrag = 40;   // 400
  Line(*bid, b).EP.Betrag = 300;  // 600
  bid->Bidder().SummePsch.Betrag = 900;
  ASSERT_TRUE(bid->ConvertLumpSum());
  EXPECT_DOUBLE_EQ(Val(Line(*bid, a).EP.Betrag), 36.0);
  EXPECT_DOUBLE_EQ(Val(Line(*bid, b).EP.Betrag), 270.0);
  bid->Bidder().SummePsch.Betrag = 0;
  ASSERT_TRUE(bid->ApplyMarkup(0, 90));  // 900 + 90: factor 1.1
  EXPECT_DOUBLE_EQ(Val(Line(*bid, a).EP.Betrag), 39.6);
  ASSERT_TRUE(bid->ApplyMarkup(-50, 0));
  EXPECT_DOUBLE_EQ(Val(Line(*bid, b).EP.Betrag), 148.5);
  EXPECT_DOUBLE_EQ(Val(bid->Bidder().Summe.Betrag), 495.0);
}

TEST_F(Bids, StoredLinesComeBackAndPricesGoIntoTheLv) {
  const int group = Group();
  const int item = Item(group, 3);
  lv_[item].LvBeschr.KzFrMenge = 1;
  const int empty = Item(group, 3);
  TdmBieter bidders(*db_, nullptr, lv_, converter_);
  const t_Bieter_DB_VERSION_3100 bidder = bidders.AddBidder("Musterbau", "");
  {
    std::unique_ptr<TdmAngebot> bid = bidders.OpenBid(bidder);
    Line(*bid, item).EPAnteil[1].Betrag = 20.5;
    Line(*bid, item).AMenge = 4;
    bid->Bidder().USt = 19.0F;
    bid->Recalculate();
    bid->Save();
  }
  std::vector<t_Angebot_DB_VERSION_201501> stored;
  ASSERT_EQ(TTbAngebot(*db_).LinesOf(bidder.ID, stored), 0);
  EXPECT_EQ(stored.size(), 2U);  // the item and its group; the empty line is not written
  const std::optional<t_Bieter_DB_VERSION_3100> found = bidders.FindBidder("Musterbau");
  ASSERT_TRUE(found.has_value());
  EXPECT_DOUBLE_EQ(Val(found->Summe.Betrag), 82.0);
  EXPECT_DOUBLE_EQ(Val(found->SummeBrutto.Betrag), 97.58);
  EXPECT_EQ(Val(found->Status), kBidsIncomplete);  // the empty item has no price
  std::unique_ptr<TdmAngebot> bid = bidders.OpenBid(*found);
  EXPECT_DOUBLE_EQ(Val(Line(*bid, item).EP.Betrag), 20.5);
  boq::TLVPosList copy = lv_;
  TransferBidPrices(*bid, copy, TTransferOptions());
  EXPECT_DOUBLE_EQ(Val(copy[item].LvBeschr.VergabeEP.Betrag), 20.5);
  EXPECT_DOUBLE_EQ(Val(copy[item].LvBeschr.AbrechnungsEP.Betrag), 20.5);
  EXPECT_DOUBLE_EQ(Val(copy[item].LvBeschr.EPAnteil[1].Betrag), 20.5);
  EXPECT_DOUBLE_EQ(Val(copy[item].LvBeschr.FMenge), 4.0);  // the bidder's free quantity
  EXPECT_DOUBLE_EQ(Val(copy[empty].LvBeschr.VergabeEP.Betrag), 0.0);
}

TEST_F(Bids, DeletingABidderOrItsLvTakesTheLinesWithIt) {
  const int32_t gone = boq::CreateLv(*db_, {"Rohbau", "11.PPPP"});
  const int32_t kept = boq::CreateLv(*db_, {"Ausbau", "11.PPPP"});
  TTbBieter bidders(*db_);
  TTbAngebot lines(*db_);
  auto add = [&](int32_t lv) {
    EXPECT_EQ(bidders.NewBieter(lv, "B"), 0);
    EXPECT_EQ(bidders.UpDateRec(), 0);
    const int32_t id = bidders.Rec().ID;
    lines.InitRecord();
    lines.Rec().ID = id * 10;
    lines.Rec().IdBieter = id;
    lines.Rec().IdLvBgBeschr = 1;
    EXPECT_EQ(lines.UpDateRec(), 0);
    return id;
  };
  const int32_t first = add(gone);
  const int32_t second = add(gone);
  const int32_t other = add(kept);
  ASSERT_TRUE(bidders.Find(first));
  ASSERT_EQ(bidders.DeleteRec(), 0);
  EXPECT_FALSE(lines.Find(first, 1));
  EXPECT_TRUE(lines.Find(second, 1));
  boq::DeleteLv(*db_, gone);
  EXPECT_FALSE(bidders.Find(second));
  EXPECT_FALSE(lines.Find(second, 1));
  EXPECT_TRUE(bidders.Find(other));
  EXPECT_TRUE(lines.Find(other, 1));
  EXPECT_EQ(bidders.ListOfLv(kept).size(), 1U);
}

// The bidder fills the gaps the client's text leaves empty; what it writes and its comments
// are its own, stored with its bid, checked by the bid check and deleted with the bidder.
TEST_F(Bids, BidderTextsAndCommentsAreKeptPerBidderAndChecked) {
  const int group = Group();
  const int concrete = Item(group, 5);
  LongTextWithGaps(concrete, 500, {"C25/30", "", ""});
  const int plain = Item(group, 5);
  LongTextWithGaps(plain, 501, {});
  const int bare = Item(group, 5);
  TdmBieter bidders(*db_, &Texts(), lv_, converter_);
  const t_Bieter_DB_VERSION_3100 first = bidders.AddBidder("Musterbau", "");
  const t_Bieter_DB_VERSION_3100 second = bidders.AddBidder("Zweitbau", "");
  {
    std::unique_ptr<TdmAngebot> bid = bidders.OpenBid(first);
    EXPECT_FALSE(bid->AngebotsCheck().bidder_texts_checked);  // texts not read yet
    bid->ReadTexts();
    EXPECT_EQ(bid->BidderGapsOf(concrete), (std::vector<int>{2, 3}));
    EXPECT_TRUE(bid->BidderGapsOf(plain).empty());
    TBidCheck check = bid->AngebotsCheck();
    EXPECT_TRUE(check.bidder_texts_checked);
    EXPECT_EQ(check.without_bidder_texts, std::vector<int>{concrete});
    EXPECT_TRUE(check.Found());
    bid->SetTexts(concrete, {"Lieferzeit 4 Wochen"}, {{2, "Fabrikat X"}, {3, " "}});
    EXPECT_EQ(bid->AngebotsCheck().without_bidder_texts, std::vector<int>{concrete});  // 3 blank
    bid->SetTexts(concrete, {"Lieferzeit 4 Wochen"}, {{2, "Fabrikat X"}, {3, "Typ 7"}});
    bid->SetTexts(bare, {"ohne Preis, mit Kommentar", "zweite Zeile"}, {});
    EXPECT_TRUE(bid->AngebotsCheck().without_bidder_texts.empty());
    bid->Save();
  }
  std::unique_ptr<TdmAngebot> bid = bidders.OpenBid(first);
  bid->ReadTexts();
  const TAO& stored = bid->FAList()[static_cast<std::size_t>(concrete)];
  EXPECT_EQ(stored.BidderTexts, (TBidderTexts{{2, "Fabrikat X"}, {3, "Typ 7"}}));
  EXPECT_EQ(stored.Kommentar, std::vector<std::string>{"Lieferzeit 4 Wochen"});
  const TAO& commented = bid->FAList()[static_cast<std::size_t>(bare)];
  EXPECT_TRUE(commented.Stored);  // a comment needs the line's id
  EXPECT_EQ(commented.Kommentar.size(), 2U);
  std::unique_ptr<TdmAngebot> other = bidders.OpenBid(second);
  other->ReadTexts();
  EXPECT_TRUE(other->FAList()[static_cast<std::size_t>(concrete)].BidderTexts.empty());
  EXPECT_EQ(other->AngebotsCheck().without_bidder_texts, std::vector<int>{concrete});

  TTbBieter table(*db_, &Texts());
  ASSERT_TRUE(table.Find(first.ID));
  ASSERT_EQ(table.DeleteRec(), 0);
  TBidTextStore texts(Texts());
  EXPECT_TRUE(texts.TextsOf(first.ID, 500).empty());
  EXPECT_TRUE(texts.CommentOf(commented.Angebot.ID).empty());
  EXPECT_EQ(texts.GapsOf(500), (std::vector<int>{2, 3}));  // the LV's text stays
}

// The estimate bidder carries the LV's estimated prices, is made once and refreshed after,
// and its lump sum is spread over the estimated prices, not over prices typed since.
TEST_F(Bids, TheEstimateBidderTakesTheEstimatedPrices) {
  const int group = Group();
  const int priced = Item(group, 10);
  lv_[priced].LvBeschr.SchaetzEP.Betrag = 12.5;
  const int without_quantity = Item(group, 0);
  lv_[without_quantity].LvBgBeschr.SchaetzGP.Betrag = 300;
  const int unpriced = Item(group, 2);
  bool created = false;
  const t_Bieter_DB_VERSION_3100 made =
      TdmBieter(*db_, nullptr, lv_, converter_).EstimateBidder(&created);
  EXPECT_TRUE(created);
  EXPECT_TRUE(IsEstimateBidder(made));
  EXPECT_DOUBLE_EQ(Val(made.Summe.Betrag), 425.0);
  EXPECT_EQ(Val(made.Status), kBidsIncomplete);
  lv_[priced].LvBeschr.SchaetzEP.Betrag = 13;
  lv_[unpriced].LvBeschr.SchaetzEP.Betrag = 5;
  TdmBieter bidders(*db_, nullptr, lv_, converter_);
  const t_Bieter_DB_VERSION_3100 refreshed = bidders.EstimateBidder(&created);
  EXPECT_FALSE(created);
  EXPECT_EQ(refreshed.ID, made.ID);
  EXPECT_EQ(bidders.Bidders().size(), 1U);
  EXPECT_DOUBLE_EQ(Val(refreshed.Summe.Betrag), 440.0);
  EXPECT_EQ(Val(refreshed.Status), kBidsIncomplete);  // the item without quantity has no EP

  std::unique_ptr<TdmAngebot> bid = bidders.OpenBid(refreshed);
  Line(*bid, priced).EP.Betrag = 99;
  bid->Bidder().SummePsch.Betrag = 220;
  ASSERT_TRUE(bid->ConvertLumpSum());
  EXPECT_DOUBLE_EQ(Val(Line(*bid, priced).EP.Betrag), 6.5);
  EXPECT_DOUBLE_EQ(Val(bid->Bidder().Summe.Betrag), 220.0);
}

}  // namespace
}  // namespace korvan::award
