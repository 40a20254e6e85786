// The LV in memory: loaded from and saved to the LV and text databases, searched, walked.
#include <gtest/gtest.h>

#include "../lv/lv_test_support.h"
#include "../oz/oz_test_support.h"
#include "boq/lv/project_lvs.h"
#include "boq/model/lv_pos_list_io.h"
#include "boq/model/lv_tree_walk.h"
#include "boq/oz/boq_oz_builder.h"
#include "boq/text/tb_texte.h"

namespace korvan::boq {
namespace {

using data::kRootParentId;

class LvPosListIo : public testing::LvDbTest {
 protected:
  void SetUp() override {
    LvDbTest::SetUp();
    CreateTexts();
    lv_ = CreateLv(*db_, {"Rohbau", "11.22.PPPP"});
  }

  // A group with two items below, another group with one item, all numbered.
  TLVPosList SampleList() {
    TLVPosList list = LoadLvPosList(*db_, texts_.get(), lv_);
    auto add = [&list](char kind, int parent, std::string text, double qty) {
      TLvPos entry = testing::Entry(kind);
      entry.Struktur.ZuBg = parent < 0 ? kRootParentId : list[parent].Struktur.IdBgBeschr;
      entry.ShortText = std::move(text);
      entry.LvBeschr.FMenge = qty;
      list.Add(entry);
      return list.Count() - 1;
    };
    const int rohbau = add('B', -1, "Rohbau", 0);
    SaveLvPosList(*db_, texts_.get(), list);  // gives the group its id
    add('P', rohbau, "Beton C25/30", 12.5);
    add('P', rohbau, "Schalung", 40);
    const int dach = add('B', -1, "Dach", 0);
    SaveLvPosList(*db_, texts_.get(), list);
    add('P', dach, "Ziegel", 120);
    TBoqOzBuilder(list).BuildOzForItems(0);
    SaveLvPosList(*db_, texts_.get(), list);
    return list;
  }

