#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/installation.h"
#include "app/korvan_main.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;
using korvan::testing::TempDir;

struct Result {
  int exit_code;
  std::string out;
  std::string err;
};

Result Korvan(const std::vector<std::string>& args) {
  std::ostringstream out;
  std::ostringstream err;
  const int exit_code = RunKorvan(args, out, err);
  return {exit_code, out.str(), err.str()};
}

std::string ReadAll(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

using testing::Contains;

TEST(ConfigCommand, ShowsTheDefaultsOfAFreshInstallation) {
  TempDir base;
  const std::string dir = base.path().string();
  ASSERT_EQ(Korvan({"init", "-d", dir}).exit_code, 0);

  const Result shown = Korvan({"config", "show", "-d", dir});
  ASSERT_EQ(shown.exit_code, 0) << shown.err;
  for (const std::string& line : std::vector<std::string>{
           "Strings.OZFormat = 11.22.PPPP (",
           "Structs.OZStepLengthGT = 10,10,10,10,10,10,10,10,10,10 (",
           "Structs.BTStepLengthGT = 10,10,10,10,10,10,10,10,10,10 (",
           "Structs.KatOZStepLengthGT = 10,10,10,10,10,10,10,10,10,10 (",
           "Structs.LktStepLengthGT = 10,10,10,10,10,10,10,10,10,10 (", "Numerics.REBVersion = 3 (",
           "Numerics.EuroFaktor = 1.95583 (", "Numerics.RefDateForContractDate = 20091217 (",
           "Directories.BasisDirectory = " + fs::absolute(base.path()).string() + "/ (",
           "Flags.UseUndoRedo = "}) {
    EXPECT_TRUE(Contains(shown.out, "\n" + line)) << line << "\n" << shown.out;
  }
  EXPECT_TRUE(Contains(shown.out, "# " + LoadInstallation(dir).machine.SysConfigFile().string()));
}

TEST(ConfigCommand, ShowsTheSourceOfEveryValueAndOnlyTheChosenFile) {
  TempDir base;
  const std::string dir = base.path().string();
  const Result empty = Korvan({"config", "show", "--system", "-d", dir});
  ASSERT_EQ(empty.exit_code, 0) << empty.err;
  EXPECT_TRUE(Contains(empty.out, "(Datei fehlt)"));
  EXPECT_TRUE(Contains(empty.out, "\nStrings.OZFormat = 11.22.PPPP (Vorgabe)\n")) << empty.out;
  EXPECT_FALSE(Contains(empty.out, "(Datei)"));
  EXPECT_FALSE(Contains(empty.out, "Directories."));
  EXPECT_FALSE(Contains(empty.out, "Flags.UseUndoRedo"));

  const fs::path sys_file = LoadInstallation(dir).machine.SysConfigFile();
  fs::create_directories(sys_file.parent_path());
  std::ofstream(sys_file) << "[Globals]\nConfigTyp=Sys\n[Numerics]\nEuroFaktor=abc\n"
                             "REBVersion=2\n";
  const Result mixed = Korvan({"config", "show", "--system", "-d", dir});
  ASSERT_EQ(mixed.exit_code, 0) << mixed.err;
  EXPECT_TRUE(Contains(mixed.out, "\nNumerics.REBVersion = 2 (Datei)\n")) << mixed.out;
  EXPECT_TRUE(
      Contains(mixed.out, "\nNumerics.EuroFaktor = 1.95583 (Vorgabe; Wert in Datei ungültig)\n"))
      << mixed.out;
  EXPECT_TRUE(Contains(mixed.out, "\nNumerics.Baukostenindex = 100 (Vorgabe)\n")) << mixed.out;

  const Result machine = Korvan({"config", "show", "--machine", "-d", dir});
  EXPECT_TRUE(Contains(machine.out, "Directories.StlkDirectory = ")) << machine.out;
  EXPECT_FALSE(Contains(machine.out, "Numerics."));
  const Result user = Korvan({"config", "show", "--user", "-d", dir});
  EXPECT_TRUE(Contains(user.out, "\nFlags.UseUndoRedo = ")) << user.out;
  EXPECT_FALSE(Contains(user.out, "Strings.OZFormat"));

  EXPECT_EQ(Korvan({"config", "show", "--user", "--system", "-d", dir}).exit_code, 2);
  EXPECT_EQ(Korvan({"config", "-d", dir}).exit_code, 2);
}

TEST(ConfigCommand, SetStoresAValidValueInTheFileThatHoldsTheKey) {
  TempDir base;
  const std::string dir = base.path().string();
  const Result set = Korvan({"config", "set", "-d", dir, "Strings.OZFormat", "1.22.PPPP"});
  ASSERT_EQ(set.exit_code, 0) << set.err;
  EXPECT_TRUE(Contains(set.out, "Strings.OZFormat = 1.22.PPPP")) << set.out;
  const fs::path sys_file = LoadInstallation(dir).machine.SysConfigFile();
  EXPECT_TRUE(Contains(ReadAll(sys_file), "OZFormat=1.22.PPPP")) << ReadAll(sys_file);
  EXPECT_TRUE(Contains(ReadAll(sys_file), "ConfigTyp=Sys"));
  EXPECT_EQ(LoadInstallation(dir).system.OZFormat(), "1.22.PPPP");

  // Keys are found in any case; a comma is a decimal separator too.
  ASSERT_EQ(Korvan({"config", "set", "-d", dir, "numerics.eurofaktor", "2,5"}).exit_code, 0);
  EXPECT_DOUBLE_EQ(LoadInstallation(dir).system.EuroFaktor(), 2.5);
  const Result shown = Korvan({"config", "show", "--system", "-d", dir});
  EXPECT_TRUE(Contains(shown.out, "\nNumerics.EuroFaktor = 2.5 (Datei)\n")) << shown.out;

  // A user option goes to the user's file, a directory to the machine file.
  ASSERT_EQ(Korvan({"config", "set", "-d", dir, "Flags.UseUndoRedo", "0"}).exit_code, 0);
  EXPECT_FALSE(LoadInstallation(dir).user.UseUndoRedo());
  ASSERT_EQ(Korvan({"config", "set", "--machine", "-d", dir, "Directories.LayoutDirectory",
                    "/srv/layout"})
                .exit_code,
            0);
  EXPECT_EQ(LoadInstallation(dir).machine.LayoutDirectory(), "/srv/layout/");
}

TEST(ConfigCommand, SetRefusesInvalidValuesAndUnknownKeys) {
  TempDir base;
  const std::string dir = base.path().string();
  ASSERT_EQ(Korvan({"config", "set", "-d", dir, "Numerics.REBVersion", "2"}).exit_code, 0);
  const fs::path sys_file = LoadInstallation(dir).machine.SysConfigFile();
  const std::string before = ReadAll(sys_file);

  struct Case {
    std::string key, value, expected;
  };
  for (const Case& c : std::vector<Case>{
           {"Numerics.EuroFaktor", "abc", "erwartet: eine Zahl"},
           {"Numerics.REBVersion", "x3", "erwartet: eine ganze Zahl von -32768 bis 32767"},
           {"Numerics.LandesWaeGenauigkeit", "300", "erwartet: eine ganze Zahl von 0 bis 255"},
           {"Flags.OZAutoNum", "vielleicht", "erwartet: 0 oder 1"},
           {"Structs.OZStepLengthGT", "5", "erwartet: zehn ganze Zahlen, durch Komma getrennt"},
           {"Structs.OZAutoNumGT", "1,1", "erwartet: zehn Wahrheitswerte"},
           {"Numerics.RefDateForContractDate", "20091399", "erwartet: ein Datum JJJJMMTT oder 0"},
       }) {
    const Result refused = Korvan({"config", "set", "-d", dir, c.key, c.value});
    EXPECT_EQ(refused.exit_code, 2) << c.key;
    EXPECT_TRUE(Contains(refused.err, "\"" + c.key + "\"")) << refused.err;
    EXPECT_TRUE(Contains(refused.err, c.expected)) << refused.err;
  }
  const Result unknown = Korvan({"config", "set", "-d", dir, "Numerics.Gibtsnicht", "1"});
  EXPECT_EQ(unknown.exit_code, 2);
  EXPECT_TRUE(Contains(unknown.err, "unbekannter Schlüssel \"Numerics.Gibtsnicht\""))
      << unknown.err;
  // The option narrows the search to one file.
  EXPECT_EQ(Korvan({"config", "set", "--user", "-d", dir, "Strings.OZFormat", "1.PPPP"}).exit_code,
            2);
  const Result malformed = Korvan({"config", "set", "-d", dir, "OZFormat", "1.PPPP"});
  EXPECT_EQ(malformed.exit_code, 2);
  EXPECT_TRUE(Contains(malformed.err, "<Abschnitt>.<Schlüssel>")) << malformed.err;
  EXPECT_EQ(Korvan({"config", "set", "-d", dir, "Strings.OZFormat"}).exit_code, 2);

  EXPECT_EQ(ReadAll(sys_file), before);
}

}  // namespace
}  // namespace korvan::app
