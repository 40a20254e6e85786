// `korvan list`, `korvan edit`, `korvan undo` and `korvan redo` on a sample installation.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <sstream>
#include <string>

#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ListRowOf;
using testing::ProgramResult;
using testing::ReadFile;
using testing::WriteFile;

class ListEditUndo : public ::testing::Test {
 protected:
  void SetUp() override { Korvan({"demo", "--setup-only"}); }
  ProgramResult Korvan(std::vector<std::string> args, int exit_code = 0,
                       const std::vector<std::string>& parts = {}) {
    return testing::ExpectKorvanOn(base_, std::move(args), exit_code, parts);
  }
  // The currency table; without the time of each record's last change unless `stamped`.
  std::string DumpCurrencies(bool stamped = false) {
    const ProgramResult dump = testing::ExpectKorvan({"db", "dump", "--table", "W", stamm_}, 0);
    return stamped ? dump.out : testing::WithoutWriteTimes(dump.out);
  }
  // Edits the factor of the row that shows `name`.
  ProgramResult EditFactor(const std::string& name, const std::string& factor) {
    const int row = ListRowOf(Korvan({"list", "waehrung"}).out, name);
    EXPECT_GT(row, 0) << name;
    return Korvan({"edit", "waehrung", std::to_string(row), "Faktor=" + factor});
  }

  korvan::testing::TempDir dir_;
  fs::path base_ = dir_.path() / "sample";
  fs::path undo_file_ = base_ / "UNDO.QUJ";
  fs::path redo_file_ = base_ / "REDO.QUJ";
  std::string stamm_ = (base_ / "STAMMDATEN/DB_Stamm.QE").string();
};

TEST_F(ListEditUndo, ListEditThenUndoRestoresTheRecordAndRedoMakesItAgain) {
  EXPECT_GT(ListRowOf(Korvan({"list", "einheit"}, 0, {"Bezeichnung"}).out, "Quadratmeter"), 0);
  const ProgramResult currencies = Korvan({"list", "waehrung"}, 0, {"0,94"});
  EXPECT_TRUE(Contains(currencies.out.substr(0, currencies.out.find('\n')), "Basiswährung"));
  const int row = ListRowOf(currencies.out, "Schweizer Franken");
  ASSERT_GT(row, 0) << currencies.out;
  const std::string before = DumpCurrencies();

  Korvan({"edit", "waehrung", std::to_string(row), "Faktor=0,97", "Währung=Fränkli"});
  const std::string listing = Korvan({"list", "waehrung"}).out;
  EXPECT_EQ(ListRowOf(listing, "Fränkli"), row);
  EXPECT_FALSE(Contains(listing, "Schweizer Franken")) << listing;
  EXPECT_TRUE(Contains(listing, "0,97")) << listing;
  const std::string edited = DumpCurrencies();
  ASSERT_NE(edited, before);

  Korvan({"undo"});
  EXPECT_EQ(DumpCurrencies(), before);
  Korvan({"redo"});
  EXPECT_EQ(DumpCurrencies(), edited);
  Korvan({"undo"});
  EXPECT_EQ(DumpCurrencies(), before);
  Korvan({"undo"}, 1, {"Es gibt nichts rückgängig zu machen"});
}

// The position of the `nth` record of table `letter` in the master data file (from 1).
int64_t RecordPosition(const std::string& stamm, char letter, int nth) {
  std::istringstream lines(testing::ExpectKorvan({"db", "dump", stamm}, 0).out);
  int64_t position = 0;
  int length = 0;
  for (std::string type; lines >> position >> length >> type;) {
    if (type == std::string(1, letter) && --nth == 0) return position;
  }
  ADD_FAILURE() << "no record " << nth << " of " << letter;
  return 0;
}

// A list that cannot show every record of its table says so and where the damage is,
// instead of showing a shorter list. (Which damage the walk finds is the data layer's.)
TEST_F(ListEditUndo, ListOfADamagedTableReportsTheDamageAndExitsWithOne) {
  const fs::path data_file = stamm_ + "0";
  const std::string data = ReadFile(data_file);
  const int64_t second = RecordPosition(stamm_, 'W', 2);
  testing::PatchFile(data_file, second + 4, "X");
  const ProgramResult listed = Korvan({"list", "waehrung"}, 1,
                                      {"Position " + std::to_string(second), data_file.string(),
                                       "beschädigt", "DB_Stamm", "korvan rebuild"});
  EXPECT_TRUE(listed.out.empty()) << listed.out;
  WriteFile(data_file, data);
  Korvan({"list", "waehrung"}, 0, {"Schweizer Franken"});
}

