// `korvan lv qty` and `korvan var` on a sample installation: an item's quantity follows its
// partial quantities, each change one undo step.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "testing/json_value.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

using testing::ProgramResult;

class LvQtyCommands : public ::testing::Test {
 protected:
  void SetUp() override {
    Korvan({"demo", "--setup-only"});
    Korvan({"lv", "new", "Rohbau", "--mask", "11.PPPP"});
    Korvan({"lv", "add", "Rohbau", "B", "--short", "Erdarbeiten"});
    Korvan({"lv", "add", "Rohbau", "P", "--under", "01", "--short", "Aushub", "--unit", "m3"});
  }
  ProgramResult Korvan(std::vector<std::string> args, int exit_code = 0,
                       const std::vector<std::string>& parts = {}) {
    return testing::ExpectKorvanOn(base_, std::move(args), exit_code, parts);
  }
  testing::JsonValue Item() {
    return testing::ParseJson(Korvan({"lv", "show", "Rohbau", "--json"}).out)["entries"].Items()[1];
  }

  korvan::testing::TempDir dir_;
  std::filesystem::path base_ = dir_.path() / "sample";
};

TEST_F(LvQtyCommands, ThreePartialQuantitiesGiveTheQuantityAndUndoRestoresBoth) {
  Korvan({"lv", "qty", "Rohbau", "01.0001", "add", "--qty", "10"}, 0, {"Teilmenge 1 angefügt"});
  Korvan({"lv", "qty", "Rohbau", "01.0001", "add", "--qty", "15,5", "--source", "Achse B"});
  Korvan({"lv", "qty", "Rohbau", "01.0001", "add", "--qty", "4.5"}, 0,
         {"Menge der Position jetzt 30,000"});
  testing::JsonValue item = Item();
  EXPECT_EQ(item["qty"].Number(), 30);
  ASSERT_EQ(item["partial_qty"].Items().size(), 3u);
  EXPECT_EQ(item["partial_qty"].Items()[1]["nr"].Number(), 2);
  EXPECT_EQ(item["partial_qty"].Items()[1]["qty"].Number(), 15.5);
  EXPECT_EQ(item["partial_qty"].Items()[1]["source"].String(), "Achse B");
  EXPECT_TRUE(item["partial_qty"].Items()[0]["source"].IsNull());

  Korvan({"lv", "qty", "Rohbau", "01.0001", "set", "2", "--qty", "5.5"}, 0,
         {"Menge der Position jetzt 20,000"});
  EXPECT_EQ(Item()["qty"].Number(), 20);
  Korvan({"undo"});
  item = Item();
  EXPECT_EQ(item["qty"].Number(), 30);
  EXPECT_EQ(item["partial_qty"].Items()[1]["qty"].Number(), 15.5);

  Korvan({"lv", "qty", "Rohbau", "01.0001", "remove", "1"});
  Korvan({"lv", "qty", "Rohbau", "01.0001", "list"}, 0,
         {"Position 01.0001: Menge 20,000 m3, 2 Teilmengen", "  2  15,500  Achse B"});
  Korvan({"check"}, 0, {"0 Problem(e)"});
}

TEST_F(LvQtyCommands, RefusalsSayWhy) {
  Korvan({"lv", "qty", "Rohbau", "01", "add", "--qty", "1"}, 2, {"nicht die Art B"});
  Korvan({"lv", "qty", "Rohbau", "01.0001", "add"}, 2, {"braucht --qty"});
  Korvan({"lv", "qty", "Rohbau", "01.0001", "set", "7", "--qty", "1"}, 1, {"keine Teilmenge 7"});
  Korvan({"lv", "qty", "Rohbau", "01.0009", "list"}, 1, {"keinen Eintrag mit der OZ"});
  Korvan({"var", "set", "Rohbau", "01.0001", "1x=2"}, 2, {"kein Variablenname"});
  Korvan({"var", "set", "Rohbau", "01.0001", "x=zwei"}, 2, {"keine Zahl"});
}

TEST_F(LvQtyCommands, VariablesAreSetOncePerNameAndListed) {
  Korvan({"var", "set", "Rohbau", "01.0001", "Breite=2,5", "--unit", "m"}, 0,
         {"Variable Breite = 2,5 m an Position 01.0001 gesetzt"});
  Korvan({"var", "set", "Rohbau", "01.0001", "Breite=3"});
  Korvan({"var", "set", "Rohbau", "01.0001", "Anteil=20", "--unit", "PROZENT"});
  const testing::JsonValue listed =
      testing::ParseJson(Korvan({"var", "list", "Rohbau", "--json"}).out);
  const testing::JsonValue::Array& variables = listed["variables"].Items();
  ASSERT_EQ(variables.size(), 2u);
  EXPECT_EQ(variables[0]["name"].String(), "Breite");
  EXPECT_EQ(variables[0]["value"].Number(), 3);
  EXPECT_EQ(variables[0]["unit"].String(), "m");
  EXPECT_EQ(variables[1]["unit"].String(), "%");
  EXPECT_TRUE(variables[1]["percent"].Bool());
  Korvan({"lv", "remove", "Rohbau", "01.0001"});
  Korvan({"var", "list", "Rohbau", "--json"}, 0, {"\"variables\": []"});
  Korvan({"check"}, 0, {"0 Problem(e)"});
}

}  // namespace
}  // namespace korvan::app
