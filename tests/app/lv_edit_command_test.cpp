// `korvan lv add/set/move/remove/renumber/structure/show` on a sample installation: an LV
// built from the command line, numbered by its mask, each change one undo step.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "testing/files.h"
#include "testing/json_value.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

using testing::Contains;
using testing::ProgramResult;

class LvEditCommands : public ::testing::Test {
 protected:
  void SetUp() override {
    Korvan({"demo", "--setup-only"});
    Korvan({"lv", "new", "Rohbau", "--mask", "11.22.PPPP"});
  }
  ProgramResult Korvan(std::vector<std::string> args, int exit_code = 0,
                       const std::vector<std::string>& parts = {}) {
    return testing::ExpectKorvanOn(base_, std::move(args), exit_code, parts);
  }
  std::string Show() { return Korvan({"lv", "show", "Rohbau", "--json"}).out; }

  korvan::testing::TempDir dir_;
  std::filesystem::path base_ = dir_.path() / "sample";
};

TEST_F(LvEditCommands, BuildNumberRemoveRenumberAndUndo) {
  Korvan({"lv", "add", "Rohbau", "B", "--short", "Rohbau"}, 0, {"Eintrag 01 (B) angefügt"});
  for (int group = 1; group <= 4; ++group) {
    Korvan(
        {"lv", "add", "Rohbau", "B", "--under", "01", "--short", "Titel " + std::to_string(group)});
    for (int item = 1; item <= 5; ++item) {
      Korvan({"lv", "add", "Rohbau", "P", "--under", "1." + std::to_string(group), "--short",
              "Position", "--qty", "2", "--unit", "m²", "--up", "10,5"});
    }
  }
  const std::string built = Show();
  const testing::JsonValue shown = testing::ParseJson(built);
  EXPECT_EQ(shown["lv"]["mask"].String(), "11.22.PPPP");
  EXPECT_TRUE(shown["lv"]["currency"].IsNull());
  EXPECT_EQ(shown["lv"]["total"].Number(), 420);
  const testing::JsonValue::Array& entries = shown["entries"].Items();
  ASSERT_EQ(entries.size(), 25u) << built;
  const testing::JsonValue& item = entries[4];  // 01, 01.01, three items of 01.01
  EXPECT_EQ(item["oz"].String(), "01.01.0003");
  EXPECT_EQ(item["kind"].String(), "P");
  EXPECT_EQ(item["level"].Number(), 3);
  EXPECT_EQ(item["short_text"].String(), "Position");
  EXPECT_EQ(item["qty"].Number(), 2);
  EXPECT_EQ(item["unit"].String(), "m²");
  EXPECT_EQ(item["unit_price"].Number(), 10.5);
  EXPECT_EQ(item["total"].Number(), 21);
  EXPECT_TRUE(entries[1]["unit"].IsNull());  // a group
  Korvan({"lv", "show", "Rohbau"}, 0,
         {"    01.04.0005  P  Position  Menge 2,000 m²  EP 10,50  GP 21,00"});
  // Units of the unit list write quantities with their decimals; "m²" is not in it.
  Korvan({"lv", "set", "Rohbau", "01.04.0005", "unit=St", "qty=1234"});
  Korvan({"lv", "set", "Rohbau", "01.04.0004", "unit=h", "qty=1.5"});
  Korvan({"lv", "show", "Rohbau"}, 0,
         {"01.04.0005  P  Position  Menge 1.234 St", "01.04.0004  P  Position  Menge 1,50 h"});
  Korvan({"undo"});
  Korvan({"undo"});

  Korvan({"lv", "remove", "Rohbau", "01.02.0002"}, 0, {"entfernt"});
  const std::string removed = Show();
  EXPECT_EQ(testing::ParseJson(removed)["entries"].Items().size(), 24u);
  EXPECT_TRUE(Contains(removed, "\"01.02.0004\""));
  EXPECT_FALSE(Contains(removed, "\"01.02.0005\""));
  Korvan({"lv", "renumber", "Rohbau", "--json"}, 0, {"\"renumbered\": 0"});

  Korvan({"lv", "set", "Rohbau", "01.02.0004", "oz=1.2.90"}, 0, {"01.02.0090 geändert"});
  Korvan({"lv", "renumber", "Rohbau"}, 0, {"1 von 24 Einträgen neu nummeriert"});
  Korvan({"lv", "move", "Rohbau", "01.01", "--after", "01.04"}, 0, {"jetzt 01.04"});
  Korvan({"lv", "structure", "Rohbau", "--mask", "1.22.PPP"}, 0, {"Maske 1.22.PPP"});
  EXPECT_TRUE(Contains(Show(), "\"1.04.005\""));
  Korvan({"check"}, 0, {"0 Problem(e)"});

  // The renumbering that changed nothing left no step.
  for (const char* step : {"Positionsnumerierung", "Eintrag verschieben", "Positionsnumerierung",
                           "Eintrag ändern", "Eintrag entfernen"}) {
    Korvan({"undo"}, 0, {step});
  }
  EXPECT_EQ(Show(), built);
}

