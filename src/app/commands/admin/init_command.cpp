// `korvan init`: sets up an installation below a base directory, or completes one.
#include "app/commands/admin/init_command.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <system_error>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/display_path.h"
#include "app/commands/db/db_database.h"
#include "app/program/current_project.h"
#include "app/program/data_dir.h"
#include "app/program/installation.h"
#include "app/program/program_tables.h"
#include "data/db/db_types.h"
#include "data/tables/std_db.h"
#include "storage/result_codes.h"

namespace korvan::app {
namespace fs = std::filesystem;
namespace {

std::string Quoted(const fs::path& path) {
  return "\"" + path.string() + "\"";
}

// The base directory itself or the nearest folder above it that exists.
fs::path NearestExisting(const fs::path& base) {
  fs::path existing = base;
  std::error_code error;
  while (!fs::exists(existing, error) && existing.has_relative_path()) {
    existing = existing.parent_path();
  }
  return existing;
}

// Refuses a base directory that is a file, lies below a file or cannot be written,
// before anything is created, so that such a call leaves no half-made installation.
void CheckBaseDirectory(const fs::path& base) {
  const fs::path existing = NearestExisting(base);
  const bool is_base = existing == base;
  const std::string subject = "Basisverzeichnis " + Quoted(base);
  std::error_code error;
  if (!fs::is_directory(existing, error)) {
    throw CommandError(is_base ? subject + " ist kein Verzeichnis"
                               : subject + " kann nicht angelegt werden: " + Quoted(existing) +
                                     " ist kein Verzeichnis");
  }
  if (::access(existing.c_str(), W_OK | X_OK) != 0) {
    throw CommandError(is_base ? subject + " ist nicht beschreibbar"
                               : subject + " kann nicht angelegt werden: " + Quoted(existing) +
                                     " ist nicht beschreibbar");
  }
}

void CreateFolder(const std::string& path, std::vector<std::string>& created) {
  std::error_code error;
  if (fs::is_directory(path, error)) return;
  fs::create_directories(path, error);
  if (error) {
    throw CommandError("Verzeichnis " + Quoted(path) +
                       " kann nicht angelegt werden: " + error.message());
  }
  created.push_back(path);
}

// Every folder the machine configuration names, except the program's own.
void CreateMachineFolders(const data::TMachineConfig& machine, std::vector<std::string>& created) {
  for (const data::TMachineConfig::TDirectoryEntry& entry : machine.Directories()) {
    if (entry.key == "ProgrammDirectory" || entry.path.empty()) continue;
    CreateFolder(entry.path, created);
  }
}

std::string ChosenProject(const Installation& installation, const std::string& requested) {
  std::string name = requested;
  if (name.empty()) name = CurrentProjectName(installation);
  if (name.empty()) name = kFirstProjectName;
  if (!IsValidProjectName(name)) {
    throw UsageError("Projektname \"" + name +
                     "\" ist kein Ordnername (nicht leer, ohne \"/\" und \"\\\")");
  }
  return name;
}

data::DatabaseCreation CreateAllDatabases(const data::TMachineConfig& machine) {
  data::DbTypeRegistry registry;
  data::RegisterDBTypes(registry, data::UnboundIoCallbacks());
  const data::DatabaseFiles files(machine.ToDatabaseDirectories());
  data::DatabaseCreation creation = data::CreateDatabases(files, registry);
  if (!creation.ok()) {
    throw CommandError(creation.failed_file + ": Datenbank kann nicht angelegt werden: " +
                       ResultCodeText(creation.result));
  }
  return creation;
}

// The databases created just now get the rows their tables start with (the built-in
// currency list, for one). Nobody else can be signed in to a database this young.
std::vector<std::string> FillNewDatabases(const data::TMachineConfig& machine,
                                          const data::DatabaseCreation& creation) {
  std::vector<std::string> reports;
  const data::DatabaseFiles files(machine.ToDatabaseDirectories());
  for (const data::DatabaseFile& file : files.all()) {
    if (std::find(creation.created.begin(), creation.created.end(), file.DataFileName()) ==
        creation.created.end()) {
      continue;
    }
    data::TCollectedMessages messages;
    data::TStdDb db(file);
    db.SetMessages(&messages);
    db.SetModifiedById(machine.SystemUserName());
    int result = db.DbOpen(true);
    data::TInitialRowsResult filled;
    if (result == storage::kOk) {
      filled = ProgramTables().FillInitialRows(db);
      result = filled.result;
      const int closed = db.DbClose();
      if (result == storage::kOk) result = closed;
    }
    if (result != storage::kOk) {
      throw CommandError(file.DataFileName() + ": die ersten Datensätze können nicht eingetragen " +
                         "werden: " + ResultCodeText(result) +
                         (filled.report.empty() ? "" : " (" + filled.report + ")"));
    }
    if (!filled.report.empty()) reports.push_back(filled.report);
  }
  return reports;
}

void WriteConfiguration(Installation& installation, const std::string& project,
                        std::vector<std::string>& written) {
  std::error_code error;
  const fs::path sys_file = installation.machine.SysConfigFile();
  if (!fs::exists(sys_file, error)) {
    installation.system.SaveAs(sys_file);
    written.push_back(sys_file.string());
  }
  const fs::path user_file = installation.machine.UserConfigFile();
  if (!fs::exists(user_file, error) || installation.user.Objektvorgabe() != project) {
    installation.user.SetObjektvorgabe(project);
    installation.user.SaveAs(user_file);
    written.push_back(user_file.string());
  }
}

void PrintList(const std::string& heading, const std::string& base,
               const std::vector<std::string>& paths, std::ostream& out) {
  if (paths.empty()) return;
  out << heading << " (" << paths.size() << "):\n";
  for (const std::string& path : paths) out << "  " << DisplayPath(base, path) << "\n";
}

}  // namespace

InstallationSetup SetUpInstallation(const std::string& base_dir, const std::string& project) {
  if (base_dir.empty()) throw UsageError("das Basisverzeichnis fehlt (-d DIR)");
  const fs::path base = fs::absolute(base_dir).lexically_normal();
  CheckBaseDirectory(base);

  Installation installation = LoadInstallation(base);
  InstallationSetup setup;
  setup.base_directory = installation.machine.BasisDirectory();
  setup.project_name = ChosenProject(installation, project);
  setup.project_directory = ProjectDirectory(installation.machine, setup.project_name);
  installation.machine.SetObjektDirectory(setup.project_directory);

  CreateMachineFolders(installation.machine, setup.directories);
  setup.databases = CreateAllDatabases(installation.machine);
  setup.initial_rows = FillNewDatabases(installation.machine, setup.databases);
  WriteConfiguration(installation, setup.project_name, setup.config_files);
  return setup;
}

void PrintInstallationSetup(const InstallationSetup& setup, std::ostream& out) {
  const std::string& base = setup.base_directory;
  if (!setup.Changed()) {
    out << "Installation " << base << " ist vollständig eingerichtet; nichts geändert.\n";
  } else {
    out << "Installation " << base << " eingerichtet:\n";
    PrintList("Verzeichnisse angelegt", base, setup.directories, out);
    PrintList("Datenbanken angelegt (Daten- und Schlüsseldatei)", base, setup.databases.created,
              out);
    PrintList("Steuerdateien angelegt", base, setup.databases.control_files, out);
    for (const std::string& report : setup.initial_rows) out << report << "\n";
    PrintList("Konfiguration geschrieben", base, setup.config_files, out);
    if (!setup.databases.existing.empty()) {
      out << "Bereits vorhanden: " << setup.databases.existing.size() << " Datenbanken\n";
    }
  }
  out << "Aktuelles Projekt: " << setup.project_name << " ("
      << DisplayPath(base, setup.project_directory) << ")\n";
}

void InitCommand::Define(CLI::App& app) {
  AddDataDirOption(app, data_dir_);
  app.add_option("--project", project_,
                 "Projektverzeichnis unter PROJEKTE, das zum aktuellen Projekt wird "
                 "(Vorgabe: das aktuelle Projekt, sonst \"Beispiel\")")
      ->type_name("NAME");
}

int InitCommand::Run(Streams& streams) {
  PrintInstallationSetup(SetUpInstallation(data_dir_, project_), streams.out);
  return kExitOk;
}

}  // namespace korvan::app
