#pragma once

#include <CLI/CLI.hpp>

namespace korvan::app {

// Makes the help texts of `app` German: the labels of its formatter, the help flag, the
// names of the groups of options and commands. Commands and options added to `app`
// afterwards inherit all of it.
void UseGermanHelp(CLI::App& app);
// The help flags of the commands below `app` into the German group of options: a command
// makes its help flag before it takes over the defaults of its parent.
void GroupHelpFlags(CLI::App& app);

}  // namespace korvan::app
