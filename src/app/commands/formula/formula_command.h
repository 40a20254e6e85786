#pragma once

#include <string>
#include <vector>

#include "app/cli/command.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace korvan::app {

// `korvan formula eval|sheet|list`: the measurement formulas on their own. `eval`
// evaluates formula lines ("3,50*2,10="), `sheet` a file of measurement lines with
// numbered formulas and their sum, `list` shows the formula catalogue.
class FormulaCommand : public Command {
 public:
  std::string Name() const override { return "formula"; }
  std::string Summary() const override {
    return "berechnet Aufmaßformeln (REB 23.003, 23.004) und zeigt den Formelkatalog";
  }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  CLI::App* eval_ = nullptr;
  CLI::App* sheet_ = nullptr;
  CLI::App* list_ = nullptr;
  CLI::Option* sheet_data_ = nullptr;
  CLI::Option* list_data_ = nullptr;
  std::vector<std::string> formulas_;
  std::vector<std::string> variables_;
  std::string reb_;
  std::string file_;
  std::string data_dir_;
  std::string protocol_file_;
  bool gon_ = false;
  bool json_ = false;
  bool round_lines_ = false;
};

struct FormulaOptions {
  bool gon = false;
  std::string reb;                     // empty: the formula language alone
  std::vector<std::string> variables;  // NAME=WERT
  bool json = false;
  bool round_lines = false;   // FREBZeilenRunden
  std::string protocol_file;  // the measurement protocol; empty: none
};

// The work of the three operations; each returns the exit code (1 when a formula or a
// line had an error, which is printed in its place).
int RunFormulaEval(const std::vector<std::string>& formulas, const FormulaOptions& options,
                   Streams& streams);
int RunFormulaSheet(const std::string& file, const std::string& data_dir, bool named,
                    const FormulaOptions& options, Streams& streams);
int RunFormulaList(const std::string& data_dir, bool named, bool json, Streams& streams);

}  // namespace korvan::app
