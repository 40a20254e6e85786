#pragma once

#include <filesystem>
#include <string>

namespace korvan::testing {

// A fresh directory below the system's temporary directory, removed with everything in
// it when the object goes out of scope.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::string File(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

}  // namespace korvan::testing
