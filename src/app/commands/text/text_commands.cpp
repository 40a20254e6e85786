#include "app/commands/text/text_commands.h"

#include "app/commands/text/text_command.h"

namespace korvan::app {

void AddTextCommands(CommandList& commands) {
  commands.push_back(std::make_unique<TextCommand>());
}

}  // namespace korvan::app
