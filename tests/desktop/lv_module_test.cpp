// The LV's entries and the installation's projects as the lists a window drives: rows and
// levels from the stored LV, typed values stored the way `korvan lv set` stores them with
// the sums following, every change one step of the journal.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "app/commands/lv/lv_project.h"
#include "app/commands/lv/lv_totals_view.h"
#include "app/modules/dm_lv.h"
#include "app/modules/dm_projekte.h"
#include "data/component/column_view.h"
#include "testing/small_lv.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

using testing::kSmallLv;
using testing::kSmallLvProject;

class LvModule : public ::testing::Test {
 protected:
  void SetUp() override {
    base_ = testing::MakeSmallLv(dir_).string();
    LvProject target(base_, kSmallLvProject);
    target.Db(false);
    lv_id_ = target.ResolveLv(kSmallLv);
    module_ = std::make_unique<TdmLv>(base_, kSmallLvProject, lv_id_);
    ASSERT_TRUE(module_->Loaded()) << module_->LastError();
  }
  // The LV as stored, read apart from the module.
  boq::TLVPosList Stored() {
    LvProject target(base_, kSmallLvProject);
    target.Db(false);
    return target.LoadLv(kSmallLv);
  }
  // The row whose `column` shows `text`; 0 when none.
  int RowOf(const std::string& text, TdmLv::Column column = TdmLv::cOz) {
    for (int z = 1; z <= module_->CData1.GetRmax(); ++z) {
      if (module_->CData1.Data2Screen(z)[column] == text) return z;
    }
    return 0;
  }
  int RowOfOz(const std::string& oz) { return RowOf(oz); }
  // Row z's values with `column` set to `value`, stored through the component.
  data::TScreen2DataResult Type(int z, TdmLv::Column column, const std::string& value) {
    data::TStringList values = module_->CData1.Data2Screen(z);
    values[column] = value;
    return module_->CData1.Screen2Data(z, values);
  }
  static double GroupEstimate(const boq::TLVPosList& list, const std::string& oz) {
    return GroupTotals(list[list.IndexOfOz(oz, 'B')]).estimate;
  }

  korvan::testing::TempDir dir_;
  std::string base_;
  int32_t lv_id_ = 0;
  std::unique_ptr<TdmLv> module_;
};

TEST_F(LvModule, RowsCarryTheTreeAndTheColumnsTheirCaptions) {
  data::TCData& cdata = module_->CData1;
  ASSERT_EQ(cdata.GetRmax(), 6);
  EXPECT_EQ(cdata.GetLevel(RowOfOz("01")), 1);
  EXPECT_EQ(cdata.GetLevel(RowOfOz("01.01")), 2);
  const int item = RowOfOz("01.01.0001");
  EXPECT_EQ(cdata.GetLevel(item), 3);
  EXPECT_EQ(cdata.GetZArt(item), 'P');
  const data::TStringList values = cdata.Data2Screen(item);
  EXPECT_EQ(values[TdmLv::cKurztext], "Aushub");
  EXPECT_EQ(values[TdmLv::cEinheit], "m³");
  EXPECT_EQ(values[TdmLv::cEp], "5,00");
  EXPECT_EQ(values[TdmLv::cGp], "50,00");
  EXPECT_EQ(cdata.Data2Screen(RowOfOz("01.01"))[TdmLv::cGp], "65,00");
  EXPECT_EQ(module_->LongText(item), "Boden lösen, laden und abfahren.\nBodenklasse 3 bis 5.");
  EXPECT_EQ(module_->LongText(RowOfOz("01.01.0002")), "");
  EXPECT_EQ(module_->TotalText(), "65,00 EUR");

  std::vector<std::string> captions;
  std::vector<bool> editable;
  for (const data::TColumnDef& column : cdata.Struktur().Columns()) {
    captions.push_back(data::ColumnCaption(column));
    editable.push_back(data::ColumnEditable(column));
  }
  EXPECT_EQ(captions,
            (std::vector<std::string>{"OZ", "Art", "Kurztext", "Menge", "Einheit", "EP", "GP"}));
  EXPECT_EQ(editable, (std::vector<bool>{true, false, true, true, true, true, false}));
}

TEST_F(LvModule, TypedQuantityAndPriceAreStoredWithTheSumsAndUndoneAsOneStepEach) {
  const boq::TLVPosList before = Stored();
  ASSERT_EQ(Type(RowOfOz("01.01.0001"), TdmLv::cMenge, "12,5"), data::TScreen2DataResult::Stored)
      << module_->LastError();
  ASSERT_EQ(Type(RowOfOz("01.01.0002"), TdmLv::cEp, "8"), data::TScreen2DataResult::Stored);
  ASSERT_TRUE(module_->Reload());

  const boq::TLVPosList after = Stored();
  const boq::TLvPos& item = after[after.IndexOfOz("01.01.0001", 'P')];
  EXPECT_EQ(item.LvBeschr.FMenge, 12.5);
  // Totals in cents: 12,5 × 5,00 + 2 × 8,00.
  const double expected = (1250 * 500 / 100 + 2 * 800) / 100.0;
  EXPECT_DOUBLE_EQ(GroupEstimate(after, "01.01"), expected);
  EXPECT_DOUBLE_EQ(GroupEstimate(after, "01"), expected);
  EXPECT_EQ(module_->CData1.Data2Screen(RowOfOz("01.01"))[TdmLv::cGp], "78,50");

  ASSERT_TRUE(module_->Undo()) << module_->LastError();
  EXPECT_NE(module_->LastMessage().find("Eintrag ändern"), std::string::npos);
  ASSERT_TRUE(module_->Undo());
  const boq::TLVPosList undone = Stored();
  EXPECT_EQ(undone[undone.IndexOfOz("01.01.0001", 'P')].LvBeschr.FMenge, 10.0);
  EXPECT_DOUBLE_EQ(GroupEstimate(undone, "01"), GroupEstimate(before, "01"));
  EXPECT_EQ(module_->CData1.Data2Screen(RowOfOz("01.01"))[TdmLv::cGp], "65,00");
  ASSERT_TRUE(module_->Redo());
  EXPECT_EQ(module_->CData1.Data2Screen(RowOfOz("01.01.0001"))[TdmLv::cGp], "62,50");
}

