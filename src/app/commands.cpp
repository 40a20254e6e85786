// The one place where the program's commands are registered.
#include "app/check_command.h"
#include "app/command.h"
#include "app/config_command.h"
#include "app/db_command.h"
#include "app/demo_command.h"
#include "app/edit_command.h"
#include "app/info_command.h"
#include "app/init_command.h"
#include "app/list_command.h"
#include "app/rebuild_command.h"
#include "app/reorg_command.h"
#include "app/serve_command.h"
#include "app/undo_command.h"

namespace korvan::app {

std::vector<std::unique_ptr<Command>> AllCommands() {
  std::vector<std::unique_ptr<Command>> commands;
  commands.push_back(std::make_unique<DemoCommand>());
  commands.push_back(std::make_unique<InitCommand>());
  commands.push_back(std::make_unique<InfoCommand>());
  commands.push_back(std::make_unique<DbCommand>());
  commands.push_back(std::make_unique<CheckCommand>());
  commands.push_back(std::make_unique<RebuildCommand>());
  commands.push_back(std::make_unique<ReorgCommand>());
  commands.push_back(std::make_unique<ConfigCommand>());
  commands.push_back(std::make_unique<ServeCommand>());
  commands.push_back(std::make_unique<ListCommand>());
  commands.push_back(std::make_unique<EditCommand>());
  commands.push_back(std::make_unique<UndoCommand>(false));
  commands.push_back(std::make_unique<UndoCommand>(true));
  return commands;
}

}  // namespace korvan::app
