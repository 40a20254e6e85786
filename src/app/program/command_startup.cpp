#include "app/program/command_startup.h"

#include <stdexcept>
#include <string>

#include "app/program/installation.h"
#include "boq/text/long_text_trace.h"
#include "data/config/helvio_ini.h"
#include "data/db/db_groups.h"
#include "data/db/db_types.h"
#include "storage/db_kernel.h"

namespace korvan::app {
namespace fs = std::filesystem;

namespace {

bool HoldsInstallation(const fs::path& dir) {
  std::error_code error;
  return fs::is_directory(dir / kSystemFolderName, error);
}

// The trace folder is the user's own, so that traces of two users do not mix. A folder
// that cannot be made shows up as the first trace file that cannot be written.
void StartTextTrace(const data::TMachineConfig& machine) {
  const fs::path folder = fs::path(machine.UserDirectory()) / kTraceFolderName;
  std::error_code error;
  fs::create_directories(folder, error);
  boq::TLongTextTrace::Instance().SetFolder((folder / "").string());
}

}  // namespace

storage::KernelSettings StartCommandStorage(const std::optional<fs::path>& base_dir) {
  data::DbTypeRegistry registry;
  data::RegisterDBTypes(registry, data::UnboundIoCallbacks());
  if (const int result = storage::iDK_DbSetVersion(data::kDataFileVersion); result != 0) {
    throw std::runtime_error("Datenversion kann nicht gesetzt werden (Code " +
                             std::to_string(result) + ")");
  }
  storage::KernelSettings settings;
  if (base_dir && HoldsInstallation(*base_dir)) {
    const Installation installation = LoadInstallation(*base_dir);
    settings = data::THelvioIni::Load(HelvioIniFile(installation.machine)).KernelSettings();
    if (boq::TracesLongTexts(installation.system)) StartTextTrace(installation.machine);
  }
  storage::ApplyKernelSettings(settings);
  return settings;
}

std::optional<fs::path> InstallationAbove(const fs::path& base_path) {
  std::error_code error;
  fs::path dir = fs::absolute(base_path, error).lexically_normal().parent_path();
  for (; !dir.empty(); dir = dir.parent_path()) {
    if (HoldsInstallation(dir)) return dir;
    if (dir == dir.root_path()) break;
  }
  return std::nullopt;
}

}  // namespace korvan::app
