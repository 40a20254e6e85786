// `korvan formula eval|sheet|list`: formulas and measurement sheets on the command line.
#include <gtest/gtest.h>

#include <string>

#include "testing/files.h"
#include "testing/json_value.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

using testing::ExpectKorvan;
using testing::ExpectKorvanOn;
using testing::ProgramResult;
using testing::WriteFile;

TEST(FormulaCommand, EvalPrintsEachValueOrItsErrorWithADecimalComma) {
  EXPECT_EQ(ExpectKorvan({"formula", "eval", "2*3+4="}, 0).out, "10\n");
  const ProgramResult mixed =
      ExpectKorvan({"formula", "eval", "--gon", "3,50*2,10=", "10\\0", "SIN(100)"}, 1);
  EXPECT_EQ(mixed.out, "7,35\nFehler 9121: Ganzzahlige Division durch 0\n1\n");
  const ProgramResult json = ExpectKorvan(
      {"formula", "eval", "--json", "--reb", "23.003", "--var", "Breite=2,5", "--", "-(Breite*2)"},
      0);
  EXPECT_EQ(testing::ParseJson(json.out)["results"].Items().at(0)["value"].Number(), -5);
}

TEST(FormulaCommand, SheetSumsTheLinesOfTheInstallationsCatalogueAndNamesBadLines) {
  testing::TempDir dir;
  ExpectKorvan({"init", "-d", dir.File("data")}, 0);
  ExpectKorvanOn(dir.File("data"), {"formula", "list"}, 0, {"4  Rechteck/Quader  <1>*<2>*<3>"});
  WriteFile(dir.File("blatt.txt"),
            "# Wand\n4 3,5 2 0,5\n23 0 1 1\n23 10 4\n23 25 1 1 1 1 =\nfaktor=2 vz=- 0 3*2\n");
  ExpectKorvanOn(dir.File("data"), {"formula", "sheet", dir.File("blatt.txt")}, 0,
                 {"Zeile 1 (Formel 4): 3,5\n", "Zeile 4 (Formel 23): 90\n", "Summe: 81,5\n"});
  // A line whose expression fails is named in the measurement protocol.
  WriteFile(dir.File("fehler.txt"), "0 2*Breite =\n0 1,2345\n");
  ExpectKorvanOn(dir.File("data"),
                 {"formula", "sheet", "--runden", "--protokoll", dir.File("protokoll.txt"),
                  dir.File("fehler.txt")},
                 1, {"Zeile 2 (Formel 0): 1,235\n"});
  EXPECT_EQ(testing::ReadFile(dir.File("protokoll.txt")),
            "Eine Variable hat keinen Wert in Zeile 1: 2*Breite=\n");
  WriteFile(dir.File("kaputt.txt"), "4 3,5 2\n\nkz=HH 4 1\n");
  const ProgramResult bad =
      ExpectKorvanOn(dir.File("data"), {"formula", "sheet", dir.File("kaputt.txt")}, 1);
  EXPECT_TRUE(testing::Contains(bad.err, "kaputt.txt, Zeile 3: kz= verlangt ein Zeichen"))
      << bad.err;
  EXPECT_TRUE(bad.out.empty()) << bad.out;
}

TEST(FormulaCommand, TheCatalogueIsAListWhoseFormulasCanBeCorrected) {
  testing::TempDir dir;
  const std::string data = dir.File("data");
  ExpectKorvan({"init", "-d", data}, 0);
  ExpectKorvanOn(data, {"list", "rebformel"}, 0, {"Kegelstumpfsektor"});
  // Row 5 is formula 4 (after 0 to 3).
  ExpectKorvanOn(data, {"edit", "rebformel", "5", "Formel=<1>*<2>"}, 0, {"Zeile 5 gespeichert"});
  WriteFile(dir.File("blatt.txt"), "4 3 2 5\n");
  ExpectKorvanOn(data, {"formula", "sheet", dir.File("blatt.txt")}, 0, {"Summe: 6\n"});
  ExpectKorvanOn(data, {"edit", "rebformel", "5", "FormelNr=4a"}, 2, {"\"FormelNr\""});
}

}  // namespace
}  // namespace korvan
