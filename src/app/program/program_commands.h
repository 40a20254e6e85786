#pragma once

#include "app/cli/command.h"

namespace korvan::app {

// The long-running program: serve.
void AddProgramCommands(CommandList& commands);

}  // namespace korvan::app
