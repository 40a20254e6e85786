#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/cli/command.h"
#include "app/program/installation.h"
#include "data/db/control_list.h"
#include "data/db/db_groups.h"
#include "data/db/directory_sign_in.h"

namespace korvan::app {

// What the maintenance commands (check, rebuild, reorg) work on: the databases of the
// installation rooted at a base directory, with its current project.
class MaintenanceTarget {
 public:
  // Throws CommandError when there is no installation at `base_dir`, UsageError for a
  // group that does not exist.
  MaintenanceTarget(const std::string& base_dir, const std::string& group);

  const data::DatabaseFiles& files() const { return *files_; }
  const std::string& group() const { return group_; }
  // The system directory's "SYS" folder, where protocols go.
  std::string SysFolder() const;
  // Who signs into the directories' control files.
  data::ControlUser Me() const;
  // Signs in to every directory of the files for the whole run: shared for the check,
  // exclusively for a rebuild or reorg (`action`, "Neuaufbau", ...), which then must not
  // start while anybody else works there, so that it changes nothing rather than only
  // some of the databases. Throws CommandError naming the directory and the user.
  std::unique_ptr<data::TDirectorySignIn> SignIn(
      const std::vector<const data::DatabaseFile*>& files, bool exclusive,
      const std::string& action) const;

 private:
  Installation installation_;
  std::unique_ptr<data::DatabaseFiles> files_;
  std::string group_;
};

// `korvan check [-d DIR] [--dry-run] [--group G]`: the integrity check over the
// installation's databases. Prints the log and writes it to "SYS/Integrity_*.log";
// the result is kExitFailure when problems remain.
int RunCheck(const std::string& base_dir, bool dry_run, const std::string& group, bool verbose,
             Streams& streams);

class CheckCommand : public Command {
 public:
  std::string Name() const override { return "check"; }
  std::string Summary() const override {
    return "prüft die Daten einer Installation gegen die Regeln ihrer Tabellen und repariert";
  }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  std::string data_dir_;
  std::string group_;
  bool dry_run_ = false;
  bool verbose_ = false;
};

}  // namespace korvan::app
