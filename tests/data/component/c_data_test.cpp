#include "data/component/c_data.h"

#include <gtest/gtest.h>

#include "data/component/c_data_test_module.h"

namespace korvan::data {
namespace {

using testing::FakeJournal;
using testing::FakeModule;
using Log = std::vector<std::string>;

class CDataTest : public ::testing::Test {
 protected:
  CDataTest() : module(cdata) {
    cdata.FC_ID = 7;
    cdata.SetStruktur(
        {"Name,N,0,100,20,N,0,1,1,0,0,,0,1,47204", "Wert,R,1,80,10,N,2,1,1,0,0,,0,1,47105"});
    cdata.SetUndoJournal(&journal);
    module.Add("A", {"Alpha", "3"});
    module.Add("B", {"Beta", "1"});
    module.Add("C", {"Gamma", "2"});
    EXPECT_EQ(cdata.ListOperation(0, loInit), TListOpResult::Done);
    module.Take();
    journal.log.clear();
  }

  TCData cdata;
  FakeModule module;
  FakeJournal journal;
};

TEST(CDataStructure, DefaultUserAndMalformedStructures) {
  TCData cdata;
  cdata.Loaded();
  ASSERT_EQ(cdata.GetFeldAnzahl(), 1);  // without any structure: the single column "Nr"
  EXPECT_EQ(cdata.GetFeldName(0), "Nr");

  TCData with_default;  // the module's default structure, when the owner set none
  with_default.Events.C_OnGetStruktur = [](TCData&, int, TStringList& t) {
    t = {"ID,I,0,100,10,N,0,1,0,1,0,,0,1,45501", "Abzug,W,5,80,14,N,2,1,1,0,0,,1,1,45506"};
  };
  with_default.Loaded();
  ASSERT_EQ(with_default.GetFeldAnzahl(), 2);
  EXPECT_EQ(with_default.GetFeldName(1), "Abzug");
  EXPECT_THROW(with_default.SetUserStruktur({"ID,Q,0,1,1"}), EColumnStructureError);
  EXPECT_EQ(with_default.GetFeldAnzahl(), 2);  // the old one kept
  EXPECT_FALSE(with_default.StrukturModified());
  with_default.SetUserStruktur({"Abzug,W,5,80,14,N,2,1,1,0,0,,1,1,45506"});
  EXPECT_TRUE(with_default.StrukturModified());
  EXPECT_EQ(with_default.GetFeldAnzahl(), 1);
}

TEST_F(CDataTest, LoadingTheRowListAndReadingRows) {
  EXPECT_EQ(module.RowKeys(), (Log{"A", "B", "C"}));
  EXPECT_EQ(cdata.ZeileFromKey("B"), 2);
  EXPECT_FALSE(cdata.KeyExists("X"));
  EXPECT_EQ(cdata.ZeilenartPerKey("C"), 'P');
  EXPECT_EQ(cdata.Data2Screen(3), (TStringList{"Gamma", "2"}));
  EXPECT_TRUE(cdata.Data2Screen(4).empty());

  // Too long a key or more rows than allowed: the old list stays.
  module.order.push_back(std::string(81, 'x'));
  EXPECT_EQ(cdata.ListOperation(0, loReload), TListOpResult::Failed);
  EXPECT_NE(cdata.LastError().find("Zeile 4"), std::string::npos) << cdata.LastError();
  EXPECT_EQ(cdata.GetRmax(), 3);
  module.order.back() = std::string(80, 'x');
  cdata.FLZmax = 3;
  EXPECT_EQ(cdata.ListOperation(0, loReload), TListOpResult::Failed);
  cdata.FLZmax = 4;
  EXPECT_EQ(cdata.ListOperation(0, loReload), TListOpResult::Done);
  EXPECT_EQ(cdata.GetRmax(), 4);
}

TEST_F(CDataTest, Screen2DataStoresOrLeavesEverythingUnchanged) {
  ASSERT_EQ(cdata.ListOperation(2, loChangeRecordIndex), TListOpResult::Done);
  EXPECT_EQ(cdata.CurrentRecord(), (TStringList{"Beta", "1"}));
  module.Take();

  // Refused: neither row, current record nor stored data change.
  module.refuse_put = true;
  EXPECT_EQ(cdata.Screen2Data(2, {"Bx", "9"}), TScreen2DataResult::Refused);
  EXPECT_EQ(module.Take(), (Log{"PutDaten 2 Bx|9 <- Beta|1"}));
  EXPECT_EQ(module.records["B"], (TStringList{"Beta", "1"}));
  EXPECT_EQ(cdata.UnalteredRecord(), (TStringList{"Beta", "1"}));
  EXPECT_EQ(cdata.GetKey(2), "B");

  // Accepted: stored, current and unaltered record follow, the row is refreshed.
  module.refuse_put = false;
  EXPECT_EQ(cdata.Screen2Data(2, {"Bx"}), TScreen2DataResult::Stored);
  EXPECT_EQ(module.Take(), (Log{"PutDaten 2 Bx| <- Beta|1", "AktualDaten 2"}));
  EXPECT_EQ(module.records["B"], (TStringList{"Bx", ""}));
  EXPECT_EQ(cdata.CurrentRecord(), (TStringList{"Bx", ""}));
  EXPECT_EQ(journal.log, (Log{"start 7 0 Bearbeiten", "end", "start 7 0 Bearbeiten", "end"}));

  // Rows that cannot be edited.
  EXPECT_EQ(cdata.Screen2Data(4, {"x"}), TScreen2DataResult::InvalidRow);
  cdata.GetR(1).Locked = true;
  EXPECT_EQ(cdata.Screen2Data(1, {"x"}), TScreen2DataResult::RowLocked);
  cdata.Events.C_onLockZeile = [](const std::string& key, const std::string&, bool& foreign,
                                  bool doUnlock) {
    if (key == "C" && !doUnlock) foreign = true;
  };
  EXPECT_EQ(cdata.Screen2Data(3, {"x"}), TScreen2DataResult::RowLocked);
  cdata.FNoEdit = true;
  EXPECT_EQ(cdata.Screen2Data(2, {"x"}), TScreen2DataResult::NotEditable);
  EXPECT_TRUE(module.Take().empty());
  EXPECT_EQ(module.records["C"], (TStringList{"Gamma", "2"}));
}

TEST_F(CDataTest, CancelledListOperationRaisesNoFurtherEvents) {
  module.cancel_before = true;
  for (int mode : {loAddRecord, loDeleteBlock, loSortBlock, loMoveBlock, loPaste}) {
    EXPECT_EQ(cdata.ListOperation(1, mode), TListOpResult::Cancelled) << mode;
    EXPECT_EQ(module.Take(), (Log{"Before " + std::to_string(mode) + " 1"})) << mode;
  }
  EXPECT_EQ(module.RowKeys(), (Log{"A", "B", "C"}));
  EXPECT_EQ(module.records.size(), 3u);
}

TEST_F(CDataTest, AddInsertAndDeleteRaiseTheirEventsInOrder) {
  // Add: a new row at the end, initialised, stored by the first edit.
  ASSERT_EQ(cdata.ListOperation(0, loAddRecord), TListOpResult::Done);
  EXPECT_EQ(module.Take(), (Log{"Before 6 0", "InitData 4", "Info op 6 4 1", "After 6 0"}));
  EXPECT_EQ(cdata.CurrentRecordIndex(), 4);
  EXPECT_EQ(cdata.CurrentRecord(), (TStringList{"neu", ""}));
  ASSERT_EQ(cdata.Screen2Data(4, {"Delta", "4"}), TScreen2DataResult::Stored);
  EXPECT_EQ(cdata.GetKey(4), "K100");
  module.Take();

  // Insert before row 2: the module's rows 4, 3, 2 move down, bottom first.
  ASSERT_EQ(cdata.ListOperation(2, loInsertRecord), TListOpResult::Done);
  EXPECT_EQ(module.Take(), (Log{"Before 7 2", "CopyData 5<-4", "CopyData 4<-3", "CopyData 3<-2",
                                "InitData 2", "Info op 7 2 1", "After 7 2"}));
  EXPECT_EQ(module.RowKeys(), (Log{"A", "", "B", "C", "K100"}));

  // Delete row 3 ("B"): the rows below move up.
  journal.log.clear();
  ASSERT_EQ(cdata.ListOperation(3, loDeleteRecord), TListOpResult::Done);
  EXPECT_EQ(module.Take(), (Log{"Before 8 3", "DeleteZeile 3 B", "CopyData 3<-4", "CopyData 4<-5",
                                "Info delete 3 B", "After 8 3"}));
  EXPECT_EQ(module.RowKeys(), (Log{"A", "", "C", "K100"}));
  EXPECT_FALSE(module.records.contains("B"));
  EXPECT_EQ(journal.log, (Log{"start 7 8 Zeile löschen", "deleted B 3", "end"}));

  // A refused delete leaves the row.
  module.refuse_delete = true;
  EXPECT_EQ(cdata.ListOperation(1, loDeleteRecord), TListOpResult::Cancelled);
  EXPECT_EQ(module.Take(), (Log{"Before 8 1", "DeleteZeile 1 A", "After 8 1 failed"}));
  EXPECT_EQ(cdata.GetRmax(), 4);

  // Limits: rows outside the list, a full list, a locked list.
  EXPECT_EQ(cdata.ListOperation(9, loDeleteRecord), TListOpResult::InvalidRow);
  cdata.FLZmax = 4;
  EXPECT_EQ(cdata.ListOperation(0, loAddRecord), TListOpResult::Failed);
  EXPECT_NE(cdata.LastError().find("4"), std::string::npos);
  cdata.FNoListChange = true;
  EXPECT_EQ(cdata.ListOperation(1, loInsertRecord), TListOpResult::NotAllowed);
  EXPECT_EQ(cdata.GetRmax(), 4);
}

TEST_F(CDataTest, BlockSelectionMoveAndDelete) {
  ASSERT_EQ(cdata.ListOperationEx(1, loSelectBlock, {.BlockEnd = 2}), TListOpResult::Done);
  EXPECT_TRUE(cdata.GetMarkiert(1));
  EXPECT_TRUE(cdata.GetMarkiert(2));
  EXPECT_FALSE(cdata.GetMarkiert(3));
  ASSERT_EQ(cdata.ListOperation(2, loToggleSelection), TListOpResult::Done);
  EXPECT_FALSE(cdata.GetMarkiert(2));
  EXPECT_TRUE(journal.log.empty());  // selecting changes no data

  // Move the marked row "A" to the end; the list is then saved with its new order.
  module.Take();
  ASSERT_EQ(cdata.ListOperation(4, loMoveBlock), TListOpResult::Done);
  EXPECT_EQ(module.RowKeys(), (Log{"B", "C", "A"}));
  EXPECT_EQ(journal.log, (Log{"start 7 11 Block verschieben", "moved 1->3", "end"}));
  EXPECT_EQ(module.Take(), (Log{"Before 11 4", "Info op 11 3 1", "After 11 4"}));
  ASSERT_EQ(cdata.ListOperation(0, loClose), TListOpResult::Done);
  EXPECT_EQ(module.order, (Log{"B", "C", "A"}));
  module.Take();
  cdata.SchreibeIndexAufPlatte(false);  // nothing changed since: nothing written
  EXPECT_TRUE(module.Take().empty());

  // Select all, then delete the block from the bottom, blind.
  ASSERT_EQ(cdata.ListOperation(0, loSelectAll), TListOpResult::Done);
  cdata.GetR(2).Locked = true;
  module.Take();
  journal.log.clear();
  ASSERT_EQ(cdata.ListOperation(1, loDeleteBlock), TListOpResult::Done);
  EXPECT_EQ(module.Take(),
            (Log{"Before 12 1", "DeleteZeile 3 A blind", "Info delete 3 A", "DeleteZeile 1 B blind",
                 "CopyData 1<-2", "Info delete 1 B", "Info op 12 1 2", "After 12 1"}));
  EXPECT_EQ(module.RowKeys(), (Log{"C"}));
  EXPECT_EQ(journal.log, (Log{"start 7 12 Block löschen", "deleted A 3", "deleted B 1", "end"}));
}

TEST_F(CDataTest, SortBlockByColumnWritesRowsBack) {
  module.Add("D", {"Delta", "1.234,5"});
  module.Add("E", {"Epsilon", "x"});
  ASSERT_EQ(cdata.ListOperation(0, loReload), TListOpResult::Done);
  module.Take();
  ASSERT_EQ(cdata.ListOperationEx(0, loSortBlock, {.SortColumn = 1}), TListOpResult::Done);
  EXPECT_EQ(module.RowKeys(), (Log{"E", "B", "C", "A", "D"}));  // numeric, "x" first
  const Log log = module.Take();
  ASSERT_EQ(log.size(), 8u);
  EXPECT_EQ(log[1], "DatenSchreiben 1 E");
  EXPECT_EQ(log[5], "DatenSchreiben 5 D");

  // Only the marked rows 2 to 4, by name.
  for (int z : {2, 3, 4}) cdata.GetR(z).Markiert = true;
  ASSERT_EQ(cdata.ListOperationEx(0, loSortBlock, {.SortColumn = 0}), TListOpResult::Done);
  EXPECT_EQ(module.RowKeys(), (Log{"E", "A", "B", "C", "D"}));
  EXPECT_EQ(cdata.ListOperationEx(0, loSortBlock, {.SortColumn = 5}), TListOpResult::Failed);
}

TEST_F(CDataTest, CopyBlockDuplicatesRowsAndSumRaisesDoSummen) {
  cdata.GetR(1).Markiert = true;
  cdata.GetR(3).Markiert = true;
  ASSERT_EQ(cdata.ListOperation(4, loCopyBlock), TListOpResult::Done);
  EXPECT_EQ(module.RowKeys(), (Log{"A", "B", "C", "K100", "K101"}));
  EXPECT_EQ(module.records["K101"], module.records["C"]);
  Log log = module.Take();
  EXPECT_EQ(log[1], "InitData 4");
  EXPECT_EQ(log[2], "PutDaten 4 Alpha|3 <- neu|");

  // A refused copy is taken out again.
  module.refuse_put = true;
  EXPECT_EQ(cdata.ListOperation(1, loCopyBlock), TListOpResult::Cancelled);
  EXPECT_EQ(cdata.GetRmax(), 5);
  EXPECT_EQ(module.RowKeys(), (Log{"A", "B", "C", "K100", "K101"}));

  module.Take();
  ASSERT_EQ(cdata.ListOperation(0, loSum), TListOpResult::Done);
  EXPECT_EQ(module.Take(), (Log{"Before 17 0", "DoSummen", "After 17 0"}));
}

TEST_F(CDataTest, ReentrantCallsFromHandlersAreRefused) {
  TListOpResult inner = TListOpResult::Done;
  TScreen2DataResult inner_edit = TScreen2DataResult::Stored;
  cdata.Events.C_OnDoSummen = [&](TCData& sender) {
    inner = sender.ListOperation(1, loDeleteRecord);
    inner_edit = sender.Screen2Data(1, {"x"});
  };
  ASSERT_EQ(cdata.ListOperation(0, loSum), TListOpResult::Done);
  EXPECT_EQ(inner, TListOpResult::Busy);
  EXPECT_EQ(inner_edit, TScreen2DataResult::Busy);
  EXPECT_EQ(cdata.GetRmax(), 3);
}

}  // namespace
}  // namespace korvan::data
