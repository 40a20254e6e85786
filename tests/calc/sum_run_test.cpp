// The sum run over an LV in memory: exclusions, discounts and lump sums of groups and of the
// LV, and the group totals of random trees against sums formed here in integer cents.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "boq/model/lv_pos.h"
#include "boq/model/lv_pos_list.h"
#include "boq/units/value_converter.h"
#include "calc/sums/boq_ctgy_calc_sum.h"

namespace korvan::calc {
namespace {

using boq::TLvPos;
using boq::TLVPosList;

const boq::TAvaUiValueConverter& SumConverter() {
  static const boq::TAvaUiValueConverter converter(boq::TCurrencyList(), {});
  return converter;
}

// An LV under the mask 11.22.PPPP built entry by entry; entries are found by their OZ.
class LvBuilder {
 public:
  LvBuilder() {
    boq::t_Lv_DB_VERSION_3100 lv{};
    lv.PosMaske.Set("11.22.PPPP");
    lv.Zeilenart = '9';
    lv.EPGenauigkeit = 2;
    list_.RefreshLvProperties(lv);
  }

  // A group "01" or "01.02" (its parent follows from the number).
  TLvPos& Group(const std::string& oz) { return Add('B', oz); }
  // An item "01.02.0010" with the same unit price in every price column.
  TLvPos& Item(const std::string& oz, double quantity, double price) {
    TLvPos& item = Add('P', oz);
    item.LvBeschr.FMenge = quantity;
    for (data::t_WaeBetrag* ep : {&item.LvBeschr.SchaetzEP, &item.LvBeschr.EinzelkostenEP,
                                  &item.LvBeschr.AngebotsEP, &item.LvBeschr.VergabeEP}) {
      ep->Betrag = price;
    }
    return item;
  }
  boq::t_Lv_DB_VERSION_3100& Lv() { return lv_; }

  TLVPosList& Sum(int32_t contract = data::kNullId, bool only_marked = false) {
    lv_ = list_.FLv();
    TBoqCtgyCalcSum(list_, SumConverter(), only_marked).Calculate(contract);
    return list_;
  }
  TLVPosList& SumWithHeader(const boq::t_Lv_DB_VERSION_3100& lv) {
    list_.RefreshLvProperties(lv);
    TBoqCtgyCalcSum(list_, SumConverter()).Calculate();
    return list_;
  }
  const TLvPos& At(const std::string& oz) const { return list_[list_.IndexOfOz(oz)]; }
  const boq::t_Lv_DB_VERSION_3100& Header() const { return list_.FLv(); }
  TLVPosList& List() { return list_; }

 private:
  TLvPos& Add(char kind, const std::string& oz) {
    TLvPos entry = boq::NewLvPos(kind);
    entry.SetOz(oz);
    entry.Struktur.IdBgBeschr = entry.LvBgBeschr.ID = ++last_id_;
    list_.Add(std::move(entry));
    return list_[list_.Count() - 1];
  }

