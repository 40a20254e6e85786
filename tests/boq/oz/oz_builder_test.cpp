#include <gtest/gtest.h>

#include "boq/oz/boq_oz_builder.h"
#include "oz_test_support.h"

namespace korvan::boq {
namespace {

using testing::Entry;
using testing::ListOf;
using testing::NumberedLvHeader;
using testing::OzsOf;
using Ozs = std::vector<std::string>;

TEST(BoqOzBuilder, NumbersGroupsAndItemsByCounters) {
  TLVPosList list = ListOf(NumberedLvHeader("11.22.PPPP", {1, 1, 10}), {{'B', "1"},
                                                                        {'B', "1.1"},
                                                                        {'P', "1.1.1"},
                                                                        {'P', "1.1.1"},
                                                                        {'B', "1.5"},
                                                                        {'P', "1.5.1"},
                                                                        {'B', "7"},
                                                                        {'B', "7.1"},
                                                                        {'P', "7.1.1"}});
  TBoqOzBuilder(list).BuildOzForItems(0);
  EXPECT_EQ(OzsOf(list), (Ozs{"01", "01.01", "01.01.0010", "01.01.0020", "01.02", "01.02.0010",
                              "02", "02.01", "02.01.0010"}));
}

TEST(BoqOzBuilder, NewItemAfterAnItemTakesTheNextStep) {
  TLVPosList list = ListOf(NumberedLvHeader("11.22.PPPP", {1, 1, 10}),
                           {{'B', "01"}, {'B', "01.02"}, {'P', "01.02.0030"}, {'P', ""}});
  TBoqOzBuilder builder(list);
  builder.BuildOzForItems(0);
  // The counters start from the tree, not from the typed numbers.
  EXPECT_EQ(OzsOf(list), (Ozs{"01", "01.01", "01.01.0010", "01.01.0020"}));
}

TEST(BoqOzBuilder, NewGroupRestartsTheItemCounterUnlessContinuous) {
  const std::vector<std::pair<char, std::string>> entries = {
      {'B', "01"}, {'B', "01.01"}, {'P', ""},      {'P', ""},
      {'P', ""},   {'P', ""},      {'B', "01.02"}, {'P', ""}};
  TLVPosList restarting = ListOf(NumberedLvHeader("11.22.PPPP", {1, 1, 10}), entries);
  TBoqOzBuilder(restarting).BuildOzForItems(0);
  EXPECT_EQ(OzsOf(restarting)[5], "01.01.0040");
  EXPECT_EQ(OzsOf(restarting)[7], "01.02.0010");

  t_Lv_DB_VERSION_3100 lv = NumberedLvHeader("11.22.PPPP", {1, 1, 10});
  lv.OZDurchNumGT[3] = 1;
  TLVPosList continuous = ListOf(lv, entries);
  TBoqOzBuilder(continuous).BuildOzForItems(0);
  EXPECT_EQ(OzsOf(continuous)[7], "01.02.0050");
}

TEST(BoqOzBuilder, SkippedLevelIsFilledWithUnderscores) {
  TLVPosList list = ListOf(
      NumberedLvHeader("11.22.PPPP", {1, 1, 10}),
      {{'B', "01"}, {'P', "01.01.0001"}, {'P', "01.01.0001"}, {'B', "01.01"}, {'P', "01.01.0001"}});
  TBoqOzBuilder(list).BuildOzForItems(0);
  // The items below the skipped level used its first number.
  EXPECT_EQ(OzsOf(list), (Ozs{"01", "01.__.0010", "01.__.0020", "01.02", "01.02.0010"}));
  EXPECT_EQ(list.FOzMask().GetOzLevel("01.__.0010"), 3);
  EXPECT_EQ(TLvOzMask("11.22.PPPP", true).GetOzLevel("01.__.0010"), 2);
}

TEST(BoqOzBuilder, EntriesBeforeTheStartKeepTheirNumbersButCount) {
  TLVPosList list = ListOf(NumberedLvHeader("11.22.PPPP", {1, 1, 10}),
                           {{'B', "01"}, {'B', "01.01"}, {'P', "01.01.0100"}, {'P', "01.01.0100"}});
  TBoqOzBuilder(list).BuildOzForItems(3);
  EXPECT_EQ(OzsOf(list), (Ozs{"01", "01.01", "01.01.0100", "01.01.0020"}));
}

TEST(BoqOzBuilder, ReadOnlyListIsNeverRenumbered) {
  TLVPosList list = ListOf(NumberedLvHeader("11.22.PPPP"), {{'B', "05"}, {'P', "05.01.0007"}});
  list.SetReadOnly(true);
  TBoqOzBuilder(list).BuildOzForItems(0);
  TBoqOzBuilder(list).BuildOzForItem(1, true);
  EXPECT_EQ(OzsOf(list), (Ozs{"05", "05.01.0007"}));
}

TEST(BoqOzBuilder, ManualLevelKeepsTheTypedPart) {
  t_Lv_DB_VERSION_3100 lv = NumberedLvHeader("11.22.PPPP", {1, 1, 10});
  lv.OZAutoNumGT[2] = 0;
  TLVPosList list = ListOf(lv, {{'B', "03"}, {'B', "03.07"}, {'P', "03.07.0001"}});
  TBoqOzBuilder(list).BuildOzForItems(0);
  EXPECT_EQ(OzsOf(list), (Ozs{"01", "01.07", "01.07.0010"}));
}

TEST(BoqOzBuilder, AwardedLvKeepsHigherLevelsOfNumberedEntries) {
  t_Lv_DB_VERSION_3100 lv = NumberedLvHeader("11.22.PPPP", {1, 1, 10});
  lv.Status = 'V';
  TLVPosList list = ListOf(lv, {{'B', "03"}, {'B', "03.07"}, {'P', "03.07.0001"}});
  TBoqOzBuilder(list).BuildOzForItems(0);
  // Level 1 keeps the entry's own part; the entry's own level follows the counter.
  EXPECT_EQ(OzsOf(list)[0], "03");
  EXPECT_EQ(OzsOf(list)[2].substr(0, 2), "03");
}

TEST(BoqOzBuilder, IndexEntrySharesItsItemsNumber) {
  TLVPosList list = ListOf(NumberedLvHeader("11.22.PPPP.I", {1, 1, 10}), {{'B', "01"},
                                                                          {'B', "01.01"},
                                                                          {'P', "01.01.0010"},
                                                                          {'P', "01.01.0010.A"},
                                                                          {'P', "01.01.0010"}});
  TBoqOzBuilder(list).BuildOzForItems(0);
  EXPECT_EQ(OzsOf(list), (Ozs{"01", "01.01", "01.01.0010", "01.01.0010.A", "01.01.0020"}));
}

TEST(BoqOzBuilder, TextEntriesAreNotCounted) {
  TLVPosList list =
      ListOf(NumberedLvHeader("11.22.PPPP", {1, 1, 10}),
             {{'B', "01"}, {'B', "01.01"}, {'H', ""}, {'P', ""}, {'U', "01.01.0010"}, {'P', ""}});
  TBoqOzBuilder(list).BuildOzForItems(0);
  const Ozs ozs = OzsOf(list);
  EXPECT_EQ(ozs[3], "01.01.0010");
  EXPECT_EQ(ozs[4], "01.01.0010");  // texts are left alone
  EXPECT_EQ(ozs[5], "01.01.0020");
}

TEST(BoqOzBuilder, SupplementTakesItsNeighboursNumberWithUnknownIndex) {
  TLVPosList list = ListOf(NumberedLvHeader("11.22.PPPP", {1, 1, 10}),
                           {{'B', "01"}, {'P', "01.01.0020"}, {'P', ""}});
  list[2].LvBgBeschr.KzNachtrag = 1;
  TBoqOzBuilder(list).BuildOzForItem(2);
  EXPECT_EQ(list[2].Oz(), "01.01.0020.?");
  // One that already has an index of its own keeps it.
  list[2].SetOz("01.01.0020.B");
  TBoqOzBuilder(list).BuildOzForItem(2);
  EXPECT_EQ(list[2].Oz(), "01.01.0020.B");
}

TEST(BoqOzBuilder, SupplementAtTheStartAsksTheNextEntry) {
  TLVPosList list = ListOf(NumberedLvHeader("11.22.PPPP"), {{'P', ""}, {'P', "02.03.0040"}});
  list[0].LvBgBeschr.KzNachtrag = 1;
  TBoqOzBuilder(list).BuildOzForItem(0);
  EXPECT_EQ(list[0].Oz(), "02.03.0040.?");
}

TEST(BoqOzBuilder, ItemWithoutAutoNumberingKeepsItsNumber) {
  t_Lv_DB_VERSION_3100 lv = NumberedLvHeader("11.22.PPPP", {1, 1, 10});
  lv.OZAutoNumGT.fill(0);
  TLVPosList list =
      ListOf(lv, {{'B', "01"}, {'B', "01.01"}, {'P', "01.01.0500"}, {'P', "01.01.0700"}});
  EXPECT_FALSE(list.FAutoNum());
  TBoqOzBuilder(list).BuildOzForItem(2);
  EXPECT_EQ(OzsOf(list), (Ozs{"01", "01.01", "01.01.0500", "01.01.0700"}));
}

TEST(BoqOzBuilder, AutoNumberingFollowsLevelNineOrAnyMaskLevel) {
  t_Lv_DB_VERSION_3100 lv = NumberedLvHeader("11.22.PPPP");
  lv.OZAutoNumGT.fill(0);
  EXPECT_FALSE(TLVPosList(lv).FAutoNum());
  lv.OZAutoNumGT[9] = 1;
  EXPECT_TRUE(TLVPosList(lv).FAutoNum());
  lv.OZAutoNumGT[9] = 0;
  lv.OZAutoNumGT[4] = 1;  // beyond the mask's three levels
  EXPECT_FALSE(TLVPosList(lv).FAutoNum());
  lv.OZAutoNumGT[3] = 128;  // the tri-state default counts as set
  EXPECT_TRUE(TLVPosList(lv).FAutoNum());
}

TEST(CheckOZPerZeilenart, ItemWithoutItemPartTakesTheRestFromThePreviousEntry) {
  TLVPosList list = ListOf(NumberedLvHeader("11.22.PPPP", {1, 1, 10}),
                           {{'P', "01.02.0030"}, {'P', "03"}, {'P', ""}});
  TBoqOzBuilder builder(list);
  builder.CheckOZPerZeilenart(1);
  EXPECT_EQ(list[1].Oz(), "03.02.0030");
  list[0].SetOz("01.__.0030");
  builder.CheckOZPerZeilenart(2);
  // The missing level 2 takes the step width of level 1.
  EXPECT_EQ(list[2].Oz(), "03.02.0030");
  list[1].SetOz("05.__");
  list[2].SetOz("");
  builder.CheckOZPerZeilenart(2);
  EXPECT_EQ(list[2].Oz(), "05.01.0001");
}

TEST(CheckOZPerZeilenart, NoteCarriesTheNumberOfTheEntryItIntroduces) {
  TLVPosList list =
      ListOf(NumberedLvHeader("11.22.PPPP"),
             {{'B', "01"}, {'H', ""}, {'A', ""}, {'P', "01.01.0010"}, {'B', "02"}, {'H', ""}});
  TBoqOzBuilder builder(list);
  builder.CheckOZPerZeilenart(1);
  EXPECT_EQ(list[1].Oz(), "01.01.0010");
  builder.CheckOZPerZeilenart(5);
  EXPECT_EQ(list[5].Oz(), "02.01");  // last entry after a group: the group's number and ".1"
  TLVPosList alone = ListOf(NumberedLvHeader("11.22.PPPP"), {{'H', ""}, {'T', ""}});
  TBoqOzBuilder(alone).CheckOZPerZeilenart(0);
  EXPECT_EQ(alone[0].Oz(), "01");
}

TEST(CheckOZPerZeilenart, GroupLosesItsItemPart) {
  TLVPosList list = ListOf(NumberedLvHeader("11.22.PPPP"), {{'B', ""}, {'B', "01.02.0030"}});
  TBoqOzBuilder builder(list);
  builder.CheckOZPerZeilenart(0);
  builder.CheckOZPerZeilenart(1);
  EXPECT_EQ(OzsOf(list), (Ozs{"01", "01.02"}));
}

TEST(CheckOZPerZeilenart, TextInsideTheBodyBecomesANote) {
  TLVPosList list = ListOf(NumberedLvHeader("11.22.PPPP"),
                           {{'T', "9"}, {'B', "01"}, {'T', "9"}, {'P', "01.01.0001"}, {'T', "9"}});
  TBoqOzBuilder builder(list);
  for (int i : {0, 2, 4}) builder.CheckOZPerZeilenart(i);
  EXPECT_EQ(list[0].Kind(), 'T');
  EXPECT_EQ(list[2].Kind(), 'H');
  EXPECT_EQ(list[4].Kind(), 'T');
  EXPECT_EQ(OzsOf(list), (Ozs{"", "01", "", "01.01.0001", ""}));
}

TEST(CheckZeilenartPerOZ, KindFollowsTheLengthOfTheNumber) {
  TLVPosList list =
      ListOf(NumberedLvHeader("11.22.PPPP"),
             {{'P', "01.02"}, {'B', "01.02.0030"}, {'A', "01"}, {'H', "01"}, {'B', "01"}});
  TBoqOzBuilder builder(list);
  for (int i = 0; i < list.Count(); ++i) builder.CheckZeilenartPerOZ(i);
  EXPECT_EQ(list[0].Kind(), 'B');
  EXPECT_EQ(list[1].Kind(), 'P');
  EXPECT_EQ(list[2].Kind(), 'B');
  EXPECT_EQ(list[3].Kind(), 'H');
  EXPECT_EQ(list[4].Kind(), 'B');
}

}  // namespace
}  // namespace korvan::boq
