#pragma once

#include "app/cli/command.h"

namespace korvan::app {

// The storage maintenance tool `korvan db`.
void AddDbCommands(CommandList& commands);

}  // namespace korvan::app
