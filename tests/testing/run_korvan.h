#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "testing/files.h"

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

// The same on the installation in `base`: "-d <base>" follows the arguments.
ProgramResult ExpectKorvanOn(const std::filesystem::path& base, std::vector<std::string> args,
                             int exit_code = 0, const std::vector<std::string>& parts = {});

// The row number `korvan list` shows in front of the first line that holds `text`; 0 if
// none.
int ListRowOf(const std::string& listing, const std::string& text);

// A `korvan db dump` without the time of each record's last change, which every write
// stamps anew.
std::string WithoutWriteTimes(const std::string& dump);

// Whether the run ended by a signal, a sanitizer report or an uncaught exception.
bool Crashed(const ProgramResult& result);

// An installation in `dir`/"ava" made by `korvan <command>` ("init" or "demo").
std::filesystem::path MakeInstallation(const TempDir& dir, const std::string& command = "demo");

}  // namespace korvan::testing
