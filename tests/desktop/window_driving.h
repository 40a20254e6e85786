#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <cstdlib>
#include <memory>

#include "desktop/main_window.h"

// Driving the window as a user does, on Qt's offscreen platform.
namespace korvan::desktop {

// The application of one test; it must end before the process does, while Qt's own
// objects are still there.
inline std::unique_ptr<QApplication> NewOffscreenApplication() {
  static int argc = 1;
  static char name[] = "desktop_tests";
  static char* argv[] = {name, nullptr};
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  return std::make_unique<QApplication>(argc, argv);
}

// Lets the posted events run: closed editors, rows read again, dialogs shown.
inline void Settle() {
  for (int round = 0; round < 10; ++round) {
    QCoreApplication::sendPostedEvents();
    QApplication::processEvents();
  }
}

// Chooses a menu entry of the window, which must be there and enabled.
inline void TriggerAction(MainWindow& window, const char* action) {
  QAction* found = window.Action(action);
  ASSERT_NE(found, nullptr) << action;
  ASSERT_TRUE(found->isEnabled()) << action;
  found->trigger();
  Settle();
}

}  // namespace korvan::desktop
