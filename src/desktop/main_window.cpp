#include "desktop/main_window.h"

#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QStatusBar>
#include <QTreeView>
#include <utility>

#include "app/commands/lists/journal_undo.h"
#include "app/modules/dm_angebot_zeilen.h"
#include "app/modules/dm_lv.h"
#include "app/modules/dm_preisspiegel.h"
#include "app/modules/dm_projekte.h"
#include "app/modules/dm_rangliste.h"
#include "desktop/award_views.h"
#include "desktop/award_wizard.h"
#include "desktop/bid_view.h"
#include "desktop/cdata_model.h"
#include "desktop/desk_settings.h"

namespace korvan::desktop {
namespace {

std::string TotalCaption(boq::TLvPriceKind kind) {
  return kind == boq::TLvPriceKind::kAward ? "Vergabesumme" : "Summe";
}

void ApplyColumnWidths(QTreeView& view, const CDataModel& model) {
  for (int column = 0; column < model.columnCount(); ++column) {
    view.header()->resizeSection(column, model.ColumnWidth(column));
  }
}

QTreeView* NewTreeView(QWidget* parent) {
  auto* view = new QTreeView(parent);
  view->setUniformRowHeights(true);
  view->setAlternatingRowColors(true);
  view->setSelectionBehavior(QAbstractItemView::SelectRows);
  view->setSelectionMode(QAbstractItemView::SingleSelection);
  return view;
}

}  // namespace

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent) {
  setWindowTitle("Korvan");
  auto* across = new QSplitter(Qt::Horizontal, this);
  projects_view_ = NewTreeView(across);
  projects_view_->setObjectName("projekte");
  projects_view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  auto* down = new QSplitter(Qt::Vertical, across);
  lv_view_ = NewTreeView(down);
  lv_view_->setObjectName("lv");
  lv_view_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::AnyKeyPressed);
  long_text_ = new QPlainTextEdit(down);
  long_text_->setObjectName("langtext");
  long_text_->setReadOnly(true);
  long_text_->setPlaceholderText("Langtext des gewählten Eintrags");
  down->setStretchFactor(0, 4);
  down->setStretchFactor(1, 1);
  across->setStretchFactor(0, 1);
  across->setStretchFactor(1, 3);
  across->setSizes({260, 900});
  setCentralWidget(across);
  total_label_ = new QLabel(this);
  statusBar()->addPermanentWidget(total_label_);
  BuildMenus();
  UpdateActions();
  resize(1200, 720);
}

MainWindow::~MainWindow() = default;

QAction* MainWindow::AddAction(QMenu* menu, const QString& object_name, const QString& text,
                               const QKeySequence& shortcut, void (MainWindow::*slot)()) {
  QAction* action = menu->addAction(text);
  action->setObjectName(object_name);
  if (!shortcut.isEmpty()) action->setShortcut(shortcut);
  connect(action, &QAction::triggered, this, slot);
  return action;
}

void MainWindow::BuildMenus() {
  QMenu* file = menuBar()->addMenu("&Datei");
  AddAction(file, "installationOeffnen", "Installation &öffnen …", QKeySequence::Open,
            &MainWindow::OpenInstallationDialog);
  file->addSeparator();
  AddAction(file, "gaebImport", "GAEB-&Import …", {}, &MainWindow::GaebImport);
  AddAction(file, "gaebExport", "GAEB-&Export …", {}, &MainWindow::GaebExport);
  file->addSeparator();
  QAction* quit = file->addAction("&Beenden");
  quit->setObjectName("beenden");
  quit->setShortcut(QKeySequence("Ctrl+Q"));
  connect(quit, &QAction::triggered, this, &QWidget::close);

  QMenu* edit = menuBar()->addMenu("&Bearbeiten");
  AddAction(edit, "rueckgaengig", "&Rückgängig", QKeySequence("Ctrl+Z"), &MainWindow::Undo);
  AddAction(edit, "wiederherstellen", "&Wiederherstellen", QKeySequence("Ctrl+Y"),
            &MainWindow::Redo);
  edit->addSeparator();
  AddAction(edit, "gruppeEinfuegen", "&Gruppe einfügen", QKeySequence("Ctrl+G"),
            &MainWindow::AddGroup);
  AddAction(edit, "positionEinfuegen", "&Position einfügen", QKeySequence("Ctrl+P"),
            &MainWindow::AddItem);
  AddAction(edit, "hinweisEinfuegen", "&Hinweistext einfügen", QKeySequence("Ctrl+H"),
            &MainWindow::AddNote);
  AddAction(edit, "eintragLoeschen", "Eintrag &löschen", QKeySequence::Delete,
            &MainWindow::DeleteEntry);
  edit->addSeparator();
  AddAction(edit, "nachOben", "Nach &oben", QKeySequence("Ctrl+Up"), &MainWindow::MoveUp);
  AddAction(edit, "nachUnten", "Nach &unten", QKeySequence("Ctrl+Down"), &MainWindow::MoveDown);
  AddAction(edit, "neuNummerieren", "&Neu nummerieren", {}, &MainWindow::Renumber);

  QMenu* award = menuBar()->addMenu("&Vergabe");
  AddAction(award, "bieter", "&Bieter und Rangliste", {}, &MainWindow::ShowBidders);
  AddAction(award, "preisspiegel", "&Preisspiegel", {}, &MainWindow::ShowComparison);
  AddAction(award, "angebot", "&Angebot eines Bieters …", {}, &MainWindow::ChooseBid);
  AddAction(award, "vergabe", "&Vergabe durchführen ...", {}, &MainWindow::ShowAwardWizard);

  QMenu* help = menuBar()->addMenu("&Hilfe");
  AddAction(help, "ueber", "Über &Korvan", {}, &MainWindow::About);
}

