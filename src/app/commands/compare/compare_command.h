#pragma once

#include "app/cli/command.h"

namespace korvan::app {

// `korvan compare`: the price comparison of an LV's bids with the rank list, for people,
// spreadsheets, scripts and as a chart.
void AddCompareCommands(CommandList& commands);

}  // namespace korvan::app
