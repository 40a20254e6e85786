// The item calculation, the rounding it relies on and the price operations, through the
// calculation's public functions on an LV in memory.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <string>

#include "boq/model/lv_pos.h"
#include "boq/model/lv_pos_list.h"
#include "boq/units/value_converter.h"
#include "calc/price/item_calculation.h"
#include "calc/price/price_columns.h"

namespace korvan::calc {
namespace {

using boq::TLvPos;
using boq::TLVPosList;
using data::TRoundingType;

boq::TAvaUiValueConverter Converter(TRoundingType type = TRoundingType::rtCommercial) {
  boq::TValueConverterSettings settings;
  settings.currency_rounding = settings.qty_rounding = type;
  return boq::TAvaUiValueConverter(boq::TCurrencyList(), settings);
}

TLvPos Item(double quantity, double ep, char kind = 'P') {
  TLvPos item = boq::NewLvPos(kind);
  item.LvBeschr.FMenge = quantity;
  item.LvBeschr.SchaetzEP.Betrag = ep;
  item.LvBeschr.EinzelkostenEP.Betrag = ep;
  item.LvBeschr.AngebotsEP.Betrag = ep;
  item.LvBeschr.VergabeEP.Betrag = ep;
  return item;
}

TLvPos Surcharge(char kind, double rate) {
  TLvPos item = Item(1, rate);
  item.LvBeschr.ZuschArt = kind;
  return item;
}

TEST(Rounding, EveryTypeOnTheBoundaries) {
  struct Case {
    double value;
    int decimals;
    double till_2015, commercial, arithmetic;
  };
  const Case cases[] = {
      {1.005, 2, 1.01, 1.01, 1.00},
      {2.5, 0, 3, 3, 2},
      {3.5, 0, 4, 4, 4},
      {-1.005, 2, -1.01, -1.01, -1.00},
      {-2.5, 0, -3, -3, -2},
      {0.125, 2, 0.13, 0.13, 0.12},
      {1.0049999, 2, 1.01, 1.00, 1.00},  // the old allowance lifts it
      {0.0, 2, 0, 0, 0},
      {99999999.995, 2, 100000000.00, 100000000.00, 100000000.00},  // 8+3 digit limit
      {12345678.1235, 3, 12345678.124, 12345678.124, 12345678.124},
      {-12345678.1225, 3, -12345678.123, -12345678.123, -12345678.122},
      {99999999.9995, 3, 100000000.0, 100000000.0, 100000000.0},
  };
  for (const Case& c : cases) {
    const std::string label = std::to_string(c.value) + " @" + std::to_string(c.decimals);
    EXPECT_DOUBLE_EQ(Converter(TRoundingType::rtTillV2015).RoundCurrencyValue(c.value, c.decimals),
                     c.till_2015)
        << label;
    EXPECT_DOUBLE_EQ(Converter(TRoundingType::rtCommercial).RoundCurrencyValue(c.value, c.decimals),
                     c.commercial)
        << label;
    EXPECT_DOUBLE_EQ(Converter(TRoundingType::rtArithmetic).RoundCurrencyValue(c.value, c.decimals),
                     c.arithmetic)
        << label;
  }
  EXPECT_TRUE(std::isnan(std::nan("")) && Converter().RoundCurrencyValue(std::nan(""), 2) == 0.0);
}

TEST(ItemCalculation, ContingencyOmittedAndAlternativeItems) {
  const auto converter = Converter();
  const TItemCalculation calculation(converter, 2);
  TLVPosList list;
  list.Add(Item(10, 2.5));
  list[0].LvBgBeschr.Bedarf = 'E';
  list[0].LvBeschr.ReMenge = 4;
  list.Add(Item(10, 2.5));
  list[1].LvBgBeschr.KzEntfaellt = 1;
  list.Add(Item(10, 2.5));
  list[2].LvBgBeschr.ZZWahl = 2;
  list.Add(list[2]);
  list[3].LvBgBeschr.NachtrStatus = 'Z';
  calculation.CalculateAll(list);

  EXPECT_EQ(double{list[0].LvBeschr.SchaetzEP.Betrag}, 2.5);  // keeps its unit prices ...
  for (TPriceColumn column :
       {TPriceColumn::kSchaetz, TPriceColumn::kVergabe, TPriceColumn::kAbrechnung}) {
    EXPECT_EQ(double{Total(list[0], column).Betrag}, 0.0);  // ... but no totals
  }
  EXPECT_EQ(double{list[1].LvBgBeschr.SchaetzGP.Betrag}, 25.0);
  EXPECT_EQ(double{list[1].LvBgBeschr.VergabeGP.Betrag}, 0.0);
  EXPECT_EQ(double{list[1].LvBgBeschr.AngebotsGP.Betrag}, 0.0);
  EXPECT_EQ(double{list[1].LvBgBeschr.EinzelkostenGP.Betrag}, 0.0);
  EXPECT_EQ(double{list[2].LvBgBeschr.SchaetzGP.Betrag}, 0.0);
  EXPECT_EQ(double{list[3].LvBgBeschr.SchaetzGP.Betrag}, 25.0);
}

TEST(ItemCalculation, TextEntriesLoseTheirPricesAndUnitPricesAreRounded) {
  const auto converter = Converter();
  const TItemCalculation calculation(converter, 3);
  TLVPosList list;
  list.Add(Item(3, 7, 'H'));
  list[0].LvBeschr.ReMenge = 2;
  list.Add(Item(3, 1.23456));
  calculation.CalculateAll(list);
  EXPECT_EQ(double{list[0].LvBeschr.SchaetzEP.Betrag}, 0.0);
  EXPECT_EQ(double{list[0].LvBeschr.ReMenge}, 0.0);
  EXPECT_EQ(double{list[1].LvBeschr.SchaetzEP.Betrag}, 1.235);
  EXPECT_EQ(double{list[1].LvBgBeschr.SchaetzGP.Betrag}, 3.71);     // 3 x 1.235 = 3.705
  EXPECT_EQ(double{list[1].LvBeschr.AbrechnungsEP.Betrag}, 1.235);  // no contract: the award's
}

TEST(ItemCalculation, SurchargeItemsOfKindAStopAtTheGroupOrThePreviousSurcharge) {
  const auto converter = Converter();
  const TItemCalculation calculation(converter, 2);
  TLVPosList list;
  list.Add(boq::NewLvPos('B'));
  list.Add(Item(1, 100));
  list.Add(Item(1, 200));
  list.Add(Surcharge('A', 10));  // 10 % of 300
  list.Add(Surcharge('A', 10));  // directly below: steps over it, 10 % of 300
  list.Add(Item(1, 50));
  list.Add(Surcharge('A', 10));          // two below the last one: stops there, 10 % of 50
  list[1].LvBgBeschr.NachlassProz = 50;  // enters every column but the estimate halved
  calculation.CalculateAll(list);
  EXPECT_EQ(double{list[3].LvBgBeschr.SchaetzGP.Betrag}, 30.0);
  EXPECT_EQ(double{list[3].LvBgBeschr.VergabeGP.Betrag}, 25.0);
  EXPECT_EQ(double{list[4].LvBgBeschr.SchaetzGP.Betrag}, 30.0);
  EXPECT_EQ(double{list[6].LvBgBeschr.SchaetzGP.Betrag}, 5.0);
}

TEST(ItemCalculation, SurchargeItemsOfKindZTakeMarkedItemsOnly) {
  const auto converter = Converter();
  const TItemCalculation calculation(converter, 2);
  TLVPosList list;
  list.Add(Item(1, 100));
  list.Add(Item(1, 200));
  list[1].LvBeschr.KzZuschl = 1;
  list.Add(Surcharge('Z', 5));
  list.Add(Surcharge('Z', 50));  // past the Z item above
  calculation.CalculateAll(list);
  EXPECT_EQ(double{list[2].LvBgBeschr.SchaetzGP.Betrag}, 10.0);
  EXPECT_EQ(double{list[3].LvBgBeschr.SchaetzGP.Betrag}, 100.0);
}

// Totals rounded from rounded unit prices add up to the sum a person computes in cents.
TEST(ItemCalculation, TotalsAreExactToTheCent) {
  const auto converter = Converter();
  const TItemCalculation calculation(converter, 2);
  std::mt19937 random(21);
  std::uniform_int_distribution<int64_t> cents(1, 99999999);  // up to 999 999,99
  std::uniform_int_distribution<int64_t> milli(1, 9999999);   // up to 9 999,999
  TLVPosList list;
  int64_t expected_cents = 0;
  for (int i = 0; i < 500; ++i) {
    const int64_t ep = cents(random);
    const int64_t qty = milli(random);
    list.Add(Item(qty / 1000.0, ep / 100.0));
    // Half a cent and more rounds up: (qty * ep) is in 1/100000 of the currency.
    expected_cents += (qty * ep + 500) / 1000;
  }
  calculation.CalculateAll(list);
  double sum = 0.0;
  for (const TLvPos& item : list.Entries()) sum += item.LvBgBeschr.SchaetzGP.Betrag;
  EXPECT_EQ(static_cast<int64_t>(std::llround(calculation.RoundAmount(sum) * 100.0)),
            expected_cents);
}

double Ep(TLvPos& item, int column) {
  return UnitPrice(item, static_cast<TPriceColumn>(column)).Betrag;
}

TEST(PriceOperations, CopyThenDeleteLeavesTheOtherColumnsUntouched) {
  std::mt19937 random(7);
  std::uniform_int_distribution<int> price(0, 100000);
  for (int source = 0; source < 5; ++source) {
    for (int target = 0; target < 5; ++target) {
      if (target == source || target == static_cast<int>(TPriceColumn::kAbrechnung)) continue;
      TLvPos item = boq::NewLvPos('P');
      for (int c = 0; c < 5; ++c) {
        UnitPrice(item, static_cast<TPriceColumn>(c)).Betrag = price(random) / 100.0;
      }
      TLvPos before = item;
      CopyPriceColumns(item, static_cast<TPriceColumn>(source), 1u << target);
      EXPECT_EQ(Ep(item, target), Ep(item, source));
      ASSERT_TRUE(DeletePrices(item, static_cast<TPriceColumn>(target), false));
      for (int c = 0; c < 5; ++c) {
        EXPECT_EQ(Ep(item, c), c == target ? 0.0 : Ep(before, c))
            << source << "->" << target << " column " << c;
      }
    }
  }
}

TEST(PriceOperations, LockedItemsKeepTheirPricesAndFactorsRoundToCents) {
  TLvPos item = Item(2, 10);
  item.LvBgBeschr.IdVertrag = 5;
  EXPECT_FALSE(DeletePrices(item, TPriceColumn::kSchaetz, false));
  EXPECT_EQ(double{item.LvBeschr.SchaetzEP.Betrag}, 10.0);
  item.LvBgBeschr.SchaetzGP.Betrag = 20;
  FactorisePrices(item, 1.0333, Converter());
  EXPECT_EQ(double{item.LvBeschr.SchaetzEP.Betrag}, 10.33);
  EXPECT_EQ(double{item.LvBgBeschr.SchaetzGP.Betrag}, 20.67);
}

}  // namespace
}  // namespace korvan::calc
