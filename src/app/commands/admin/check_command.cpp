// `korvan check`: the integrity check over the databases of an installation.
#include "app/commands/admin/check_command.h"

#include <climits>
#include <filesystem>
#include <optional>
#include <ostream>
#include <set>
#include <sstream>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/progress_line.h"
#include "app/program/command_sign_in.h"
#include "app/program/current_project.h"
#include "app/program/data_dir.h"
#include "app/program/program_tables.h"
#include "data/db/path_types.h"
#include "data/integrity/data_integrity.h"
#include "data/integrity/data_rebuild.h"

namespace korvan::app {
namespace fs = std::filesystem;
namespace {

// The log of the run: of every table when `verbose`, else of the tables with findings.
std::string LogText(const data::TDataIntegrity& run, bool verbose) {
  std::vector<data::TDiLogItem> shown;
  for (const data::TDiLogItem& item : run.GetLogItems()) {
    if (verbose || item.FRecordCountDiffers || !item.FDISubItems.empty()) shown.push_back(item);
  }
  std::ostringstream text;
  data::AddLogToStream(shown, text);
  std::string lines = text.str();
  // On the terminal lines end the local way.
  std::erase(lines, '\r');
  return lines;
}

}  // namespace

MaintenanceTarget::MaintenanceTarget(const std::string& base_dir, const std::string& group)
    : installation_(LoadInstallation(RequireInstallation(base_dir))), group_(group) {
  OpenCurrentProject(installation_);
  if (!group_.empty() && data::FindDbGroup(group_) == nullptr) {
    throw UsageError("unbekannte Datenbankgruppe \"" + group_ + "\"");
  }
  files_ = std::make_unique<data::DatabaseFiles>(installation_.machine.ToDatabaseDirectories());
}

std::string MaintenanceTarget::SysFolder() const {
  return data::DirectoryOfPathType(data::kPathSystemSys,
                                   installation_.machine.ToDatabaseDirectories());
}

data::ControlUser MaintenanceTarget::Me() const {
  return CommandUser(installation_.machine.SystemUserName());
}

std::unique_ptr<data::TDirectorySignIn> MaintenanceTarget::SignIn(
    const std::vector<const data::DatabaseFile*>& files, bool exclusive,
    const std::string& action) const {
  return SignInToDirectoriesOf(Me(), files, exclusive, action);
}

int RunCheck(const std::string& base_dir, bool dry_run, const std::string& group, bool verbose,
             Streams& streams) {
  const MaintenanceTarget target(base_dir, group);
  data::TdmDataRebuild rebuild(target.files(), target.Me(), ProgramTables());
  // Repairs write while others may work, as any user does; a rebuild must wait.
  const auto sign_in = target.SignIn(rebuild.ExistingFiles(group), false, "Prüfung");
  data::TDataIntegrity run(rebuild.Registry());
  ProgressLine progress(streams.err);
  run.FOnProgress = [&](const data::TStdTB& table, int checked, int total) {
    progress.Show(table.Db().Name() + " " + table.TableName(), checked + 1, total);
  };
  int problems = rebuild.IntegrityCheck(run, dry_run, group);
  progress.End();
  for (const std::string& line : rebuild.RecoveryLines()) streams.out << line << "\n";
  streams.out << LogText(run, verbose);
  const fs::path log_file = run.AddLogToFile(target.SysFolder());
  streams.out << run.GetLogItems().size() << " Tabellen in " << rebuild.ExistingFiles(group).size()
              << " Datenbanken geprüft: " << run.RecordsChecked() << " Record(s) untersucht, "
              << problems << " Problem(e)" << (dry_run ? " (Trockenlauf)" : "") << "\n";
  streams.out << "Protokoll: " << log_file.string()
              << (verbose ? "" : " (alle Tabellen: --verbose)") << "\n";
  if (!dry_run && problems > 0) {
    // Repairs are problems of the first run; what remains is what a second look finds.
    data::TDataIntegrity again(rebuild.Registry());
    problems = rebuild.IntegrityCheck(again, true, group);
    streams.out << "nach der Reparatur: " << problems << " Problem(e)\n";
  }
  if (problems > 0 && !dry_run) {
    streams.out << "Was die Prüfung nicht reparieren kann, behebt oft \"korvan rebuild\" "
                   "(baut die Datenbanken aus ihren Datendateien neu auf).\n";
  }
  return problems > 0 ? kExitFailure : kExitOk;
}

void CheckCommand::Define(CLI::App& app) {
  AddDataDirOption(app, data_dir_);
  app.add_flag("--dry-run", dry_run_, "nur berichten, nichts ändern");
  app.add_option("--group", group_, "nur die Datenbanken dieser Gruppe (z. B. DB_Stamm)");
  app.add_flag("--verbose", verbose_, "zeigt jede geprüfte Tabelle, nicht nur die mit Befunden");
}

int CheckCommand::Run(Streams& streams) {
  return RunCheck(data_dir_, dry_run_, group_, verbose_, streams);
}

}  // namespace korvan::app
