// The LV in memory: loaded from and saved to the LV and text databases, searched, walked.
#include <gtest/gtest.h>

#include "../lv/lv_test_support.h"
#include "../oz/oz_test_support.h"
#include "boq/lv/lv_tree_iterator.h"
#include "boq/lv/project_lvs.h"
#include "boq/model/lv_editing.h"
#include "boq/model/lv_pos_list_io.h"
#include "boq/model/lv_references.h"
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
  bare.SetUnit("St", 4);  // linked to the unit list
  list.Add(bare);
  SaveLvPosList(*db_, nullptr, list);  // no text database: the unit alone needs a description
  TLVPosList loaded = LoadLvPosList(*db_, texts_.get(), lv_);
  EXPECT_EQ(loaded[1].Unit, "m³");
  EXPECT_EQ(loaded[1].ShortText, "Beton C25/30");
  EXPECT_EQ(loaded[5].Unit, "St");
  EXPECT_EQ(loaded[5].UnitId, 4);
  EXPECT_EQ(loaded[1].UnitId, data::kNullId16);  // free text
  EXPECT_FALSE(loaded[1].UnitChanged);

  loaded[1].SetUnit("");
  SaveLvPosList(*db_, texts_.get(), loaded);
  EXPECT_EQ(LoadLvPosList(*db_, texts_.get(), lv_)[1].Unit, "");
  EXPECT_EQ(Check(true), 0);
  EXPECT_EQ(UnitProblem("m2"), "");
  EXPECT_NE(UnitProblem("Stunden"), "");  // 7 characters: one too many
  EXPECT_NE(UnitProblem("m😀"), "");
}

TEST_F(LvPosListIo, SurchargeReferenceSurvivesSaveLoadAndRenumberAndGuardsItsBase) {
  TLVPosList list = SampleList();  // 01, 01.0001, 01.0002, 02, 02.0001 (numbered later)
  TLvPos surcharge = testing::Entry('P');
  surcharge.Struktur.ZuBg = list[3].Struktur.IdBgBeschr;
  list.Add(surcharge);
  EXPECT_NE(SetReference(list, 5, 3), "");  // a group is no base
  EXPECT_NE(SetReference(list, 5, 5), "");
  ASSERT_EQ(SetReference(list, 5, 2), "");
  EXPECT_TRUE(list.FChanges().Contains(TModelChangedReason::crReferral));
  SaveLvPosList(*db_, texts_.get(), list);

  TLVPosList loaded = LoadLvPosList(*db_, texts_.get(), lv_);
  ASSERT_EQ(loaded[5].RefIDs.size(), 1u);
  EXPECT_EQ(loaded[5].RefIDs[0].Id, loaded[2].Struktur.IdBgBeschr);
  EXPECT_EQ(loaded[5].RefIDs[0].Type, kQuantityRefType);
  EXPECT_EQ(loaded[5].LvBeschr.ZuschArt, 'S');
  EXPECT_EQ(loaded[2].RefCount, 1);
  EXPECT_EQ(loaded[1].RefCount, 0);

  ASSERT_EQ(MoveEntry(loaded, 2, 4), "");  // the base moves into the other group
  RenumberLv(loaded);
  SaveLvPosList(*db_, texts_.get(), loaded);
  loaded = LoadLvPosList(*db_, texts_.get(), lv_);
  const int base = loaded.SearchItemIndexByIdLvBgBeschr(loaded[5].RefIDs[0].Id);
  EXPECT_EQ(loaded[base].ShortText, "Schalung");
  EXPECT_EQ(loaded[base].RefCount, 1);

  EXPECT_NE(RemoveEntry(loaded, base), "");  // the surcharge would lose its base
  EXPECT_EQ(loaded.Count(), 6);
  ClearReferences(loaded, 5);
  EXPECT_EQ(RemoveEntry(loaded, base), "");
  SaveLvPosList(*db_, texts_.get(), loaded);
  EXPECT_TRUE(LoadLvPosList(*db_, texts_.get(), lv_)[4].RefIDs.empty());
  EXPECT_EQ(Check(true), 0);
}

// Records each step of a walk, of the list or of the table, in one notation.
class TreeTrace : public TLvTreeVisitor, public TAvaLvTreeVisitor {
 public:
  void VisitRow(const TLvPos& entry, int, int depth) override { VisitRow(entry.Struktur, depth); }
  void GroupStarts(const TLvPos& group, bool child_groups) override {
    GroupStarts(group.Struktur, child_groups);
  }
  void GroupEnds(const TLvPos& group) override { GroupEnds(group.Struktur); }
  void VisitRow(const t_Struktur& row, int depth) override {
    trace += std::to_string(depth) + row.KzBgBeschr + std::to_string(row.IdBgBeschr) + ";";
  }
  void GroupStarts(const t_Struktur&, bool child_groups) override {
    trace += child_groups ? "[G" : "[";
  }
  void GroupEnds(const t_Struktur&) override { trace += "]"; }
  std::string trace;
};

