#pragma once

#include <string>

#include "app/cli/command.h"

namespace korvan::app {

// `korvan reorg [-d DIR]`: "Datenreorganisation durch Kopieren" over the installation.
int RunReorg(const std::string& base_dir, Streams& streams);

class ReorgCommand : public Command {
 public:
  std::string Name() const override { return "reorg"; }
  std::string Summary() const override {
    return "reorganisiert alle Datenbanken durch Kopieren, geprüft vorher und nachher";
  }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  std::string data_dir_;
};

}  // namespace korvan::app
