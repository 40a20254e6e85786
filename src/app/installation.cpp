#include "app/installation.h"

#include "data/helvio_ini.h"

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
  data::TSysConfig system = data::TSysConfig::Open(context, machine);
  data::TUserConfig user = data::TUserConfig::Open(context, machine);
  return Installation{std::move(machine), std::move(system), std::move(user)};
}

std::filesystem::path HelvioIniFile(const data::TMachineConfig& machine) {
  return data::THelvioIni::FindIn(machine.SystemDirectory());
}

}  // namespace korvan::app
