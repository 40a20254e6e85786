#pragma once

#include "app/cli/command.h"

namespace korvan::app {

// Currencies of a project: `korvan currency convert`.
void AddCurrencyCommands(CommandList& commands);

}  // namespace korvan::app
