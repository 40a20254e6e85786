#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <cstdlib>
#include <memory>
#include <string>

#include "desktop/main_window.h"
#include "testing/small_lv.h"
#include "testing/temp_dir.h"

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

// A test of the window on MakeSmallLv's installation, opened, without message boxes.
class SmallLvWindowTest : public ::testing::Test {
 protected:
  void SetUp() override {
    application_ = NewOffscreenApplication();
    base_ = korvan::testing::MakeSmallLv(dir_).string();
    window_ = std::make_unique<MainWindow>();
    window_->SetQuiet(true);
    ASSERT_TRUE(window_->OpenInstallation(base_)) << window_->LastMessage().toStdString();
    window_->show();
  }
  void Trigger(const char* action) { TriggerAction(*window_, action); }

  std::unique_ptr<QApplication> application_;  // first, so that it goes last
  korvan::testing::TempDir dir_;
  std::string base_;
  std::unique_ptr<MainWindow> window_;
};

}  // namespace korvan::desktop
