#include <gtest/gtest.h>

#include <filesystem>

#include "data/config/config_test_support.h"
#include "data/config/machine_config.h"
#include "testing/files.h"
#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

using korvan::testing::ReadFile;
using korvan::testing::WriteFile;
using testing::ChangeEveryOption;
using testing::Contains;
using testing::TestContext;

TMachineEnvironment EnvironmentAt(const std::string& program_directory) {
  TMachineEnvironment environment;
  environment.ProgrammDirectory = program_directory;
  return environment;
}

TEST(MachineConfig, DerivesEveryDirectoryFromTheProgramDirectory) {
  korvan::testing::TempDir dir;
  const std::string base = dir.path().string() + "/";
  const TMachineConfig machine(TestContext(), EnvironmentAt(dir.path().string()));
  // In derivation order, relative to the program directory; "-" stays empty (the folders
  // below the project root are missing).
  std::string layout;
  const auto directories = machine.Directories();
  for (const auto& entry : directories) {
    const bool below = entry.path.rfind(base, 0) == 0;
    layout += (entry.path.empty() ? "-"
               : below            ? entry.path.substr(base.size())
                                  : entry.path) +
              " ";
  }
  EXPECT_EQ(layout,
            "  SYSTEM/ SYSTEM/MACHINE/ SYSTEM/MACHINE/ws01/ SYSTEM/USER/ SYSTEM/USER/anna/ "
            "SYSTEM/USER/anna/TEMP/ SYSTEM/SYS/ SYSTEM/SYS/DICTIONARY/ SYSTEM/SYS/HEILER/ "
            "PROJEKTE/ - - - - STAMMDATEN/ AUSDRUCK/ LAYOUT/ BLOCKDATEN/ PICTURE/ AUTOSAVE/ FOR/ "
            "HLP/ HLP/ STLB/ STLB/ - - - ");
  EXPECT_EQ(directories[13].key, "StammprojektDirectory");
  EXPECT_FALSE(std::filesystem::exists(base + "PROJEKTE"));  // nothing is created
  EXPECT_EQ(machine.MachineConfigFile(), base + "SYSTEM/MACHINE/ws01/Q_Machine.ini");
  EXPECT_EQ(machine.SysConfigFile(), base + "SYSTEM/SYS/Q_System.ini");
  EXPECT_EQ(machine.UserConfigFile(), base + "SYSTEM/USER/anna/Q_User.ini");
  EXPECT_EQ(machine.MachineData().SysHeilerDirectory, machine.SysHeilerDirectory());
  EXPECT_EQ(machine.ToDatabaseDirectories().clip_directory, machine.ClipDirectory());
}

TEST(MachineConfig, FollowsConfiguredPathsAndExistingFolders) {
  korvan::testing::TempDir dir;
  const std::string root = dir.path().string() + "/";
  TMachineEnvironment environment = EnvironmentAt(root + "bin");
  environment.ConfiguredSystemPath = root + "ava/SYSTEM";
  environment.OnlineHelpRoot = root + "web";
  TConfigContext context = TestContext();
  context.MachineName = "../evil/name";
  context.SystemUserName = "";
  TMachineConfig machine(context, environment);

  EXPECT_EQ(machine.Programmdirectory(), root + "bin/");
  EXPECT_EQ(machine.BasisDirectory(), root + "ava/");
  EXPECT_EQ(machine.OnlineHelpDirectory(), root + "web/HLP/");
  // Names become one directory level, never a path.
  EXPECT_EQ(machine.MachineDirectory(), root + "ava/SYSTEM/MACHINE/.._evil_name/");
  EXPECT_EQ(machine.UserDirectory(), root + "ava/SYSTEM/USER/_/");

  std::filesystem::create_directories(root + "ava/PROJEKTE/BSP-KAT");
  std::filesystem::create_directories(root + "ava/PROJEKTE/STAMMPROJEKT");
  machine.DeriveDirectories();
  EXPECT_EQ(machine.KatalogDirectory(), root + "ava/PROJEKTE/BSP-KAT/");
  EXPECT_EQ(machine.StammprojektDirectory(), root + "ava/PROJEKTE/STAMMPROJEKT/");

  const std::string report = machine.DirectoryReport();
  EXPECT_TRUE(
      Contains(report, "BasisDirectory:\t" + root + "ava/ (vorhanden) Read: True Write: True\n"));
  EXPECT_TRUE(Contains(
      report, "SystemDirectory:\t" + root + "ava/SYSTEM/ (fehlt) Read: False Write: False\n"));
  EXPECT_TRUE(Contains(report, "ObjektDirectory:\t (leer)"));
}

