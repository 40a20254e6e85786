#pragma once

#include <string>

#include "app/cli/command.h"

namespace korvan::app {

// `korvan rebuild [-d DIR] [--group G]`: rebuilds the installation's databases (of one
// group) from their data files. kExitFailure when a database could not be rebuilt.
int RunRebuild(const std::string& base_dir, const std::string& group, Streams& streams);

class RebuildCommand : public Command {
 public:
  std::string Name() const override { return "rebuild"; }
  std::string Summary() const override {
    return "baut die Datenbanken aus ihren Datendateien neu auf: neue Schlüsseldateien, kein "
           "freier Platz";
  }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  std::string data_dir_;
  std::string group_;
};

}  // namespace korvan::app
