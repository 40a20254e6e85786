#pragma once

#include <QMainWindow>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "desktop/gaeb_views.h"

class QAction;
class QLabel;
class QPlainTextEdit;
class QTreeView;

namespace korvan::app {
class TdmLv;
class TdmProjekte;
}  // namespace korvan::app

namespace korvan::desktop {

class CDataModel;

// The main window: on the left the installation's projects with their LVs, in the middle
// the LV chosen there as an editable tree of its entries, below it the long text of the
// current entry. Every menu command asks a data module; the window only shows.
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  explicit MainWindow(QWidget* parent = nullptr);
  ~MainWindow() override;

  // Shows the installation in `data_dir`; false (with a message box unless `quiet`) when
  // it cannot be read.
  bool OpenInstallation(const std::string& data_dir);
  // Shows LV `lv` of `project` in the grid; false when there is no such LV.
  bool OpenLv(const std::string& project, int32_t lv);

  // The installation shown; empty before one is opened.
  const std::string& DataDir() const { return data_dir_; }
  // For tests and screenshots: the views, the modules behind them and the actions.
  QTreeView* ProjectView() const { return projects_view_; }
  QTreeView* LvView() const { return lv_view_; }
  QPlainTextEdit* LongTextView() const { return long_text_; }
  app::TdmLv* LvModule() const { return lv_.get(); }
  CDataModel* LvModel() const { return lv_model_.get(); }
  QAction* Action(const QString& object_name) const;
  // What the status bar says.
  QString StatusText() const;
  // No message boxes: what they would say goes to the status bar (tests, screenshots).
  void SetQuiet(bool quiet) { quiet_ = quiet; }
  const QString& LastMessage() const { return last_message_; }
  // For tests: the next GAEB import or export takes these choices instead of asking.
  void ChooseNextGaebImport(GaebImportChoice choice) { next_import_ = std::move(choice); }
  void ChooseNextGaebExport(GaebExportChoice choice) { next_export_ = std::move(choice); }
  // Shows the bid of the bidder with this running number on the open LV.
  void ShowBid(int bidder);

 private:
  void BuildMenus();
  QAction* AddAction(QMenu* menu, const QString& object_name, const QString& text,
                     const QKeySequence& shortcut, void (MainWindow::*slot)());
  void ProjectChosen();
  void EntryChosen();
  void ShowLvFigures();
  void UpdateActions();
  void Tell(const QString& title, const QString& text, bool failure);
  // The row of the current entry in the LV grid; 0 when none.
  int CurrentRow() const;
  // After a change by a module: the rows shown again, the current entry kept.
  void Refreshed(int32_t keep_entry);
  void Changed(bool ok, int32_t keep_entry);

  void OpenInstallationDialog();
  void OpenFirstLv();
  void GaebImport();
  void GaebExport();
  // Where an import or export goes: the installation, project, LV and its bidders.
  GaebPlace Place() const;
  void ShowOutcome(const QString& title, const GaebOutcome& outcome);
  void Undo();
  void Redo();
  // Takes back (or makes again) the newest step of the installation's journal, whatever
  // made it, and shows what is stored then.
  void TakeStep(bool redo);
  // The projects and the open LV read again; an LV that is gone is closed.
  void ShowStoredState(int32_t keep_entry);
  void AddGroup();
  void AddItem();
  void AddNote();
  void AddEntry(char kind);
  void DeleteEntry();
  void MoveUp();
  void MoveDown();
  void Renumber();
  void ShowBidders();
  void ShowComparison();
  void ShowAwardWizard();
  // The award wizard with the bidder of running number `bidder` chosen (0: the first).
  void StartAward(int bidder);
  void ChooseBid();
  void About();
  QString LvName() const;

  std::string data_dir_;
  std::string project_;
  std::unique_ptr<app::TdmProjekte> projects_;
  std::unique_ptr<CDataModel> projects_model_;
  std::unique_ptr<app::TdmLv> lv_;
  std::unique_ptr<CDataModel> lv_model_;
  QTreeView* projects_view_ = nullptr;
  QTreeView* lv_view_ = nullptr;
  QPlainTextEdit* long_text_ = nullptr;
  QLabel* total_label_ = nullptr;
  bool quiet_ = false;
  std::optional<GaebImportChoice> next_import_;
  std::optional<GaebExportChoice> next_export_;
  QString last_message_;
};

}  // namespace korvan::desktop
