#pragma once

#include <string>

#include "app/cli/command.h"

namespace korvan::app {

// Lists the database groups of the installation rooted at `base_dir` with their files,
// record counts and sizes, then the warnings of the file size check. A database that
// cannot be read is reported (on `err` too) and the listing goes on; the result is then
// kExitFailure. Throws CommandError when there is no installation at `base_dir`.
int RunInfo(const std::string& base_dir, Streams& streams);

// `korvan info [-d DIR]`.
class InfoCommand : public Command {
 public:
  std::string Name() const override { return "info"; }
  std::string Summary() const override {
    return "listet die Datenbanken einer Installation mit Datensätzen, Größen und Größenwarnungen";
  }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  std::string data_dir_;
};

}  // namespace korvan::app
