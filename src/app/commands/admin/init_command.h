#pragma once

#include <string>
#include <vector>

#include "app/cli/command.h"
#include "data/db/db_groups.h"

namespace korvan::app {

// What setting up an installation did. Paths are absolute; directories end in the path
// separator.
struct InstallationSetup {
  std::string base_directory;
  std::string project_name;
  std::string project_directory;
  std::vector<std::string> directories;   // folders created now
  data::DatabaseCreation databases;       // databases and control files created now
  std::vector<std::string> config_files;  // configuration files written now
  std::vector<std::string> initial_rows;  // what the new databases were filled with

  bool Changed() const {
    return !directories.empty() || !databases.created.empty() || !databases.control_files.empty() ||
           !config_files.empty();
  }
};

// Sets up the installation rooted at `base_dir`, or completes it: creates the folders
// of the machine directories and of the project `project` (empty: the current project,
// else "Beispiel"), makes that project the user's current one, creates every database
// group in each of its directories that exists, and writes the system and user
// configuration files when they are missing. What exists already is left as it is.
// Throws CommandError naming the path when the base directory is not a directory or
// cannot be written, and when a folder, database or file cannot be created; UsageError
// for a project name that is not one folder name.
InstallationSetup SetUpInstallation(const std::string& base_dir, const std::string& project);

// The report of `korvan init`.
void PrintInstallationSetup(const InstallationSetup& setup, std::ostream& out);

// `korvan init [-d DIR] [--project NAME]`.
class InitCommand : public Command {
 public:
  std::string Name() const override { return "init"; }
  std::string Summary() const override {
    return "richtet eine Installation ein: Verzeichnisse, erstes Projekt, alle Datenbanken";
  }
  void Define(CLI::App& app) override;
  int Run(Streams& streams) override;

 private:
  std::string data_dir_;
  std::string project_;
};

}  // namespace korvan::app
