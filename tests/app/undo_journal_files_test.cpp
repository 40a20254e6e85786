// The journal's files of an installation: they move with it, they are not left behind by
// commands that record nothing, and an edit that changes nothing makes no step.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "app_test_support.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ExpectKorvanOn;

bool HasJournalFiles(const fs::path& base) {
  return fs::exists(base / "UNDO.QUJ") || fs::exists(base / "REDO.QUJ") ||
         fs::exists(base / "PENDING.QUJ");
}

TEST(UndoJournalFiles, ACopiedInstallationTakesItsStepsBackWhereItIsNow) {
  testing::TempDir dir;
  const fs::path original = dir.path() / "ava";
  ExpectKorvanOn(original, {"demo", "--setup-only"});
  ExpectKorvanOn(original, {"edit", "waehrung", kDemoPoundRow, "Faktor=1,11"});
  ExpectKorvanOn(original, {"edit", "waehrung", kDemoFrancRow, "Faktor=0,97"});
  ExpectKorvanOn(original, {"undo"});

  const fs::path moved = dir.path() / "elsewhere" / "ava";
  fs::create_directories(moved.parent_path());
  fs::copy(original, moved, fs::copy_options::recursive);
  fs::remove_all(original);  // nothing of the old place may be needed

  ExpectKorvanOn(moved, {"redo"}, 0, {"Wiederhergestellt: Bearbeiten"});
  EXPECT_TRUE(Contains(ExpectKorvanOn(moved, {"list", "waehrung"}).out, "0,97"));
  ExpectKorvanOn(moved, {"undo"});
  ExpectKorvanOn(moved, {"undo"}, 0, {"Rückgängig gemacht: Bearbeiten"});
  const std::string listing = ExpectKorvanOn(moved, {"list", "waehrung"}).out;
  EXPECT_TRUE(Contains(listing, "0,85")) << listing;
  EXPECT_TRUE(Contains(listing, "0,94")) << listing;
  EXPECT_FALSE(fs::exists(original));
}

TEST(UndoJournalFiles, RefusedOrUnchangingEditsAndLookingLeaveNoJournal) {
  testing::TempDir dir;
  const fs::path base = dir.path() / "ava";
  ExpectKorvanOn(base, {"demo", "--setup-only"});
  ExpectKorvanOn(base, {"edit", "waehrung", "99", "Faktor=1,11"}, 2);
  ExpectKorvanOn(base, {"edit", "waehrung", kDemoPoundRow, "Faktor=nichts"}, 2);
  ExpectKorvanOn(base, {"undo"}, 1, {"Es gibt nichts rückgängig zu machen"});
  ExpectKorvanOn(base, {"undo", "--list"});
  EXPECT_FALSE(HasJournalFiles(base));

  // The value the row already has: stored, but nothing to take back.
  ExpectKorvanOn(base, {"edit", "waehrung", kDemoPoundRow, "Faktor=0,85"}, 0,
                 {std::string("Zeile ") + kDemoPoundRow + " gespeichert"});
  ExpectKorvanOn(base, {"undo", "--list"}, 0, {"Rückgängig machen (0 Schritte"});
  EXPECT_FALSE(HasJournalFiles(base));

  ExpectKorvanOn(base, {"edit", "waehrung", kDemoPoundRow, "Faktor=1,11"});
  ExpectKorvanOn(base, {"edit", "waehrung", kDemoPoundRow, "Faktor=1,11"});
  ExpectKorvanOn(base, {"undo", "--list"}, 0, {"Rückgängig machen (1 Schritt"});
  ExpectKorvanOn(base, {"undo"});
  ExpectKorvanOn(base, {"redo"});
  EXPECT_TRUE(fs::exists(base / "UNDO.QUJ"));
  EXPECT_FALSE(fs::exists(base / "PENDING.QUJ"));
}

}  // namespace
}  // namespace korvan::app
