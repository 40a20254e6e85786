#pragma once

#include "app/cli/command.h"

namespace korvan::app {

// `korvan oz format` and `korvan oz mask`: checking a numbering against a mask without a
// project.
void AddOzCommands(CommandList& commands);

}  // namespace korvan::app
