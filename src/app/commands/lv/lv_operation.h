#pragma once

#include <memory>
#include <string>
#include <vector>

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

// The argument of every command on one LV: the LV, named by its id or its name.
void AddLvArgument(CLI::App& app, std::string& lv);

// A command whose sub-commands are LV operations (`korvan lv`, `korvan var`): each gets the
// options every LV operation has.
class LvOperationGroup : public Command {
 public:
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 protected:
  std::vector<std::unique_ptr<LvOperation>> operations_;

 private:
  std::vector<CLI::App*> subs_;
};

}  // namespace korvan::app
