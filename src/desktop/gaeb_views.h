#pragma once

#include <QDialog>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

class QTreeWidget;
class QWidget;

namespace korvan::desktop {

// What a GAEB import reads where: a new LV in the chosen project, or a bidder's DA 84
// file into its bid on the open LV; the choices of `korvan gaeb import` and `korvan bid
// import`.
struct GaebImportChoice {
  std::string file{};
  bool bid = false;
  // A new LV:
  std::string lv_name{};  // empty: the file's
  std::string prices{};   // empty: the phase's; "none", or a --prices word (estimate, ...)
  bool ignore_project_info = false;
  bool ignore_currency = false;
  // A bid:
  int bidder = 0;  // running number
  bool overwrite = false;
};

// What a GAEB export writes: the open LV (with phase 84 a bidder's bid) as a file of a
// phase; the choices of `korvan gaeb export`.
struct GaebExportChoice {
  std::string file{};
  int phase = 83;
  std::string version = "3.3";
  int bidder = 0;  // phase 84: this bidder's bid; 0: the LV's prices
};

// Where the import or export is: the installation, the chosen project and the open LV.
struct GaebPlace {
  std::string data_dir{};
  std::string project{};
  int32_t lv = 0;  // 0: none open
  std::string lv_name{};
  std::vector<std::pair<int, std::string>> bidders{};  // running number and name
};

// One finding of a run: its kind ("Fehler", "Warnung", ...), the file and line, the text.
struct GaebFinding {
  std::string kind{};
  std::string file{};
  int line = 0;  // 0: none
  std::string message{};
};

// What an import or export did, as the window shows it.
struct GaebOutcome {
  bool done = false;
  std::string summary{};
  std::vector<GaebFinding> findings{};
  int32_t new_lv = 0;  // the LV an import made
};

// Asks for the file (GAEB DA XML of the phases the import reads) and then for the
// choices; nothing when the user cancels.
std::optional<GaebImportChoice> AskGaebImport(QWidget* parent, const GaebPlace& place);
// Asks for the phase and the file, named with the phase's extension.
std::optional<GaebExportChoice> AskGaebExport(QWidget* parent, const GaebPlace& place);

// Runs the import with a progress dialog that can stop the reading before anything is
// stored. One step of the journal.
GaebOutcome RunGaebImport(QWidget* parent, const GaebPlace& place, const GaebImportChoice& choice);
// Runs the export with a progress dialog that can stop before the file is written.
GaebOutcome RunGaebExport(QWidget* parent, const GaebPlace& place, const GaebExportChoice& choice);

// The findings of an import or export in a list: kind, file, line and text, the summary
// above it.
class FindingsDialog : public QDialog {
  Q_OBJECT

 public:
  FindingsDialog(const QString& title, const GaebOutcome& outcome, QWidget* parent = nullptr);
  QTreeWidget* List() const { return list_; }

 private:
  QTreeWidget* list_ = nullptr;
};

}  // namespace korvan::desktop
