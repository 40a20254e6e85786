// `korvan demo`: a sample installation with currencies and units; and `korvan db dump
// --table` / `korvan db keys` on its currency table.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "boq/units/tb_einheit.h"
#include "boq/units/tb_waehrung.h"
#include "data/records/null_values.h"
#include "data/tables/std_db.h"
#include "data/tables/table_key.h"
#include "storage/result_codes.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ExpectKorvan;
using testing::ProgramResult;

constexpr int kStammKeyLength = 33;

TEST(Demo, SetsUpASampleInstallationOnceAndDumpsItsTables) {
  testing::TempDir dir;
  const fs::path base = dir.path() / "sample";
  ExpectKorvan({"demo", "-d", base.string()}, 0,
               {"Gelesene Währungen: \nDEM, BEF, FIM", "3 Währungen und 8 Einheiten eingetragen",
                "  U  STAMMDATEN/DB_Stamm.QE0: 50 Datensätze"});
  EXPECT_FALSE(fs::exists(base / "STAMMDATEN/DB_Stamm.QE2"));  // no lock file left behind
  {
    data::TCollectedMessages messages;
    data::TStdDb db("DB_Stamm", (base / "STAMMDATEN").string(), 'E', kStammKeyLength);
    db.SetMessages(&messages);
    ASSERT_EQ(db.DbOpen(false), storage::kOk);
    boq::TTbWaehrung currencies(db);
    ASSERT_TRUE(currencies.GetKey(data::KeyNumber(41)));
    EXPECT_EQ(currencies.Rec().Symbol.Get(), "CHF");
    boq::TTbEinheit units(db);
    ASSERT_TRUE(units.GetKey(data::KeyNumber16(49) + data::KeyNumber16(2)));
    EXPECT_EQ(units.Rec().Bezeichnung.Get(), "Quadratmeter");
    EXPECT_TRUE(messages.errors.empty());
  }
  // A second run finds everything in place and enters nothing twice.
  ExpectKorvan(
      {"demo", "-d", base.string()}, 0,
      {"0 Währungen und 0 Einheiten eingetragen", "  U  STAMMDATEN/DB_Stamm.QE0: 50 Datensätze"});

  const std::string stamm = (base / "STAMMDATEN/DB_Stamm.QE").string();
  const ProgramResult currencies =
      ExpectKorvan({"db", "dump", "--table", "W", stamm}, 0,
                   {"RecTyp: W\tSize: 191\tVersion: 1\t", "\nBez: Schweizer Franken\n",
                    "\nSymbol: ITL\n", "\n16 Datensätze der Tabelle W (t_Waehrung)\n"});
  EXPECT_FALSE(Contains(currencies.out, "Symbol: m2"));
  ExpectKorvan({"db", "keys", stamm}, 0, {" W100000000041."});  // the id in eleven characters
  EXPECT_EQ(ExpectKorvan({"db", "dump", "--table", "Q", stamm}, 0).out,
            "0 Datensätze der Tabelle Q\n");
  // A table whose layout this program does not know shows each record's header.
  ExpectKorvan({"db", "shell", stamm}, 0, {}, "insert Q 10 ab\n");
  ExpectKorvan(
      {"db", "dump", "--table", "Q", stamm}, 0,
      {"RecLen: 58\tRecTyp: Q\t", "(58 Bytes, Aufbau unbekannt)\n1 Datensatz der Tabelle Q\n"});
}

}  // namespace
}  // namespace korvan