QAction* MainWindow::Action(const QString& object_name) const {
  return findChild<QAction*>(object_name);
}

QString MainWindow::StatusText() const {
  return total_label_->text();
}

void MainWindow::Tell(const QString& title, const QString& text, bool failure) {
  last_message_ = text;
  statusBar()->showMessage(text, 10000);
  if (quiet_ || !failure) return;
  QMessageBox::warning(this, title, text);
}

bool MainWindow::OpenInstallation(const std::string& data_dir) {
  auto projects = std::make_unique<app::TdmProjekte>(data_dir);
  if (!projects->Loaded()) {
    Tell("Installation öffnen",
         QString::fromStdString("Die Installation \"" + data_dir +
                                "\" kann nicht gelesen werden: " + projects->LastError()),
         true);
    return false;
  }
  projects_view_->setModel(nullptr);
  lv_view_->setModel(nullptr);
  lv_model_.reset();
  lv_.reset();
  data_dir_ = data_dir;
  projects_ = std::move(projects);
  projects_model_ = std::make_unique<CDataModel>(projects_->CData1);
  projects_view_->setModel(projects_model_.get());
  ApplyColumnWidths(*projects_view_, *projects_model_);
  projects_view_->expandAll();
  connect(projects_view_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          &MainWindow::ProjectChosen);
  setWindowTitle(QString::fromStdString("Korvan – " + data_dir));
  long_text_->clear();
  ShowLvFigures();
  UpdateActions();
  OpenFirstLv();
  return true;
}

// The first LV is what a user opening an installation wants to see.
void MainWindow::OpenFirstLv() {
  for (int z = 1; z <= projects_->CData1.GetRmax(); ++z) {
    if (projects_->LvOf(z) != 0) {
      projects_view_->setCurrentIndex(projects_model_->IndexOfRow(z));
      break;
    }
  }
}

void MainWindow::ProjectChosen() {
  const int z = projects_model_->RowOf(projects_view_->currentIndex());
  if (z == 0 || projects_->LvOf(z) == 0) return;
  // The project list read again after a change chooses the open LV once more: it stays
  // open as it is, with its current entry.
  if (lv_ && projects_->ProjectOf(z) == project_ && projects_->LvOf(z) == lv_->Lv().FLv().FId) {
    return;
  }
  OpenLv(projects_->ProjectOf(z), projects_->LvOf(z));
}

