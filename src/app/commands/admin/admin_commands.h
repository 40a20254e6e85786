#pragma once

#include "app/cli/command.h"

namespace korvan::app {

// Setting up and looking after an installation: demo, init, info, check, rebuild, reorg,
// config.
void AddAdminCommands(CommandList& commands);

}  // namespace korvan::app
