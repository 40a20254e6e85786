// Two users on one installation: every command signs in to the data directory it works
// in, waits for the other as long as the configured LOCK_TIMEOUT, and then either goes
// ahead or refuses saying who is in the way. Nothing a command acknowledged is lost.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "app/program/installation.h"
#include "boq/units/tb_waehrung.h"
#include "data/db/control_list.h"
#include "data/tables/std_db.h"
#include "storage/result_codes.h"
#include "testing/child_process.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ExpectKorvan;
using testing::ListRowOf;
using testing::ProgramResult;
using testing::ReadFile;
using testing::RunKorvanBinary;

// The line of a listing that starts with row `row`.
std::string RowLine(const std::string& listing, int row) {
  std::istringstream lines(listing);
  for (std::string line; std::getline(lines, line);) {
    int number = 0;
    if (std::istringstream(line) >> number && number == row) return line;
  }
  return {};
}

using Background = testing::KorvanInBackground;

class SharedDirectory : public ::testing::Test {
 protected:
  void SetUp() override {
    base_ = testing::MakeInstallation(dir_);
    SetLockTimeout(500);
    stamm_dir_ = (base_ / "STAMMDATEN").string() + "/";
    stamm_ = stamm_dir_ + "DB_Stamm.QE";
  }
  // Every command reads the time-out from the installation's shared configuration.
  void SetLockTimeout(int milliseconds) {
    std::ofstream(HelvioIniFile(LoadInstallation(base_).machine))
        << "[DBKERNEL]\nLOCK_TIMEOUT=" << milliseconds << "\n";
  }
  std::vector<std::string> On(std::vector<std::string> args) const {
    args.insert(args.end(), {"-d", base_.string()});
    return args;
  }
  std::string Currencies() { return ExpectKorvan(On({"list", "waehrung"}), 0).out; }
  std::vector<std::string> EditFactor(int row, const std::string& factor) const {
    return On({"edit", "waehrung", std::to_string(row), "Faktor=" + factor});
  }
  // The installation's files except the control files, which every sign-in rewrites.
  std::map<std::string, std::string> DataFiles() const {
    auto contents = testing::FileContents(base_);
    std::erase_if(contents, [](const auto& entry) {
      const std::string name = fs::path(entry.first).filename().string();
      return name == data::kControlFileName || name.starts_with("Integrity_");
    });
    return contents;
  }

  korvan::testing::TempDir dir_;
  fs::path base_;
  std::string stamm_dir_;
  std::string stamm_;
};

// A rebuild or reorg of another user holds the directory alone: nobody else may start
// there. Each command waits the configured time, then refuses naming the user.
TEST_F(SharedDirectory, EveryCommandWaitsForARebuildThenRefusesNamingIt) {
  const int row = ListRowOf(Currencies(), "Schweizer Franken");
  ASSERT_GT(row, 0);
  const auto before = DataFiles();
  data::TControlList rebuild(stamm_dir_);
  ASSERT_TRUE(rebuild.Open({"Meier", "buero-2"}, true));

  const std::vector<std::vector<std::string>> commands = {On({"list", "waehrung"}),
                                                          EditFactor(row, "0,99"),
                                                          On({"undo"}),
                                                          On({"check"}),
                                                          On({"rebuild"}),
                                                          On({"reorg"}),
                                                          {"db", "dump", stamm_},
                                                          {"db", "shell", stamm_}};
  for (const std::vector<std::string>& command : commands) {
    const ProgramResult result =
        ExpectKorvan(command, 1, {"\"Meier\" (buero-2)", stamm_dir_, "500 ms gewartet"});
    EXPECT_FALSE(Contains(result.out, "gespeichert")) << result.out;
  }
  EXPECT_EQ(DataFiles(), before);

  rebuild.Close();
  ExpectKorvan(EditFactor(row, "0,99"), 0, {"gespeichert"});
  EXPECT_TRUE(Contains(RowLine(Currencies(), row), "0,99"));
}

// Anybody working in the directory keeps a rebuild or reorg from replacing its files;
// they refuse, changing nothing, and go ahead once the directory is free.
TEST_F(SharedDirectory, RebuildAndReorgWaitForOtherUsersThenRefuseNamingThem) {
  const auto before = DataFiles();
  data::TControlList user(stamm_dir_);
  ASSERT_TRUE(user.Open({"Schulz", "buero-3"}, false));
  ExpectKorvan(On({"rebuild"}), 1, {"Neuaufbau abgebrochen, nichts geändert", "\"Schulz\""});
  ExpectKorvan(On({"reorg"}), 1, {"Reorganisation abgebrochen, nichts geändert", "\"Schulz\""});
  EXPECT_EQ(DataFiles(), before);
  // Working side by side is what shared sign-ins are for.
  ExpectKorvan(On({"check"}), 0);
  user.Close();
  ExpectKorvan(On({"rebuild"}), 0);
  ExpectKorvan(On({"reorg"}), 0);
}

