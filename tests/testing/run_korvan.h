#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace korvan::testing {

// What a run of the korvan binary produced.
struct ProgramResult {
  int exit_code = -1;
  std::string out;
  std::string err;
};

// Runs the korvan binary (path from $KORVAN_BINARY, set by ctest) as a child process
// with the given arguments and optional standard input.
ProgramResult RunKorvanBinary(const std::vector<std::string>& args, const std::string& input = "");

class TempDir;

// Starts the korvan binary in the background, its standard output and error going to the
// files "out" and "err" of `io`; returns its process id.
pid_t StartKorvanBinary(const std::vector<std::string>& args, const TempDir& io,
                        const std::string& input = "");

// Whether a program's output contains `part`.
inline bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// Runs the korvan binary and expects the exit code, no crash, and every one of `parts`
// somewhere in its standard output or error; returns what it produced.
ProgramResult ExpectKorvan(const std::vector<std::string>& args, int exit_code,
                           const std::vector<std::string>& parts = {},
                           const std::string& input = "");

// Whether the run ended by a signal, a sanitizer report or an uncaught exception.
bool Crashed(const ProgramResult& result);

// An installation in `dir`/"ava" made by `korvan <command>` ("init" or "demo").
std::filesystem::path MakeInstallation(const TempDir& dir, const std::string& command = "demo");

// The whole content of a file; empty when it cannot be read.
std::string ReadFile(const std::filesystem::path& path);

// Every regular file below `root` with its content.
std::map<std::string, std::string> FileContents(const std::filesystem::path& root);

// Overwrites bytes of a file in place.
void PatchFile(const std::filesystem::path& path, int64_t offset, const std::string& bytes);

}  // namespace korvan::testing