TEST(MachineConfig, FileOverridesAndDependentsFollow) {
  korvan::testing::TempDir dir;
  const std::string root = dir.path().string() + "/";
  const TMachineConfig fresh(TestContext(), EnvironmentAt(root));
  const std::string file = fresh.MachineConfigFile().string();
  std::filesystem::create_directories(fresh.MachineDirectory());
  WriteFile(file,
            "; Rechner ws01\r\n[Directories]\r\nSystemDirectory=/srv/ava/SYS-NEU\r\n"
            "KatalogDirectory=\r\nObjektDirectory=/srv/ava/PROJEKTE/P1/\r\nEigene=behalten\r\n");

  TMachineConfig machine = TMachineConfig::Open(TestContext(), EnvironmentAt(root));
  EXPECT_TRUE(machine.States().Contains(TConfigState::csFileRead));
  EXPECT_TRUE(machine.Warnings().empty());
  EXPECT_EQ(machine.SysStammDirectory(), "/srv/ava/SYS-NEU/SYS/");
  EXPECT_EQ(machine.UserDirectory(), "/srv/ava/SYS-NEU/USER/anna/");
  EXPECT_EQ(machine.BasisDirectory(), root);
  EXPECT_EQ(machine.KatalogDirectory(), "");
  EXPECT_EQ(machine.ObjektDirectory(), "/srv/ava/PROJEKTE/P1/");

  // Save, then load again: the same directories, the comment and the unknown key kept.
  machine.SetExtObjektDirectory("/mnt/extern/");
  EXPECT_TRUE(machine.States().Contains(TConfigState::csChanged));
  machine.Save();
  EXPECT_FALSE(machine.States().Contains(TConfigState::csChanged));
  EXPECT_EQ(machine.SyskonPath(), file);  // the file read, not the one the new layout names
  const std::string bytes = ReadFile(file);
  EXPECT_EQ(bytes.rfind("; Rechner ws01\r\n[Directories]\r\n", 0), 0u);
  EXPECT_TRUE(Contains(bytes, "Eigene=behalten\r\n"));
  EXPECT_TRUE(Contains(bytes, "[Globals]\r\nConfigTyp=Machine\r\n"));

  const TMachineConfig again = TMachineConfig::Open(TestContext(), EnvironmentAt(root));
  EXPECT_EQ(again.MachineData().ExtObjektDirectory, "/mnt/extern/");
}

TEST(MachineConfig, RoundTripsEveryDirectory) {
  korvan::testing::TempDir dir;
  TMachineConfig machine(TestContext(), EnvironmentAt(dir.path().string()));
  EXPECT_TRUE(ChangeEveryOption(machine).empty());
  machine.SaveAs(dir.File("Q_Machine.ini"));
  TMachineConfig loaded(TestContext(), EnvironmentAt("/elsewhere"));
  loaded.Load(dir.File("Q_Machine.ini"));
  // Every directory comes from the file (normalised to end in the separator).
  for (const auto& entry : loaded.Directories()) EXPECT_EQ(entry.path, "Größe € äÖü/") << entry.key;
  EXPECT_TRUE(Contains(ReadFile(dir.File("Q_Machine.ini")), "Gr\xF6\337e \x80 \xE4\xD6\xFC"));
}

}  // namespace
}  // namespace korvan::data
