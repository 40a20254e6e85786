#pragma once

#include "app/cli/command.h"

namespace korvan::app {

// The measurement formulas: `korvan formula eval|sheet|list`.
void AddFormulaCommands(CommandList& commands);

}  // namespace korvan::app
