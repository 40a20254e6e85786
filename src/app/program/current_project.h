#pragma once

#include <string>
#include <string_view>

#include "app/program/installation.h"

namespace korvan::app {

// The project a fresh installation starts with.
inline constexpr std::string_view kFirstProjectName = "Beispiel";

// The directory of the project `name` below the installation's project root, ending in
// the path separator.
std::string ProjectDirectory(const data::TMachineConfig& machine, std::string_view name);

// Whether `name` can be a project folder: one directory level, not empty, not "." or
// "..", no path separators or NUL bytes.
bool IsValidProjectName(std::string_view name);

// The user's current project, kept as "Objektvorgabe" of the user configuration; empty
// when none was chosen yet.
std::string CurrentProjectName(const Installation& installation);

// Makes the user's current project the project directory (path type "O") of the
// machine configuration, unless the machine file names a project directory itself.
// An "Objektvorgabe" with a path separator is taken as a path, otherwise as a folder
// below the project root.
void OpenCurrentProject(Installation& installation);

}  // namespace korvan::app
