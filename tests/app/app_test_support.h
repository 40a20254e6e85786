#pragma once

#include <cstdlib>
#include <filesystem>

#include "app/program/single_instance.h"
#include "testing/temp_dir.h"

namespace korvan::app {

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
