#include "app/program/installation.h"

#include "app/cli/command_error.h"
#include "data/config/helvio_ini.h"
#include "data/db/path_types.h"
#include "data/integrity/key_file_recovery.h"

#ifndef KORVAN_VERSION
#define KORVAN_VERSION "0.0.0"
#endif

namespace korvan::app {

data::TConfigContext ProgramContext() {
  return data::TConfigContext::FromProcess(KORVAN_VERSION);
}

data::TMachineEnvironment InstallationEnvironment(const std::filesystem::path& base_dir) {
  data::TMachineEnvironment environment = data::TMachineEnvironment::FromProcess();
  const std::filesystem::path base = std::filesystem::absolute(base_dir).lexically_normal();
  environment.ConfiguredSystemPath =
      data::WithTrailingSeparator((base / kSystemFolderName).string());
  return environment;
}

Installation LoadInstallation(const std::filesystem::path& base_dir) {
  const data::TConfigContext context = ProgramContext();
  data::TMachineConfig machine =
      data::TMachineConfig::Open(context, InstallationEnvironment(base_dir));
  // Key files rebuilt on open are logged where the integrity check logs.
  data::SetKeyFileRecoveryLogFolder(
      data::DirectoryOfPathType(data::kPathSystemSys, machine.ToDatabaseDirectories()));
  data::TSysConfig system = data::TSysConfig::Open(context, machine);
  data::TUserConfig user = data::TUserConfig::Open(context, machine);
  return Installation{std::move(machine), std::move(system), std::move(user)};
}

std::filesystem::path HelvioIniFile(const data::TMachineConfig& machine) {
  return data::THelvioIni::FindIn(machine.SystemDirectory());
}

std::filesystem::path RequireInstallation(const std::string& base_dir) {
  const std::filesystem::path base = std::filesystem::absolute(base_dir).lexically_normal();
  std::error_code error;
  if (!std::filesystem::is_directory(base, error)) {
    throw CommandError("Basisverzeichnis \"" + base.string() + "\" gibt es nicht");
  }
  if (!std::filesystem::is_directory(base / kSystemFolderName, error)) {
    throw CommandError("in \"" + base.string() + "\" ist keine Installation eingerichtet (" +
                       "\"korvan init -d " + base.string() + "\")");
  }
  return base;
}

}  // namespace korvan::app
