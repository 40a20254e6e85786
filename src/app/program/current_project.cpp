#include "app/program/current_project.h"

#include "data/db/path_types.h"

namespace korvan::app {

std::string ProjectDirectory(const data::TMachineConfig& machine, std::string_view name) {
  return data::WithTrailingSeparator(machine.ObjektstammDirectory() + std::string(name));
}

bool IsValidProjectName(std::string_view name) {
  if (name.empty() || name == "." || name == "..") return false;
  return name.find_first_of(std::string_view("/\\\0", 3)) == std::string_view::npos;
}

std::string CurrentProjectName(const Installation& installation) {
  return installation.user.Objektvorgabe();
}

void OpenCurrentProject(Installation& installation) {
  data::TMachineConfig& machine = installation.machine;
  if (!machine.ObjektDirectory().empty()) return;
  const std::string project = CurrentProjectName(installation);
  if (project.empty()) return;
  const bool is_path = project.find_first_of("/\\") != std::string::npos;
  machine.SetObjektDirectory(is_path ? data::WithTrailingSeparator(project)
                                     : ProjectDirectory(machine, project));
}

}  // namespace korvan::app