TEST_F(LvEditCommands, BaseOfASurchargeItemIsNotRemoved) {
  Korvan({"lv", "add", "Rohbau", "B"});
  Korvan({"lv", "add", "Rohbau", "B", "--under", "01"});
  for (int item = 0; item < 2; ++item) Korvan({"lv", "add", "Rohbau", "P", "--under", "01.01"});
  Korvan({"lv", "set", "Rohbau", "01.01.0002", "ref=01.01.0002"}, 2, {"auf sich selbst"});
  Korvan({"lv", "set", "Rohbau", "01.01.0002", "ref=1.1.1"});
  Korvan({"lv", "remove", "Rohbau", "01.01.0001"}, 1,
         {"ist Zuschlagsbasis der Zuschlagsposition \"01.01.0002\""});
  Korvan({"lv", "remove", "Rohbau", "01.01"});  // the surcharge goes with its base
  Korvan({"undo"});
  Korvan({"check"}, 0, {"0 Problem(e)"});
  Korvan({"lv", "set", "Rohbau", "01.01.0002", "ref="});
  Korvan({"lv", "remove", "Rohbau", "01.01.0001"});
}

TEST_F(LvEditCommands, WrongCallsChangeNothing) {
  Korvan({"lv", "add", "Rohbau", "B"});
  const std::string before = Show();
  Korvan({"lv", "add", "Rohbau", "X"}, 2, {"Unbekannte Art"});
  Korvan({"lv", "add", "Rohbau", "P", "--under", "07"}, 1, {"keinen Eintrag mit der OZ \"07\""});
  Korvan({"lv", "add", "Rohbau", "P", "--unit", "Stunden"}, 2, {"zu lang (höchstens 6 Zeichen)"});
  Korvan({"lv", "add", "Rohbau", "H", "--unit", "m"}, 2, {"Eine Einheit haben nur Positionen"});
  Korvan({"lv", "add", "Rohbau", "H", "--qty", "3"}, 2, {"nur Positionen"});
  // Every numeric value is read alike and refused alike.
  for (const auto& [args, refusal] : std::vector<std::pair<std::vector<std::string>, std::string>>{
           {{"add", "Rohbau", "P", "--qty", "2,x"}, "\"2,x\" ist keine Zahl (--qty)."},
           {{"add", "Rohbau", "P", "--up", "inf"}, "\"inf\" ist keine Zahl (--up)."},
           {{"set", "Rohbau", "01", "qty=2,x"}, "\"2,x\" ist keine Zahl (Feld qty)."},
           {{"qty", "Rohbau", "01", "add", "--qty", ""}, "\"\" ist keine Zahl (--qty)."}}) {
    std::vector<std::string> call = {"lv"};
    call.insert(call.end(), args.begin(), args.end());
    Korvan(call, 2, {refusal});
  }
  Korvan({"lv", "set", "Rohbau", "01", "menge=3"}, 2, {"Unbekanntes Feld"});
  Korvan({"lv", "move", "Rohbau", "01", "--after", "01"}, 2, {"hinter sich selbst"});
  Korvan({"lv", "structure", "Rohbau", "--mask", "PPPPPPPPPPPPPPP"}, 2, {"mehr als 14 Stellen"});
  Korvan({"lv", "add", "Rohbau", "B", "--under", "01"});
  Korvan({"lv", "structure", "Rohbau", "--mask", "PPPP"}, 1, {"0 Gruppenstufe(n)"});
  Korvan({"undo"});
  EXPECT_EQ(Show(), before);
}

// The trace files below the installation, by name, with their contents.
std::map<std::string, std::string> TraceFiles(const std::filesystem::path& base) {
  std::map<std::string, std::string> files;
  for (const auto& file : std::filesystem::recursive_directory_iterator(base)) {
    if (file.path().parent_path().filename() != "TRACE") continue;
    files[file.path().filename().string()] = testing::ReadFile(file.path());
  }
  return files;
}

TEST_F(LvEditCommands, TextTraceWritesLongTextsOnlyWhenSwitchedOn) {
  const std::string rtf = "{\\rtf1\\ansi\\ansicpg1252\\deff0 Beton C25/30\\par}";
  testing::WriteFile(dir_.path() / "text.rtf", rtf);
  const std::string long_file = "long-file=" + (dir_.path() / "text.rtf").string();
  Korvan({"lv", "add", "Rohbau", "B"});
  Korvan({"lv", "add", "Rohbau", "B", "--under", "01"});
  Korvan({"lv", "add", "Rohbau", "P", "--under", "01.01", "--short", "Beton"});
  Korvan({"lv", "set", "Rohbau", "01.01.0001", long_file});
  Korvan({"lv", "show", "Rohbau", "--long"});
  EXPECT_TRUE(TraceFiles(base_).empty());

  Korvan({"config", "set", "--system", "Flags.TraceApplication", "1"});
  testing::WriteFile(dir_.path() / "text.rtf", rtf + " ");
  Korvan({"lv", "set", "Rohbau", "01.01.0001", long_file});
  Korvan({"lv", "show", "Rohbau", "--long"});
  std::string names;
  for (const auto& [name, text] : TraceFiles(base_)) {
    names += name + " ";
    EXPECT_TRUE(testing::Contains(text, "Beton C25/30")) << name;
  }
  for (const char* part : {"AfterReadLangtext(", ")-L.rtf", "AfterUpdateLangtext(", "Load_Ltx_"}) {
    EXPECT_TRUE(testing::Contains(names, part)) << part << " in " << names;
  }
}

}  // namespace
}  // namespace korvan::app
