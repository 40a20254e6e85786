#pragma once

#include "app/cli/command.h"

namespace korvan::app {

// The LVs of a project: `korvan lv new`, `lv list`, `lv delete`.
void AddLvCommands(CommandList& commands);

}  // namespace korvan::app
