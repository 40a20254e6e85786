// `korvan init`: the folders and files of a fresh installation, running it again, and
// base directories it cannot use.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "app/installation.h"
#include "storage/db_kernel.h"
#include "storage/result_codes.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

namespace fs = std::filesystem;
using testing::ProgramResult;
using testing::RunKorvanBinary;

// Every path below `root`, relative, directories with a trailing "/".
std::set<std::string> Listing(const fs::path& root) {
  std::set<std::string> paths;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    std::string relative = fs::relative(entry.path(), root).string();
    if (entry.is_directory()) relative += "/";
    paths.insert(relative);
  }
  return paths;
}

// Path, size and modification time of everything below `root`.
std::map<std::string, std::pair<uintmax_t, fs::file_time_type>> Snapshot(const fs::path& root) {
  std::map<std::string, std::pair<uintmax_t, fs::file_time_type>> snapshot;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    const uintmax_t size = entry.is_directory() ? 0 : entry.file_size();
    snapshot[entry.path().string()] = {size, entry.last_write_time()};
  }
  return snapshot;
}

// A user's or computer's folder below the system directory, relative to the base.
std::string Relative(const fs::path& base, const std::string& directory) {
  return fs::relative(directory, base).string() + "/";
}

const std::vector<std::string> kProjectDatabases = {
    "DB_Lv.QA",         "DB_Kat.QB",     "DB_Texte.QC",  "DB_Ris.QD",
    "DB_Prop.QP",       "DB_LvEx.QM",    "DB_Ansatz.QH", "DB_KP.QK",
    "DB_UserFelder.QX", "DB_QOffice.QU", "DB_Struct.QF", "DB_GlobData.QL"};
const std::vector<std::string> kClipDatabases = {"DB_Lv.QA",     "DB_Kat.QB",  "DB_Texte.QC",
                                                 "DB_Ris.QD",    "DB_LvEx.QM", "DB_Rv.QN",
                                                 "DB_Ansatz.QH", "DB_KP.QK"};
const std::vector<std::string> kMasterDatabases = {
    "DB_Texte.QC",    "DB_Stamm.QE",         "DB_Rv.QN",      "DB_KR.QR",  "DB_UP.QS",
    "DB_QProjekt.QW", "DB_UserFelderDef.QY", "DB_QOffice.QU", "DB_QPR.QT", "DB_GlobData.QL"};
const std::vector<std::string> kSysDatabases = {"DB_CONTRO.QI"};

void AddDatabases(std::set<std::string>& expected, const std::string& folder,
                  const std::vector<std::string>& databases) {
  for (const std::string& database : databases) {
    expected.insert(folder + database + "0");
    expected.insert(folder + database + "1");
  }
  expected.insert(folder + "DATA.QDC");
}

std::set<std::string> ExpectedFreshInstallation(const fs::path& base) {
  const app::Installation installation = app::LoadInstallation(base);
  const std::string machine = Relative(base, installation.machine.MachineDirectory());
  const std::string user = Relative(base, installation.machine.UserDirectory());
  std::set<std::string> expected = {"SYSTEM/",
                                    "SYSTEM/MACHINE/",
                                    machine,
                                    "SYSTEM/USER/",
                                    user,
                                    user + "TEMP/",
                                    "SYSTEM/SYS/",
                                    "SYSTEM/SYS/DICTIONARY/",
                                    "SYSTEM/SYS/HEILER/",
                                    "PROJEKTE/",
                                    "PROJEKTE/Beispiel/",
                                    "STAMMDATEN/",
                                    "AUSDRUCK/",
                                    "LAYOUT/",
                                    "BLOCKDATEN/",
                                    "PICTURE/",
                                    "AUTOSAVE/",
                                    "FOR/",
                                    "HLP/",
                                    "STLB/",
                                    "SYSTEM/SYS/Q_System.ini",
                                    user + "Q_User.ini"};
  AddDatabases(expected, "PROJEKTE/Beispiel/", kProjectDatabases);
  AddDatabases(expected, user + "TEMP/", kClipDatabases);
  AddDatabases(expected, "BLOCKDATEN/", kClipDatabases);
  AddDatabases(expected, "STAMMDATEN/", kMasterDatabases);
  AddDatabases(expected, "SYSTEM/SYS/", kSysDatabases);
  return expected;
}

TEST(InitCommand, FreshInstallationHoldsExactlyTheFoldersAndDatabasesOfEachDirectory) {
  testing::TempDir dir;
  const fs::path base = dir.path() / "ava";
  const ProgramResult init = RunKorvanBinary({"init", "-d", base.string()});
  ASSERT_EQ(init.exit_code, 0) << init.err;

  const std::set<std::string> listing = Listing(base);
  EXPECT_EQ(listing, ExpectedFreshInstallation(base));
  EXPECT_TRUE(listing.count("PROJEKTE/Beispiel/DB_UserFelder.QX0"));
  for (const std::string& path : listing) {
    if (path.find("DB_CONTRO") != std::string::npos) {
      EXPECT_EQ(path.rfind("SYSTEM/SYS/DB_CONTRO.Q", 0), 0u) << path;
    }
  }

  // Every data file is a database of this program's data version.
  int data_files = 0;
  for (const std::string& path : listing) {
    if (path.size() < 2 || path.substr(path.size() - 1) != "0" || path.find(".Q") == path.npos) {
      continue;
    }
    uint32_t version = 0;
    double stamp = 0;
    EXPECT_EQ(storage::iDK_DbFileInfo((base / path).string(), &version, &stamp), storage::kOk);
    EXPECT_EQ(version, 810u) << path;
    ++data_files;
  }
  EXPECT_EQ(data_files, 39);

  EXPECT_NE(init.out.find("Datenbanken angelegt (Daten- und Schlüsseldatei) (39)"),
            std::string::npos)
      << init.out;
  EXPECT_NE(init.out.find("SYSTEM/SYS/DB_CONTRO.QI0"), std::string::npos) << init.out;
  EXPECT_NE(init.out.find("Aktuelles Projekt: Beispiel (PROJEKTE/Beispiel/)"), std::string::npos);
  EXPECT_EQ(app::LoadInstallation(base).user.Objektvorgabe(), "Beispiel");
}