// Another user storing the same record holds its lock in the database's lock file: the
// edit waits the configured time, then refuses and stores nothing.
TEST_F(SharedDirectory, EditWaitsForTheRecordLockOfAnotherUserThenRefuses) {
  const int row = ListRowOf(Currencies(), "Schweizer Franken");
  ASSERT_GT(row, 0);
  data::TStdDb db("DB_Stamm", stamm_dir_, 'E', 33);
  ASSERT_EQ(db.DbOpen(true), storage::kOk);
  {
    boq::TTbWaehrung currencies(db);
    bool found = currencies.GetFirstKey("");
    while (found && currencies.Rec().ID != 41) found = currencies.GetNextKey();
    ASSERT_TRUE(found);
    ASSERT_EQ(currencies.LockRec(), storage::kOk);
    ExpectKorvan(EditFactor(row, "0,77"), 1,
                 {"wird gerade von einem anderen Benutzer gespeichert", "nichts gespeichert"});
    EXPECT_FALSE(Contains(RowLine(Currencies(), row), "0,77"));
    ASSERT_EQ(currencies.UnLockRec(), storage::kOk);
  }
  db.DbClose();
  ExpectKorvan(EditFactor(row, "0,77"), 0, {"gespeichert"});
  EXPECT_TRUE(Contains(RowLine(Currencies(), row), "0,77"));
  EXPECT_FALSE(fs::exists(stamm_ + "2")) << "the lock file goes with its last user";
}

// Whatever runs beside it, an edit either stores and says so, or refuses clearly; what it
// acknowledged is in the data afterwards.
struct EditRun {
  int row;
  std::string factor;
  ProgramResult result;
};

void ExpectAcknowledgedOrRefusedClearly(const std::vector<EditRun>& edits,
                                        const std::string& listing, const std::string& round) {
  for (const EditRun& edit : edits) {
    const std::string name = round + ", row " + std::to_string(edit.row) + " = " + edit.factor;
    EXPECT_FALSE(testing::Crashed(edit.result)) << name << ": " << edit.result.err;
    if (edit.result.exit_code == 0) {
      EXPECT_TRUE(Contains(edit.result.out, "gespeichert")) << name;
      EXPECT_TRUE(Contains(RowLine(listing, edit.row), edit.factor))
          << name << " acknowledged but lost:\n"
          << listing;
    } else {
      EXPECT_EQ(edit.result.exit_code, 1) << name << ": " << edit.result.err;
      EXPECT_TRUE(Contains(edit.result.err, "gewartet")) << name << ": " << edit.result.err;
    }
  }
}

TEST_F(SharedDirectory, EditsBesideRebuildReorgListAndCheckLoseNothingAcknowledged) {
  const std::string listing = Currencies();
  const std::vector<int> rows = {ListRowOf(listing, "US-Dollar"),
                                 ListRowOf(listing, "Schweizer Franken"),
                                 ListRowOf(listing, "Pfund")};
  for (int row : rows) ASSERT_GT(row, 0);
  const std::vector<std::vector<std::string>> others = {On({"rebuild"}), On({"reorg"}),
                                                        On({"list", "waehrung"}), On({"check"})};
  int round = 0;
  for (const std::vector<std::string>& other_command : others) {
    ++round;
    std::vector<EditRun> edits;
    ProgramResult other;
    {
      const std::string factor = std::to_string(round) + ",5";
      Background edit(EditFactor(rows[round % rows.size()], factor));
      Background beside(other_command);
      edits.push_back({rows[round % rows.size()], factor, edit.Finish()});
      other = beside.Finish();
    }
    const std::string name = other_command.front();
    EXPECT_FALSE(testing::Crashed(other)) << name << ": " << other.err;
    if (other.exit_code != 0) {
      // Only a refusal that names the other user is allowed.
      EXPECT_TRUE(Contains(other.err, "gewartet")) << name << ": " << other.err;
    }
    ExpectAcknowledgedOrRefusedClearly(edits, Currencies(), name);
  }
  ExpectKorvan({"db", "check", stamm_}, 0);
  ExpectKorvan(On({"check"}), 0);
}

}  // namespace
}  // namespace korvan::app
