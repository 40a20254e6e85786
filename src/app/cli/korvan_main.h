#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace korvan::app {

// Parses the command line, runs the chosen command and returns the exit code:
// 0 success, 1 the work failed, 2 the call was wrong. args excludes the program name.
int RunKorvan(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

}  // namespace korvan::app
