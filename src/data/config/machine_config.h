#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "data/config/base_config.h"
#include "data/db/path_types.h"

namespace korvan::data {

inline constexpr std::string_view kMachineConfigFileName = "Q_Machine.ini";
inline constexpr std::string_view kSysConfigFileName = "Q_System.ini";
inline constexpr std::string_view kUserConfigFileName = "Q_User.ini";

// What the directory layout is derived from when the machine file does not name a
// directory.
struct TMachineEnvironment {
  std::string ProgrammDirectory;     // the directory of the running program
  std::string ConfiguredSystemPath;  // "SystemPath" of the start file; empty when none
  std::string OnlineHelpRoot;        // a configured online help root; empty when none

  // The directory of the running executable; no configured paths.
  static TMachineEnvironment FromProcess();
};

// The directories of TMachineConfig under the same names without the prefix.
struct TMachineData {
  std::string Programmdirectory, BasisDirectory, SystemDirectory, MachineStammDirectory,
      MachineDirectory, UserStammDirectory, UserDirectory, ClipDirectory, SysStammDirectory,
      SysDictionaryDirectory, SysHeilerDirectory, ObjektstammDirectory, KatalogDirectory,
      StammprojektDirectory, ObjektDirectory, ExtObjektDirectory, StammDatenDirectory,
      AusdruckDirectory, LayoutDirectory, ClipBlockDirectory, PictureDirectory,
      BackupStammDirectory, FormularDirectory, HelpDirectory, OnlineHelpDirectory, StlbDirectory,
      StlkDirectory, LocalUserConfigDirectory, GAEBToolboxDirectory, LastIFCImportDirectory;
};

// The directory layout of the installation on this computer ([Directories] of
// "Q_Machine.ini"). Every directory ends in the path separator or is empty. A directory
// the file does not name is derived from the ones before it, in the order of
// Directories(); that order and the derivation rules live in one table in the
// implementation, which is also what creates and resolves the folders.
class TMachineConfig : public TBaseConfig {
 public:
  // Derives every directory from the environment and the context's computer and user
  // names; no file is read.
  TMachineConfig(const TConfigContext& context, TMachineEnvironment environment);

  // A machine configuration read from its file in the derived machine directory.
  static TMachineConfig Open(const TConfigContext& context, TMachineEnvironment environment);

  const TMachineEnvironment& Environment() const { return environment_; }

  // Where the three configuration files live.
  std::filesystem::path MachineConfigFile() const;
  std::filesystem::path SysConfigFile() const;
  std::filesystem::path UserConfigFile() const;

  // Derives again every directory the file does not name, e.g. after folders were
  // created (the catalog and master-project directories exist only when their folder
  // does).
  void DeriveDirectories();

  struct TDirectoryEntry {
    std::string_view key;  // "BasisDirectory", ...
    std::string path;
  };
  // Every directory in derivation order.
  std::vector<TDirectoryEntry> Directories() const;
  TMachineData MachineData() const;
  DatabaseDirectories ToDatabaseDirectories() const;

  // One line per directory: name, path, state, and whether it can be read and written,
  // e.g. "BasisDirectory:\t/srv/ava/ (vorhanden) Read: True Write: True".
  std::string DirectoryReport() const;

  KORVAN_CONFIG_FIELD(std::string, Programmdirectory)
  KORVAN_CONFIG_FIELD(std::string, BasisDirectory)
  KORVAN_CONFIG_FIELD(std::string, SystemDirectory)
  KORVAN_CONFIG_FIELD(std::string, MachineStammDirectory)
  KORVAN_CONFIG_FIELD(std::string, MachineDirectory)
  KORVAN_CONFIG_FIELD(std::string, UserStammDirectory)
  KORVAN_CONFIG_FIELD(std::string, UserDirectory)
  KORVAN_CONFIG_FIELD(std::string, ClipDirectory)
  KORVAN_CONFIG_FIELD(std::string, SysStammDirectory)
  KORVAN_CONFIG_FIELD(std::string, SysDictionaryDirectory)
  KORVAN_CONFIG_FIELD(std::string, SysHeilerDirectory)
  KORVAN_CONFIG_FIELD(std::string, ObjektstammDirectory)
  KORVAN_CONFIG_FIELD(std::string, KatalogDirectory)
  KORVAN_CONFIG_FIELD(std::string, StammprojektDirectory)
  KORVAN_CONFIG_FIELD(std::string, ObjektDirectory)
  KORVAN_CONFIG_FIELD(std::string, ExtObjektDirectory)
  KORVAN_CONFIG_FIELD(std::string, StammDatenDirectory)
  KORVAN_CONFIG_FIELD(std::string, AusdruckDirectory)
  KORVAN_CONFIG_FIELD(std::string, LayoutDirectory)
  KORVAN_CONFIG_FIELD(std::string, ClipBlockDirectory)
  KORVAN_CONFIG_FIELD(std::string, PictureDirectory)
  KORVAN_CONFIG_FIELD(std::string, BackupStammDirectory)
  KORVAN_CONFIG_FIELD(std::string, FormularDirectory)
  KORVAN_CONFIG_FIELD(std::string, HelpDirectory)
  KORVAN_CONFIG_FIELD(std::string, OnlineHelpDirectory)
  KORVAN_CONFIG_FIELD(std::string, StlbDirectory)
  KORVAN_CONFIG_FIELD(std::string, StlkDirectory)
  KORVAN_CONFIG_FIELD(std::string, LocalUserConfigDirectory)
  KORVAN_CONFIG_FIELD(std::string, GAEBToolboxDirectory)
  KORVAN_CONFIG_FIELD(std::string, LastIFCImportDirectory)

 protected:
  void BindValues(TConfigBindings& bindings) override;
  void AfterLoad() override;

 private:
  struct DirectoryRule;
  static const std::vector<DirectoryRule>& Rules();

  TMachineEnvironment environment_;
};

}  // namespace korvan::data
