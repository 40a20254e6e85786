// Deleting LVs and their entries through the tables, the integrity check on what is left,
// and the undo of an LV delete.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <random>
#include <set>

#include "boq/lv/lv_test_support.h"
#include "boq/lv/lv_texts.h"
#include "boq/lv/project_lvs.h"
#include "boq/lv/tb_lv.h"
#include "boq/text/long_text_store.h"
#include "boq/text/tb_texte.h"
#include "data/tables/table_key.h"
#include "data/tables/tb_counter.h"
#include "data/undo/undo_redo.h"
#include "data/undo/undo_table_restorer.h"

namespace korvan::boq::testing {
namespace {

using data::KeyNumber;
using data::kNullId;
using data::kRootParentId;

class LvDeleteTest : public LvDbTest {
 protected:
  int32_t NewLv(const std::string& name) { return CreateLv(*db_, {name, "11.PPP"}); }

  // An LV with levels, two groups, items below them (some described) and a text below
  // an item; returns the number of structure rows.
  int FillLv(int32_t lv) {
    AddLevel(lv, 1);
    AddLevel(lv, 6);
    const int32_t first = AddEntry(lv, kKindGroup, kRootParentId);
    const int32_t second = AddEntry(lv, kKindGroup, first);
    AddEntry(lv, kKindItem, first, true);
    const int32_t item = AddEntry(lv, kKindItem, second, false);
    AddEntry(lv, 'H', second, true);
    TTbStruktur rows(*db_);
    EXPECT_TRUE(rows.GetKey(KeyNumber(AddEntry(lv, 'U', second, true)), '1'));
    rows.Rec().ZuPos = item;
    EXPECT_EQ(rows.UpDateRec(), 0);
    return 6;
  }

  // The letters and keys of the records that belong to no LV: structure rows and levels
  // of LVs that are gone, groups and items without structure row, descriptions nobody
  // refers to.
  std::vector<std::string> Orphans() {
    std::set<int32_t> lvs;
    for (const LvSummary& lv : ListLvs(*db_)) lvs.insert(lv.id);
    std::set<int32_t> placed;
    std::set<int32_t> described;
    std::vector<std::string> orphans;
    for (const auto& [key, record] : AllRecords()) {
      switch (key[0]) {
        case kStrukturTableType: {
          const t_Struktur row = TTbStruktur::Of(record);
          if (!lvs.contains(row.IdLv)) orphans.push_back(key);
          placed.insert(row.IdBgBeschr);
          break;
        }
        case kHierarchieTableType:
          if (!lvs.contains(TTbLvHierarchie::Of(record).IdLv)) orphans.push_back(key);
          break;
        default:
          break;
      }
    }
    for (const auto& [key, record] : AllRecords()) {
      if (key[0] == kLvBgTableType || key[0] == kLvBeschrTableType) {
        const t_LvBgBeschr_3000 common = key[0] == kLvBgTableType
                                             ? TTbLvBg::Of(record).LvBgBeschr1
                                             : TTbLvBeschr::Of(record).LvBgBeschr1;
        if (!placed.contains(common.ID)) orphans.push_back(key);
        described.insert(common.IDBeschr);
      }
    }
    for (const auto& [key, record] : AllRecords()) {
      if (key[0] == kBeschrTableType && !described.contains(TTbBeschr::Of(record).Id)) {
        orphans.push_back(key);
      }
    }
    return orphans;
  }

