// `korvan lv new`, `lv list`, `lv delete` and their undo on a sample installation, with
// the maintenance commands over the LV database.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ProgramResult;

class LvCommands : public ::testing::Test {
 protected:
  void SetUp() override { Korvan({"demo", "--setup-only"}); }
  ProgramResult Korvan(std::vector<std::string> args, int exit_code = 0,
                       const std::vector<std::string>& parts = {}) {
    return testing::ExpectKorvanOn(base_, std::move(args), exit_code, parts);
  }
  // The LV headers field by field, without the time of each record's last change.
  std::string DumpHeaders() {
    return testing::WithoutWriteTimes(
        testing::ExpectKorvan({"db", "dump", "--table", "K", lv_db_.string()}, 0).out);
  }

  korvan::testing::TempDir dir_;
  fs::path base_ = dir_.path() / "sample";
  fs::path lv_db_ = base_ / "PROJEKTE/Beispiel/DB_Lv.QA";
};

TEST_F(LvCommands, NewListDeleteAndUndoBringTheLvBack) {
  Korvan({"lv", "new", "Rohbau", "--mask", "11.22.PPPP"}, 0, {"LV 1 \"Rohbau\"", "Beispiel"});
  EXPECT_EQ(Korvan({"lv", "new", "Außenanlagen", "--json"}).out,
            "{\"id\": 2, \"name\": \"Außenanlagen\", \"project\": \"Beispiel\"}\n");
  EXPECT_EQ(Korvan({"lv", "list", "--json"}).out,
            "{\"project\": \"Beispiel\", \"currency\": \"EUR\", \"lvs\": ["
            "{\"id\": 1, \"name\": \"Rohbau\", \"status\": \"N\", \"status_text\": \"neu\", "
            "\"entries\": 0, \"total\": 0}, "
            "{\"id\": 2, \"name\": \"Außenanlagen\", \"status\": \"N\", \"status_text\": \"neu\", "
            "\"entries\": 0, \"total\": 0}]}\n");
  Korvan({"lv", "list"}, 0, {"Rohbau", "Außenanlagen", "N (neu)", "0,00"});
  const std::string before = DumpHeaders();
  EXPECT_TRUE(Contains(before, "PosMaske: 11.22.PPPP")) << before;

  Korvan({"lv", "delete", "Rohbau"}, 0, {"LV 1 \"Rohbau\"", "gelöscht", "korvan undo"});
  EXPECT_FALSE(Contains(Korvan({"lv", "list"}).out, "Rohbau"));
  Korvan({"check"}, 0, {"0 Problem(e)"});
  Korvan({"undo", "--list"}, 0, {"LV \"Rohbau\" löschen", "LV \"Außenanlagen\" anlegen"});

  Korvan({"undo"}, 0, {"LV \"Rohbau\" löschen"});
  EXPECT_EQ(DumpHeaders(), before);
  Korvan({"redo"});
  EXPECT_FALSE(Contains(Korvan({"lv", "list"}).out, "Rohbau"));
  Korvan({"undo"});
  Korvan({"lv", "delete", "2", "--json"}, 0, {"\"deleted\": true"});
  Korvan({"rebuild"}, 0, {"DB_Lv.QA0: neu aufgebaut, 2 Datensätze"});
  Korvan({"check"}, 0, {"0 Problem(e)"});
  EXPECT_EQ(Korvan({"lv", "list", "--json"}).out,
            "{\"project\": \"Beispiel\", \"currency\": \"EUR\", \"lvs\": [{\"id\": 1, "
            "\"name\": \"Rohbau\", \"status\": "
            "\"N\", \"status_text\": \"neu\", \"entries\": 0, \"total\": 0}]}\n");
}

// The defaults themselves are the LV table's; here each kind of field as the dump shows it.
TEST_F(LvCommands, ANewHeaderShowsItsDefaultsInTheDump) {
  Korvan({"lv", "new", "Rohbau"});
  const std::string dump = DumpHeaders();
  for (const char* field :
       {"FId: 1\n", "IdCad: 2147483647\n", "DBState: lvOK\n", "Ust: -1\n", "Status: N\n",
        "Autocalc: True\n", "GwlEinheit: Months\n", "LVWaehrung: wtLand\n",
        "Druckoptionen.DruckeLV: True\n", "Summe: 0 [-1]\n", "Name: Rohbau\n",
        "CashDiscount.[1].CashDiscDays.Kind: 3\n"}) {
    EXPECT_TRUE(Contains(dump, field)) << field << "\n" << dump;
  }
}

TEST_F(LvCommands, WrongNamesAndUnknownLvsAreRefusedWithoutChange) {
  Korvan({"lv", "new", "Rohbau"});
  const std::string before = DumpHeaders();
  Korvan({"lv", "new", "Rohbau"}, 1, {"es gibt schon ein LV \"Rohbau\" (Nummer 1)"});
  Korvan({"lv", "new", "4711"}, 2, {"nur aus Ziffern"});
  Korvan({"lv", "new", "Ein viel zu langer LV-Name"}, 2, {"zu lang", "höchstens 20"});
  Korvan({"lv", "new", "Kosten €", "--mask", "123456789012345678901"}, 2, {"OZ-Maske"});
  Korvan({"lv", "delete", "Ausbau"}, 1, {"kein LV mit der Nummer oder dem Namen \"Ausbau\""});
  Korvan({"lv", "delete", "7"}, 1, {"Projekt \"Beispiel\""});
  Korvan({"lv", "list", "--project", "Nirgends"}, 1, {"Nirgends", "keine LV-Datenbank"});
  Korvan({"lv", "list", "--project", "../x"}, 2, {"kein Projektname"});
  Korvan({"lv"}, 2);
  EXPECT_EQ(DumpHeaders(), before);
}

}  // namespace
}  // namespace korvan::app
