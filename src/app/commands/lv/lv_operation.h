#pragma once

#include <string>

#include "app/cli/command.h"

namespace CLI {
class App;
}

namespace korvan::app {

// One operation of `korvan lv` (new, list, delete): its options on its own sub-command
// and its work. Every operation names the installation (-d) and the project (--project)
// alike and can answer in JSON for scripts.
class LvOperation {
 public:
  virtual ~LvOperation() = default;
  virtual std::string Name() const = 0;
  virtual std::string Summary() const = 0;
  // Declares the operation's own options; the common ones are declared by the caller.
  virtual void Define(CLI::App& app) = 0;
  virtual int Run(Streams& streams) = 0;

  std::string data_dir;
  std::string project;
  bool json = false;
};

}  // namespace korvan::app
