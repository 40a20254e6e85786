#include <gtest/gtest.h>

#include "data/config/config_test_support.h"
#include "data/config/machine_config.h"
#include "data/config/user_config.h"
#include "testing/files.h"
#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

using korvan::testing::ReadFile;
using korvan::testing::WriteFile;
using testing::ChangeEveryOption;
using testing::Contains;
using testing::TestContext;

TEST(UserConfig, StartsWithDefaultsAndReadsItsFile) {
  korvan::testing::TempDir dir;
  TMachineEnvironment environment;
  environment.ProgrammDirectory = dir.path().string();
  const TMachineConfig machine(TestContext(), environment);
  const TUserConfig fresh = TUserConfig::Open(TestContext(), machine);
  EXPECT_EQ(fresh.SyskonPath(), machine.UserConfigFile().string());

  std::filesystem::create_directories(machine.UserDirectory());
  WriteFile(machine.UserConfigFile().string(),
            "[Directories]\r\nObjektvorgabe=B\xFCrogeb\xE4ude\r\n"
            "[Flags]\r\nNoCalcLocking=1\r\nsaveDeskops=1\r\nShowTab=1\r\nLineBreak=3\r\n"
            "[GUI]\r\nAllCAD=\xC4\r\nNavWidth1=-12\r\nBarFile_2=leiste2.bar\r\n"
            "[ModulOptions]\r\nMain_WPX=640\r\n");
  const TUserConfig user = TUserConfig::Open(TestContext(), machine);
  EXPECT_EQ(user.Objektvorgabe(), "Bürogebäude");
  EXPECT_TRUE(user.NoAufmassSperre());
  EXPECT_TRUE(user.SaveDesktops());
  EXPECT_TRUE(user.ShowCharOptions().ShowTab);
  EXPECT_EQ(user.LineBreak(), 3);
  EXPECT_EQ(user.AllCAD(), "Ä");
  EXPECT_EQ(user.NavWidth1(), -12);
  EXPECT_EQ(user.Main_WPX(), 640);
  EXPECT_EQ(user.BarFile(2), "leiste2.bar");
}

TEST(UserConfig, RoundTripKeepsEveryOption) {
  korvan::testing::TempDir dir;
  const std::string file = dir.File("Q_User.ini");
  WriteFile(file, "# Benutzer anna\n[GUI]\nAllCAD=toolong\nUnbekannt=\xE4\n");
  TUserConfig user(TestContext());
  user.Load(file);
  ASSERT_EQ(user.Warnings().size(), 1u);  // a character field with a whole word
  EXPECT_EQ(user.Warnings()[0].line, 3);
  EXPECT_EQ(user.AllCAD(), "");

  EXPECT_TRUE(ChangeEveryOption(user).empty());
  user.SetBarFile(1, "Leiste ä.bar");
  user.Save();
  const std::string bytes = ReadFile(file);
  EXPECT_EQ(bytes.rfind("# Benutzer anna\n[GUI]\n", 0), 0u);
  EXPECT_TRUE(Contains(bytes, "Unbekannt=\xE4\n"));
  EXPECT_TRUE(Contains(bytes, "BarFile_1=Leiste \xE4.bar\n"));

  TUserConfig loaded(TestContext());
  loaded.Load(file);
  EXPECT_TRUE(loaded.Warnings().empty());
  const auto expected = user.Entries();
  const auto actual = loaded.Entries();
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(actual[i].value, expected[i].value) << expected[i].section << "/" << expected[i].key;
  }
  EXPECT_EQ(loaded.BarFile(1), "Leiste ä.bar");
  loaded.Save();
  EXPECT_EQ(ReadFile(file), bytes);
}

}  // namespace
}  // namespace korvan::data
