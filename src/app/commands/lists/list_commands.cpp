#include "app/commands/lists/list_commands.h"

#include "app/commands/lists/edit_command.h"
#include "app/commands/lists/list_command.h"
#include "app/commands/lists/undo_command.h"

namespace korvan::app {

void AddListCommands(CommandList& commands) {
  commands.push_back(std::make_unique<ListCommand>());
  commands.push_back(std::make_unique<EditCommand>());
  commands.push_back(std::make_unique<UndoCommand>(false));
  commands.push_back(std::make_unique<UndoCommand>(true));
}

}  // namespace korvan::app
