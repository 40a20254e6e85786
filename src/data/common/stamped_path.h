#pragma once

#include <filesystem>
#include <string>

namespace korvan::data {

// A path in `folder` named `prefix` + the local time as "YYYYMMDD_HHMMSS" + `suffix` that
// does not exist yet; numbered "_2", "_3", ... before the suffix when a run in the same
// second took the name already.
std::filesystem::path NewStampedPath(const std::filesystem::path& folder, const std::string& prefix,
                                     const std::string& suffix);

}  // namespace korvan::data
