// `korvan demo`: a sample installation with currencies and units, shown like `korvan info`;
// and `korvan db dump --table` / `korvan db keys` on its currency table.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "data/null_values.h"
#include "data/std_db.h"
#include "data/table_key.h"
#include "data/tb_einheit.h"
#include "data/tb_waehrung.h"
#include "storage/result_codes.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ProgramResult;
using testing::RunKorvanBinary;

constexpr int kStammKeyLength = 33;

TEST(Demo, SetsUpASampleInstallationWithCurrenciesAndUnits) {
  testing::TempDir dir;
  const fs::path base = dir.path() / "sample";
  const ProgramResult demo = RunKorvanBinary({"demo", "-d", base.string()});
  ASSERT_EQ(demo.exit_code, 0) << demo.err;
  EXPECT_TRUE(Contains(demo.out, "Datenbanken angelegt (Daten- und Schlüsseldatei) (39)"));
  EXPECT_TRUE(Contains(demo.out, "4 Währungen und 8 Einheiten eingetragen")) << demo.out;
  EXPECT_TRUE(Contains(demo.out, "  U  STAMMDATEN/DB_Stamm.QE0: 12 Datensätze")) << demo.out;
  EXPECT_TRUE(Contains(demo.out, "Dateigrößen: keine Warnungen"));
  EXPECT_FALSE(fs::exists(base / "STAMMDATEN/DB_Stamm.QE2"));  // no lock file left behind

  {  // The records read back through the table layer.
    data::TCollectedMessages messages;
    data::TStdDb db("DB_Stamm", (base / "STAMMDATEN").string(), 'E', kStammKeyLength);
    db.SetMessages(&messages);
    ASSERT_EQ(db.DbOpen(false), storage::kOk);
    data::TTbWaehrung currencies(db);
    ASSERT_TRUE(currencies.GetKey(data::KeyNumber(41)));
    EXPECT_EQ(currencies.Rec().Symbol.Get(), "CHF");
    ASSERT_TRUE(currencies.GetKey(data::KeyNumber(32766)));
    EXPECT_EQ(currencies.Rec().kzBasis, 1);
    data::TTbEinheit units(db);
    ASSERT_TRUE(units.GetKey(data::KeyNumber16(49) + data::KeyNumber16(2)));
    EXPECT_EQ(units.Rec().Einheit.Get(), "m2");
    EXPECT_EQ(units.Rec().Bezeichnung.Get(), "Quadratmeter");
    uint32_t count = 0;
    EXPECT_EQ(units.GetRecCount(&count), storage::kOk);
    EXPECT_EQ(count, 8u);
    EXPECT_TRUE(messages.errors.empty());
  }

  // A second run finds everything in place and enters nothing twice.
  const ProgramResult again = RunKorvanBinary({"demo", "-d", base.string()});
  EXPECT_EQ(again.exit_code, 0) << again.err;
  EXPECT_TRUE(Contains(again.out, "nichts geändert"));
  EXPECT_TRUE(Contains(again.out, "0 Währungen und 0 Einheiten eingetragen"));
  EXPECT_TRUE(Contains(again.out, "  U  STAMMDATEN/DB_Stamm.QE0: 12 Datensätze")) << again.out;
}

TEST(Demo, DumpOfOneTablePrintsItsRecordsFieldByField) {
  testing::TempDir dir;
  const fs::path base = dir.path() / "sample";
  ASSERT_EQ(RunKorvanBinary({"demo", "-d", base.string()}).exit_code, 0);
  const std::string stamm = (base / "STAMMDATEN/DB_Stamm.QE").string();

  const ProgramResult currencies = RunKorvanBinary({"db", "dump", "--table", "W", stamm});
  EXPECT_EQ(currencies.exit_code, 0) << currencies.err;
  EXPECT_TRUE(Contains(currencies.out, "RecTyp: W\tSize: 191\tVersion: 1\t")) << currencies.out;
  EXPECT_TRUE(Contains(currencies.out, "\nSymbol: GBP\n"));
  EXPECT_TRUE(Contains(currencies.out, "\nBez: Schweizer Franken\n"));
  EXPECT_FALSE(Contains(currencies.out, "Symbol: m2"));
  EXPECT_TRUE(Contains(currencies.out, "\n4 Datensätze der Tabelle W (t_Waehrung)\n"));

  const ProgramResult units = RunKorvanBinary({"db", "dump", "--table", "E", stamm});
  EXPECT_EQ(units.exit_code, 0) << units.err;
  EXPECT_TRUE(Contains(units.out, "\nEinheit: psch\n")) << units.out;
  EXPECT_TRUE(Contains(units.out, "\n8 Datensätze der Tabelle E (t_Einheit)\n"));

  const ProgramResult none = RunKorvanBinary({"db", "dump", "--table", "Q", stamm});
  EXPECT_EQ(none.exit_code, 0) << none.err;
  EXPECT_EQ(none.out, "0 Datensätze der Tabelle Q\n");

  EXPECT_EQ(RunKorvanBinary({"db", "dump", "--table", "WE", stamm}).exit_code, 2);
}

TEST(Demo, CurrencyKeysShowTheIdInElevenCharacters) {
  testing::TempDir dir;
  {
    data::TCollectedMessages messages;
    data::TStdDb db("DB_Stamm", dir.path().string(), 'E', kStammKeyLength);
    db.SetMessages(&messages);
    ASSERT_EQ(db.DbCreate(), storage::kOk);
    data::TTbWaehrung currencies(db);
    for (int32_t id : {42, -1}) {
      currencies.InitRecord();
      currencies.Rec().ID = id;
      ASSERT_EQ(currencies.UpDateRec(), storage::kOk) << id;
    }
    ASSERT_EQ(db.DbClose(), storage::kOk);
  }
  const ProgramResult keys = RunKorvanBinary({"db", "keys", (dir.path() / "DB_Stamm.QE").string()});
  EXPECT_EQ(keys.exit_code, 0) << keys.err;
  EXPECT_TRUE(Contains(keys.out, " W100000000042.")) << keys.out;
  EXPECT_TRUE(Contains(keys.out, " W1-0000000001.")) << keys.out;

  const ProgramResult dump =
      RunKorvanBinary({"db", "dump", "--table", "W", (dir.path() / "DB_Stamm.QE").string()});
  EXPECT_TRUE(Contains(dump.out, "\nID: 42\n")) << dump.out;
  EXPECT_TRUE(Contains(dump.out, "\nID: -1\n")) << dump.out;

  // A table whose layout this program does not know shows each record's header.
  const std::string base = (dir.path() / "DB_Stamm.QE").string();
  const ProgramResult shell = RunKorvanBinary({"db", "shell", base}, "insert Q 10 ab\n");
  ASSERT_EQ(shell.exit_code, 0) << shell.err;
  const ProgramResult unknown = RunKorvanBinary({"db", "dump", "--table", "Q", base});
  EXPECT_EQ(unknown.exit_code, 0) << unknown.err;
  EXPECT_TRUE(Contains(unknown.out, "RecLen: 58\tRecTyp: Q\t")) << unknown.out;
  EXPECT_TRUE(Contains(unknown.out, "(58 Bytes, Aufbau unbekannt)\n1 Datensatz der Tabelle Q\n"))
      << unknown.out;
}

}  // namespace
}  // namespace korvan
