// The main window driven as a user drives it: the installation's projects and LVs on the
// left, the LV's entries in the middle, typing into a cell, Ctrl+Z, inserting and deleting.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>
#include <QTreeView>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>

#include "app/commands/lv/lv_project.h"
#include "app/commands/lv/lv_totals_view.h"
#include "app/modules/dm_lv.h"
#include "app/modules/dm_preisspiegel.h"
#include "app/modules/dm_rangliste.h"
#include "desktop/award_views.h"
#include "desktop/cdata_model.h"
#include "desktop/main_window.h"
#include "desktop/screenshots.h"
#include "testing/files.h"
#include "testing/small_lv.h"
#include "testing/temp_dir.h"
#include "window_driving.h"

namespace korvan::desktop {
namespace {

using testing::kSmallLv;
using testing::kSmallLvProject;

class MainWindowTest : public SmallLvWindowTest {
 protected:
  boq::TLVPosList Stored() {
    app::LvProject target(base_, kSmallLvProject);
    target.Db(false);
    return target.LoadLv(kSmallLv);
  }
  // The index of the entry `oz` in the LV grid, in `column`.
  QModelIndex Cell(const std::string& oz, int column) {
    CDataModel& model = *window_->LvModel();
    for (int z = 1; z <= model.Component().GetRmax(); ++z) {
      const QModelIndex at = model.IndexOfRow(z, column);
      if (model.IndexOfRow(z, app::TdmLv::cOz).data().toString().toStdString() == oz) return at;
    }
    return {};
  }
  // Types `text` into a cell as a user does: select, F2, the text, Enter.
  void TypeInto(const QModelIndex& cell, const QString& text) {
    QTreeView* view = window_->LvView();
    view->setCurrentIndex(cell);
    view->edit(cell);
    auto* editor = view->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, Qt::Key_Return);
    Settle();  // the rows are read again once the editor is closed
  }
};

TEST_F(MainWindowTest, OpensTheInstallationWithItsFirstLv) {
  QAbstractItemModel* projects = window_->ProjectView()->model();
  ASSERT_NE(projects, nullptr);
  const QModelIndex project = projects->index(0, 0);
  EXPECT_EQ(project.data().toString().toStdString(), kSmallLvProject);
  EXPECT_EQ(projects->index(0, 0, project).data().toString().toStdString(), kSmallLv);
  EXPECT_EQ(projects->headerData(0, Qt::Horizontal, Qt::DisplayRole).toString(), "Projekt / LV");

  QAbstractItemModel* lv = window_->LvView()->model();
  ASSERT_NE(lv, nullptr);
  EXPECT_EQ(lv->headerData(2, Qt::Horizontal, Qt::DisplayRole).toString(), "Kurztext");
  EXPECT_EQ(Cell("01.01", app::TdmLv::cGp).data().toString(), "65,00");
  EXPECT_FALSE(lv->flags(Cell("01.01", app::TdmLv::cGp)) & Qt::ItemIsEditable);
  window_->LvView()->setCurrentIndex(Cell("01.01.0001", 0));
  EXPECT_TRUE(window_->LongTextView()->toPlainText().startsWith("Boden lösen"));
  EXPECT_TRUE(window_->StatusText().contains("65,00 EUR")) << window_->StatusText().toStdString();
  EXPECT_FALSE(window_->Action("vergabe")->isEnabled());
  EXPECT_TRUE(window_->Action("vergabe")->text().contains("noch nicht verfügbar"));
}

TEST_F(MainWindowTest, TypedQuantityIsStoredTheTotalsFollowAndCtrlZTakesItBack) {
  TypeInto(Cell("01.01.0001", app::TdmLv::cMenge), "12,5");
  const boq::TLVPosList edited = Stored();
  EXPECT_EQ(edited[edited.IndexOfOz("01.01.0001", 'P')].LvBeschr.FMenge, 12.5);
  const double expected = (1250 * 500 / 100 + 2 * 750) / 100.0;  // in cents
  EXPECT_DOUBLE_EQ(app::GroupTotals(edited[edited.IndexOfOz("01.01", 'B')]).estimate, expected);
  EXPECT_EQ(Cell("01.01", app::TdmLv::cGp).data().toString(), "77,50");
  EXPECT_TRUE(window_->StatusText().contains("77,50 EUR"));

  EXPECT_EQ(window_->Action("rueckgaengig")->shortcut(), QKeySequence("Ctrl+Z"));
  Trigger("rueckgaengig");
  const boq::TLVPosList undone = Stored();
  EXPECT_EQ(undone[undone.IndexOfOz("01.01.0001", 'P')].LvBeschr.FMenge, 10.0);
  EXPECT_EQ(Cell("01.01", app::TdmLv::cGp).data().toString(), "65,00");

  TypeInto(Cell("01.01.0002", app::TdmLv::cEp), "sieben");
  EXPECT_TRUE(window_->LastMessage().contains("ist keine Zahl"))
      << window_->LastMessage().toStdString();
  EXPECT_EQ(Cell("01.01.0002", app::TdmLv::cEp).data().toString(), "7,50");
}

TEST_F(MainWindowTest, InsertAndDeleteEntries) {
  window_->LvView()->setCurrentIndex(Cell("01.02", 0));
  Trigger("positionEinfuegen");
  EXPECT_TRUE(Cell("01.02.0001", 0).isValid());
  window_->LvView()->setCurrentIndex(Cell("01.01", 0));
  Trigger("eintragLoeschen");
  // What followed moved up: the masonry group and its new item.
  EXPECT_EQ(Cell("01.01", app::TdmLv::cKurztext).data().toString(), "Mauerarbeiten");
  EXPECT_EQ(Stored().Count(), 3);
  Trigger("rueckgaengig");
  EXPECT_TRUE(Cell("01.01.0001", 0).isValid());
  EXPECT_EQ(Stored().Count(), 7);
}

TEST_F(MainWindowTest, ComparisonShowsBiddersSideBySideWithDeviationsRanksAndChart) {
  korvan::testing::AddSmallBids(base_);
  Trigger("preisspiegel");
  auto* dialog = window_->findChild<ComparisonDialog*>();
  ASSERT_NE(dialog, nullptr) << window_->LastMessage().toStdString();
  QAbstractItemModel* grid = dialog->Grid()->model();
  EXPECT_EQ(grid->headerData(app::TdmPreisspiegel::kFirstBidColumn, Qt::Horizontal, Qt::DisplayRole)
                .toString(),
            "Musterbau GmbH");
  // 01 / 01.01 / 01.01.0002: Zweitbau's 40,00 is far above the mean of 27,00.
  const QModelIndex group = grid->index(0, 0, grid->index(0, 0));
  const QModelIndex far = grid->index(1, app::TdmPreisspiegel::kFirstBidColumn + 1, group);
  EXPECT_EQ(far.data().toString(), "40,00");
  EXPECT_TRUE(far.data(Qt::BackgroundRole).isValid());
  EXPECT_FALSE(grid->index(1, 1, group).data(Qt::BackgroundRole).isValid());
  QAbstractItemModel* ranks = dialog->Ranks()->model();
  EXPECT_EQ(ranks->index(0, app::TdmRangliste::cBieter).data().toString(), "Musterbau GmbH");
  EXPECT_NE(dialog->findChild<QWidget*>("diagramm"), nullptr);
}

TEST_F(MainWindowTest, ScreenshotsAreWritten) {
  const std::filesystem::path pictures = dir_.path() / "bilder";
  std::ostringstream err;
  ASSERT_TRUE(WriteScreenshots(*window_, pictures.string(), err)) << err.str();
  for (const char* name : {"hauptfenster.png", "bieter.png", "preisspiegel.png"}) {
    const std::string png = korvan::testing::ReadFile(pictures / name);
    ASSERT_GT(png.size(), 8u) << name;
    EXPECT_EQ(png.substr(1, 3), "PNG") << name;
  }
}

}  // namespace
}  // namespace korvan::desktop
