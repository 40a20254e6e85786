#pragma once

#include <string>

#include "app/cli/command.h"

namespace CLI {
class App;
}

namespace korvan::app {

// `korvan config show [--system|--machine|--user]`: every option of the configuration
// files with its value in force and where it comes from (the default or the file).
// `korvan config set <section>.<key> <value>`: checks and stores one value in the file
// that holds the key.
class ConfigCommand : public Command {
 public:
  std::string Name() const override { return "config"; }
  std::string Summary() const override {
    return "zeigt oder ändert die System-, Rechner- und Benutzerkonfiguration";
  }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  int Show(Streams& streams) const;
  int Set(Streams& streams) const;

  CLI::App* show_ = nullptr;
  CLI::App* set_ = nullptr;
  std::string data_dir_;
  bool system_ = false;
  bool machine_ = false;
  bool user_ = false;
  std::string key_;
  std::string value_;
};

}  // namespace korvan::app