bool MainWindow::OpenLv(const std::string& project, int32_t lv) {
  auto module = std::make_unique<app::TdmLv>(data_dir_, project, lv);
  if (!module->Loaded()) {
    Tell("LV öffnen", QString::fromStdString(module->LastError()), true);
    return false;
  }
  lv_view_->setModel(nullptr);
  project_ = project;
  lv_ = std::move(module);
  lv_model_ = std::make_unique<CDataModel>(lv_->CData1);
  lv_view_->setModel(lv_model_.get());
  ApplyColumnWidths(*lv_view_, *lv_model_);
  lv_view_->expandAll();
  connect(lv_view_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          &MainWindow::EntryChosen);
  connect(lv_model_.get(), &CDataModel::stored, this, [this](int z) {
    Refreshed(lv_->EntryIdOf(z));
    if (!lv_->LastWarnings().empty())
      Tell("Summen", QString::fromStdString(lv_->LastWarnings()), false);
  });
  connect(lv_model_.get(), &CDataModel::refused, this,
          [this](int) { Tell("Eintrag ändern", QString::fromStdString(lv_->LastError()), true); });
  if (const int row = projects_->RowOf(project, lv); row != 0) {
    projects_view_->setCurrentIndex(projects_model_->IndexOfRow(row));
  }
  if (lv_->CData1.GetRmax() > 0) lv_view_->setCurrentIndex(lv_model_->IndexOfRow(1));
  ShowLvFigures();
  UpdateActions();
  return true;
}

void MainWindow::EntryChosen() {
  const int z = CurrentRow();
  long_text_->setPlainText(z == 0 ? QString() : QString::fromStdString(lv_->LongText(z)));
}

int MainWindow::CurrentRow() const {
  return lv_model_ ? lv_model_->RowOf(lv_view_->currentIndex()) : 0;
}

void MainWindow::ShowLvFigures() {
  if (!lv_) {
    total_label_->setText("Kein LV geöffnet");
    return;
  }
  total_label_->setText(QString::fromStdString(
      "LV \"" + lv_->Lv().FLv().Name.Get() + "\": " + std::to_string(lv_->Lv().Count()) +
      " Einträge, " + TotalCaption(lv_->PriceKind()) + " " + lv_->TotalText()));
}

void MainWindow::UpdateActions() {
  const bool open = lv_ != nullptr;
  for (const char* name : {"gruppeEinfuegen", "positionEinfuegen", "hinweisEinfuegen",
                           "eintragLoeschen", "nachOben", "nachUnten", "neuNummerieren", "bieter",
                           "preisspiegel", "gaebExport", "angebot", "vergabe"}) {
    Action(name)->setEnabled(open);
  }
  Action("gaebImport")->setEnabled(!data_dir_.empty());
  Action("rueckgaengig")->setEnabled(!data_dir_.empty());
  Action("wiederherstellen")->setEnabled(!data_dir_.empty());
}

void MainWindow::Refreshed(int32_t keep_entry) {
  lv_model_->Refresh();
  lv_view_->expandAll();
  const int z = lv_->RowOfEntry(keep_entry);
  if (z != 0) lv_view_->setCurrentIndex(lv_model_->IndexOfRow(z));
  EntryChosen();
  ShowLvFigures();
  // The LV's total in the project list follows.
  const int project_row = projects_model_->RowOf(projects_view_->currentIndex());
  projects_->CData1.ListOperation(0, data::loReload);
  projects_model_->Refresh();
  projects_view_->expandAll();
  if (project_row != 0) projects_view_->setCurrentIndex(projects_model_->IndexOfRow(project_row));
}

void MainWindow::Changed(bool ok, int32_t keep_entry) {
  Refreshed(keep_entry);
  if (!ok) Tell("Korvan", QString::fromStdString(lv_->LastError()), true);
}

void MainWindow::OpenInstallationDialog() {
  const QString dir = QFileDialog::getExistingDirectory(this, "Installation öffnen",
                                                        QString::fromStdString(data_dir_));
  if (!dir.isEmpty()) OpenInstallation(dir.toStdString());
}

void MainWindow::Undo() {
  TakeStep(false);
}

void MainWindow::Redo() {
  TakeStep(true);
}

void MainWindow::TakeStep(bool redo) {
  if (data_dir_.empty()) return;
  const QString title = redo ? "Wiederherstellen" : "Rückgängig";
  const int32_t keep = lv_ ? lv_->EntryIdOf(CurrentRow()) : data::kNullId;
  app::JournalStepOutcome outcome;
  try {
    outcome = app::TakeJournalStep(data_dir_, redo);
  } catch (const std::exception& error) {
    Tell(title, QString::fromStdString(error.what()), true);
    return;
  }
  ShowStoredState(keep);
  Tell(title, QString::fromStdString(outcome.text), !outcome.done);
}

