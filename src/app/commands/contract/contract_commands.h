#pragma once

#include "app/cli/command.h"

namespace korvan::app {

// Contracts of a project: `korvan contract list|show|new|set`.
void AddContractCommands(CommandList& commands);

}  // namespace korvan::app
