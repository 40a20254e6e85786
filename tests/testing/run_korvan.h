#pragma once

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

// Whether a program's output contains `part`.
inline bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

}  // namespace korvan::testing
