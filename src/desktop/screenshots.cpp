#include "desktop/screenshots.h"

#include <QAction>
#include <QApplication>
#include <QPixmap>
#include <QTreeView>
#include <filesystem>
#include <ostream>

#include "desktop/award_views.h"
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
         SaveDialog<ComparisonDialog>(window, "preisspiegel", folder / "preisspiegel.png", err);
}

}  // namespace korvan::desktop
