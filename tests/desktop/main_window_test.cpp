// The main window driven as a user drives it: the installation's projects and LVs on the
// left, the LV's entries in the middle, typing into a cell, Ctrl+Z, inserting and deleting.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTreeView>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "app/commands/bid/bid_lv.h"
#include "app/commands/lv/lv_project.h"
#include "app/commands/lv/lv_totals_view.h"
#include "app/modules/dm_lv.h"
#include "app/modules/dm_preisspiegel.h"
#include "app/modules/dm_rangliste.h"
#include "billing/contract/dm_vertrag.h"
#include "desktop/award_views.h"
#include "desktop/award_wizard.h"
#include "desktop/cdata_model.h"
#include "desktop/desk_settings.h"
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
  std::vector<billing::TVertrag> Contracts() {
    app::BidLv target(base_, kSmallLvProject, kSmallLv, false);
    const int32_t number = target.Project().ContractProjectNumber(false);
    if (number == data::kNullId) return {};
    billing::TdmVertrag book(target.Project().BillingDb(), number, target.Converter());
    return book.Contracts(target.List().FLv().FId);
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
  EXPECT_TRUE(window_->Action("vergabe")->isEnabled());
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
  EXPECT_TRUE(window_->LastMessage().startsWith("Rückgängig gemacht"))
      << window_->LastMessage().toStdString();

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
  const int first = app::TdmPreisspiegel::kFirstBidColumn;
  EXPECT_EQ(grid->headerData(first, Qt::Horizontal, Qt::DisplayRole).toString(), "Musterbau GmbH");
  // A bidder's name is not cut off by its column.
  EXPECT_GE(dialog->Grid()->header()->sectionSize(first),
            dialog->Grid()->header()->sectionSizeHint(first));
  QAbstractItemModel* ranks = dialog->Ranks()->model();
  EXPECT_EQ(ranks->index(0, app::TdmRangliste::cBieter).data().toString(), "Musterbau GmbH");
  EXPECT_NE(dialog->findChild<QWidget*>("diagramm"), nullptr);

  // 01 / 01.01 / 01.01.0001: 55,00 and 48,00 are 6,8 % from their mean of 51,50;
  // 01.01.0002: Zweitbau's 40,00 is 48 % above the mean of 27,00.
  const QModelIndex group = grid->index(0, 0, grid->index(0, 0));
  const auto marked = [&](int row) {
    return grid->index(row, first + 1, group).data(Qt::BackgroundRole).isValid();
  };
  EXPECT_EQ(grid->index(1, first + 1, group).data().toString(), "40,00");
  EXPECT_EQ(dialog->MaxDeviation()->value(), 0.0);  // a new installation marks nothing
  EXPECT_FALSE(marked(0));
  EXPECT_FALSE(marked(1));
  dialog->MaxDeviation()->setValue(5.0);
  EXPECT_TRUE(marked(0));
  EXPECT_TRUE(marked(1));
  EXPECT_FALSE(grid->index(1, 1, group).data(Qt::BackgroundRole).isValid());
  dialog->MaxDeviation()->setValue(10.0);
  EXPECT_FALSE(marked(0));
  EXPECT_TRUE(marked(1)) << dialog->LastMessage().toStdString();
  delete dialog;

  // Remembered for the next comparison, in the user's configuration.
  EXPECT_EQ(ComparisonMaxDeviation(base_), 10.0);
  Trigger("preisspiegel");
  dialog = window_->findChild<ComparisonDialog*>();
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(dialog->MaxDeviation()->value(), 10.0);
}

