#pragma once

#include <string>

namespace CLI {
class App;
}

namespace korvan::app {

// The data directory used when -d/--data is not given: $KORVAN_DATA, else
// $XDG_DATA_HOME/korvan, else ~/.local/share/korvan.
std::string DefaultDataDir();

// Declares `-d, --data DIR` on a command, preset with DefaultDataDir().
void AddDataDirOption(CLI::App& app, std::string& data_dir);

}  // namespace korvan::app
