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
       "Summe: 39 Datenbanken, 13 Datensätze", "Dateigrößen: keine Warnungen"});
  EXPECT_TRUE(info.err.empty()) << info.err;

  // Each file grows by one free block as large as the rest of the file, so it stays a
  // readable database; the block is sparse and takes no disk space.
  auto grow = [](const fs::path& data_file, int32_t size) {
    fs::resize_file(data_file, static_cast<uintmax_t>(size));
    const int32_t free_block = -(size - 80);
    testing::PatchFile(data_file, 80,
                       std::string(reinterpret_cast<const char*>(&free_block), sizeof free_block));
  };
  const fs::path big = base / "PROJEKTE/Beispiel/DB_UserFelder.QX0";
  grow(big, 1610612736);
  const fs::path bigger = base / "STAMMDATEN/DB_QPR.QT0";
  grow(bigger, 1610612737);
  ExpectKorvan(
      {"info", "-d", base.string()}, 0,
      {"Dateigrößen: 2 Warnungen\n", "  Datei \"" + big.string() + "\" ist größer als 1 GB\n",
       "  Datei \"" + bigger.string() + "\" erreicht mit "});
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
       "Summe: 39 Datenbanken, 13 Datensätze, ", ", 3 nicht lesbar\n"});

  ExpectKorvan({"info", "-d", dir.File("nichts")}, 1, {dir.File("nichts")});
  ExpectKorvan({"info", "-d", dir.path().string()}, 1, {"korvan init -d"});
}

}  // namespace
}  // namespace korvan
