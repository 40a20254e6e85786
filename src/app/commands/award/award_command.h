#pragma once

#include "app/cli/command.h"

namespace korvan::app {

// `korvan award <lv> <bidder>`: the award of one bidder's bid.
void AddAwardCommands(CommandList& commands);

}  // namespace korvan::app
