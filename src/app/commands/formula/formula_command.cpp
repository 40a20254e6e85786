#include "app/commands/formula/formula_command.h"

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/program/data_dir.h"

namespace korvan::app {
namespace {

void AddRebOption(CLI::App& app, std::string& reb) {
  app.add_option("--reb", reb, "Regelwerk der Formelnummern: 23.003 oder 23.004")
      ->check(CLI::IsMember({"23.003", "23.004"}));
}

void AddVariableOption(CLI::App& app, std::vector<std::string>& variables) {
  app.add_option("--var", variables, "Variable NAME=WERT (mehrfach möglich), z. B. Breite=2,5")
      ->type_name("NAME=WERT")
      ->allow_extra_args(false);
}

}  // namespace

void FormulaCommand::Define(CLI::App& app) {
  app.require_subcommand(1);
  eval_ = app.add_subcommand("eval", "berechnet Formelzeilen, z. B. '3,50*2,10='");
  eval_->add_option("formel", formulas_, "eine oder mehrere Formeln")->required();
  eval_->add_flag("--gon", gon_, "Winkel in Gon statt in Grad");
  AddRebOption(*eval_, reb_);
  AddVariableOption(*eval_, variables_);
  eval_->add_flag("--json", json_, "Ausgabe als JSON");

  sheet_ = app.add_subcommand("sheet", "berechnet eine Datei mit Aufmaßzeilen und ihre Summe");
  sheet_->add_option("datei", file_, "Aufmaßzeilen als Text (UTF-8)")->required();
  sheet_->add_flag("--gon", gon_, "Winkel in Gon statt in Grad");
  reb_ = "23.003";
  AddRebOption(*sheet_, reb_);
  AddVariableOption(*sheet_, variables_);
  sheet_->add_flag("--runden", round_lines_,
                   "Ergebnis jeder Zeile auf drei Nachkommastellen runden");
  sheet_->add_option("--protokoll", protocol_file_,
                     "schreibt das Aufmaßprotokoll (Zeilen mit Fehlern) in diese Datei");
  sheet_->add_flag("--json", json_, "Ausgabe als JSON");
  AddDataDirOption(*sheet_, data_dir_);
  sheet_data_ = sheet_->get_option("-d");

  list_ = app.add_subcommand("list", "zeigt den Formelkatalog");
  list_->add_flag("--json", json_, "Ausgabe als JSON");
  AddDataDirOption(*list_, data_dir_);
  list_data_ = list_->get_option("-d");
}

int FormulaCommand::Run(Streams& streams) {
  FormulaOptions options{gon_, reb_, variables_, json_, round_lines_, protocol_file_};
  if (eval_->parsed()) {
    // A formula alone is the language's; --reb reads it as a free measurement line.
    if (eval_->get_option("--reb")->count() == 0) options.reb.clear();
    return RunFormulaEval(formulas_, options, streams);
  }
  if (sheet_->parsed()) {
    return RunFormulaSheet(file_, data_dir_, sheet_data_->count() > 0, options, streams);
  }
  if (list_->parsed()) return RunFormulaList(data_dir_, list_data_->count() > 0, json_, streams);
  throw UsageError("ein Unterbefehl fehlt (eval, sheet, list)");
}

}  // namespace korvan::app
