#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace korvan::app {

// Exit codes of the program: the work failed (1) or the call itself was wrong (2).
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

// Where a command writes: normal output and diagnostics.
struct Streams {
  std::ostream& out;
  std::ostream& err;
};

// One sub-command of the program. Define() declares its options on the CLI11
// sub-app; Run() is called after a successful parse and returns an exit code.
// A command reports failures of its work by throwing korvan::app::CommandError
// or any std::exception; RunKorvan turns them into exit code 1.
class Command {
 public:
  virtual ~Command() = default;
  virtual std::string Name() const = 0;
  virtual std::string Summary() const = 0;
  virtual void Define(CLI::App& app) = 0;
  virtual int Run(Streams& streams) = 0;
};

using CommandList = std::vector<std::unique_ptr<Command>>;

// Every command of the program, in the order `korvan --help` lists them.
CommandList AllCommands();

}  // namespace korvan::app
