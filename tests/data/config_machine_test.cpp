#include <gtest/gtest.h>

#include <filesystem>

#include "config_test_support.h"
#include "data/machine_config.h"
#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

using testing::ChangeEveryOption;
using testing::ReadBytes;
using testing::TestContext;
using testing::WriteBytes;

TMachineEnvironment EnvironmentAt(const std::string& program_directory) {
  TMachineEnvironment environment;
  environment.ProgrammDirectory = program_directory;
  return environment;
}

TEST(MachineConfig, DerivesEveryDirectoryFromTheProgramDirectory) {
  korvan::testing::TempDir dir;
  const std::string base = dir.path().string() + "/";
  const TMachineConfig machine(TestContext(), EnvironmentAt(dir.path().string()));

  EXPECT_EQ(machine.Programmdirectory(), base);
  EXPECT_EQ(machine.BasisDirectory(), base);
  EXPECT_EQ(machine.SystemDirectory(), base + "SYSTEM/");
  EXPECT_EQ(machine.MachineStammDirectory(), base + "SYSTEM/MACHINE/");
  EXPECT_EQ(machine.MachineDirectory(), base + "SYSTEM/MACHINE/ws01/");
  EXPECT_EQ(machine.UserStammDirectory(), base + "SYSTEM/USER/");
  EXPECT_EQ(machine.UserDirectory(), base + "SYSTEM/USER/anna/");
  EXPECT_EQ(machine.ClipDirectory(), base + "SYSTEM/USER/anna/TEMP/");
  EXPECT_EQ(machine.SysStammDirectory(), base + "SYSTEM/SYS/");
  EXPECT_EQ(machine.SysDictionaryDirectory(), base + "SYSTEM/SYS/DICTIONARY/");
  EXPECT_EQ(machine.SysHeilerDirectory(), base + "SYSTEM/SYS/HEILER/");
  EXPECT_EQ(machine.ObjektstammDirectory(), base + "PROJEKTE/");
  // Without the folders below the project root these stay empty and are not created.
  EXPECT_EQ(machine.KatalogDirectory(), "");
  EXPECT_EQ(machine.StammprojektDirectory(), "");
  EXPECT_FALSE(std::filesystem::exists(base + "PROJEKTE"));
  EXPECT_EQ(machine.ObjektDirectory(), "");
  EXPECT_EQ(machine.ExtObjektDirectory(), "");
  EXPECT_EQ(machine.StammDatenDirectory(), base + "STAMMDATEN/");
  EXPECT_EQ(machine.AusdruckDirectory(), base + "AUSDRUCK/");
  EXPECT_EQ(machine.LayoutDirectory(), base + "LAYOUT/");
  EXPECT_EQ(machine.ClipBlockDirectory(), base + "BLOCKDATEN/");
  EXPECT_EQ(machine.PictureDirectory(), base + "PICTURE/");
  EXPECT_EQ(machine.BackupStammDirectory(), base + "AUTOSAVE/");
  EXPECT_EQ(machine.FormularDirectory(), base + "FOR/");
  EXPECT_EQ(machine.HelpDirectory(), base + "HLP/");
  EXPECT_EQ(machine.OnlineHelpDirectory(), base + "HLP/");
  // Both kinds of standard texts share one folder.
  EXPECT_EQ(machine.StlbDirectory(), base + "STLB/");
  EXPECT_EQ(machine.StlkDirectory(), machine.StlbDirectory());
  EXPECT_EQ(machine.LocalUserConfigDirectory(), "");
  EXPECT_EQ(machine.GAEBToolboxDirectory(), "");
  EXPECT_EQ(machine.LastIFCImportDirectory(), "");

  EXPECT_EQ(machine.MachineConfigFile(), base + "SYSTEM/MACHINE/ws01/Q_Machine.ini");
  EXPECT_EQ(machine.SysConfigFile(), base + "SYSTEM/SYS/Q_System.ini");
  EXPECT_EQ(machine.UserConfigFile(), base + "SYSTEM/USER/anna/Q_User.ini");

  // The list used to create and report the folders follows the derivation order.
  const auto directories = machine.Directories();
  ASSERT_EQ(directories.size(), 30u);
  EXPECT_EQ(directories.front().key, "ProgrammDirectory");
  EXPECT_EQ(directories[13].key, "StammprojektDirectory");
  EXPECT_EQ(directories.back().key, "LastIFCImportDirectory");
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
  EXPECT_EQ(machine.SystemDirectory(), root + "ava/SYSTEM/");
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
  EXPECT_NE(report.find("BasisDirectory:\t" + root + "ava/ (vorhanden) Read: True Write: True\n"),
            std::string::npos);
  EXPECT_NE(
      report.find("SystemDirectory:\t" + root + "ava/SYSTEM/ (fehlt) Read: False Write: False\n"),
      std::string::npos);
  EXPECT_NE(report.find("ObjektDirectory:\t (leer)"), std::string::npos);
}

