#pragma once

#include "app/cli/command.h"

namespace korvan::app {

// The calculation of unit prices: `korvan calc item|set|run` and the price operations
// `korvan prices copy|delete|factor|percent`.
void AddCalcCommands(CommandList& commands);

}  // namespace korvan::app
