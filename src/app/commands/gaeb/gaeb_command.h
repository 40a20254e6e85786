#pragma once

#include <string>

#include "app/cli/command.h"
#include "app/commands/gaeb/gaeb_export_command.h"
#include "app/commands/gaeb/gaeb_import_command.h"

namespace CLI {
class App;
}

namespace korvan::app {

// `korvan gaeb export ...` writes an LV as a GAEB DA XML file (gaeb_export_command.h).
// `korvan gaeb import ...` reads one into a new LV (gaeb_import_command.h).
// `korvan gaeb check FILE [--schemas DIR] [--json]` reads any GAEB DA XML file and lists
// what it finds, each with its line: what the reader could not read, the structure rules,
// the arithmetic of the prices and, with --schemas, the official schema of the file's
// phase. Exit code 1 when there is an error.
class GaebCommand : public Command {
 public:
  std::string Name() const override { return "gaeb"; }
  std::string Summary() const override {
    return "GAEB DA XML: LV ausgeben (export), LV einlesen (import), Dateien prüfen (check)";
  }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  CLI::App* check_ = nullptr;
  CLI::App* export_ = nullptr;
  CLI::App* import_ = nullptr;
  GaebExportCommand export_command_;
  GaebImportCommand import_command_;
  std::string file_;
  std::string schemas_;
  bool json_ = false;
};

}  // namespace korvan::app
