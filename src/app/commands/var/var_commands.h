#pragma once

#include "app/cli/command.h"

namespace korvan::app {

// Variables of LV items: `korvan var set` and `korvan var list`.
void AddVarCommands(CommandList& commands);

}  // namespace korvan::app
