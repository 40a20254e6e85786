// `korvan reorg`: the reorganisation by copying, step by step.
#include "app/commands/admin/reorg_command.h"

#include <ostream>

#include <CLI/CLI.hpp>

#include "app/commands/admin/check_command.h"
#include "app/program/data_dir.h"
#include "app/program/program_tables.h"
#include "data/integrity/data_reorg.h"

namespace korvan::app {

int RunReorg(const std::string& base_dir, Streams& streams) {
  const MaintenanceTarget target(base_dir, "");
  data::TdmDataRebuild rebuild(target.files(), target.Me(), ProgramTables());
  const auto sign_in = target.SignIn(rebuild.ExistingFiles(), true, "Reorganisation");
  rebuild.HoldDirectories(sign_in.get());
  // The steps take minutes on large projects: say which one is running as it starts.
  const auto announce = [&](const std::string& step) {
    streams.err << step << " ...\n" << std::flush;
  };
  const data::TReorgResult result =
      data::doDmDataReorgWithCopy(rebuild, target.SysFolder(), announce);
  for (const data::TReorgStep& step : result.steps) {
    streams.out << step.name << ": " << (step.ok ? "OK" : "FEHLER") << "\n";
    for (const std::string& detail : step.details) streams.out << "  " << detail << "\n";
  }
  if (!result.backup_folder.empty()) {
    streams.out << "Datensicherung: " << result.backup_folder.string() << "\n";
  }
  return result.ok() ? kExitOk : kExitFailure;
}

void ReorgCommand::Define(CLI::App& app) {
  AddDataDirOption(app, data_dir_);
}

int ReorgCommand::Run(Streams& streams) {
  return RunReorg(data_dir_, streams);
}

}  // namespace korvan::app
