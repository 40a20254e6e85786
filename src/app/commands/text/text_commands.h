#pragma once

#include "app/cli/command.h"

namespace korvan::app {

// Long texts on their own: `korvan text to-plain` and `korvan text to-rtf`.
void AddTextCommands(CommandList& commands);

}  // namespace korvan::app
