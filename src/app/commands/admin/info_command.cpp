// `korvan info`: what the databases of an installation hold and how big they are.
#include "app/commands/admin/info_command.h"

#include <cstdint>
#include <exception>
#include <filesystem>
#include <ostream>
#include <system_error>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/display_path.h"
#include "app/commands/db/db_blocks.h"
#include "app/commands/db/db_database.h"
#include "app/program/current_project.h"
#include "app/program/data_dir.h"
#include "app/program/installation.h"
#include "data/db/db_groups.h"
#include "data/db/db_types.h"
#include "data/db/file_size_check.h"
#include "storage/db_kernel.h"
#include "storage/result_codes.h"

namespace korvan::app {
namespace fs = std::filesystem;
namespace {

// What one database holds, or why that could not be found out.
struct DatabaseState {
  int64_t data_bytes = 0;
  int64_t key_bytes = 0;
  int32_t records = 0;
  std::string problem;  // empty: readable
};

int64_t SizeOf(const std::string& path) {
  std::error_code error;
  const auto size = fs::file_size(path, error);
  return error ? 0 : static_cast<int64_t>(size);
}

// Why the kernel's record count failed: the block walk names the place.
std::string CountProblem(const data::DatabaseFile& file, int32_t count) {
  const std::string walked = WalkDataFile(file.DataFileName(), [](const DataBlock&) {});
  if (!walked.empty()) return walked;
  return count == -3 ? "Datensatz ohne Tabellenbuchstaben \"A\"..\"Z\""
                     : "Datenblöcke nicht lesbar";
}

std::string ReadProblem(const data::DatabaseFile& file, const data::DbTypeRegistry& registry,
                        DatabaseState& state) {
  std::error_code error;
  if (!fs::exists(file.DataFileName(), error)) return "Datendatei fehlt";
  if (!fs::exists(file.KeyFileName(), error)) return "Schlüsseldatei fehlt";
  data::DatabaseHandle handle;
  if (const int opened = file.Open(registry, false, handle); opened != storage::kOk) {
    return ResultCodeText(opened);
  }
  int32_t count = 0;
  if (const int counted = storage::iDK_RecordCount(handle.get(), 0, &count);
      counted != storage::kOk) {
    return ResultCodeText(counted);
  }
  if (count < 0) return CountProblem(file, count);
  state.records = count;
  return "";
}

DatabaseState InspectDatabase(const data::DatabaseFile& file,
                              const data::DbTypeRegistry& registry) {
  DatabaseState state;
  state.data_bytes = SizeOf(file.DataFileName());
  state.key_bytes = SizeOf(file.KeyFileName());
  try {
    state.problem = ReadProblem(file, registry, state);
  } catch (const std::exception& error) {
    state.problem = error.what();
  }
  return state;
}

bool IsDirectory(const std::string& path) {
  std::error_code error;
  return fs::is_directory(path, error);
}

// The databases of a group in the directories that exist.
std::vector<const data::DatabaseFile*> FilesOfGroup(const data::DatabaseFiles& files,
                                                    const data::DbGroupDefinition& group) {
  std::vector<const data::DatabaseFile*> found;
  for (const data::DatabaseFile& file : files.all()) {
    if (file.group_name() == group.name && IsDirectory(file.directory())) found.push_back(&file);
  }
  return found;
}

class InfoReport {
 public:
  InfoReport(std::string base, Streams& streams) : base_(std::move(base)), streams_(streams) {}

  void Group(const data::DbGroupDefinition& group,
             const std::vector<const data::DatabaseFile*>& files,
             const data::DbTypeRegistry& registry) {
    streams_.out << group.name << " (" << group.type_letter << ", "
                 << data::DbTypeDescription(group.type_letter) << ")\n";
    for (const data::DatabaseFile* file : files) Database(*file, InspectDatabase(*file, registry));
  }

  void Totals() const {
    streams_.out << "Summe: " << CountOf(databases_, "Datenbank", "Datenbanken") << ", "
                 << CountOf(records_, "Datensatz", "Datensätze") << ", " << bytes_ << " Bytes";
    if (problems_ > 0) streams_.out << ", " << problems_ << " nicht lesbar";
    streams_.out << "\n";
  }

  void SizeWarnings() const {
    std::vector<std::string> messages;
    data::CheckFileSizes(checked_files_, data::kFileSizeWarningLimit, messages);
    if (messages.empty()) {
      streams_.out << "Dateigrößen: keine Warnungen\n";
      return;
    }
    streams_.out << "Dateigrößen: " << messages.size() << " Warnungen\n";
    for (const std::string& message : messages) streams_.out << "  " << message << "\n";
  }

  bool HasProblems() const { return problems_ > 0; }

 private:
  void Database(const data::DatabaseFile& file, const DatabaseState& state) {
    const std::string shown = DisplayPath(base_, file.DataFileName());
    streams_.out << "  " << file.path_type() << "  " << shown << ": ";
    ++databases_;
    bytes_ += state.data_bytes + state.key_bytes;
    checked_files_.push_back(file.DataFileName());
    checked_files_.push_back(file.KeyFileName());
    if (!state.problem.empty()) {
      ++problems_;
      streams_.out << "FEHLER: " << state.problem << "\n";
      streams_.err << file.DataFileName() << ": " << state.problem << "\n";
      return;
    }
    records_ += state.records;
    streams_.out << CountOf(state.records, "Datensatz", "Datensätze") << ", Daten "
                 << state.data_bytes << " Bytes, Schlüssel " << state.key_bytes << " Bytes\n";
  }

  std::string base_;
  Streams& streams_;
  int databases_ = 0;
  int problems_ = 0;
  int64_t records_ = 0;
  int64_t bytes_ = 0;
  std::vector<std::string> checked_files_;
};

}  // namespace

int RunInfo(const std::string& base_dir, Streams& streams) {
  const fs::path base = RequireInstallation(base_dir);
  Installation installation = LoadInstallation(base);
  OpenCurrentProject(installation);
  const data::TMachineConfig& machine = installation.machine;

  streams.out << "Installation: " << machine.BasisDirectory() << "\n";
  if (machine.ObjektDirectory().empty()) {
    streams.out << "Aktuelles Projekt: keines\n";
  } else {
    streams.out << "Aktuelles Projekt: "
                << DisplayPath(machine.BasisDirectory(), machine.ObjektDirectory()) << "\n";
  }

  data::DbTypeRegistry registry;
  data::RegisterDBTypes(registry, data::UnboundIoCallbacks());
  const data::DatabaseFiles files(machine.ToDatabaseDirectories());
  InfoReport report(machine.BasisDirectory(), streams);
  for (const data::DbGroupDefinition& group : data::StandardDbGroups()) {
    const auto group_files = FilesOfGroup(files, group);
    if (!group_files.empty()) report.Group(group, group_files, registry);
  }
  report.Totals();
  report.SizeWarnings();
  return report.HasProblems() ? kExitFailure : kExitOk;
}

void InfoCommand::Define(CLI::App& app) {
  AddDataDirOption(app, data_dir_);
}

int InfoCommand::Run(Streams& streams) {
  return RunInfo(data_dir_, streams);
}

}  // namespace korvan::app
