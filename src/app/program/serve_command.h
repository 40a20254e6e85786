#pragma once

#include <string>
#include <vector>

#include "app/cli/command.h"

namespace korvan::app {

class ProgramStartup;

// `korvan serve`: the long-running program. Runs the start-up sequence, holds the
// single-instance lock and receives the parameters of later starts until it is stopped
// (SIGTERM, SIGINT or a later `korvan serve --stop`).
class ServeCommand : public Command {
 public:
  std::string Name() const override { return "serve"; }
  std::string Summary() const override {
    return "läuft als die eine dauerhafte Instanz und nimmt die Parameter späterer Starts entgegen";
  }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  // The program path and the parameters as a later start hands them over.
  std::vector<std::string> CommandLine() const;

  std::string data_dir_;
  bool skip_instance_check_ = false;
  bool stop_ = false;
  bool trace_ = false;
  std::vector<std::string> parameters_;
};

}  // namespace korvan::app