void MainWindow::ShowStoredState(int32_t keep_entry) {
  const int32_t lv = lv_ ? lv_->Lv().FLv().FId : 0;
  const bool read = lv_ && lv_->Reload();
  if (read) {
    Refreshed(keep_entry);  // the projects too
  } else {
    projects_->CData1.ListOperation(0, data::loReload);
    projects_model_->Refresh();
    projects_view_->expandAll();
  }
  if (read && projects_->RowOf(project_, lv) != 0) return;
  // The open LV went with the step (an import taken back).
  lv_view_->setModel(nullptr);
  lv_model_.reset();
  lv_.reset();
  long_text_->clear();
  ShowLvFigures();
  UpdateActions();
  OpenFirstLv();
}

void MainWindow::AddGroup() {
  AddEntry('B');
}
void MainWindow::AddItem() {
  AddEntry('P');
}
void MainWindow::AddNote() {
  AddEntry('H');
}

void MainWindow::AddEntry(char kind) {
  if (!lv_) return;
  const bool ok = lv_->AddEntry(CurrentRow(), kind);
  const int32_t added = ok ? lv_->LastAdded() : lv_->EntryIdOf(CurrentRow());
  Changed(ok, added);
  if (ok) lv_view_->edit(lv_model_->IndexOfRow(CurrentRow(), app::TdmLv::cKurztext));
}

void MainWindow::DeleteEntry() {
  const int z = CurrentRow();
  if (!lv_ || z == 0) return;
  const std::string oz = lv_->Lv()[lv_->EntryOf(z)].LvBgBeschr.OZ.Get();
  if (!quiet_ &&
      QMessageBox::question(
          this, "Eintrag löschen",
          QString::fromStdString("Eintrag " + oz + " mit allen Untereinträgen löschen?")) !=
          QMessageBox::Yes) {
    return;
  }
  const int32_t next = lv_->EntryIdOf(z > 1 ? z - 1 : z + 1);
  const data::TListOpResult result = lv_->CData1.ListOperation(z, data::loDeleteRecord);
  lv_->Reload();
  Changed(result == data::TListOpResult::Done, next);
}

void MainWindow::MoveUp() {
  if (!lv_ || CurrentRow() == 0) return;
  const int32_t keep = lv_->EntryIdOf(CurrentRow());
  Changed(lv_->MoveUp(CurrentRow()), keep);
}

void MainWindow::MoveDown() {
  if (!lv_ || CurrentRow() == 0) return;
  const int32_t keep = lv_->EntryIdOf(CurrentRow());
  Changed(lv_->MoveDown(CurrentRow()), keep);
}

void MainWindow::Renumber() {
  if (!lv_) return;
  const int32_t keep = lv_->EntryIdOf(CurrentRow());
  Changed(lv_->Renumber(), keep);
}

