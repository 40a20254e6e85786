// `korvan info`: groups, files, record counts and sizes of an installation, damaged
// files and size warnings.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ProgramResult;
using testing::RunKorvanBinary;

fs::path Install(const testing::TempDir& dir) {
  const fs::path base = dir.path() / "ava";
  const ProgramResult init = RunKorvanBinary({"init", "-d", base.string()});
  EXPECT_EQ(init.exit_code, 0) << init.err;
  return base;
}

TEST(InfoCommand, ListsEveryGroupWithItsDatabasesCountsAndSizes) {
  testing::TempDir dir;
  const fs::path base = Install(dir);
  const ProgramResult info = RunKorvanBinary({"info", "-d", base.string()});
  ASSERT_EQ(info.exit_code, 0) << info.err;
  EXPECT_TRUE(info.err.empty()) << info.err;

  EXPECT_TRUE(Contains(info.out, "Aktuelles Projekt: PROJEKTE/Beispiel/")) << info.out;
  EXPECT_TRUE(Contains(info.out, "DB_CONTRO (I, Rechetverwaltung Tabellen)\n"));
  const auto data_size = fs::file_size(base / "SYSTEM/SYS/DB_CONTRO.QI0");
  const auto key_size = fs::file_size(base / "SYSTEM/SYS/DB_CONTRO.QI1");
  EXPECT_TRUE(Contains(info.out, "  Y  SYSTEM/SYS/DB_CONTRO.QI0: 0 Datensätze, Daten " +
                                     std::to_string(data_size) + " Bytes, Schlüssel " +
                                     std::to_string(key_size) + " Bytes\n"))
      << info.out;
  EXPECT_TRUE(Contains(info.out, "  O  PROJEKTE/Beispiel/DB_UserFelder.QX0: 0 Datensätze"));
  EXPECT_TRUE(Contains(info.out, "  U  STAMMDATEN/DB_Stamm.QE0: 0 Datensätze"));
  EXPECT_TRUE(Contains(info.out, "Summe: 39 Datenbanken, 0 Datensätze"));
  EXPECT_TRUE(Contains(info.out, "Dateigrößen: keine Warnungen"));

  // The master data after the demo has entered its currencies and units.
  ASSERT_EQ(RunKorvanBinary({"demo", "-d", base.string()}).exit_code, 0);
  const ProgramResult filled = RunKorvanBinary({"info", "-d", base.string()});
  EXPECT_EQ(filled.exit_code, 0) << filled.err;
  EXPECT_TRUE(Contains(filled.out, "  U  STAMMDATEN/DB_Stamm.QE0: 12 Datensätze")) << filled.out;
  EXPECT_TRUE(Contains(filled.out, "Summe: 39 Datenbanken, 12 Datensätze"));
}

TEST(InfoCommand, ReportsEachDamagedDatabaseAndGoesOnWithTheOthers) {
  testing::TempDir dir;
  const fs::path base = Install(dir);
  std::ofstream(base / "PROJEKTE/Beispiel/DB_Lv.QA0", std::ios::trunc) << "kaputt";
  std::ofstream(base / "STAMMDATEN/DB_KR.QR0", std::ios::app) << "Restbytes ohne Block";
  fs::remove(base / "BLOCKDATEN/DB_Kat.QB1");

  const ProgramResult info = RunKorvanBinary({"info", "-d", base.string()});
  EXPECT_EQ(info.exit_code, 1);
  EXPECT_TRUE(Contains(info.err, (base / "PROJEKTE/Beispiel/DB_Lv.QA0").string() + ": "))
      << info.err;
  EXPECT_TRUE(Contains(info.err, (base / "STAMMDATEN/DB_KR.QR0").string() + ": block at"))
      << info.err;
  EXPECT_TRUE(
      Contains(info.err, (base / "BLOCKDATEN/DB_Kat.QB0").string() + ": Schlüsseldatei fehlt"))
      << info.err;
  EXPECT_TRUE(Contains(info.out, "  O  PROJEKTE/Beispiel/DB_Lv.QA0: FEHLER: "));
  // The databases after the damaged ones are still listed.
  EXPECT_TRUE(Contains(info.out, "  Y  SYSTEM/SYS/DB_CONTRO.QI0: 0 Datensätze"));
  EXPECT_TRUE(Contains(info.out, "Summe: 39 Datenbanken, 0 Datensätze, "));
  EXPECT_TRUE(Contains(info.out, ", 3 nicht lesbar\n")) << info.out;
}

TEST(InfoCommand, WarnsAboutDatabasesNearTheSizeLimit) {
  testing::TempDir dir;
  const fs::path base = Install(dir);
  // Zeros after the last block end the data (a block length of 0), so the file stays a
  // readable database; the file is sparse and takes no disk space.
  const fs::path big = base / "PROJEKTE/Beispiel/DB_UserFelder.QX0";
  fs::resize_file(big, 1610612736);
  const fs::path bigger = base / "STAMMDATEN/DB_QPR.QT0";
  fs::resize_file(bigger, 1610612737);

  const ProgramResult info = RunKorvanBinary({"info", "-d", base.string()});
  EXPECT_EQ(info.exit_code, 0) << info.err;
  EXPECT_TRUE(Contains(info.out, "Dateigrößen: 2 Warnungen\n")) << info.out;
  EXPECT_TRUE(Contains(info.out, "  Datei \"" + big.string() + "\" ist größer als 1 GB\n"))
      << info.out;
  EXPECT_TRUE(Contains(info.out, "  Datei \"" + bigger.string() + "\" erreicht mit ")) << info.out;
}

TEST(InfoCommand, WithoutAnInstallationSaysHowToMakeOne) {
  testing::TempDir dir;
  const ProgramResult missing = RunKorvanBinary({"info", "-d", dir.File("nichts")});
  EXPECT_EQ(missing.exit_code, 1);
  EXPECT_TRUE(Contains(missing.err, dir.File("nichts"))) << missing.err;

  const ProgramResult empty = RunKorvanBinary({"info", "-d", dir.path().string()});
  EXPECT_EQ(empty.exit_code, 1);
  EXPECT_TRUE(Contains(empty.err, "korvan init -d")) << empty.err;
}

}  // namespace
}  // namespace korvan