TEST_F(ListEditUndo, ListShowsTheStepsAndClearEmptiesTheJournal) {
  // Nothing recorded yet: the list is empty and looking creates no files.
  Korvan({"undo", "--list"}, 0, {"Rückgängig machen (0 Schritte"});
  EXPECT_FALSE(fs::exists(undo_file_));

  EditFactor("Schweizer Franken", "0,97");
  EditFactor("Schweizer Franken", "0,98");
  EditFactor("Pfund", "1,2");
  Korvan({"undo"});
  Korvan({"undo", "--list"}, 0,
         {"Rückgängig machen (2 Schritte, neuester zuerst):\n  1. Bearbeiten\n  2. Bearbeiten\n",
          "Wiederherstellen (1 Schritt, neuester zuerst):\n  1. Bearbeiten\n"});
  const std::string before_clear = DumpCurrencies(true);
  Korvan(
      {"undo", "--clear"}, 0,
      {"2 Schritte zum Rückgängigmachen und 1 Schritt zum Wiederherstellen verworfen", "UNDO.QUJ"});
  EXPECT_FALSE(fs::exists(undo_file_));
  EXPECT_FALSE(fs::exists(redo_file_));
  EXPECT_EQ(DumpCurrencies(true), before_clear);  // the data stays as it is
  Korvan({"undo"}, 1);
  Korvan({"redo"}, 1);
  Korvan({"undo", "--clear"}, 0, {"leer"});
}

TEST_F(ListEditUndo, UndoAfterAnUnjournaledChangeRefusesAndChangesNothing) {
  EditFactor("Schweizer Franken", "0,97");
  // Another change of the same record that this journal did not see: made while the
  // journal was elsewhere.
  const fs::path kept = dir_.path() / "UNDO.QUJ.kept";
  fs::rename(undo_file_, kept);
  EditFactor("Schweizer Franken", "0,91");
  fs::remove(undo_file_);
  fs::rename(kept, undo_file_);

  const std::string before = DumpCurrencies(true);
  Korvan({"undo"}, 1,
         {"Rückgängig nicht möglich", "der Datensatz \"", "der Tabelle \"", "DB_Stamm",
          "wurde inzwischen geändert", "Es wurde nichts geändert", "korvan undo --clear"});
  EXPECT_EQ(DumpCurrencies(true), before);
  Korvan({"undo", "--list"}, 0, {"Rückgängig machen (1 Schritt"});  // the step is kept
}

// Every kind of damage is the journal's own business; the program names the file, keeps
// the data, and lets the next edit set the file aside and begin a new journal.
TEST_F(ListEditUndo, ADamagedJournalIsReportedAndSetAsideByTheNextEdit) {
  EditFactor("Schweizer Franken", "0,97");
  EditFactor("Pfund", "1,2");
  std::string header = ReadFile(undo_file_);
  ASSERT_FALSE(header.empty());
  header[0] = 'X';
  const std::string before = DumpCurrencies();
  const std::string unchanged = DumpCurrencies(true);
  WriteFile(undo_file_, header);
  Korvan({"undo"}, 1, {"UNDO.QUJ", "ist beschädigt", "(Byte ", "korvan undo --clear"});
  EXPECT_EQ(DumpCurrencies(true), unchanged);

  const ProgramResult edit = EditFactor("Schweizer Franken", "0,5");
  EXPECT_TRUE(Contains(edit.err, "Warnung")) << edit.err;
  EXPECT_TRUE(Contains(edit.err, "UNDO.QUJ.defekt")) << edit.err;
  EXPECT_EQ(ReadFile(base_ / "UNDO.QUJ.defekt"), header);
  Korvan({"undo"});
  EXPECT_EQ(DumpCurrencies(), before);
  Korvan({"undo"}, 1);  // the damaged steps are gone
  // A damaged redo file is named as such; --clear deletes damaged files without reading.
  WriteFile(redo_file_, header);
  Korvan({"redo"}, 1, {"REDO.QUJ"});
  Korvan({"undo", "--clear"}, 0, {"beschädigt"});
  EXPECT_FALSE(fs::exists(redo_file_));
}

}  // namespace
}  // namespace korvan::app
