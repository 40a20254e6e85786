#include "app/cli/display_path.h"

namespace korvan::app {

std::string DisplayPath(const std::string& base_dir, const std::string& path) {
  std::string base = base_dir;
  if (!base.empty() && base.back() != '/') base.push_back('/');
  if (base.empty() || path.size() <= base.size() || path.compare(0, base.size(), base) != 0) {
    return path;
  }
  return path.substr(base.size());
}

std::string CountOf(int64_t count, const char* singular, const char* plural) {
  return std::to_string(count) + " " + (count == 1 ? singular : plural);
}

}  // namespace korvan::app