TEST_F(LvModule, WrongValuesAreRefusedAndChangeNothing) {
  const int item = RowOfOz("01.01.0001");
  const int note = RowOf("Hinweis", TdmLv::cKurztext);
  ASSERT_NE(note, 0);
  struct Case {
    int row;
    TdmLv::Column column;
    std::string value;
    std::string refusal;
  };
  for (const Case& wrong :
       {Case{item, TdmLv::cMenge, "zehn", "\"zehn\" ist keine Zahl (Spalte Menge)."},
        Case{note, TdmLv::cMenge, "3", "nur Positionen"},
        Case{item, TdmLv::cEinheit, "Stunden", "höchstens 6 Zeichen"}}) {
    EXPECT_EQ(Type(wrong.row, wrong.column, wrong.value), data::TScreen2DataResult::Refused);
    EXPECT_NE(module_->LastError().find(wrong.refusal), std::string::npos) << module_->LastError();
  }
  const boq::TLVPosList stored = Stored();
  EXPECT_EQ(stored[stored.IndexOfOz("01.01.0001", 'P')].LvBeschr.FMenge, 10.0);
  EXPECT_EQ(stored[stored.IndexOfOz("01.01.0001", 'P')].Unit, "m³");
}

TEST_F(LvModule, EntriesAreAddedMovedDeletedAndRenumbered) {
  data::TCData& cdata = module_->CData1;
  ASSERT_TRUE(module_->AddEntry(RowOfOz("01.02"), 'P')) << module_->LastError();
  EXPECT_EQ(cdata.Data2Screen(module_->RowOfEntry(module_->LastAdded()))[TdmLv::cOz], "01.02.0001");
  ASSERT_TRUE(module_->MoveDown(RowOfOz("01.01.0001")));
  EXPECT_EQ(cdata.Data2Screen(RowOfOz("01.01.0001"))[TdmLv::cKurztext], "Verfüllen");
  EXPECT_FALSE(module_->MoveUp(RowOfOz("01")));
  EXPECT_NE(module_->LastError().find("als erster"), std::string::npos);

  ASSERT_EQ(cdata.ListOperation(RowOfOz("01.01"), data::loDeleteRecord), data::TListOpResult::Done);
  ASSERT_TRUE(module_->Reload());
  EXPECT_EQ(RowOfOz("01.01.0002"), 0);
  // Removing renumbered what followed; renumbering again changes nothing and leaves no step.
  EXPECT_EQ(cdata.Data2Screen(RowOfOz("01.01"))[TdmLv::cKurztext], "Mauerarbeiten");
  ASSERT_TRUE(module_->Renumber());
  for (int step = 0; step < 3; ++step) ASSERT_TRUE(module_->Undo()) << step;
  EXPECT_EQ(cdata.GetRmax(), 6);
  EXPECT_EQ(cdata.Data2Screen(RowOfOz("01.01.0001"))[TdmLv::cKurztext], "Aushub");
}

TEST(ProjectModule, ProjectsWithTheirLvsAndTotals) {
  korvan::testing::TempDir dir;
  const std::string base = testing::MakeSmallLv(dir).string();
  TdmProjekte module(base);
  ASSERT_TRUE(module.Loaded()) << module.LastError();
  const int project = module.RowOf(kSmallLvProject, 0);
  ASSERT_NE(project, 0);
  EXPECT_EQ(module.CData1.GetLevel(project), 1);
  const int lv = project + 1;
  EXPECT_EQ(module.CData1.GetLevel(lv), 2);
  EXPECT_EQ(module.ProjectOf(lv), kSmallLvProject);
  EXPECT_NE(module.LvOf(lv), 0);
  const data::TStringList values = module.CData1.Data2Screen(lv);
  EXPECT_EQ(values[TdmProjekte::cName], kSmallLv);
  // The stored total `korvan lv list` shows: nothing awarded yet.
  EXPECT_EQ(values[TdmProjekte::cSumme], "0,00 EUR");

  TdmProjekte nowhere((dir.path() / "fehlt").string());
  EXPECT_FALSE(nowhere.Loaded());
  EXPECT_NE(nowhere.LastError().find("fehlt"), std::string::npos) << nowhere.LastError();
}

}  // namespace
}  // namespace korvan::app