TEST(MachineConfig, FileOverridesAndDependentsFollow) {
  korvan::testing::TempDir dir;
  const std::string root = dir.path().string() + "/";
  const TMachineConfig fresh(TestContext(), EnvironmentAt(root));
  const std::string file = fresh.MachineConfigFile().string();
  std::filesystem::create_directories(fresh.MachineDirectory());
  WriteBytes(file,
             "; Rechner ws01\r\n"
             "[Directories]\r\n"
             "SystemDirectory=/srv/ava/SYS-NEU\r\n"
             "KatalogDirectory=\r\n"
             "ObjektDirectory=/srv/ava/PROJEKTE/P1/\r\n"
             "Eigene=behalten\r\n");

  TMachineConfig machine = TMachineConfig::Open(TestContext(), EnvironmentAt(root));
  EXPECT_TRUE(machine.States().Contains(TConfigState::csFileRead));
  EXPECT_TRUE(machine.Warnings().empty());
  EXPECT_EQ(machine.SystemDirectory(), "/srv/ava/SYS-NEU/");
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
  const std::string bytes = ReadBytes(file);
  EXPECT_EQ(bytes.rfind("; Rechner ws01\r\n[Directories]\r\n", 0), 0u);
  EXPECT_NE(bytes.find("Eigene=behalten\r\n"), std::string::npos);
  EXPECT_NE(bytes.find("[Globals]\r\nConfigTyp=Machine\r\n"), std::string::npos);

  const TMachineConfig again = TMachineConfig::Open(TestContext(), EnvironmentAt(root));
  EXPECT_EQ(again.MachineData().ExtObjektDirectory, "/mnt/extern/");
  EXPECT_EQ(again.Tree().Get("Directories", "Eigene"), "behalten");
  ASSERT_EQ(again.Entries().size(), machine.Entries().size());
  for (std::size_t i = 0; i < again.Entries().size(); ++i) {
    EXPECT_EQ(again.Entries()[i].value, machine.Entries()[i].value) << again.Entries()[i].key;
  }
}

TEST(MachineConfig, RoundTripsEveryDirectory) {
  korvan::testing::TempDir dir;
  TMachineConfig machine(TestContext(), EnvironmentAt(dir.path().string()));
  EXPECT_TRUE(ChangeEveryOption(machine).empty());
  machine.SaveAs(dir.File("Q_Machine.ini"));
  TMachineConfig loaded(TestContext(), EnvironmentAt("/elsewhere"));
  loaded.Load(dir.File("Q_Machine.ini"));
  // Every directory comes from the file (normalised to end in the separator).
  for (const auto& entry : loaded.Directories()) {
    EXPECT_EQ(entry.path, "Größe € äÖü/") << entry.key;
  }
  EXPECT_NE(ReadBytes(dir.File("Q_Machine.ini"))
                .find("Gr\xF6\xDF"
                      "e \x80 \xE4\xD6\xFC"),
            std::string::npos);
}

}  // namespace
}  // namespace korvan::data
