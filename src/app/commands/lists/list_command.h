#pragma once

#include <string>

#include "app/cli/command.h"

namespace korvan::app {

// `korvan list <module>`: the rows of a data module as a table under its column captions.
class ListCommand : public Command {
 public:
  std::string Name() const override { return "list"; }
  std::string Summary() const override { return "zeigt die Zeilen einer Stammdatenliste"; }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  std::string data_dir_;
  std::string module_;
};

}  // namespace korvan::app