  size_t CountOf(char table_type) {
    size_t count = 0;
    for (const auto& [key, record] : AllRecords()) count += key[0] == table_type ? 1 : 0;
    return count;
  }
};

TEST_F(LvDeleteTest, DeletingAnLvTakesItsLevelsEntriesAndDescriptionsAndNothingElse) {
  const int32_t kept = NewLv("Rohbau");
  const int32_t gone = NewLv("Ausbau");
  FillLv(kept);
  const Records before = AllRecords();
  FillLv(gone);
  std::filesystem::create_directories(TTbLV::BimImportFolder(db_->Directory(), gone));
  DeleteLv(*db_, gone);
  Records after = AllRecords();
  TTbLV lvs(*db_);
  EXPECT_FALSE(lvs.FindLv(gone));
  const std::string header = std::string(1, kLvTableType) + KeyNumber(gone);
  EXPECT_EQ(after.size(), before.size() - 1);
  after[header] = before.at(header);
  EXPECT_EQ(after, before);
  EXPECT_FALSE(std::filesystem::exists(TTbLV::BimImportFolder(db_->Directory(), gone)));
  EXPECT_EQ(Check(true), 0);
}

// The project's text database beside the LV database.
class LvTextsTest : public LvDeleteTest {
 protected:
  void SetUp() override {
    LvDeleteTest::SetUp();
    CreateTexts();
  }
  // The LV's name line, its comment, and short and long texts of each description.
  void WriteTexts(int32_t lv) {
    TTbTexte lines(*texts_);
    ASSERT_TRUE(lines.WriteLines(lv, 'L', 49, {"Name " + std::to_string(lv)}).Ok());
    ASSERT_TRUE(lines.WriteLines(lv, '1', 49, {"Lohn"}).Ok());
    TLongTextStore long_texts(*texts_);
    ASSERT_EQ(long_texts.Store(lv, 'C', 49, "Kommentar", {}), 0);
    for (const int32_t description : DescriptionsOf(*db_, lv)) {
      ASSERT_TRUE(lines.WriteLines(description, 'K', 49, {"Kurztext"}).Ok());
      ASSERT_EQ(long_texts.Store(description, 'L', 49, "Langtext", {}), 0);
    }
  }
  size_t TextRecords() {
    size_t count = 0;
    for (const std::unique_ptr<data::TStdTB>& table : LvTables().CreateTables(*texts_)) {
      if (table->TableType() == data::kCounterTableType) continue;
      uint32_t records = 0;
      EXPECT_EQ(table->GetRecCount(&records), 0);
      count += records;
    }
    return count;
  }
};

// The delete is one undo step over both databases: undo brings back every record byte for
// byte, redo takes them again.
TEST_F(LvTextsTest, DeletingAnLvDeletesItsTextsAndThoseOfItsDescriptions) {
  const int32_t kept = NewLv("Rohbau");
  FillLv(kept);
  WriteTexts(kept);
  const size_t kept_texts = TextRecords();
  const int32_t gone = NewLv("Ausbau");
  FillLv(gone);
  WriteTexts(gone);
  EXPECT_EQ(DescriptionsOf(*db_, gone).size(), 5u);  // two groups, three described entries
  EXPECT_GT(TextRecords(), kept_texts);

  data::TTableRecordRestorer restorer(std::vector<data::TStdDb*>{db_.get(), texts_.get()},
                                      LvTables());
  korvan::testing::TempDir journal_dir;
  data::TUndoRedo journal(journal_dir.path().string());
  journal.SetRecordRestorer(&restorer);
  data::ScopedTableChangeObserver observing(&journal);
  const size_t all_texts = TextRecords();
  const Records before = AllRecords();
  journal.StartTransaction(data::TStartItem(0, data::TOperationKind::okDelete, "LV löschen"));
  DeleteLv(*db_, gone, texts_.get());
  journal.EndTransaction();
  EXPECT_EQ(TextRecords(), kept_texts);
  TTbTexte lines(*texts_);
  EXPECT_EQ(lines.ReadLines(kept, 'L', 49),
            std::vector<std::string>{"Name " + std::to_string(kept)});
  EXPECT_TRUE(lines.ReadLines(gone, 'L', 49).empty());

  EXPECT_EQ(ListLvs(*db_).size(), 1u);

  const data::TUndoOutcome undone = journal.PopUndo();
  ASSERT_TRUE(undone.ok()) << undone.error;
  EXPECT_EQ(AllRecords(), before);
  EXPECT_EQ(TextRecords(), all_texts);
  EXPECT_EQ(lines.ReadLines(gone, '1', 49), std::vector<std::string>{"Lohn"});
  EXPECT_EQ(TLongTextStore(*texts_).Read(gone, 'C', 49).rich_text, "Kommentar");
  std::string log;
  EXPECT_EQ(Check(true, &log), 0) << log;

  ASSERT_TRUE(journal.PopRedo().ok());
  EXPECT_EQ(ListLvs(*db_).size(), 1u);
  EXPECT_TRUE(Orphans().empty());
  EXPECT_EQ(TextRecords(), kept_texts);
}

// A long text whose description is gone (lost to damage, say) is reported, never deleted.
TEST_F(LvTextsTest, ALongTextWithoutItsDescriptionIsReportedAndKept) {
  ASSERT_EQ(TLongTextStore(*texts_).Store(9999, 'L', 49, "Waise", {}), 0);
  std::string log;
  EXPECT_EQ(Check(false, &log), 1) << log;
  EXPECT_NE(log.find("ForeignKey: IdBezug=9999 nicht vorhanden in"), std::string::npos) << log;
  EXPECT_EQ(TLongTextStore(*texts_).Read(9999, 'L', 49).rich_text, "Waise");
}

// A description belongs to one entry; one named by a group and an item is reported.
TEST_F(LvTextsTest, ADescriptionOfAGroupAndAnItemIsReported) {
  const int32_t lv = NewLv("Rohbau");
  const int32_t group = AddEntry(lv, 'B', kRootParentId, true);
  const int32_t item = AddEntry(lv, 'P', group, true);
  TTbLvBg groups(*db_);
  ASSERT_TRUE(groups.GetKey(KeyNumber(group), '1'));
  const int32_t shared = groups.Rec().LvBgBeschr1.IDBeschr;
  ASSERT_EQ(TLongTextStore(*texts_).Store(shared, 'L', 49, "Beton", {}), 0);
  std::string log;
  EXPECT_EQ(Check(true, &log), 0) << log;
  TTbLvBeschr items(*db_);
  ASSERT_TRUE(items.GetKey(KeyNumber(item), '1'));
  items.Rec().LvBgBeschr1.IDBeschr = shared;
  ASSERT_EQ(items.UpDateRec(), 0);
  EXPECT_GE(Check(true, &log), 1);
  EXPECT_NE(log.find("- DS in beiden Hierarchietabellen enthalten -"), std::string::npos) << log;
}

TEST_F(LvDeleteTest, AnLvWithoutBimFolderOrEntriesIsDeletedAlike) {
  const int32_t lv = NewLv("Leer");
  EXPECT_NO_THROW(DeleteLv(*db_, lv));
  EXPECT_TRUE(ListLvs(*db_).empty());
  EXPECT_THROW(DeleteLv(*db_, lv), EStoredLvError);
}

TEST_F(LvDeleteTest, AnLvIsNamedByItsIdOrItsNameAndNeverAmbiguously) {
  const int32_t rohbau = NewLv("Rohbau");
  const int32_t ausbau = NewLv("Ausbau");
  EXPECT_EQ(FindLvByIdOrName(*db_, "Rohbau").id, rohbau);
  EXPECT_EQ(FindLvByIdOrName(*db_, std::to_string(ausbau)).id, ausbau);
  EXPECT_EQ(FindLvByIdOrName(*db_, "rohbau").problem,
            "kein LV mit der Nummer oder dem Namen \"rohbau\"");
  EXPECT_FALSE(FindLvByIdOrName(*db_, "99").found());
  // Names that the commands refuse can still come from elsewhere: a digit name that is
  // another LV's id, and a name twice.
  const int32_t digits = NewLv(std::to_string(rohbau));
  const int32_t twice = NewLv("Ausbau");
  EXPECT_EQ(FindLvByIdOrName(*db_, std::to_string(rohbau)).problem,
            "\"" + std::to_string(rohbau) + "\" ist nicht eindeutig: LV " + std::to_string(rohbau) +
                " \"Rohbau\"; LV " + std::to_string(digits) + " \"" + std::to_string(rohbau) +
                "\". Bitte die Nummer angeben.");
  EXPECT_FALSE(FindLvByIdOrName(*db_, "Ausbau").found());
  EXPECT_EQ(FindLvByIdOrName(*db_, std::to_string(twice)).id, twice);
  EXPECT_EQ(CheckNewLv({"4711", ""}).empty(), false);
  EXPECT_EQ(CheckNewLv({"Rohbau 2", "11.22.PPPP"}), "");
  EXPECT_NE(CheckNewLv({"Rohbau", std::string(21, 'P')}).find("OZ-Maske"), std::string::npos);
}

TEST_F(LvDeleteTest, SetDBStateWritesOnlyAChangedState) {
  const int32_t lv = NewLv("Rohbau");
  TTbLV lvs(*db_);
  EXPECT_EQ(lvs.SetDBState(lv, TDBLVState::lvOK), TTbLV::TSetStateResult::kUnchanged);
  EXPECT_EQ(lvs.SetDBState(lv, TDBLVState::lvInvalidCosts), TTbLV::TSetStateResult::kUpdated);
  EXPECT_EQ(lvs.SetDBState(lv, TDBLVState::lvInvalidCosts), TTbLV::TSetStateResult::kUnchanged);
  EXPECT_EQ(lvs.SetDBState(lv + 1, TDBLVState::lvOK), TTbLV::TSetStateResult::kNotFound);
  ASSERT_TRUE(lvs.FindLv(lv));
  EXPECT_EQ(lvs.Rec().DBState, static_cast<uint8_t>(TDBLVState::lvInvalidCosts));
}

TEST_F(LvDeleteTest, AnItemWithoutDescriptionIsDeletedAlone) {
  const int32_t lv = NewLv("Rohbau");
  const int32_t item = AddEntry(lv, kKindItem, kRootParentId, false);
  const int32_t described = AddEntry(lv, kKindItem, kRootParentId, true);
  const size_t descriptions = CountOf(kBeschrTableType);
  TTbLvBeschr items(*db_);
  ASSERT_TRUE(items.GetKey(KeyNumber(item), '1'));
  ASSERT_EQ(items.DeleteRecEx(true), 0);
  EXPECT_EQ(CountOf(kBeschrTableType), descriptions);
  EXPECT_EQ(CountOf(kStrukturTableType), 2u);  // the item's row is the caller's
  // Without being asked, the item keeps its description (it may be a catalog's).
  ASSERT_TRUE(items.GetKey(KeyNumber(described), '1'));
  ASSERT_EQ(items.DeleteRec(), 0);
  EXPECT_EQ(CountOf(kBeschrTableType), descriptions);
}

TEST_F(LvDeleteTest, TheCheckAcceptsTheRootAsParentButNotTheNullId) {
  const int32_t lv = NewLv("Rohbau");
  const int32_t top = AddEntry(lv, kKindItem, kRootParentId);
  std::string log;
  EXPECT_EQ(Check(true, &log), 0) << log;
  TTbStruktur rows(*db_);
  ASSERT_TRUE(rows.GetKey(KeyNumber(top), '1'));
  rows.Rec().ZuBg = kNullId;
  ASSERT_EQ(rows.UpDateRec(), 0);
  EXPECT_EQ(Check(true, &log), 1) << log;
  EXPECT_NE(log.find("ZuBg=2147483647 nicht vorhanden"), std::string::npos) << log;
}

TEST_F(LvDeleteTest, TheCheckNamesARejectedCodeWithItsExplanation) {
  const int32_t lv = NewLv("Rohbau");
  TTbLV lvs(*db_);
  ASSERT_TRUE(lvs.FindLv(lv));
  lvs.Rec().Status = 'X';
  lvs.Rec().LBArt = 'Q';
  ASSERT_EQ(lvs.UpDateRec(), 0);
  std::string log;
  EXPECT_EQ(Check(false, &log), 1) << log;
  EXPECT_NE(log.find(std::string(kLvStatusText)), std::string::npos) << log;
  EXPECT_NE(log.find(std::string(kLBArtText)), std::string::npos) << log;
  ASSERT_TRUE(lvs.FindLv(lv));
  EXPECT_EQ(lvs.Rec().Status, 'N');
  EXPECT_EQ(lvs.Rec().LBArt, 'P');
  EXPECT_EQ(Check(true), 0);
}

TEST_F(LvDeleteTest, StructureRowsOfAMissingLvAreDeletedWithTheirEntries) {
  const int32_t lv = NewLv("Rohbau");
  FillLv(lv);
  TTbLV lvs(*db_);
  ASSERT_TRUE(lvs.FindLv(lv));
  ASSERT_EQ(lvs.data::TStdTB::DeleteRec(), 0);  // the header alone, as damage leaves it
  std::string log;
  EXPECT_GT(Check(false, &log), 0) << log;
  EXPECT_TRUE(Orphans().empty());
  EXPECT_EQ(CountOf(kLvBgTableType) + CountOf(kLvBeschrTableType), 0u);
  EXPECT_EQ(Check(true, &log), 0) << log;
}

// LVs with groups, items and levels created and deleted at random: afterwards no table
// holds a record of an LV that is gone, and the check finds nothing.
TEST_F(LvDeleteTest, RandomLvsLeaveNoOrphans) {
  std::mt19937 random(20261123);
  std::map<int32_t, size_t> entries;  // by LV
  for (int step = 0; step < 40; ++step) {
    if (entries.empty() || random() % 3 != 0) {
      const int32_t lv = NewLv("LV " + std::to_string(step));
      std::vector<int32_t> groups{kRootParentId};
      const size_t count = random() % 12;
      for (size_t i = 0; i < count; ++i) {
        const int32_t parent = groups[random() % groups.size()];
        if (random() % 3 == 0) {
          groups.push_back(AddEntry(lv, kKindGroup, parent));
        } else {
          AddEntry(lv, random() % 4 == 0 ? 'H' : kKindItem, parent, random() % 2 == 0);
        }
      }
      for (int32_t level = 1; level <= static_cast<int32_t>(random() % 4); ++level) {
        AddLevel(lv, level);
      }
      entries[lv] = count;
    } else {
      auto victim = entries.begin();
      std::advance(victim, random() % entries.size());
      DeleteLv(*db_, victim->first);
      entries.erase(victim);
    }
  }
  std::map<int32_t, size_t> listed;
  for (const LvSummary& lv : ListLvs(*db_)) listed[lv.id] = lv.entries;
  EXPECT_EQ(listed, entries);
  EXPECT_TRUE(Orphans().empty());
  std::string log;
  EXPECT_EQ(Check(true, &log), 0) << log;
}

}  // namespace
}  // namespace korvan::boq::testing