TEST(InitCommand, RunningAgainChangesNothingAndCompletesWhatIsMissing) {
  testing::TempDir dir;
  const fs::path base = dir.path() / "ava";
  ASSERT_EQ(RunKorvanBinary({"init", "-d", base.string()}).exit_code, 0);
  const auto before = Snapshot(base);

  const ProgramResult again = RunKorvanBinary({"init", "-d", base.string()});
  EXPECT_EQ(again.exit_code, 0) << again.err;
  EXPECT_NE(again.out.find("nichts geändert"), std::string::npos) << again.out;
  EXPECT_EQ(Snapshot(base), before);

  // A lost database is made again, and only that one.
  fs::remove(base / "STAMMDATEN/DB_Stamm.QE0");
  fs::remove(base / "STAMMDATEN/DB_Stamm.QE1");
  const ProgramResult repair = RunKorvanBinary({"init", "-d", base.string()});
  EXPECT_EQ(repair.exit_code, 0) << repair.err;
  EXPECT_NE(repair.out.find("Datenbanken angelegt (Daten- und Schlüsseldatei) (1)"),
            std::string::npos)
      << repair.out;
  EXPECT_NE(repair.out.find("Bereits vorhanden: 38 Datenbanken"), std::string::npos);
  EXPECT_EQ(Listing(base), ExpectedFreshInstallation(base));

  // Another project becomes the current one; the first stays as it is.
  const ProgramResult second = RunKorvanBinary({"init", "-d", base.string(), "--project", "Halle"});
  EXPECT_EQ(second.exit_code, 0) << second.err;
  EXPECT_TRUE(fs::exists(base / "PROJEKTE/Halle/DB_UserFelder.QX0"));
  EXPECT_TRUE(fs::exists(base / "PROJEKTE/Halle/DATA.QDC"));
  EXPECT_TRUE(fs::exists(base / "PROJEKTE/Beispiel/DB_Lv.QA0"));
  EXPECT_EQ(app::LoadInstallation(base).user.Objektvorgabe(), "Halle");
  // Without --project the current project is kept.
  const ProgramResult kept = RunKorvanBinary({"init", "-d", base.string()});
  EXPECT_NE(kept.out.find("nichts geändert"), std::string::npos) << kept.out;
  EXPECT_NE(kept.out.find("Aktuelles Projekt: Halle"), std::string::npos) << kept.out;
}

TEST(InitCommand, RefusesFilesAsBaseDirectoryAndBadProjectNamesAndNamesThem) {
  testing::TempDir dir;
  const std::string plain = dir.File("plain");
  std::ofstream(plain) << "x";

  const ProgramResult on_file = RunKorvanBinary({"init", "-d", plain});
  EXPECT_EQ(on_file.exit_code, 1);
  EXPECT_NE(on_file.err.find("\"" + plain + "\" ist kein Verzeichnis"), std::string::npos)
      << on_file.err;

  const ProgramResult below_file = RunKorvanBinary({"init", "-d", plain + "/sub"});
  EXPECT_EQ(below_file.exit_code, 1);
  EXPECT_NE(below_file.err.find(plain + "/sub"), std::string::npos) << below_file.err;
  EXPECT_EQ(fs::file_size(plain), 1u);

  const ProgramResult bad_name =
      RunKorvanBinary({"init", "-d", dir.File("ava"), "--project", "../nebenan"});
  EXPECT_EQ(bad_name.exit_code, 2);
  EXPECT_NE(bad_name.err.find("../nebenan"), std::string::npos) << bad_name.err;
  EXPECT_FALSE(fs::exists(dir.File("ava")));
}

TEST(InitCommand, RefusesAnUnwritableBaseDirectoryBeforeMakingAnything) {
  testing::TempDir dir;
  const fs::path locked = dir.path() / "locked";
  fs::create_directory(locked);
  fs::permissions(locked, fs::perms::owner_read | fs::perms::owner_exec);
  if (::access(locked.c_str(), W_OK) == 0) {
    fs::permissions(locked, fs::perms::owner_all);
    GTEST_SKIP() << "permissions do not bind this user (root)";
  }
  const ProgramResult unwritable = RunKorvanBinary({"init", "-d", (locked / "ava").string()});
  fs::permissions(locked, fs::perms::owner_all);
  EXPECT_EQ(unwritable.exit_code, 1);
  EXPECT_NE(unwritable.err.find("nicht beschreibbar"), std::string::npos) << unwritable.err;
  EXPECT_NE(unwritable.err.find(locked.string()), std::string::npos) << unwritable.err;
  EXPECT_TRUE(fs::is_empty(locked));
}

}  // namespace
}  // namespace korvan
