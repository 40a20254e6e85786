// `korvan init`: the folders and files of a fresh installation, running it again, and
// base directories it cannot use.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>

#include "app/program/installation.h"
#include "storage/db_kernel.h"
#include "storage/result_codes.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

namespace fs = std::filesystem;
using testing::ExpectKorvan;

// The folders below `root` (relative, with a trailing "/") and how many databases (data
// and key file, "DB_*.Q?0" and "...1") each holds, plus 100 for the folder's control file
// "DATA.QDC"; -1 per other file that is no configuration file.
std::map<std::string, int> Layout(const fs::path& root) {
  std::map<std::string, int> layout;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    const std::string folder = fs::relative(entry.path().parent_path(), root).string() + "/";
    const std::string name = entry.path().filename().string();
    if (entry.is_directory()) {
      layout[fs::relative(entry.path(), root).string() + "/"] += 0;
    } else if (name.starts_with("DB_") && name.ends_with("0") &&
               fs::exists(entry.path().string().substr(0, entry.path().string().size() - 1) +
                          "1")) {
      ++layout[folder];
    } else if (name == "DATA.QDC") {
      layout[folder] += 100;
    } else if (!name.starts_with("DB_") && !name.ends_with(".ini")) {
      --layout[folder];
    }
  }
  return layout;
}

std::map<std::string, int> ExpectedFreshLayout(const fs::path& base) {
  const app::Installation installation = app::LoadInstallation(base);
  const std::string machine = fs::relative(installation.machine.MachineDirectory(), base).string();
  const std::string user = fs::relative(installation.machine.UserDirectory(), base).string() + "/";
  std::map<std::string, int> expected = {{machine + "/", 0}, {user, 0}, {user + "TEMP/", 108}};
  for (const char* empty : {"SYSTEM/", "SYSTEM/MACHINE/", "SYSTEM/USER/", "SYSTEM/SYS/DICTIONARY/",
                            "SYSTEM/SYS/HEILER/", "PROJEKTE/", "AUSDRUCK/", "LAYOUT/", "PICTURE/",
                            "AUTOSAVE/", "FOR/", "HLP/", "STLB/"}) {
    expected[empty] = 0;
  }
  expected["SYSTEM/SYS/"] = 101;
  expected["PROJEKTE/Beispiel/"] = 112;
  expected["STAMMDATEN/"] = 110;
  expected["BLOCKDATEN/"] = 108;
  return expected;
}

TEST(InitCommand, FreshInstallationHoldsExactlyTheFoldersAndDatabasesOfEachDirectory) {
  testing::TempDir dir;
  const fs::path base = dir.path() / "ava";
  ExpectKorvan({"init", "-d", base.string()}, 0,
               {"Datenbanken angelegt (Daten- und Schlüsseldatei) (39)",
                "Aktuelles Projekt: Beispiel (PROJEKTE/Beispiel/)"});
  EXPECT_EQ(Layout(base), ExpectedFreshLayout(base));
  for (const char* path : {"PROJEKTE/Beispiel/DB_UserFelder.QX0", "SYSTEM/SYS/DB_CONTRO.QI0",
                           "SYSTEM/SYS/Q_System.ini"}) {
    EXPECT_TRUE(fs::exists(base / path)) << path;
  }
  // Every data file is a database of this program's data version.
  for (const auto& entry : fs::recursive_directory_iterator(base)) {
    const std::string name = entry.path().filename().string();
    if (!name.starts_with("DB_") || !name.ends_with("0")) continue;
    uint32_t version = 0;
    double stamp = 0;
    EXPECT_EQ(storage::iDK_DbFileInfo(entry.path().string(), &version, &stamp), storage::kOk);
    EXPECT_EQ(version, 810u) << entry.path();
  }
  EXPECT_EQ(app::LoadInstallation(base).user.Objektvorgabe(), "Beispiel");
}

// Path, size and modification time of everything below `root`.
std::map<std::string, std::pair<uintmax_t, fs::file_time_type>> Snapshot(const fs::path& root) {
  std::map<std::string, std::pair<uintmax_t, fs::file_time_type>> snapshot;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    snapshot[entry.path().string()] = {entry.is_directory() ? 0 : entry.file_size(),
                                       entry.last_write_time()};
  }
  return snapshot;
}

TEST(InitCommand, RunningAgainChangesNothingAndCompletesWhatIsMissing) {
  testing::TempDir dir;
  const fs::path base = testing::MakeInstallation(dir, "init");
  const auto before = Snapshot(base);
  ExpectKorvan({"init", "-d", base.string()}, 0, {"nichts geändert"});
  EXPECT_EQ(Snapshot(base), before);

  // A lost database is made again, and only that one.
  fs::remove(base / "STAMMDATEN/DB_Stamm.QE0");
  fs::remove(base / "STAMMDATEN/DB_Stamm.QE1");
  // The new master data starts with the built-in currency list.
  ExpectKorvan({"init", "-d", base.string()}, 0,
               {"Datenbanken angelegt (Daten- und Schlüsseldatei) (1)",
                "Gelesene Währungen: \nDEM, BEF, FIM, FRF, IEP, ITL, LUF, NLG, ATS, PTE, ESP, "
                "GRD, EUR\n"});
  ExpectKorvan({"list", "waehrung", "-d", base.string()}, 0, {"Deutsche Mark", "1,95583"});
  EXPECT_EQ(Layout(base), ExpectedFreshLayout(base));

  // Another project becomes the current one; the first stays as it is.
  ExpectKorvan({"init", "-d", base.string(), "--project", "Halle"}, 0);
  EXPECT_EQ(Layout(base)["PROJEKTE/Halle/"], 112);
  EXPECT_EQ(Layout(base)["PROJEKTE/Beispiel/"], 112);
  EXPECT_EQ(app::LoadInstallation(base).user.Objektvorgabe(), "Halle");
  // Without --project the current project is kept.
  ExpectKorvan({"init", "-d", base.string()}, 0, {"nichts geändert", "Aktuelles Projekt: Halle"});
}

TEST(InitCommand, RefusesBaseDirectoriesItCannotUseAndNamesThem) {
  testing::TempDir dir;
  const std::string plain = dir.File("plain");
  std::ofstream(plain) << "x";
  ExpectKorvan({"init", "-d", plain}, 1, {"\"" + plain + "\" ist kein Verzeichnis"});
  ExpectKorvan({"init", "-d", plain + "/sub"}, 1, {plain + "/sub"});
  EXPECT_EQ(fs::file_size(plain), 1u);

  const fs::path locked = dir.path() / "locked";
  fs::create_directory(locked);
  fs::permissions(locked, fs::perms::owner_read | fs::perms::owner_exec);
  if (::access(locked.c_str(), W_OK) == 0) return;  // root: permissions do not bind
  ExpectKorvan({"init", "-d", (locked / "ava").string()}, 1,
               {"nicht beschreibbar", locked.string()});
  fs::permissions(locked, fs::perms::owner_all);
  EXPECT_TRUE(fs::is_empty(locked));
}

}  // namespace
}  // namespace korvan
