// The calculation over the end sum: the figures of an LV or group from its direct costs,
// and the amounts typed instead of percentages.
#include <gtest/gtest.h>

#include <memory>

#include "boq/units/value_converter.h"
#include "calc/endsum/endsumme.h"
#include "data/records/null_values.h"

namespace korvan::calc {
namespace {

constexpr int kMat = 0, kWage = 1, kSub = 6;

boq::TAvaUiValueConverter EndSumConverter() {
  boq::TValueConverterSettings settings;
  settings.currency_rounding = settings.qty_rounding = data::TRoundingType::rtCommercial;
  return boq::TAvaUiValueConverter(boq::TCurrencyList(), settings);
}

t_KpENDS Settings(double agk_el, double wug_el) {
  t_KpENDS record{};
  record.IDUMLLV = data::kNullId;
  record.ENDSAGKPRZEL = agk_el;
  record.ENDSWUGPRZEL = wug_el;
  return record;
}

// Material 1000, wage 2000, subcontracts 500 in the LV; the given amounts in a group.
std::unique_ptr<TEndsNode> Tree(double group_material = 0.0) {
  auto root = std::make_unique<TEndsNode>();
  root->ekt[kMat] = 1000;
  root->ekt[kWage] = 2000;
  root->ekt[kSub] = 500;
  auto group = std::make_unique<TEndsNode>();
  group->idBg = 7;
  group->ekt[kMat] = group_material;
  root->AddItem(std::move(group));
  return root;
}

class Endsumme : public ::testing::Test {
 protected:
  boq::TAvaUiValueConverter converter_ = EndSumConverter();
};

TEST_F(Endsumme, TheWorkedExample) {
  TEndsumme ends(Settings(9, 5), converter_);
  ends.SetUmlPrz(kMat, 5);
  ends.SetUmlPrz(kSub, 5);
  ASSERT_TRUE(ends.ValidateBg(*Tree(), data::kNullId));
  ends.SetBgk(300);
  ends.Validate();
  EXPECT_DOUBLE_EQ(ends.HkEl(), 3300);
  EXPECT_DOUBLE_EQ(ends.Hk(), 3800);
  EXPECT_DOUBLE_EQ(ends.Agk(), 297);
  EXPECT_DOUBLE_EQ(ends.Wug(), 165);
  EXPECT_DOUBLE_EQ(ends.Gesamtumlage(), 762);
  EXPECT_DOUBLE_EQ(ends.Angebotssumme(), 4262);
  EXPECT_DOUBLE_EQ(ends.UmlageLohn(), 687);
}

TEST_F(Endsumme, WithoutSiteOverheadsTheAllocationIsAgkAndWug) {
  TEndsumme ends(Settings(9, 5), converter_);
  ends.ValidateBg(*Tree(), data::kNullId);
  ends.Validate();
  EXPECT_DOUBLE_EQ(ends.Gesamtumlage(), ends.Agk() + ends.Wug());
  EXPECT_DOUBLE_EQ(ends.Agk(), 270);
}

TEST_F(Endsumme, AGroupSumsItsOwnSubtreeAndAMissingGroupIsNotFound) {
  TEndsumme ends(Settings(0, 0), converter_);
  const auto tree = Tree(250);
  ASSERT_TRUE(ends.ValidateBg(*tree, 7));
  EXPECT_DOUBLE_EQ(ends.GetEK(kMat), 250);
  EXPECT_DOUBLE_EQ(ends.GetEK(kWage), 0);
  ASSERT_TRUE(ends.ValidateBg(*tree, data::kNullId));
  EXPECT_DOUBLE_EQ(ends.GetEK(kMat), 1250);
  EXPECT_FALSE(ends.ValidateBg(*tree, 8));
}

TEST_F(Endsumme, TheWageHasNoPercentageAndEmptyMeansHaveNoValue) {
  TEndsumme ends(Settings(0, 0), converter_);
  ends.SetUmlPrz(kWage, 30);
  EXPECT_EQ(ends.GetUmlPrz(kWage), 0.0);
  EXPECT_FALSE(ends.GetUmlPrz(kEndsGeraete).has_value());
  ends.SetUmlPrz(kMat, 10);
  ends.ValidateBg(*Tree(), data::kNullId);
  EXPECT_DOUBLE_EQ(*ends.GetUmlPrz(kEndsStoffe), 10);  // only material among the materials
}

TEST_F(Endsumme, TypedAmountsSetThePercentages) {
  TEndsumme empty(Settings(9, 5), converter_);
  empty.SetAgkEl(100);                               // no production costs of own work
  const double unset = empty.Record().ENDSAGKPRZEL;  // a packed field: copied, not bound
  EXPECT_EQ(unset, 0);

  TEndsumme ends(Settings(9, 5), converter_);
  ends.ValidateBg(*Tree(), data::kNullId);
  ends.SetAgkEl(600);
  const double agk_el = ends.Record().ENDSAGKPRZEL;
  EXPECT_DOUBLE_EQ(agk_el, 20);
  ends.SetAngebotssumme(5000);
  EXPECT_DOUBLE_EQ(ends.Angebotssumme(), 5000);
  EXPECT_DOUBLE_EQ(ends.Wug(), 5000 - 3500 - 600);
}

}  // namespace
}  // namespace korvan::calc
