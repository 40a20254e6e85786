#pragma once

#include <filesystem>

#include "data/config/machine_config.h"
#include "data/config/sys_config.h"
#include "data/config/user_config.h"

namespace korvan::app {

// The folder below the base directory that holds the system directory.
inline constexpr const char* kSystemFolderName = "SYSTEM";

// The three configuration objects of one installation, loaded from their files.
struct Installation {
  data::TMachineConfig machine;
  data::TSysConfig system;
  data::TUserConfig user;
};

// Who runs the program: user, computer and the program's version.
data::TConfigContext ProgramContext();

// The environment from which the machine directories of the installation rooted at
// `base_dir` are derived: the base directory's "SYSTEM" folder is the configured system
// path, so every other directory follows from `base_dir`.
data::TMachineEnvironment InstallationEnvironment(const std::filesystem::path& base_dir);

// Loads the machine configuration of `base_dir`, then the system and the user
// configuration from the files it names. Missing files give the defaults.
// EAvaConfigError when a file exists but cannot be read or is of the wrong kind.
Installation LoadInstallation(const std::filesystem::path& base_dir);

// `base_dir` made absolute, after checking that it is there and holds an installation;
// otherwise a CommandError that names the directory and how to set one up.
std::filesystem::path RequireInstallation(const std::string& base_dir);

// The shared configuration file "Helvio.ini" of an installation: it lives in the system
// directory, which every user of the data directory shares.
std::filesystem::path HelvioIniFile(const data::TMachineConfig& machine);

}  // namespace korvan::app
