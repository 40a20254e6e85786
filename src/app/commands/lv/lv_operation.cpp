#include "app/commands/lv/lv_operation.h"

#include <CLI/CLI.hpp>

#include "app/program/data_dir.h"

namespace korvan::app {

void AddLvArgument(CLI::App& app, std::string& lv) {
  app.add_option("lv", lv, "das LV: seine Nummer oder sein Name")->required();
}

void LvOperationGroup::Define(CLI::App& app) {
  app.require_subcommand(1);
  for (const std::unique_ptr<LvOperation>& operation : operations_) {
    CLI::App* sub = app.add_subcommand(operation->Name(), operation->Summary());
    operation->Define(*sub);
    sub->add_option("--project", operation->project,
                    "Projektordner unter dem Projektstamm (sonst das aktuelle Projekt)");
    sub->add_flag("--json", operation->json, "Ausgabe als JSON für Skripte");
    AddDataDirOption(*sub, operation->data_dir);
    subs_.push_back(sub);
  }
}

int LvOperationGroup::Run(Streams& streams) {
  for (std::size_t i = 0; i < subs_.size(); ++i) {
    if (subs_[i]->parsed()) return operations_[i]->Run(streams);
  }
  return kExitUsage;
}

}  // namespace korvan::app
