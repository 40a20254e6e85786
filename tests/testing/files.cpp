#include "testing/files.h"

#include <fstream>
#include <sstream>

namespace korvan::testing {

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::map<std::string, std::string> FileContents(const std::filesystem::path& root) {
  std::map<std::string, std::string> contents;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
    if (entry.is_regular_file()) contents[entry.path().string()] = ReadFile(entry.path());
  }
  return contents;
}

void WriteFile(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

void PatchFile(const std::filesystem::path& path, int64_t offset, const std::string& bytes) {
  std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(offset);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace korvan::testing
