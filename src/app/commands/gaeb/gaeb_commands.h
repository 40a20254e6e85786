#pragma once

#include "app/cli/command.h"

namespace korvan::app {

// GAEB exchange files: `korvan gaeb check`.
void AddGaebCommands(CommandList& commands);

}  // namespace korvan::app