  int32_t lv_ = 0;
};

TEST_F(LvPosListIo, SaveThenLoadGivesTheSameTree) {
  TLVPosList saved = SampleList();
  TLVPosList loaded = LoadLvPosList(*db_, texts_.get(), lv_);
  ASSERT_EQ(loaded.Count(), 5);
  EXPECT_EQ(testing::OzsOf(loaded), testing::OzsOf(saved));
  for (int i = 0; i < loaded.Count(); ++i) {
    EXPECT_EQ(loaded[i].Kind(), saved[i].Kind());
    EXPECT_EQ(loaded[i].ShortText, saved[i].ShortText);
    EXPECT_EQ(loaded[i].Struktur.ZuBg, saved[i].Struktur.ZuBg);
    EXPECT_EQ(loaded[i].Struktur.SzLv, i + 1);
    EXPECT_DOUBLE_EQ(loaded[i].LvBeschr.FMenge, saved[i].LvBeschr.FMenge);
  }
  EXPECT_EQ(loaded.FOzMask().FMask(), "11.22.PPPP");
  EXPECT_EQ(Check(true), 0);
}

TEST_F(LvPosListIo, SavingAnUnchangedListWritesNothing) {
  SampleList();
  const testing::Records before = AllRecords();
  TLVPosList loaded = LoadLvPosList(*db_, texts_.get(), lv_);
  SaveLvPosList(*db_, texts_.get(), loaded);
  EXPECT_EQ(AllRecords(), before);
}

TEST_F(LvPosListIo, RemovedEntryGoesWithItsRecordsAndTexts) {
  TLVPosList list = SampleList();
  const int32_t description = list[2].LvBgBeschr.IDBeschr;
  list.Delete(2);
  SaveLvPosList(*db_, texts_.get(), list);
  TLVPosList loaded = LoadLvPosList(*db_, texts_.get(), lv_);
  EXPECT_EQ(loaded.Count(), 4);
  EXPECT_TRUE(TTbTexte(*texts_).ReadLines(description, 'K', kEntryTextLanguage).empty());
  EXPECT_EQ(Check(true), 0);
}

TEST_F(LvPosListIo, LongTextIsReadOnlyOnRequestAndWrittenWhenChanged) {
  TLVPosList list = SampleList();
  list[1].LongText = "{\\rtf1 Beton nach DIN 1045}";
  list[1].LongTextChanged = true;
  SaveLvPosList(*db_, texts_.get(), list);
  EXPECT_EQ(LoadLvPosList(*db_, texts_.get(), lv_)[1].LongText, "");
  EXPECT_EQ(LoadLvPosList(*db_, texts_.get(), lv_, true)[1].LongText, list[1].LongText);
}

TEST_F(LvPosListIo, UnitIsKeptInTheDescriptionAlsoWithoutTexts) {
  TLVPosList list = SampleList();
  list[1].SetUnit("m³");  // has a description (its short text)
  TLvPos bare = testing::Entry('P');
  bare.Struktur.ZuBg = list[0].Struktur.IdBgBeschr;
  bare.SetUnit("St");
  list.Add(bare);
  SaveLvPosList(*db_, nullptr, list);  // no text database: the unit alone needs a description
  TLVPosList loaded = LoadLvPosList(*db_, texts_.get(), lv_);
  EXPECT_EQ(loaded[1].Unit, "m³");
  EXPECT_EQ(loaded[1].ShortText, "Beton C25/30");
  EXPECT_EQ(loaded[5].Unit, "St");
  EXPECT_FALSE(loaded[1].UnitChanged);

  loaded[1].SetUnit("");
  SaveLvPosList(*db_, texts_.get(), loaded);
  EXPECT_EQ(LoadLvPosList(*db_, texts_.get(), lv_)[1].Unit, "");
  EXPECT_EQ(Check(true), 0);
  EXPECT_EQ(UnitProblem("m2"), "");
  EXPECT_NE(UnitProblem("Stunden"), "");  // 7 characters: one too many
  EXPECT_NE(UnitProblem("m😀"), "");
}

TEST_F(LvPosListIo, MissingLvIsNamed) {
  EXPECT_THROW(LoadLvPosList(*db_, texts_.get(), 999), EStoredLvError);
}

TEST(LvPosListSearch, IndexOfOzTakesTheLastAndHonoursTheKind) {
  TLVPosList list = testing::ListOf(testing::NumberedLvHeader("11.22.PPPP"),
                                    {{'P', "01.02"}, {'B', "01.02"}, {'P', "01.02.0010"}});
  EXPECT_EQ(list.IndexOfOz("01.02", ' '), 1);
  EXPECT_EQ(list.IndexOfOz("01.02", 'P'), 0);
  EXPECT_EQ(list.IndexOfOz("09", ' '), -1);
}

TEST(LvPosListSearch, LooseSearchReadsUnderscoresAsZeros) {
  TLVPosList list =
      testing::ListOf(testing::NumberedLvHeader("11.22.PPPP"), {{'B', "01"}, {'P', "01.__.0010"}});
  EXPECT_EQ(list.SearchItemIndexByOz("01.00.0010", true), 1);
  EXPECT_EQ(list.SearchItemIndexByOz("01.00.0010", false), -1);
  EXPECT_EQ(list.SearchItemIndexByOz(2, "01.00.0010", true), -1);
  EXPECT_EQ(list.GetNextMengePosIndex(0), 1);
  EXPECT_EQ(list.GetLvPosItems(2), nullptr);
}

TEST(LvPosListSearch, TopLevelItemWithoutGroupIsFound) {
  TLVPosList list =
      testing::ListOf(testing::NumberedLvHeader("11.22.PPPP"), {{'B', "01"}, {'P', "01.__.0010"}});
  for (TLvPos& entry : list.Entries()) entry.Struktur.ZuBg = kRootParentId;
  EXPECT_FALSE(list.HasEntriesWithoutParentGroup());
  list[1].SetOz("01.01.0010");
  EXPECT_TRUE(list.HasEntriesWithoutParentGroup());
}

TEST(LvPosListSearch, GroupKindFollowsBedarfAndAlternative) {
  TLVPosList list = testing::ListOf(testing::NumberedLvHeader("1.PPP"), {{'B', "1"}, {'B', "2"}});
  list[0].LvBgBeschr.Bedarf = 'E';
  list[1].LvBgBeschr.Bedarf = 'E';
  list[1].LvBgBeschr.ZZWahl = 1;
  list.RefreshGroupKinds();
  EXPECT_EQ(list[0].LvBgBeschr.Titelart, 'E');
  EXPECT_EQ(list[1].LvBgBeschr.Titelart, 'A');
}

class Recorder : public TLvTreeVisitor {
 public:
  void VisitRow(const TLvPos& entry, int, int depth) override {
    trace += std::string(static_cast<std::size_t>(depth), ' ') + std::string(entry.Oz()) + ";";
  }
  void GroupStarts(const TLvPos&, bool has_child_groups) override {
    trace += has_child_groups ? "[G" : "[";
  }
  void GroupEnds(const TLvPos&) override { trace += "]"; }
  std::string trace;
};

TEST(LvTreeWalk, GroupsOpenAndCloseAroundTheirChildren) {
  TLVPosList list =
      testing::ListOf(testing::NumberedLvHeader("11.22.PPPP"),
                      {{'B', "01"}, {'B', "01.01"}, {'P', "01.01.0001"}, {'B', "02"}});
  const int32_t parents[] = {kRootParentId, 1, 2, kRootParentId};
  for (int i = 0; i < list.Count(); ++i) {
    list[i].Struktur.IdBgBeschr = i + 1;
    list[i].Struktur.ZuBg = parents[i];
  }
  Recorder recorder;
  ForEach(list, kRootParentId, recorder);
  EXPECT_EQ(recorder.trace, "01;[G 01.01;[  01.01.0001;]]02;[]");
}

}  // namespace
}  // namespace korvan::boq
