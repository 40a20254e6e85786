#include "app/demo_command.h"

#include <filesystem>
#include <ostream>
#include <system_error>

#include <CLI/CLI.hpp>

#include "app/command_error.h"
#include "app/data_dir.h"

namespace korvan::app {

namespace fs = std::filesystem;

void DemoCommand::Define(CLI::App& app) { AddDataDirOption(app, data_dir_); }

int DemoCommand::Run(Streams& streams) {
  std::error_code ec;
  fs::create_directories(data_dir_, ec);
  if (ec) {
    throw CommandError("Datenverzeichnis '" + data_dir_ +
                       "' kann nicht angelegt werden: " + ec.message());
  }
  streams.out << "Beispieldaten in " << data_dir_ << ":\n";
  int files = 0;
  for (const auto& entry : fs::directory_iterator(data_dir_)) {
    streams.out << "  " << entry.path().filename().string() << "\n";
    ++files;
  }
  streams.out << files << " Dateien\n";
  return kExitOk;
}

}  // namespace korvan::app
