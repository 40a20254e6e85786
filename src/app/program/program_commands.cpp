#include "app/program/program_commands.h"

#include "app/program/serve_command.h"

namespace korvan::app {

void AddProgramCommands(CommandList& commands) {
  commands.push_back(std::make_unique<ServeCommand>());
}

}  // namespace korvan::app
