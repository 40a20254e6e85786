#include <gtest/gtest.h>

#include <fstream>

#include "data/component/c_data.h"
#include "data/component/c_data_test_module.h"
#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

using testing::FakeModule;
using Log = std::vector<std::string>;

// Two components sharing one clipboard, as two lists of one program do.
class CDataClipTest : public ::testing::Test {
 protected:
  CDataClipTest() : first_module(first), second_module(second) {
    Setup(first, 10, "Eins");
    Setup(second, 20, "Zwei");
    first_module.Add("A", {"Alpha"});
    first_module.Add("B", {"Beta"});
    first_module.Add("C", {"Gamma"});
    second_module.Add("X", {"Xi"});
    EXPECT_EQ(first.ListOperation(0, loInit), TListOpResult::Done);
    EXPECT_EQ(second.ListOperation(0, loInit), TListOpResult::Done);
    first_module.Take();
    second_module.Take();
  }

  void Setup(TCData& cdata, int id, const std::string& name) {
    cdata.FC_ID = id;
    cdata.FfreiesDatenDirectory = "/daten/";
    cdata.FDatenName = name;
    cdata.SetStruktur({"Name,N,0,100,20,N,0,1,1,0,0,,0,1,47204"});
    cdata.SetClipboard(&clipboard);
  }

  TCDataClipboard clipboard;
  TCData first;
  TCData second;
  FakeModule first_module;
  FakeModule second_module;
};

TEST_F(CDataClipTest, CopyAndPasteByKeyList) {
  EXPECT_FALSE(first.CanPaste());
  first.GetR(1).Markiert = true;
  first.GetR(3).Markiert = true;
  ASSERT_EQ(first.ListOperation(2, loClipCopy), TListOpResult::Done);
  EXPECT_EQ(first_module.Take(), (Log{"Before 18 2", "ClipCopy /daten/Eins 10 A|C copy",
                                      "Info op 18 2 2", "After 18 2"}));
  ASSERT_TRUE(clipboard.Content().has_value());
  EXPECT_EQ(clipboard.Content()->Keys, (TStringList{"A", "C"}));
  EXPECT_EQ(clipboard.Content()->SourceId, 10);

  // Another component takes the rows only when it accepts the source id.
  EXPECT_FALSE(second.CanPaste());
  EXPECT_EQ(second.ListOperation(1, loPaste), TListOpResult::NotAllowed);
  second.FC_letIdDrop = "5;10";
  EXPECT_TRUE(second.CanPaste());
  second.Events.OnCanPaste = [](TCData&, bool& can) { can = false; };
  EXPECT_FALSE(second.CanPaste());
  second.Events.OnCanPaste = nullptr;

  // Pasting into the own list before row 2: the list is reloaded with the copies.
  ASSERT_EQ(first.ListOperation(2, loPaste), TListOpResult::Done);
  EXPECT_EQ(first_module.Take(), (Log{"Before 20 2", "ClipPaste /daten/Eins 10 A|C",
                                      "StrukturLesen", "Info paste 10 A|C", "After 20 2"}));
  EXPECT_EQ(first_module.RowKeys(), (Log{"A", "K100", "K101", "B", "C"}));
  EXPECT_TRUE(clipboard.Content().has_value());  // a copy can be pasted again

  // Paste special only where the component offers it; a handler may refuse the paste.
  EXPECT_EQ(first.ListOperation(1, loPasteSpecial), TListOpResult::NotAllowed);
  first.FC_hasClipSpecial = true;
  first.Events.C_OnClipPaste = [](const std::string&, int, const TStringList&,
                                  TClipPasteType& mode) { mode = TClipPasteType::CLIP_NONE; };
  first_module.Take();
  EXPECT_EQ(first.ListOperation(1, loPasteSpecial), TListOpResult::Cancelled);
  EXPECT_EQ(first_module.Take(), (Log{"Before 21 1", "After 21 1 failed"}));
}

TEST_F(CDataClipTest, CutRowsLeaveTheirListWhenPastedElsewhere) {
  second.FC_letIdDrop = "10";
  ASSERT_EQ(first.ListOperation(2, loCutBlock), TListOpResult::Done);
  EXPECT_TRUE(first.GetR(2).Cutted);
  EXPECT_EQ(first_module.Take()[1], "ClipCopy /daten/Eins 10 B cut");

  second_module.records["B"] = first_module.records["B"];  // the source the paste reads
  ASSERT_EQ(second.ListOperation(2, loPaste), TListOpResult::Done);
  EXPECT_EQ(second_module.RowKeys(), (Log{"X", "K100"}));
  EXPECT_EQ(first_module.Take(),
            (Log{"DeleteZeile 2 B blind", "CopyData 2<-3", "Info delete 2 B"}));
  EXPECT_EQ(first_module.RowKeys(), (Log{"A", "C"}));
  EXPECT_FALSE(clipboard.Content().has_value());

  // A cut whose source component is gone pastes without touching anything else.
  {
    TCData gone;
    gone.FC_ID = 10;
    gone.SetClipboard(&clipboard);
    FakeModule gone_module(gone);
    gone_module.Add("G", {"Gone"});
    ASSERT_EQ(gone.ListOperation(0, loInit), TListOpResult::Done);
    ASSERT_EQ(gone.ListOperation(1, loCutBlock), TListOpResult::Done);
  }
  EXPECT_EQ(clipboard.Content()->Source, nullptr);
  EXPECT_EQ(second.ListOperation(1, loPaste), TListOpResult::Done);
  EXPECT_EQ(second_module.RowKeys(), (Log{"K101", "X", "K100"}));
}

TEST_F(CDataClipTest, SaveAndReadBlockThroughTheComponent) {
  korvan::testing::TempDir dir;
  const std::string path = dir.File(std::string(kBlockFileName));
  first.GetR(1).Markiert = true;
  first.GetR(2).Markiert = true;
  ASSERT_EQ(first.ListOperationEx(0, loSaveBlock, {.File = path, .Info = "zwei Zeilen"}),
            TListOpResult::Done);
  TBlockFile block = ReadBlockFile(path);
  EXPECT_EQ(block.Origin, "/daten/Eins;10");
  EXPECT_EQ(block.Info, "zwei Zeilen");
  ASSERT_EQ(block.Rows.size(), 2u);
  EXPECT_EQ(block.Rows[1].Key, "B");
  EXPECT_EQ(block.Rows[1].Values, (TStringList{"Beta"}));

  second_module.Take();
  ASSERT_EQ(second.ListOperationEx(1, loReadBlock, {.File = path}), TListOpResult::Done);
  EXPECT_EQ(second_module.RowKeys(), (Log{"K100", "K101", "X"}));
  EXPECT_EQ(second_module.records["K101"], (TStringList{"Beta"}));
  EXPECT_EQ(second_module.Take()[3], "PutDaten 1 Alpha <- neu");

  // A damaged block changes nothing and names the file and line.
  std::ofstream(path, std::ios::trunc) << "Origin=x\nInfo=y\nRows=3\n";
  EXPECT_EQ(second.ListOperationEx(1, loReadBlock, {.File = path}), TListOpResult::Failed);
  EXPECT_NE(second.LastError().find("Zeile 4"), std::string::npos) << second.LastError();
  EXPECT_EQ(second.GetRmax(), 3);
}

}  // namespace
}  // namespace korvan::data
