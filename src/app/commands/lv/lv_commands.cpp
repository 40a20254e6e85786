#include "app/commands/lv/lv_commands.h"

#include <memory>
#include <vector>

#include "app/commands/lv/lv_delete_command.h"
#include "app/commands/lv/lv_edit_commands.h"
#include "app/commands/lv/lv_list_command.h"
#include "app/commands/lv/lv_new_command.h"
#include "app/commands/lv/lv_qty_command.h"
#include "app/commands/lv/lv_show_command.h"

namespace korvan::app {
namespace {

// `korvan lv <operation>`: the operations as sub-commands, each with the options every
// LV operation has.
class LvCommand : public LvOperationGroup {
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
};

}  // namespace

void AddLvCommands(CommandList& commands) {
  commands.push_back(std::make_unique<LvCommand>());
}

}  // namespace korvan::app
