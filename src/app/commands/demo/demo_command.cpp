// `korvan demo`: the road of one bid on the built-in sample, or with --setup-only a sample
// installation with currencies and units and what it then holds.
#include "app/commands/demo/demo_command.h"

#include <ostream>

#include <CLI/CLI.hpp>

#include "app/commands/admin/info_command.h"
#include "app/commands/admin/init_command.h"
#include "app/commands/demo/demo_road.h"
#include "app/commands/demo/sample_master_data.h"
#include "app/program/data_dir.h"

namespace korvan::app {

void DemoCommand::Define(CLI::App& app) {
  AddDataDirOption(app, data_dir_);
  app.add_flag("--setup-only", setup_only_,
               "nur eine Installation mit Beispiel-Währungen und -Einheiten einrichten");
}

int DemoCommand::Run(Streams& streams) {
  if (!setup_only_) {
    demo::DemoRoad(data_dir_, streams).Walk();
    return kExitOk;
  }
  PrintInstallationSetup(SetUpInstallation(data_dir_, ""), streams.out);
  streams.out << "\n";
  demo::AddSampleMasterData(data_dir_, streams.out);
  streams.out << "\n";
  return RunInfo(data_dir_, streams);
}

}  // namespace korvan::app
