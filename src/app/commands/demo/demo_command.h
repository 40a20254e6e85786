#pragma once

#include <string>

#include "app/cli/command.h"

namespace korvan::app {

// `korvan demo`: the road of one bid on the built-in sample project; with --setup-only just
// an installation with the sample's currencies and units.
class DemoCommand : public Command {
 public:
  std::string Name() const override { return "demo"; }
  std::string Summary() const override {
    return "zeigt Schritt für Schritt den Weg eines Angebots am eingebauten Beispielprojekt";
  }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  std::string data_dir_;
  bool setup_only_ = false;
};

}  // namespace korvan::app
