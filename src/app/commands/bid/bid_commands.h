#pragma once

#include "app/cli/command.h"

namespace korvan::app {

// Bidders and their bids: `korvan bidder add|list` and `korvan bid
// set|check|show|import`.
void AddBidCommands(CommandList& commands);

}  // namespace korvan::app
