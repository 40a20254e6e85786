#include "app/commands/db/db_commands.h"

#include "app/commands/db/db_command.h"

namespace korvan::app {

void AddDbCommands(CommandList& commands) {
  commands.push_back(std::make_unique<DbCommand>());
}

}  // namespace korvan::app
