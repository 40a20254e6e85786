#include "app/commands/lv/lv_commands.h"

#include <memory>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/commands/lv/lv_delete_command.h"
#include "app/commands/lv/lv_edit_commands.h"
#include "app/commands/lv/lv_list_command.h"
#include "app/commands/lv/lv_new_command.h"
#include "app/commands/lv/lv_qty_command.h"
#include "app/commands/lv/lv_show_command.h"
#include "app/program/data_dir.h"

namespace korvan::app {
namespace {

// `korvan lv <operation>`: the operations as sub-commands, each with the options every
// LV operation has.
class LvCommand : public Command {
 public:
  LvCommand() {
    operations_.push_back(std::make_unique<LvNewCommand>());
    operations_.push_back(std::make_unique<LvListCommand>());
    operations_.push_back(std::make_unique<LvDeleteCommand>());
    operations_.push_back(std::make_unique<LvShowCommand>());
    AddLvEditOperations(operations_);
    operations_.push_back(std::make_unique<LvQtyCommand>());
  }
  std::string Name() const override { return "lv"; }
  std::string Summary() const override {
    return "Leistungsverzeichnisse eines Projekts: anlegen, auflisten, zeigen, bearbeiten, löschen";
  }

  void Define(CLI::App& app) override {
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

  int Run(Streams& streams) override {
    for (size_t i = 0; i < subs_.size(); ++i) {
      if (subs_[i]->parsed()) return operations_[i]->Run(streams);
    }
    return kExitUsage;
  }

 private:
  std::vector<std::unique_ptr<LvOperation>> operations_;
  std::vector<CLI::App*> subs_;
};

}  // namespace

void AddLvCommands(CommandList& commands) {
  commands.push_back(std::make_unique<LvCommand>());
}

}  // namespace korvan::app