TEST_F(LvPosListIo, TableWalkVisitsTheTreeTheListWalkVisits) {
  TLVPosList list = SampleList();
  TLvPos sub = testing::Entry('B');
  sub.Struktur.ZuBg = list[0].Struktur.IdBgBeschr;
  boq::AddEntry(list, sub, {TLvPlace::Kind::kUnder, 0});
  SaveLvPosList(*db_, texts_.get(), list);
  TreeTrace from_list;
  ForEach(LoadLvPosList(*db_, texts_.get(), lv_), kRootParentId, from_list);
  TreeTrace from_table;
  TTbStruktur rows(*db_);
  TAvaLvTreeIterator(rows, lv_).ForEach(kRootParentId, from_table);
  EXPECT_EQ(from_table.trace, from_list.trace);
  EXPECT_NE(from_table.trace.find("[G"), std::string::npos) << from_table.trace;
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

TEST(LvPosListSearch, ByGlobalIdAndDescription) {
  TLVPosList list =
      testing::ListOf(testing::NumberedLvHeader("1.PPP"), {{'B', "1"}, {'P', "1.001"}});
  const uint8_t guid[16] = {0x78, 0x56, 0x34, 0x12, 0x34, 0x12, 0x78, 0x56,
                            0x9A, 0xBC, 0xDE, 0xF0, 0x12, 0x34, 0x56, 0x78};
  std::copy(std::begin(guid), std::end(guid), list[1].LvBgBeschr.GUID);
  list[1].LvBgBeschr.IDBeschr = 77;
  EXPECT_EQ(list.SearchItemIndexByKatPosGUID(guid), 1);
  for (const char* id :
       {"{12345678-1234-5678-9ABC-DEF012345678}", "12345678-1234-5678-9abc-def012345678"}) {
    EXPECT_EQ(list.SearchItemIndexByDescriptionID(id), 1) << id;
  }
  // The group's GUID is all zeros: no id, never found.
  EXPECT_EQ(list.SearchItemIndexByDescriptionID("{00000000-0000-0000-0000-000000000000}"), -1);
  EXPECT_EQ(list.GetRefDescr(1), 77);
  EXPECT_EQ(list.GetRefDescr(5), data::kNullId);
}

class ChangeLog : public TModelChangeListener {
 public:
  void ModelChanged(const TLVPosList& list, TModelChanges changes) override {
    told.push_back(changes);
    entry_changes_cleared = list.Count() == 0 || list[0].Changes.Empty();
  }
  std::vector<TModelChanges> told;
  bool entry_changes_cleared = false;
};

TEST(LvPosListChanges, IdlePassesAccumulatedChangesOnceToRegisteredListeners) {
  TLVPosList list = testing::ListOf(testing::NumberedLvHeader("1.PPP"), {{'P', "1.001"}});
  ChangeLog first, second;
  list.RegisterCData(&first);
  list.RegisterCData(&second);
  list.RegisterCData(&first);  // once is enough
  list.Idle();
  EXPECT_TRUE(first.told.empty());  // nothing changed
  list.Changed(0, TModelChangedReason::crCost);
  list.Changed(TModelChangedReason::crVariable);
  EXPECT_TRUE(list[0].Changes.Contains(TModelChangedReason::crCost));
  list.UnRegisterCData(&second);
  list.Idle();
  list.Idle();
  ASSERT_EQ(first.told.size(), 1u);
  EXPECT_TRUE(first.told[0].Contains(TModelChangedReason::crCost));
  EXPECT_TRUE(first.told[0].Contains(TModelChangedReason::crVariable));
  EXPECT_FALSE(first.told[0].Contains(TModelChangedReason::crReferral));
  EXPECT_TRUE(first.entry_changes_cleared);
  EXPECT_TRUE(second.told.empty());

  // A copy has no listeners of its own; Assign keeps the target's and tells them.
  TLVPosList copy = list;
  copy.Changed(TModelChangedReason::crCost);
  copy.Idle();
  EXPECT_EQ(first.told.size(), 1u);
  TLVPosList other =
      testing::ListOf(testing::NumberedLvHeader("11.PPPP"), {{'B', "01"}, {'P', "01.0001"}});
  list.Assign(other);
  list.Idle();
  EXPECT_EQ(first.told.size(), 2u);
  EXPECT_EQ(testing::OzsOf(list), testing::OzsOf(other));
  EXPECT_EQ(list.FOzMask().FMask(), "11.PPPP");
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
