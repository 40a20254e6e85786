#pragma once

#include <string>

#include "app/cli/command.h"

namespace korvan::app {

// `korvan demo`: runs Korvan's main job on a built-in sample project.
class DemoCommand : public Command {
 public:
  std::string Name() const override { return "demo"; }
  std::string Summary() const override {
    return "richtet eine Installation mit dem eingebauten Beispielprojekt ein";
  }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  std::string data_dir_;
};

}  // namespace korvan::app
