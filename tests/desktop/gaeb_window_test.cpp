// GAEB files and bids through the window's menu: an LV written as a file and read back as
// a new LV, taken back by Ctrl+Z; a broken file's finding listed with its line; a bid's
// lines; a bidder's DA 84 file read into another bidder's bid.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTreeView>
#include <QTreeWidget>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "app/commands/lv/lv_project.h"
#include "app/modules/dm_angebot_zeilen.h"
#include "app/modules/dm_lv.h"
#include "app/modules/dm_rangliste.h"
#include "award/bid/bid_columns.h"
#include "desktop/award_views.h"
#include "desktop/bid_view.h"
#include "desktop/cdata_model.h"
#include "desktop/gaeb_views.h"
#include "desktop/main_window.h"
#include "exchange/gaeb_xml/gaeb_file_check.h"
#include "testing/files.h"
#include "testing/small_lv.h"
#include "testing/temp_dir.h"
#include "window_driving.h"

namespace korvan::desktop {
namespace {

using testing::kSmallLv;
using testing::kSmallLvProject;

// The official schemas ($KORVAN_GAEB_XSD, else beside the repository); empty when absent.
std::filesystem::path GaebSchemas() {
  const char* from_environment = std::getenv("KORVAN_GAEB_XSD");
  const std::filesystem::path dir = from_environment != nullptr
                                        ? std::filesystem::path(from_environment)
                                        : std::filesystem::path(KORVAN_GAEB_DIR) / "xsd-3.3";
  return std::filesystem::is_directory(dir) ? dir : std::filesystem::path();
}

class GaebWindowTest : public SmallLvWindowTest {
 protected:
  // The LVs the project tree shows.
  std::vector<std::string> LvsShown() {
    QAbstractItemModel* tree = window_->ProjectView()->model();
    const QModelIndex project = tree->index(0, 0);
    std::vector<std::string> names;
    for (int row = 0; row < tree->rowCount(project); ++row) {
      names.push_back(tree->index(row, 0, project).data().toString().toStdString());
    }
    return names;
  }
  bool Stored(const std::string& lv) {
    app::LvProject target(base_, kSmallLvProject);
    target.Db(false);
    try {
      target.ResolveLv(lv);
      return true;
    } catch (const std::exception&) {
      return false;
    }
  }
  // The newest findings list the window shows.
  QTreeWidget* Findings() {
    const QList<FindingsDialog*> dialogs = window_->findChildren<FindingsDialog*>();
    return dialogs.isEmpty() ? nullptr : dialogs.back()->List();
  }
  std::string Checked(int bidder_row) {
    app::LvProject target(base_, kSmallLvProject);
    target.Db(false);
    app::TdmRangliste ranks(base_, kSmallLvProject, target.ResolveLv(kSmallLv));
    EXPECT_TRUE(ranks.Loaded()) << ranks.LastError();
    return ranks.CData1.Data2Screen(bidder_row)[app::TdmRangliste::cGeprueft];
  }
};

TEST_F(GaebWindowTest, ExportedFileReadBackAsNewLvUndoneAndBrokenFileListedWithItsLine) {
  const std::string file = dir_.File("rohbau.X83");
  window_->ChooseNextGaebExport({.file = file, .phase = 83});
  Trigger("gaebExport");
  ASSERT_TRUE(std::filesystem::exists(file)) << window_->LastMessage().toStdString();
  EXPECT_TRUE(window_->LastMessage().contains("geschrieben"))
      << window_->LastMessage().toStdString();
  if (const std::filesystem::path schemas = GaebSchemas(); !schemas.empty()) {
    const exchange::gaeb_xml::TGaebFileCheck check =
        exchange::gaeb_xml::CheckGaebFile(file, schemas.string());
    EXPECT_TRUE(check.schema_checked);
    EXPECT_FALSE(exchange::gaeb_xml::HasErrors(check.findings));
  } else {
    std::cerr << "schema check skipped: the GAEB DA XML 3.3 schemas are not here\n";
  }

  window_->ChooseNextGaebImport({.file = file, .lv_name = "Rohbau Kopie"});
  Trigger("gaebImport");
  EXPECT_TRUE(window_->LastMessage().contains("eingelesen"))
      << window_->LastMessage().toStdString();
  const boq::TLVPosList& copy = window_->LvModule()->Lv();
  EXPECT_EQ(copy.FLv().Name.Get(), "Rohbau Kopie");
  const int aushub = copy.IndexOfOz("01.01.0001", 'P');
  ASSERT_GE(aushub, 0);
  EXPECT_EQ(copy[aushub].ShortText, "Aushub");
  EXPECT_EQ(copy[aushub].LvBeschr.FMenge, 10.0);
  EXPECT_EQ(LvsShown(), (std::vector<std::string>{kSmallLv, "Rohbau Kopie"}));
  EXPECT_TRUE(window_->StatusText().contains("Rohbau Kopie"))
      << window_->StatusText().toStdString();

  Trigger("rueckgaengig");
  EXPECT_FALSE(Stored("Rohbau Kopie"));
  EXPECT_EQ(LvsShown(), (std::vector<std::string>{kSmallLv}));
  EXPECT_EQ(window_->LvModule()->Lv().FLv().Name.Get(), kSmallLv);

  // The closing tag of the body misspelt: the file is refused and its line named.
  std::string xml = korvan::testing::ReadFile(file);
  const size_t body_end = xml.find("</BoQBody>");
  ASSERT_NE(body_end, std::string::npos);
  xml.replace(body_end, 10, "</BoQBodie>");
  const std::string broken = dir_.File("kaputt.X83");
  korvan::testing::WriteFile(broken, xml);
  window_->ChooseNextGaebImport({.file = broken, .lv_name = "Kaputt"});
  Trigger("gaebImport");
  QTreeWidget* findings = Findings();
  ASSERT_NE(findings, nullptr);
  ASSERT_GE(findings->topLevelItemCount(), 1);
  const QTreeWidgetItem* first = findings->topLevelItem(0);
  EXPECT_EQ(first->text(0), "Fehler");
  EXPECT_EQ(first->text(1).toStdString(), broken);
  EXPECT_GT(first->text(2).toInt(), 1) << first->text(3).toStdString();
  EXPECT_FALSE(Stored("Kaputt"));
}

TEST_F(GaebWindowTest, BidLinesShownAndBiddersFileReadIntoAnotherBid) {
  korvan::testing::AddSmallBids(base_);
  Trigger("bieter");
  auto* bidders = window_->findChild<BiddersDialog*>();
  ASSERT_NE(bidders, nullptr) << window_->LastMessage().toStdString();
  ASSERT_EQ(bidders->CurrentBidder(), 1);  // Musterbau, the cheapest
  bidders->findChild<QPushButton*>("angebotOeffnen")->click();
  Settle();
  auto* bid = window_->findChild<BidDialog*>();
  ASSERT_NE(bid, nullptr) << window_->LastMessage().toStdString();
  CDataModel& lines = *static_cast<CDataModel*>(bid->Lines()->model());
  EXPECT_EQ(lines.headerData(award::bcNachlassProz, Qt::Horizontal, Qt::DisplayRole).toString(),
            "Nachl.%");
  bool aushub = false;
  for (int z = 1; z <= lines.Component().GetRmax(); ++z) {
    if (lines.IndexOfRow(z, award::bcOz).data().toString() != "01.01.0001") continue;
    aushub = true;
    EXPECT_EQ(lines.IndexOfRow(z, award::bcEp).data().toString(), "5,50");
    EXPECT_EQ(lines.IndexOfRow(z, award::bcGp).data().toString(), "55,00");
  }
  EXPECT_TRUE(aushub);
  EXPECT_TRUE(bid->Sums()->text().contains("Geprüft 69,00")) << bid->Sums()->text().toStdString();

  // Musterbau's bid as its DA 84 file, read into Zweitbau's bid over its own prices.
  const std::string file = dir_.File("musterbau.X84");
  window_->ChooseNextGaebExport({.file = file, .phase = 84, .bidder = 1});
  Trigger("gaebExport");
  ASSERT_TRUE(std::filesystem::exists(file)) << window_->LastMessage().toStdString();
  window_->ChooseNextGaebImport({.file = file, .bid = true, .bidder = 2, .overwrite = true});
  Trigger("gaebImport");
  EXPECT_TRUE(window_->LastMessage().contains("Angebot \"Zweitbau\""))
      << window_->LastMessage().toStdString();
  EXPECT_EQ(Checked(2), "69,00");
  Trigger("rueckgaengig");
  EXPECT_EQ(Checked(2), "88,00");
}

}  // namespace
}  // namespace korvan::desktop
