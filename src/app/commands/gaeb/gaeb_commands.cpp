#include "app/commands/gaeb/gaeb_commands.h"

#include "app/commands/gaeb/gaeb_command.h"

namespace korvan::app {

void AddGaebCommands(CommandList& commands) {
  commands.push_back(std::make_unique<GaebCommand>());
}

}  // namespace korvan::app
