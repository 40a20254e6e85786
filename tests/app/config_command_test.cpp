#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/program/installation.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ReadFile;

TEST(ConfigCommand, ShowsEveryValueWithItsSourceAndSetsValidValuesOnly) {
  korvan::testing::TempDir base;
  const std::string dir = base.path().string();
  const testing::ProgramResult empty =
      testing::RunKorvanBinary({"config", "show", "--system", "-d", dir});
  ASSERT_EQ(empty.exit_code, 0) << empty.err;
  EXPECT_TRUE(Contains(empty.out, "(Datei fehlt)"));
  EXPECT_TRUE(Contains(empty.out, "\nStrings.OZFormat = 11.22.PPPP (Vorgabe)\n")) << empty.out;
  EXPECT_FALSE(Contains(empty.out, "(Datei)"));
  EXPECT_FALSE(Contains(empty.out, "Directories."));

  const fs::path sys_file = LoadInstallation(dir).machine.SysConfigFile();
  fs::create_directories(sys_file.parent_path());
  std::ofstream(sys_file) << "[Globals]\nConfigTyp=Sys\n[Numerics]\nEuroFaktor=abc\nREBVersion=2\n";
  const testing::ProgramResult mixed =
      testing::RunKorvanBinary({"config", "show", "--system", "-d", dir});
  EXPECT_TRUE(Contains(mixed.out, "\nNumerics.REBVersion = 2 (Datei)\n")) << mixed.out;
  EXPECT_TRUE(
      Contains(mixed.out, "\nNumerics.EuroFaktor = 1.95583 (Vorgabe; Wert in Datei ungültig)\n"))
      << mixed.out;

  const testing::ProgramResult machine =
      testing::RunKorvanBinary({"config", "show", "--machine", "-d", dir});
  EXPECT_TRUE(Contains(machine.out, "Directories.StlkDirectory = ")) << machine.out;
  EXPECT_FALSE(Contains(machine.out, "Numerics."));
  const testing::ProgramResult user =
      testing::RunKorvanBinary({"config", "show", "--user", "-d", dir});
  EXPECT_TRUE(Contains(user.out, "\nFlags.UseUndoRedo = ")) << user.out;
  EXPECT_FALSE(Contains(user.out, "Strings.OZFormat"));
  const testing::ProgramResult all = testing::RunKorvanBinary({"config", "show", "-d", dir});
  EXPECT_TRUE(Contains(all.out, "# " + sys_file.string())) << all.out;
  EXPECT_TRUE(Contains(
      all.out, "Directories.BasisDirectory = " + fs::absolute(base.path()).string() + "/ ("))
      << all.out;

  // Set stores a valid value in the file that holds the key.
  const testing::ProgramResult set =
      testing::RunKorvanBinary({"config", "set", "-d", dir, "Strings.OZFormat", "1.22.PPPP"});
  ASSERT_EQ(set.exit_code, 0) << set.err;
  EXPECT_TRUE(Contains(set.out, "Strings.OZFormat = 1.22.PPPP")) << set.out;
  EXPECT_TRUE(Contains(ReadFile(sys_file), "ConfigTyp=Sys")) << ReadFile(sys_file);
  EXPECT_EQ(LoadInstallation(dir).system.OZFormat(), "1.22.PPPP");

  // Keys are found in any case; a comma is a decimal separator too.
  ASSERT_EQ(testing::RunKorvanBinary({"config", "set", "-d", dir, "numerics.eurofaktor", "2,5"})
                .exit_code,
            0);
  EXPECT_DOUBLE_EQ(LoadInstallation(dir).system.EuroFaktor(), 2.5);

  // A user option goes to the user's file, a directory to the machine file.
  ASSERT_EQ(
      testing::RunKorvanBinary({"config", "set", "-d", dir, "Flags.UseUndoRedo", "0"}).exit_code,
      0);
  EXPECT_FALSE(LoadInstallation(dir).user.UseUndoRedo());
  ASSERT_EQ(testing::RunKorvanBinary({"config", "set", "--machine", "-d", dir,
                                      "Directories.LayoutDirectory", "/srv/layout"})
                .exit_code,
            0);
  EXPECT_EQ(LoadInstallation(dir).machine.LayoutDirectory(), "/srv/layout/");

  // Invalid values are refused with what was expected, and the file stays as it is.
  const std::string before = ReadFile(sys_file);
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
    const testing::ProgramResult refused =
        testing::RunKorvanBinary({"config", "set", "-d", dir, c.key, c.value});
    EXPECT_EQ(refused.exit_code, 2) << c.key;
    EXPECT_TRUE(Contains(refused.err, "\"" + c.key + "\"")) << refused.err;
    EXPECT_TRUE(Contains(refused.err, c.expected)) << refused.err;
  }
  EXPECT_EQ(ReadFile(sys_file), before);
}

}  // namespace
}  // namespace korvan::app
