#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/cli/command.h"

namespace korvan::app::demo {

// How the demo shows its road: numbered steps with a German heading, then each command
// as a user would type it, run in this process through the program's own dispatcher, and
// what it answered.
class DemoScript {
 public:
  explicit DemoScript(Streams& streams) : streams_(streams) {}

  // "Schritt 3: ..." with a line or two saying what happens and why.
  void Step(std::string_view heading, std::string_view explanation);
  // A line of explanation within a step.
  void Say(std::string_view text);

  // Shows "$ korvan <args>", runs it and shows its output; returns the output. A command
  // that fails stops the demo with its exit code and message (CommandError).
  std::string Run(const std::vector<std::string>& args);
  // The same without showing the command or its output, for the many commands of one
  // kind after the first few were shown.
  std::string RunQuietly(const std::vector<std::string>& args);

  // How many commands ran so far.
  int CommandsRun() const { return commands_run_; }

 private:
  struct Answer {
    std::string out;
    std::string err;
  };
  Answer Execute(const std::vector<std::string>& args);

  Streams& streams_;
  int step_ = 0;
  int commands_run_ = 0;
};

// One word as a shell takes it: with blanks or quotes in double quotes.
std::string ShellWord(std::string_view arg);

// The command line as a shell takes it, every argument a ShellWord.
std::string ShellLine(const std::vector<std::string>& args);

}  // namespace korvan::app::demo
