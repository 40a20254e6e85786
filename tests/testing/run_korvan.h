#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "testing/files.h"
#include "testing/temp_dir.h"

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

// The korvan binary running in the background, its output going to files; killed when
// it still runs as the object goes.
class KorvanInBackground {
 public:
  explicit KorvanInBackground(const std::vector<std::string>& args, const std::string& input = "");
  ~KorvanInBackground();
  KorvanInBackground(const KorvanInBackground&) = delete;
  KorvanInBackground& operator=(const KorvanInBackground&) = delete;

  std::string Out() const { return ReadFile(io_.File("out")); }
  std::string Err() const { return ReadFile(io_.File("err")); }
  // Waits for the end, at most `limit`; exit code -1 while it still runs.
  ProgramResult Finish(std::chrono::milliseconds limit = std::chrono::hours(1));
  // True as soon as the output holds `text`; false when the limit passes first or the
  // program ends without writing it.
  bool WaitForOutput(const std::string& text,
                     std::chrono::milliseconds limit = std::chrono::seconds(20));
  void Signal(int signal) const;

 private:
  bool Ended();

  TempDir io_;
  pid_t pid_ = -1;
  std::optional<int> exit_code_;
};

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

// An installation in `dir`/"ava" made by `korvan <command>`: "init", or "demo" for the
// sample installation of `korvan demo --setup-only`.
std::filesystem::path MakeInstallation(const TempDir& dir, const std::string& command = "demo");

}  // namespace korvan::testing
