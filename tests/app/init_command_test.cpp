// `korvan init`: the folders and files of a fresh installation, running it again, and
// base directories it cannot use.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
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

// Which databases each folder holds is the data suite's; here: the command's answer, the
// project it makes current and the data version of what it made.
TEST(InitCommand, FreshInstallationHoldsTheDatabasesOfThisDataVersion) {
  testing::TempDir dir;
  const fs::path base = dir.path() / "ava";
  ExpectKorvan({"init", "-d", base.string()}, 0,
               {"Datenbanken angelegt (Daten- und Schlüsseldatei) (39)",
                "Aktuelles Projekt: Beispiel (PROJEKTE/Beispiel/)"});
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

  // Another project becomes the current one; the first stays as it is.
  ExpectKorvan({"init", "-d", base.string(), "--project", "Halle"}, 0);
  EXPECT_TRUE(fs::exists(base / "PROJEKTE/Halle/DB_Lv.QA0"));
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
