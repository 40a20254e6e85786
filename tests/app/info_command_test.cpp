// `korvan info`: groups, files, record counts and sizes of an installation, damaged
// files and size warnings.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

namespace fs = std::filesystem;
using testing::ExpectKorvan;
using testing::ProgramResult;

TEST(InfoCommand, ListsEveryGroupWithItsDatabasesCountsSizesAndWarnings) {
  testing::TempDir dir;
  const fs::path base = testing::MakeInstallation(dir, "init");
  const auto data_size = fs::file_size(base / "SYSTEM/SYS/DB_CONTRO.QI0");
  const auto key_size = fs::file_size(base / "SYSTEM/SYS/DB_CONTRO.QI1");
  const ProgramResult info = ExpectKorvan(
      {"info", "-d", base.string()}, 0,
      {"Aktuelles Projekt: PROJEKTE/Beispiel/", "DB_CONTRO (I, Rechetverwaltung Tabellen)\n",
       "  Y  SYSTEM/SYS/DB_CONTRO.QI0: 0 Datensätze, Daten " + std::to_string(data_size) +
           " Bytes, Schlüssel " + std::to_string(key_size) + " Bytes\n",
       "Summe: 39 Datenbanken, 58 Datensätze", "Dateigrößen: keine Warnungen"});
  EXPECT_TRUE(info.err.empty()) << info.err;
}

TEST(InfoCommand, ReportsEachDamagedDatabaseOrAMissingInstallation) {
  testing::TempDir dir;
  const fs::path base = testing::MakeInstallation(dir, "init");
  std::ofstream(base / "PROJEKTE/Beispiel/DB_Lv.QA0", std::ios::trunc) << "kaputt";
  std::ofstream(base / "STAMMDATEN/DB_KR.QR0", std::ios::app) << "Restbytes ohne Block";
  fs::remove(base / "BLOCKDATEN/DB_Kat.QB1");
  // Each is named, and the databases after the damaged ones are still listed.
  ExpectKorvan(
      {"info", "-d", base.string()}, 1,
      {(base / "PROJEKTE/Beispiel/DB_Lv.QA0").string() + ": ",
       (base / "STAMMDATEN/DB_KR.QR0").string() + ": Block an Position",
       (base / "BLOCKDATEN/DB_Kat.QB0").string() + ": Schlüsseldatei fehlt",
       "  O  PROJEKTE/Beispiel/DB_Lv.QA0: FEHLER: ", "  Y  SYSTEM/SYS/DB_CONTRO.QI0: 0 Datensätze",
       "Summe: 39 Datenbanken, 39 Datensätze, ", ", 3 nicht lesbar\n"});

  ExpectKorvan({"info", "-d", dir.File("nichts")}, 1, {dir.File("nichts")});
  ExpectKorvan({"info", "-d", dir.path().string()}, 1, {"korvan init -d"});
}

}  // namespace
}  // namespace korvan
