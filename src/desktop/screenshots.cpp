#include "desktop/screenshots.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QPixmap>
#include <QTreeView>
#include <filesystem>
#include <ostream>

#include "app/modules/dm_lv.h"
#include "desktop/award_views.h"
#include "desktop/award_wizard.h"
#include "desktop/bid_view.h"
#include "desktop/main_window.h"

namespace korvan::desktop {
namespace {

bool Save(QWidget& widget, const std::filesystem::path& file, std::ostream& err) {
  widget.show();
  QApplication::processEvents();
  if (!widget.grab().save(QString::fromStdString(file.string()), "PNG")) {
    err << "Das Bild \"" << file.string() << "\" kann nicht geschrieben werden.\n";
    return false;
  }
  return true;
}

// The dialog an action of the window opens, pictured and closed again; nothing when the
// action is not offered (no LV open).
template <typename Dialog>
bool SaveDialog(MainWindow& window, const char* action, const std::filesystem::path& file,
                std::ostream& err) {
  QAction* open = window.Action(action);
  if (open == nullptr || !open->isEnabled()) return true;
  open->trigger();
  Dialog* dialog = window.findChild<Dialog*>();
  if (dialog == nullptr) {
    err << "Die Ansicht für \"" << file.filename().string()
        << "\" lässt sich nicht öffnen: " << window.LastMessage().toStdString() << '\n';
    return false;
  }
  const bool saved = Save(*dialog, file, err);
  delete dialog;
  return saved;
}

// The regular files of the installation in `from` copied to `to` (sockets and locks of a
// running program are not part of it).
void CopyInstallation(const std::filesystem::path& from, const std::filesystem::path& to) {
  namespace fs = std::filesystem;
  fs::create_directories(to);
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(from)) {
    const fs::path target = to / fs::relative(entry.path(), from);
    if (entry.is_directory()) {
      fs::create_directories(target);
    } else if (entry.is_regular_file()) {
      fs::copy_file(entry.path(), target, fs::copy_options::overwrite_existing);
    }
  }
}

// The award wizard's three pages, the award run on a copy of the installation so that the
// picture changes nothing; the window shows the installation it showed before.
bool SaveAwardWizard(MainWindow& window, const std::filesystem::path& folder, std::ostream& err) {
  QAction* open = window.Action("vergabe");
  if (open == nullptr || !open->isEnabled()) return true;
  const std::string original = window.DataDir();
  const std::filesystem::path copy =
      std::filesystem::temp_directory_path() /
      ("korvan-bilder-" + std::to_string(QCoreApplication::applicationPid()));
  std::error_code error;
  std::filesystem::remove_all(copy, error);
  bool saved = false;
  try {
    CopyInstallation(original, copy);
    if (window.OpenInstallation(copy.string())) {
      // An LV awarded already (the demo's) is pictured as it was before: its award taken
      // back on the copy.
      if (window.LvModule() != nullptr &&
          window.LvModule()->PriceKind() == boq::TLvPriceKind::kAward) {
        window.Action("rueckgaengig")->trigger();
      }
      open->trigger();
      auto* wizard = window.findChild<AwardWizard*>();
      if (wizard != nullptr && wizard->findChild<QComboBox*>("bieter")->count() == 0) {
        saved = true;  // an LV without bidders has no award to picture
        delete wizard;
      } else if (wizard != nullptr) {
        wizard->SetAsker([](const QString&) { return true; });
        wizard->findChild<QCheckBox*>("cbAnschreiben")->setChecked(true);
        saved = Save(*wizard, folder / "vergabe1.png", err);
        wizard->next();
        saved = saved && Save(*wizard, folder / "vergabe2.png", err);
        wizard->next();
        if (wizard->currentId() != AwardWizard::kEnd) {
          err << "Die Vergabe für \"vergabe3.png\" lief nicht: "
              << wizard->LastMessage().toStdString() << '\n';
          saved = false;
        }
        saved = saved && Save(*wizard, folder / "vergabe3.png", err);
        delete wizard;
      } else {
        err << "Der Vergabe-Assistent lässt sich nicht öffnen: "
            << window.LastMessage().toStdString() << '\n';
      }
    }
  } catch (const std::filesystem::filesystem_error& failure) {
    err << "Die Installation kann nicht für die Bilder kopiert werden: " << failure.what() << '\n';
  }
  window.OpenInstallation(original);
  std::filesystem::remove_all(copy, error);
  return saved;
}

}  // namespace

bool WriteScreenshots(MainWindow& window, const std::string& dir, std::ostream& err) {
  std::error_code error;
  std::filesystem::create_directories(dir, error);
  if (error) {
    err << "Das Verzeichnis \"" << dir << "\" kann nicht angelegt werden: " << error.message()
        << '\n';
    return false;
  }
  window.resize(1280, 760);
  // The second entry is the first one with a long text in most LVs.
  if (QTreeView* view = window.LvView(); view->model() != nullptr) {
    const QModelIndex first = view->model()->index(0, 0);
    const QModelIndex second = view->model()->index(0, 0, first);
    view->setCurrentIndex(second.isValid() ? second : first);
  }
  const std::filesystem::path folder(dir);
  if (!Save(window, folder / "hauptfenster.png", err)) return false;
  return SaveDialog<BiddersDialog>(window, "bieter", folder / "bieter.png", err) &&
         SaveDialog<ComparisonDialog>(window, "preisspiegel", folder / "preisspiegel.png", err) &&
         SaveDialog<BidDialog>(window, "angebot", folder / "angebot.png", err) &&
         SaveAwardWizard(window, folder, err);
}

}  // namespace korvan::desktop
