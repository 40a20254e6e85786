#pragma once

#include "app/cli/command.h"

namespace korvan::app {

// Lists of data modules and the journal that takes their edits back: list, edit, undo,
// redo.
void AddListCommands(CommandList& commands);

}  // namespace korvan::app
