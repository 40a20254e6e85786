// `korvan rebuild`: every database of an installation rebuilt from its data file.
#include "app/commands/admin/rebuild_command.h"

#include <ostream>

#include <CLI/CLI.hpp>

#include "app/commands/admin/check_command.h"
#include "app/program/data_dir.h"
#include "app/program/program_tables.h"
#include "data/integrity/data_rebuild.h"

namespace korvan::app {

int RunRebuild(const std::string& base_dir, const std::string& group, Streams& streams) {
  const MaintenanceTarget target(base_dir, group);
  data::TdmDataRebuild rebuild(target.files(), target.Me(), ProgramTables());
  const auto sign_in = target.SignIn(rebuild.ExistingFiles(group), true, "Neuaufbau");
  rebuild.HoldDirectories(sign_in.get());
  const std::vector<data::DatabaseRebuild> results =
      group.empty() ? rebuild.RebuildAll() : rebuild.RebuildGroup(group);
  int failed = 0;
  for (const data::DatabaseRebuild& result : results) {
    streams.out << result.data_file << ": ";
    if (result.ok()) {
      streams.out << "neu aufgebaut, " << result.records_copied << " Datensätze\n";
    } else {
      ++failed;
      streams.out << "FEHLER: " << result.error << "\n";
      streams.err << result.data_file << ": " << result.error << "\n";
    }
    for (const std::string& line : result.lines) streams.out << "  " << line << "\n";
  }
  streams.out << results.size() - static_cast<size_t>(failed) << " von " << results.size()
              << " Datenbanken neu aufgebaut\n";
  return failed > 0 ? kExitFailure : kExitOk;
}

void RebuildCommand::Define(CLI::App& app) {
  AddDataDirOption(app, data_dir_);
  app.add_option("--group", group_, "nur die Datenbanken dieser Gruppe (z. B. DB_Stamm)");
}

int RebuildCommand::Run(Streams& streams) {
  return RunRebuild(data_dir_, group_, streams);
}

}  // namespace korvan::app
