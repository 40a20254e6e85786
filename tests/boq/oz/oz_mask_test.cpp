#include <gtest/gtest.h>

#include "boq/oz/lv_oz_mask.h"
#include "boq/oz/oz_format.h"
#include "boq/oz/oz_hierarchy.h"

namespace korvan::boq {
namespace {

TEST(LvOzMask, EmptyMaskIsCleared) {
  const TLvOzMask mask("");
  EXPECT_EQ(mask.FMaxLen(), 0);
  EXPECT_FALSE(mask.FIsIndexed());
  EXPECT_EQ(mask.FMaxLevel(), 0);
  EXPECT_EQ(mask.FBeginPosIndex(), 0);
  EXPECT_EQ(mask.FEndPosIndex(), 0);
  EXPECT_EQ(mask.GetOzLevel(""), 1);
  EXPECT_EQ(PlainOzLevel(""), 0);
}

TEST(LvOzMask, IndexedMaskCountsTheIndexAsNoLevel) {
  const TLvOzMask indexed("11.22.PPPP.I");
  EXPECT_TRUE(indexed.FIsIndexed());
  EXPECT_EQ(indexed.FMaxLevel(), 3);
  EXPECT_EQ(indexed.FBeginPosIndex(), 7);
  EXPECT_EQ(indexed.FEndPosIndex(), 10);
  EXPECT_TRUE(indexed.IsIndexedOz("01.02.0030.A"));
  EXPECT_FALSE(indexed.IsIndexedOz("01.02.0030"));
  EXPECT_EQ(TLvOzMask("11.22.PPPP").FMaxLevel(), 3);
  EXPECT_FALSE(TLvOzMask("11.22.PPPP").IsIndexedOz("01.02.0030.A"));
}

TEST(LvOzMask, LevelLooksOnlyUpToTheItemPart) {
  const TLvOzMask mask("11.22.PPPP");
  EXPECT_EQ(mask.GetOzLevel("01"), 1);
  EXPECT_EQ(mask.GetOzLevel("01.02"), 2);
  EXPECT_EQ(mask.GetOzLevel("01.02.0030"), 3);
  EXPECT_EQ(mask.GetOzLevel("01.02.0030.A"), 3);  // the index is no level
  EXPECT_EQ(mask.GetOzLevel(".02"), 1);           // a leading "." starts nothing
  EXPECT_EQ(PlainOzLevel("01.02.0030.A"), 4);
}

TEST(LvOzMask, OmittedLevelCountsOnlyWhereCorrected) {
  EXPECT_EQ(TLvOzMask("11.22.PPPP").GetOzLevel("__.02.0030"), 3);
  EXPECT_EQ(TLvOzMask("11.22.PPPP", true).GetOzLevel("__.02.0030"), 2);
  EXPECT_EQ(TLvOzMask("11.22.PPPP").GetOzLevel("01.__.0010"), 3);
  EXPECT_EQ(TLvOzMask("11.22.PPPP", true).GetOzLevel("01.__.0010"), 2);
}

TEST(LvOzMask, SplitOzAfterALevel) {
  std::string head, tail;
  TLvOzMask::SplitOz("01.02.0030", 2, head, tail);
  EXPECT_EQ(head, "01.02");
  EXPECT_EQ(tail, "0030");
  TLvOzMask::SplitOz("01.02.0030", 5, head, tail);
  EXPECT_EQ(head, "01.02.0030");
  EXPECT_EQ(tail, "");
  TLvOzMask::SplitOz("01.02.0030", 0, head, tail);
  EXPECT_EQ(head, "");
  EXPECT_EQ(tail, "01.02.0030");
  TLvOzMask::SplitOz("", 1, head, tail);
  EXPECT_EQ(head, "");
  EXPECT_EQ(tail, "");
  EXPECT_EQ(OzPart("01.02.0030", 2), "02");
  EXPECT_EQ(OzPart("01.02.0030", 3), "0030");
  EXPECT_EQ(OzPart("01.02.0030", 4), "");
}

TEST(OzCharacters, OneContiguousRangeWithTheFewExtras) {
  EXPECT_TRUE(IsOzChar('_'));
  EXPECT_TRUE(IsOzChar('['));
  EXPECT_TRUE(IsOzChar('`'));
  EXPECT_TRUE(IsOzChar('?'));
  EXPECT_TRUE(IsOzChar('#'));
  EXPECT_TRUE(IsOzChar('-'));
  EXPECT_FALSE(IsOzChar('.'));
  EXPECT_FALSE(IsOzChar(','));
  EXPECT_FALSE(IsOzChar(' '));
  EXPECT_FALSE(IsOzChar('{'));
}

TEST(FormatOz, PadsEachPartToItsWidth) {
  EXPECT_EQ(FormatOzToMask("1.2.30", "11.22.PPPP"), "01.02.0030");
  EXPECT_EQ(FormatOzToMask("1.2", "11.22.PPPP"), "01.02");
  EXPECT_EQ(FormatOzToMask("", "11.22.PPPP"), "");
  EXPECT_EQ(FormatOzToMask("1.2.30", "1.22.PPP"), "1.02.030");
}

TEST(FormatOz, ForeignSeparatorBecomesUnknown) {
  // "," is no OZ character and not the mask's ".": it stands for an unknown character.
  EXPECT_EQ(FormatOzToMask("1,2.30", "11.22.PPPP"), "1?2.30");
  EXPECT_EQ(FormatOzToMask("?.2.30", "11.22.PPPP"), "??.02.0030");
}

TEST(FormatOz, BareDigitsAreLaidOverTheMask) {
  EXPECT_EQ(FormatOzToMask("01020030", "11.22.PPPP"), "01.02.0030");
  EXPECT_EQ(FormatOzToMask("5", "11.22.PPPP"), "05");
  EXPECT_EQ(FormatOzToMask("12", "PPPP"), "0012");
}

TEST(FormatOz, SurplusIsCutAtTheMaskLength) {
  EXPECT_EQ(FormatOzToMask("01.02.003099", "11.22.PPPP"), "01.02.0030");
  // A separator beyond the mask's last one is no separator there.
  EXPECT_EQ(FormatOzToMask("1.2.30.4", "11.22.PPPP"), "01.02.30?4");
  EXPECT_EQ(FormatOzToMask("1.2.3a", "11.22.PPPP"), "01.02.003A");
}

TEST(FormLvOZ, KeepsTheTailUnlessTold) {
  EXPECT_EQ(FormLvOZ("01.02.0030.A", "11.22.PPPP"), "01.02.0030.A");
  EXPECT_EQ(FormLvOZ("01.02.0030.A", "11.22.PPPP", true), "01.02.0030");
  EXPECT_EQ(FormLvOZ("1.2.30", "11.22.PPPP"), "01.02.0030");
}

TEST(FormLvOZ, UnknownIndexWidensTheMask) {
  EXPECT_EQ(FormLvOZ("1.2.30.?", "11.22.PPPP"), "01.02.0030.?");
  EXPECT_EQ(FormLvOZ("1.2.30.?", "11.22.PPPP", true), "01.02.0030.?");
}

TEST(OzHierarchy, MaskFromRows) {
  const std::vector<THierarchyLevel> levels = HierarchyFromMask("11.22.PPPP");
  ASSERT_EQ(levels.size(), 3u);
  EXPECT_EQ(levels[0].Bez, "Hierarchiestufe 1");
  EXPECT_EQ(levels[0].Typ, "LVStufe");
  EXPECT_EQ(levels[2].SzLv, kItemLevelNumber);
  EXPECT_EQ(levels[2].Laenge, 4);
  EXPECT_EQ(levels[2].Bez, "Teilleistung");
  EXPECT_EQ(levels[2].Typ, "Position");
  EXPECT_EQ(MaskFromHierarchy(levels, false), "11.22.PPPP");
}

TEST(OzHierarchy, IndexFormTurnsTheLastSingleCharacterIntoTheIndex) {
  std::vector<THierarchyLevel> levels = HierarchyFromMask("11.22.PPPP");
  levels.push_back({7, 1, "Index", "Index"});
  EXPECT_EQ(MaskFromHierarchy(levels, true), "11.22.PPPP.I");
  EXPECT_EQ(MaskFromHierarchy(levels, false), "11.22.6666.P");
}

TEST(OzHierarchy, LevelFiveTakesTheLengthOfLevelFour) {
  const std::vector<THierarchyLevel> levels = HierarchyFromMask("11.22.33.4.55.PP");
  ASSERT_EQ(levels.size(), 6u);
  EXPECT_EQ(levels[4].SzLv, 5);
  EXPECT_EQ(levels[4].Laenge, 1);
  const std::vector<THierarchyLevel> no_four = HierarchyFromMask("11.55.PP");
  ASSERT_EQ(no_four.size(), 3u);
  EXPECT_EQ(no_four[1].SzLv, 5);
  EXPECT_EQ(no_four[1].Laenge, 0);
  // Room structures count level 5 as it stands.
  const std::vector<THierarchyLevel> rooms =
      HierarchyFromMask("11.55.RRR", TOzStructureKind::kRooms);
  ASSERT_EQ(rooms.size(), 3u);
  EXPECT_EQ(rooms[1].Laenge, 2);
  EXPECT_EQ(rooms[2].Typ, "Raum");
}

TEST(OzHierarchy, RowsWithoutLengthAreLeftOut) {
  std::vector<THierarchyLevel> levels = HierarchyFromMask("1.22.PPP");
  levels.insert(levels.begin() + 1, {3, 0, "Hierarchiestufe 3", "LVStufe"});
  EXPECT_EQ(MaskFromHierarchy(levels, false), "1.22.PPP");
}

}  // namespace
}  // namespace korvan::boq