TEST_F(MainWindowTest, AwardWizardAwardsTheChosenBidderAndCtrlZTakesItBackWhole) {
  korvan::testing::AddSmallBids(base_);
  const char status_before = Stored().FLv().Status;
  Trigger("bieter");
  auto* bidders = window_->findChild<BiddersDialog*>();
  ASSERT_NE(bidders, nullptr) << window_->LastMessage().toStdString();
  // The second by rank, Zweitbau, from the bidder list.
  bidders->View()->setCurrentIndex(bidders->View()->model()->index(1, 0));
  bidders->findChild<QPushButton*>("vergabeDurchfuehren")->click();
  auto* wizard = window_->findChild<AwardWizard*>();
  ASSERT_NE(wizard, nullptr);
  QStringList questions;
  wizard->SetAsker([&](const QString& question) {
    questions << question;
    return false;
  });
  EXPECT_EQ(wizard->findChild<QComboBox*>("bieter")->currentText(), "Zweitbau");
  EXPECT_TRUE(wizard->findChild<QCheckBox*>("cbVertraganlegen")->isChecked());
  EXPECT_TRUE(wizard->findChild<QCheckBox*>("cbBieterpreiseInLV")->isChecked());
  EXPECT_TRUE(wizard->findChild<QRadioButton*>("rbVergabePreise")->isChecked());
  // Letters lead to the page of documents, which says they wait for printing.
  wizard->findChild<QCheckBox*>("cbAnschreiben")->setChecked(true);
  wizard->next();
  ASSERT_EQ(wizard->currentId(), AwardWizard::kDetail);
  EXPECT_TRUE(
      wizard->findChild<QLabel*>("nichtVerfuegbar")->text().contains("Noch nicht verfügbar"));
  wizard->back();
  wizard->findChild<QCheckBox*>("cbAnschreiben")->setChecked(false);
  // Neither letters nor a contract: nothing to do, no OK.
  wizard->findChild<QCheckBox*>("cbVertraganlegen")->setChecked(false);
  EXPECT_FALSE(wizard->currentPage()->isComplete());
  wizard->findChild<QCheckBox*>("cbVertraganlegen")->setChecked(true);
  ASSERT_TRUE(wizard->currentPage()->isComplete());

  wizard->next();  // OK: the award runs
  ASSERT_EQ(wizard->currentId(), AwardWizard::kEnd) << wizard->LastMessage().toStdString();
  EXPECT_TRUE(questions.isEmpty()) << "the bid check of the small bids finds nothing";
  Settle();
  const boq::TLVPosList awarded = Stored();
  EXPECT_EQ(awarded.FLv().Status, 'V');
  EXPECT_DOUBLE_EQ(awarded[awarded.IndexOfOz("01.01.0001", 'P')].LvBeschr.VergabeEP.Betrag, 4.8);
  EXPECT_DOUBLE_EQ(awarded[awarded.IndexOfOz("01.01.0002", 'P')].LvBeschr.VergabeEP.Betrag, 20.0);
  EXPECT_EQ(Contracts().size(), 1u);
  EXPECT_TRUE(wizard->findChild<QLabel*>("lVertrag")->text().startsWith("✔"));
  EXPECT_TRUE(wizard->findChild<QLabel*>("lAnschreiben")->text().contains("noch nicht verfügbar"));
  // The grid shows the award prices now.
  EXPECT_EQ(window_->LvView()->model()->headerData(app::TdmLv::cEp, Qt::Horizontal).toString(),
            "Vergabe-EP");
  EXPECT_EQ(Cell("01.01.0001", app::TdmLv::cEp).data().toString(), "4,80");
  EXPECT_TRUE(window_->StatusText().contains("Vergabesumme 88,00"))
      << window_->StatusText().toStdString();
  wizard->close();
  Settle();

  Trigger("rueckgaengig");
  const boq::TLVPosList undone = Stored();
  EXPECT_EQ(undone.FLv().Status, status_before);
  EXPECT_DOUBLE_EQ(undone[undone.IndexOfOz("01.01.0001", 'P')].LvBeschr.VergabeEP.Betrag, 0.0);
  EXPECT_TRUE(Contracts().empty());
  EXPECT_EQ(Cell("01.01.0001", app::TdmLv::cEp).data().toString(), "5,00");
  EXPECT_TRUE(window_->LastMessage().startsWith("Rückgängig gemacht"))
      << window_->LastMessage().toStdString();
}

TEST_F(MainWindowTest, ScreenshotsAreWritten) {
  korvan::testing::AddSmallBids(base_);
  const std::filesystem::path pictures = dir_.path() / "bilder";
  std::ostringstream err;
  ASSERT_TRUE(WriteScreenshots(*window_, pictures.string(), err)) << err.str();
  for (const char* name : {"hauptfenster.png", "bieter.png", "preisspiegel.png", "angebot.png",
                           "vergabe1.png", "vergabe2.png", "vergabe3.png"}) {
    const std::string png = korvan::testing::ReadFile(pictures / name);
    ASSERT_GT(png.size(), 8u) << name;
    EXPECT_EQ(png.substr(1, 3), "PNG") << name;
  }
  // The award was pictured on a copy: the installation shown is not awarded.
  EXPECT_EQ(window_->DataDir(), base_);
  EXPECT_NE(Stored().FLv().Status, 'V');
}

}  // namespace
}  // namespace korvan::desktop