  TLVPosList list_;
  boq::t_Lv_DB_VERSION_3100 lv_{};
  int32_t last_id_ = 0;
};

double Awarded(const TLvPos& group) {
  return group.LvBg.VergabeSum.Betrag;
}

TEST(SumRun, AlternativeAndContingencyTitlesAddNothing) {
  LvBuilder lv;
  lv.Group("01");
  lv.Group("01.01").LvBgBeschr.ZZWahl = 1;  // alternative title
  lv.Item("01.01.0010", 2, 50);
  lv.Group("01.02").LvBgBeschr.Bedarf = 'E';  // contingency without total
  lv.Item("01.02.0010", 1, 70);
  lv.Group("01.03").LvBgBeschr.Bedarf = 'M';  // contingency with total
  lv.Item("01.03.0010", 3, 10);
  lv.Sum();
  for (const char* empty : {"01.01", "01.02"}) {
    EXPECT_EQ(+lv.At(empty).LvBgBeschr.SchaetzGP.Betrag, 0.0) << empty;
    EXPECT_EQ(Awarded(lv.At(empty)), 0.0) << empty;
  }
  EXPECT_EQ(+lv.At("01.01").LvBgBeschr.Titelart, 'A');
  EXPECT_EQ(Awarded(lv.At("01.03")), 30.0);
  EXPECT_EQ(Awarded(lv.At("01")), 30.0);
  EXPECT_EQ(+lv.Header().VergabeSum.Betrag, 30.0);
  EXPECT_EQ(+lv.Header().SchaetzSum.Betrag, 30.0);
}

TEST(SumRun, GroupDiscountPercentWinsOverAbsoluteAndLumpSum) {
  struct Case {
    const char* what;
    double percent, absolute, lump_sum, awarded, lump_sum_after;
  };
  // Items 333,33 in all: 5 % of it is 16,6665, rounded on its own to 16,67.
  const Case cases[] = {
      {"percent", 5, 100, 5000, 316.66, 0},
      {"absolute", 0, 100, 5000, 233.33, 0},
      {"lump sum", 0, 0, 5000, 5000, 5000},
      {"none", 0, 0, 0, 333.33, 0},
  };
  for (const Case& c : cases) {
    LvBuilder lv;
    TLvPos& group = lv.Group("01");
    group.LvBgBeschr.NachlassProz = c.percent;
    group.LvBg.NachlassAbs.Betrag = c.absolute;
    group.LvBg.SummePsch.Betrag = c.lump_sum;
    lv.Group("01.01");
    lv.Item("01.01.0010", 1, 333.33);
    lv.Sum();
    const TLvPos& summed = lv.At("01");
    EXPECT_DOUBLE_EQ(Awarded(summed), c.awarded) << c.what;
    EXPECT_DOUBLE_EQ(+summed.LvBg.SummePsch.Betrag, c.lump_sum_after) << c.what;
    EXPECT_DOUBLE_EQ(+summed.LvBg.VergabeSumExclNachlass.Betrag, 333.33) << c.what;
    // The estimate is never discounted; the discounted sums reach the LV.
    EXPECT_DOUBLE_EQ(+summed.LvBgBeschr.SchaetzGP.Betrag, 333.33) << c.what;
    EXPECT_DOUBLE_EQ(+lv.Header().VergabeSum.Betrag, c.awarded) << c.what;
  }
}

TEST(SumRun, LvLumpSumOnlyWithoutAwardedTotal) {
  LvBuilder lv;
  lv.Group("01");
  lv.Group("01.01");
  lv.Item("01.01.0010", 4, 25).LvBeschr.VergabeEP.Betrag = 0;
  boq::t_Lv_DB_VERSION_3100 header = lv.List().FLv();
  header.SummePsch.Betrag = 5000;
  header.NachlassProz = 10;
  lv.SumWithHeader(header);
  EXPECT_EQ(+lv.Header().VergabeSum.Betrag, 5000.0);
  EXPECT_EQ(+lv.Header().AngebotsSum.Betrag, 100.0);  // no discount applied
  EXPECT_EQ(+lv.Header().SummePsch.Betrag, 5000.0);
}

TEST(SumRun, LvAbsoluteDiscountLeavesNoSupplementsAtZero) {
  LvBuilder lv;
  lv.Group("01");
  lv.Group("01.01");
  lv.Item("01.01.0010", 10, 100);
  boq::t_Lv_DB_VERSION_3100 header = lv.List().FLv();
  header.NachlassAbs.Betrag = 100;
  lv.SumWithHeader(header);
  EXPECT_EQ(+lv.Header().Summe.Betrag, 1000.0);
  EXPECT_EQ(+lv.Header().VergabeSum.Betrag, 900.0);
  EXPECT_EQ(+lv.Header().AngebotsSum.Betrag, 900.0);
  EXPECT_EQ(+lv.Header().EinzelkostenSum.Betrag, 900.0);
  EXPECT_EQ(+lv.Header().NachtragsSum.Betrag, 0.0);
}

TEST(SumRun, ContractFilterAndMarkedItems) {
  LvBuilder lv;
  lv.Group("01");
  lv.Group("01.01");
  TLvPos& first = lv.Item("01.01.0010", 1, 100);
  first.LvBgBeschr.IdVertrag = 7;
  first.LvBeschr.EPAnteil[0].Betrag = 60;
  TLvPos& other = lv.Item("01.01.0020", 2, 20);
  other.LvBgBeschr.IdVertrag = 8;
  other.LvBgBeschr.markiert = 1;
  other.LvBeschr.EPAnteil[0].Betrag = 5;
  lv.Sum(7);
  EXPECT_EQ(Awarded(lv.At("01.01")), 100.0);
  EXPECT_EQ(+lv.At("01.01").LvBgBeschr.SchaetzGP.Betrag, 140.0);
  EXPECT_EQ(+lv.At("01.01").LvBg.AngebotsSum.Betrag, 140.0);
  EXPECT_EQ(lv.At("01").VGPAnteil[0], 60.0);
  // Carry-overs: the group's totals up to each item in document order; the other
  // contract's item carries the estimate on but no awarded amount.
  EXPECT_EQ(lv.At("01.01.0010").Schaetzuebertrag, 100.0);
  EXPECT_EQ(lv.At("01.01.0010").VergabeUebertrag, 100.0);
  EXPECT_EQ(lv.At("01.01.0020").Schaetzuebertrag, 140.0);
  EXPECT_EQ(lv.At("01.01.0020").VergabeUebertrag, 0.0);
  lv.Sum(data::kNullId, true);
  EXPECT_EQ(Awarded(lv.At("01.01")), 40.0);
  EXPECT_EQ(+lv.At("01.01").LvBgBeschr.SchaetzGP.Betrag, 40.0);
  EXPECT_EQ(lv.At("01").VGPAnteil[0], 10.0);
  EXPECT_EQ(lv.At("01.01.0010").Schaetzuebertrag, 0.0);  // unmarked: carries nothing
  EXPECT_EQ(lv.At("01.01.0020").VergabeUebertrag, 40.0);
}

TEST(SumRun, ParentsFollowTheDepthOfTheNumbers) {
  LvBuilder lv;
  lv.Group("01");
  lv.Group("01.01");
  lv.Item("01.01.0010", 1, 10);
  lv.Item("02.01.0010", 1, 5);  // one level below 01.01 and within its range: its child
  TLVPosList& list = lv.List();
  // The builder leaves every entry at the root: deeper entries there miss their group.
  const TSumRunResult result = TBoqCtgyCalcSum(list, SumConverter()).Calculate();
  EXPECT_TRUE(result.entries_without_parent);
  EXPECT_EQ(+list[0].Struktur.ZuBg, data::kRootParentId);
  EXPECT_EQ(+list[1].Struktur.ZuBg, +list[0].Struktur.IdBgBeschr);
  EXPECT_EQ(+list[2].Struktur.ZuBg, +list[1].Struktur.IdBgBeschr);
  EXPECT_EQ(+list[3].Struktur.ZuBg, +list[1].Struktur.IdBgBeschr);
  EXPECT_EQ(Awarded(lv.At("01")), 15.0);
  EXPECT_FALSE(TBoqCtgyCalcSum(list, SumConverter()).Calculate().entries_without_parent);
}

// --- Random trees against sums in integer cents --------------------------------------

using Cents = int64_t;

// `cents` less `percent` whole percent, the reduction rounded half away from zero.
Cents LessPercent(Cents cents, int percent) {
  const Cents product = cents * percent;
  const Cents magnitude = (std::llabs(product) + 50) / 100;
  return cents - (product < 0 ? -magnitude : magnitude);
}

struct ModelGroup {
  std::string oz;
  bool excluded = false;  // alternative or contingency without total
  int percent = 0;
  Cents absolute = 0, lump_sum = 0;
  std::vector<Cents> item_totals;
  std::vector<int> subgroups;
  Cents awarded = 0;  // after its discount, as the model computes it
};

ModelGroup NewGroup(const std::string& oz) {
  ModelGroup group;
  group.oz = oz;
  return group;
}

Cents Finish(std::vector<ModelGroup>& groups, int index) {
  ModelGroup& group = groups[index];
  Cents sum = 0;
  for (Cents total : group.item_totals) sum += total;
  for (int sub : group.subgroups) sum += Finish(groups, sub);
  if (group.excluded) return group.awarded = 0;
  if (group.percent != 0) return group.awarded = LessPercent(sum, group.percent);
  if (group.absolute != 0) return group.awarded = sum - group.absolute;
  if (group.lump_sum != 0) return group.awarded = group.lump_sum;
  return group.awarded = sum;
}

std::string Number(int value, int width) {
  char text[8];
  std::snprintf(text, sizeof text, "%0*d", width, value);
  return text;
}

TEST(SumRunProperty, EveryGroupIsTheSumOfItsChildrenInCents) {
  std::mt19937 random(22);
  for (int round = 0; round < 200; ++round) {
    LvBuilder lv;
    std::vector<ModelGroup> groups;
    std::vector<int> top;
    const auto pick = [&](int n) { return static_cast<int>(random() % n); };
    const auto decorate = [&](ModelGroup& model, TLvPos& group) {
      const int kind = pick(10);
      if (kind == 0) group.LvBgBeschr.ZZWahl = 1;
      if (kind == 1) group.LvBgBeschr.Bedarf = 'E';
      if (kind == 2) group.LvBgBeschr.NachlassProz = model.percent = 1 + pick(20);
      if (kind == 3) group.LvBg.NachlassAbs.Betrag = (model.absolute = pick(10000)) / 100.0;
      if (kind == 4) group.LvBg.SummePsch.Betrag = (model.lump_sum = 1 + pick(100000)) / 100.0;
      model.excluded = kind <= 1;
    };
    for (int a = 1; a <= 1 + pick(3); ++a) {
      const int outer = static_cast<int>(groups.size());
      groups.push_back(NewGroup(Number(a, 2)));
      decorate(groups[outer], lv.Group(groups[outer].oz));
      top.push_back(outer);
      for (int b = 1; b <= 1 + pick(3); ++b) {
        const int inner = static_cast<int>(groups.size());
        groups.push_back(NewGroup(groups[outer].oz + "." + Number(b, 2)));
        groups[outer].subgroups.push_back(inner);
        decorate(groups[inner], lv.Group(groups[inner].oz));
        for (int c = 1; c <= pick(5); ++c) {
          const int milli = pick(100000);  // quantity in thousandths
          const int price = pick(100000);  // unit price in cents
          lv.Item(groups[inner].oz + "." + Number(10 * c, 4), milli / 1000.0, price / 100.0);
          const Cents exact = static_cast<Cents>(milli) * price;  // in 1/1000 cent
          groups[inner].item_totals.push_back((exact + 500) / 1000);
        }
      }
    }
    lv.Sum();
    Cents lv_total = 0;
    for (int outer : top) lv_total += Finish(groups, outer);
    for (const ModelGroup& group : groups) {
      ASSERT_EQ(std::llround(Awarded(lv.At(group.oz)) * 100), group.awarded)
          << "round " << round << ", group " << group.oz;
    }
    ASSERT_EQ(std::llround(lv.Header().VergabeSum.Betrag * 100), lv_total) << "round " << round;
  }
}

}  // namespace
}  // namespace korvan::calc
