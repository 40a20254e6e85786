#include "app/commands/demo/demo_script.h"

#include <ostream>
#include <sstream>

#include "app/cli/command_error.h"
#include "app/cli/korvan_main.h"

namespace korvan::app::demo {
namespace {

bool NeedsQuotes(std::string_view arg) {
  return arg.empty() || arg.find_first_of(" \t\"'$&;|<>()*?") != std::string_view::npos;
}

std::string Quoted(std::string_view arg) {
  std::string quoted = "\"";
  for (const char c : arg) {
    if (c == '"' || c == '\\' || c == '$' || c == '`') quoted += '\\';
    quoted += c;
  }
  return quoted + "\"";
}

}  // namespace

std::string ShellWord(std::string_view arg) {
  return NeedsQuotes(arg) ? Quoted(arg) : std::string(arg);
}

std::string ShellLine(const std::vector<std::string>& args) {
  std::string line = "korvan";
  for (const std::string& arg : args) line += " " + ShellWord(arg);
  return line;
}

void DemoScript::Step(std::string_view heading, std::string_view explanation) {
  streams_.out << "\n=== Schritt " << ++step_ << ": " << heading << " ===\n";
  if (!explanation.empty()) streams_.out << explanation << "\n";
}

void DemoScript::Say(std::string_view text) {
  streams_.out << text << "\n";
}

std::string DemoScript::Run(const std::vector<std::string>& args) {
  streams_.out << "\n$ " << ShellLine(args) << "\n";
  const Answer answer = Execute(args);
  // A warning is part of what the command answered, so it is shown in its place.
  streams_.out << answer.out << answer.err;
  return answer.out;
}

std::string DemoScript::RunQuietly(const std::vector<std::string>& args) {
  const Answer answer = Execute(args);
  streams_.err << answer.err;
  return answer.out;
}

DemoScript::Answer DemoScript::Execute(const std::vector<std::string>& args) {
  std::ostringstream out;
  std::ostringstream err;
  const int exit_code = RunKorvan(args, out, err);
  ++commands_run_;
  if (exit_code != kExitOk) {
    streams_.err << err.str();
    throw CommandError("der Befehl \"" + ShellLine(args) + "\" endete mit Code " +
                       std::to_string(exit_code) + "; die Demo bricht hier ab");
  }
  return {out.str(), err.str()};
}

}  // namespace korvan::app::demo
