#include "desktop/desk_settings.h"

#include <filesystem>
#include <stdexcept>

#include "app/program/installation.h"

namespace korvan::desktop {

double ComparisonMaxDeviation(const std::string& data_dir) {
  try {
    return app::LoadInstallation(data_dir).user.Preisspiegel_MaxAbweichung();
  } catch (const std::runtime_error&) {
    return 0.0;  // an unreadable configuration marks nothing, as a new one does
  }
}

bool RememberComparisonMaxDeviation(const std::string& data_dir, double percent,
                                    std::string* error) {
  try {
    app::Installation installation = app::LoadInstallation(data_dir);
    if (installation.user.Preisspiegel_MaxAbweichung() == percent) return true;
    installation.user.SetPreisspiegel_MaxAbweichung(percent);
    const std::filesystem::path file = installation.machine.UserConfigFile();
    std::filesystem::create_directories(file.parent_path());
    installation.user.SaveAs(file);
    return true;
  } catch (const std::exception& failure) {
    *error = "Die Einstellung kann nicht gespeichert werden: " + std::string(failure.what());
    return false;
  }
}

}  // namespace korvan::desktop
