#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

namespace korvan::testing {

// The whole content of a file; empty when it cannot be read.
std::string ReadFile(const std::filesystem::path& path);

// Replaces the whole content of a file.
void WriteFile(const std::filesystem::path& path, const std::string& bytes);

// Every regular file below `root` with its content.
std::map<std::string, std::string> FileContents(const std::filesystem::path& root);

// Overwrites bytes of a file in place.
void PatchFile(const std::filesystem::path& path, int64_t offset, const std::string& bytes);

}  // namespace korvan::testing
