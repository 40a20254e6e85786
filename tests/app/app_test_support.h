#pragma once

#include <cstdlib>
#include <filesystem>

#include "app/program/single_instance.h"
#include "testing/temp_dir.h"

namespace korvan::app {

// Rows of the sample installation's currency list ("korvan demo"): the built-in list and
// the demo's own currencies, in the order of their ids.
inline constexpr const char* kDemoFrancRow = "8";   // Schweizer Franken, factor 0,94
inline constexpr const char* kDemoPoundRow = "10";  // Pfund Sterling, factor 0,85

// A private runtime directory (instance lock and socket) for every instance a test starts.
class RuntimeDir {
 public:
  RuntimeDir() { setenv(kRuntimeDirVariable, dir_.path().c_str(), 1); }
  ~RuntimeDir() { unsetenv(kRuntimeDirVariable); }
  const std::filesystem::path& path() const { return dir_.path(); }

 private:
  korvan::testing::TempDir dir_;
};

}  // namespace korvan::app
