// The one place where the program's commands are registered.
#include "app/command.h"
#include "app/db_command.h"
#include "app/demo_command.h"

namespace korvan::app {

std::vector<std::unique_ptr<Command>> AllCommands() {
  std::vector<std::unique_ptr<Command>> commands;
  commands.push_back(std::make_unique<DemoCommand>());
  commands.push_back(std::make_unique<DbCommand>());
  return commands;
}

}  // namespace korvan::app