void MainWindow::ShowBidders() {
  if (!lv_) return;
  auto module = std::make_unique<app::TdmRangliste>(data_dir_, project_, lv_->Lv().FLv().FId);
  if (!module->Loaded()) {
    Tell("Bieter", QString::fromStdString(module->LastError()), true);
    return;
  }
  auto* dialog = new BiddersDialog(std::move(module), LvName(), this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->SetOpenBid([this](int bidder) { ShowBid(bidder); });
  dialog->SetAward([this](int bidder) { StartAward(bidder); });
  dialog->show();
}

void MainWindow::ShowComparison() {
  if (!lv_) return;
  const int32_t lv = lv_->Lv().FLv().FId;
  auto comparison = std::make_unique<app::TdmPreisspiegel>(data_dir_, project_, lv,
                                                           ComparisonMaxDeviation(data_dir_));
  auto ranks = std::make_unique<app::TdmRangliste>(data_dir_, project_, lv);
  if (!comparison->Loaded()) {
    Tell("Preisspiegel", QString::fromStdString(comparison->LastError()), true);
    return;
  }
  if (!ranks->Loaded()) {
    Tell("Preisspiegel", QString::fromStdString(ranks->LastError()), true);
    return;
  }
  auto* dialog =
      new ComparisonDialog(std::move(comparison), std::move(ranks), LvName(), data_dir_, this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->show();
}

void MainWindow::ChooseBid() {
  const GaebPlace place = Place();
  if (place.bidders.empty()) {
    Tell("Angebot", "Das LV \"" + LvName() + "\" hat keine Bieter.", true);
    return;
  }
  int bidder = place.bidders.front().first;
  if (!quiet_ && place.bidders.size() > 1) {
    QStringList names;
    for (const auto& [number, name] : place.bidders) {
      names << QString::number(number) + " – " + QString::fromStdString(name);
    }
    bool chosen = false;
    const QString name =
        QInputDialog::getItem(this, "Angebot eines Bieters", "Bieter:", names, 0, false, &chosen);
    if (!chosen) return;
    bidder = place.bidders[static_cast<size_t>(names.indexOf(name))].first;
  }
  ShowBid(bidder);
}

void MainWindow::ShowBid(int bidder) {
  if (!lv_) return;
  auto module =
      std::make_unique<app::TdmAngebotZeilen>(data_dir_, project_, lv_->Lv().FLv().FId, bidder);
  if (!module->Loaded()) {
    Tell("Angebot", QString::fromStdString(module->LastError()), true);
    return;
  }
  auto* dialog = new BidDialog(std::move(module), LvName(), this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->show();
}

GaebPlace MainWindow::Place() const {
  GaebPlace place{.data_dir = data_dir_, .project = project_};
  if (!lv_) {
    const int z = projects_model_ ? projects_model_->RowOf(projects_view_->currentIndex()) : 0;
    if (z != 0) place.project = projects_->ProjectOf(z);
    return place;
  }
  place.lv = lv_->Lv().FLv().FId;
  place.lv_name = lv_->Lv().FLv().Name.Get();
  app::TdmRangliste bidders(data_dir_, project_, place.lv);
  if (!bidders.Loaded()) return place;
  for (int z = 1; z <= bidders.CData1.GetRmax(); ++z) {
    place.bidders.emplace_back(bidders.BidderNumberOf(z),
                               bidders.CData1.Data2Screen(z)[app::TdmRangliste::cBieter]);
  }
  return place;
}

void MainWindow::GaebImport() {
  if (data_dir_.empty()) return;
  const GaebPlace place = Place();
  if (place.project.empty()) {
    Tell("GAEB-Import", "Kein Projekt gewählt: links ein Projekt oder LV wählen.", true);
    return;
  }
  std::optional<GaebImportChoice> choice = std::exchange(next_import_, std::nullopt);
  if (!choice) choice = AskGaebImport(this, place);
  if (!choice) return;
  const GaebOutcome outcome = RunGaebImport(this, place, *choice);
  ShowOutcome("GAEB-Import", outcome);
  if (!outcome.done) return;
  if (outcome.new_lv == 0) {
    ShowBidders();
    return;
  }
  projects_->CData1.ListOperation(0, data::loReload);
  projects_model_->Refresh();
  projects_view_->expandAll();
  OpenLv(place.project, outcome.new_lv);
}

void MainWindow::GaebExport() {
  if (!lv_) return;
  const GaebPlace place = Place();
  std::optional<GaebExportChoice> choice = std::exchange(next_export_, std::nullopt);
  if (!choice) choice = AskGaebExport(this, place);
  if (!choice) return;
  ShowOutcome("GAEB-Export", RunGaebExport(this, place, *choice));
}

// The summary goes to the status bar; the findings, or why nothing was done, to a list.
void MainWindow::ShowOutcome(const QString& title, const GaebOutcome& outcome) {
  last_message_ = QString::fromStdString(outcome.summary);
  statusBar()->showMessage(last_message_, 10000);
  if (outcome.done && outcome.findings.empty()) return;
  auto* dialog = new FindingsDialog(title, outcome, this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->show();
}

void MainWindow::ShowAwardWizard() {
  StartAward(0);
}

void MainWindow::StartAward(int bidder) {
  if (!lv_) return;
  auto* wizard = new AwardWizard(data_dir_, project_, lv_->Lv().FLv().FId, bidder, this);
  wizard->setAttribute(Qt::WA_DeleteOnClose);
  wizard->setWindowModality(Qt::WindowModal);
  // The award is stored when the wizard reaches its end page; the grid shows it then.
  connect(wizard, &QWizard::currentIdChanged, this, [this, wizard](int page) {
    if (page != AwardWizard::kEnd || !wizard->Awarded()) return;
    ShowStoredState(lv_->EntryIdOf(CurrentRow()));
    for (BiddersDialog* bidders : findChildren<BiddersDialog*>()) bidders->Refresh();
    Tell("Vergabe", wizard->LastMessage(), false);
  });
  wizard->show();
}

QString MainWindow::LvName() const {
  return lv_ ? QString::fromStdString(lv_->Lv().FLv().Name.Get()) : QString();
}

void MainWindow::About() {
  QMessageBox::about(this, "Über Korvan",
                     "Korvan – Ausschreibung, Vergabe und Abrechnung für das Baugewerbe.");
}

}  // namespace korvan::desktop
