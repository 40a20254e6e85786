#include "app/program/data_dir.h"

#include <cstdlib>

#include <CLI/CLI.hpp>

namespace korvan::app {

namespace {
std::string EnvOrEmpty(const char* name) {
  const char* value = std::getenv(name);
  return value ? std::string(value) : std::string();
}
}  // namespace

std::string DefaultDataDir() {
  if (auto dir = EnvOrEmpty("KORVAN_DATA"); !dir.empty()) return dir;
  if (auto xdg = EnvOrEmpty("XDG_DATA_HOME"); !xdg.empty()) return xdg + "/korvan";
  if (auto home = EnvOrEmpty("HOME"); !home.empty()) return home + "/.local/share/korvan";
  return "./korvan-data";
}

void AddDataDirOption(CLI::App& app, std::string& data_dir) {
  data_dir = DefaultDataDir();
  app.add_option("-d,--data", data_dir,
                 "Datenverzeichnis (Vorgabe: $KORVAN_DATA, $XDG_DATA_HOME/korvan oder "
                 "~/.local/share/korvan)")
      ->type_name("VERZEICHNIS");
}

}  // namespace korvan::app
