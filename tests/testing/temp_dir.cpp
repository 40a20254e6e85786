#include "testing/temp_dir.h"

#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace korvan::testing {

TempDir::TempDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "korvan-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  path_ = pattern;
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace korvan::testing
