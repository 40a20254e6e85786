#include "data/common/stamped_path.h"

#include <ctime>

namespace korvan::data {

std::filesystem::path NewStampedPath(const std::filesystem::path& folder, const std::string& prefix,
                                     const std::string& suffix) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char stamp[32];
  std::strftime(stamp, sizeof stamp, "%Y%m%d_%H%M%S", &local);
  const std::string name = prefix + stamp;
  std::filesystem::path path = folder / (name + suffix);
  for (int number = 2; std::filesystem::exists(path); ++number) {
    path = folder / (name + "_" + std::to_string(number) + suffix);
  }
  return path;
}

}  // namespace korvan::data
