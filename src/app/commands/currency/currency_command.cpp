#include "app/commands/currency/currency_command.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <memory>
#include <ostream>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/cli/progress_line.h"
#include "app/commands/db/db_database.h"
#include "app/commands/lists/journal_step.h"
#include "app/commands/lists/master_data_session.h"
#include "app/program/command_sign_in.h"
#include "app/program/current_project.h"
#include "app/program/data_dir.h"
#include "app/program/installation.h"
#include "app/program/program_tables.h"
#include "boq/lv/lv_table_types.h"
#include "boq/lv/project_lvs.h"
#include "boq/units/currency_list.h"
#include "boq/units/dm_wae_convert.h"
#include "boq/units/tb_prj_wae_faktor.h"
#include "boq/units/tb_waehrung.h"
#include "boq/units/value_converter.h"
#include "data/db/db_file_register.h"
#include "data/db/db_groups.h"
#include "data/db/path_types.h"
#include "data/tables/std_db.h"
#include "data/undo/undo_redo.h"
#include "data/undo/undo_table_restorer.h"
#include "storage/result_codes.h"

namespace korvan::app {
namespace fs = std::filesystem;
namespace {

constexpr char kLogFileName[] = "WaeKonv.LOG";

// Only records are changed; there are no rows of a list to put back.
class NoRows : public data::TCDataRowRestorer {
 public:
  int MoveRow(int32_t, int32_t, int32_t, std::string&) override { return data::kUndoOk; }
  int RemoveRow(int32_t, const std::string&, int32_t, std::string&) override {
    return data::kUndoOk;
  }
  int RestoreRow(int32_t, const std::string&, int32_t, std::string&) override {
    return data::kUndoOk;
  }
};

int32_t Today() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return (local.tm_year + 1900) * 10000 + (local.tm_mon + 1) * 100 + local.tm_mday;
}

std::string KnownSymbols(const boq::TCurrencyList& list) {
  std::string known;
  for (const boq::TCurrency& currency : list.All()) {
    known += (known.empty() ? "" : ", ") + currency.symbol;
  }
  return known;
}

// A currency named by its symbol or its id.
const boq::TCurrency& FindCurrency(const boq::TCurrencyList& list, const std::string& name) {
  const boq::TCurrency* found = list.FindSymbol(name);
  if (found == nullptr && !name.empty() &&
      name.find_first_not_of("-0123456789") == std::string::npos && name.size() < 10) {
    found = list.Find(std::stoi(name));
  }
  if (found == nullptr) {
    throw CommandError("Währung \"" + name + "\" steht nicht in der Währungstabelle (bekannt: " +
                       KnownSymbols(list) + ")");
  }
  return *found;
}

// The project folder the request names, made the project directory of the machine.
std::string ChooseProject(Installation& installation, const std::string& project) {
  if (!project.empty()) {
    if (!IsValidProjectName(project)) {
      throw UsageError("--project braucht den Namen eines Projektordners, nicht \"" + project +
                       "\"");
    }
    installation.machine.SetObjektDirectory(ProjectDirectory(installation.machine, project));
  } else {
    OpenCurrentProject(installation);
  }
  const std::string directory = installation.machine.ObjektDirectory();
  if (directory.empty()) throw CommandError("kein Projekt gewählt; --project nennt eines");
  std::error_code error;
  if (!fs::is_directory(directory, error)) {
    throw CommandError("Projektordner " + directory + " gibt es nicht");
  }
  return directory;
}

// The open databases of one run, closed in reverse order.
class OpenDatabases {
 public:
  OpenDatabases(const std::string& user, data::TCollectedMessages& messages)
      : user_(user), messages_(messages) {}
  ~OpenDatabases() {
    for (auto it = dbs_.rbegin(); it != dbs_.rend(); ++it) (*it)->DbClose();
  }
  data::TStdDb& Open(const data::DatabaseFile& file) {
    auto db = std::make_unique<data::TStdDb>(file);
    db->SetMessages(&messages_);
    db->SetModifiedById(user_);
    if (const int opened = db->DbOpen(true); opened != storage::kOk) {
      throw CommandError(file.DataFileName() + ": " + ResultCodeText(opened));
    }
    dbs_.push_back(std::move(db));
    return *dbs_.back();
  }
  std::vector<data::TStdDb*> All() const {
    std::vector<data::TStdDb*> all;
    for (const auto& db : dbs_) all.push_back(db.get());
    return all;
  }

 private:
  std::string user_;
  data::TCollectedMessages& messages_;
  std::vector<std::unique_ptr<data::TStdDb>> dbs_;
};

// The databases of a project folder (or of the project template): those the file
// register names for project folders whose data file is there, in its order.
std::vector<data::DatabaseFile> ProjectFolderFiles(const std::string& directory) {
  data::TDBFileRegister file_register;
  data::RegisterStandardDbFiles(file_register);
  std::vector<std::string> names;
  file_register.GetFiles(data::kPathObjekt, directory, names);
  std::vector<data::DatabaseFile> found;
  for (const std::string& name : names) {
    for (const data::DbGroupDefinition& group : data::StandardDbGroups()) {
      data::DatabaseFile file(group, data::kPathObjekt, directory);
      if (file.DataFileName() == name && file.Exists()) found.push_back(std::move(file));
    }
  }
  return found;
}

// The databases every project shares, in the order of the database table.
std::vector<const data::DatabaseFile*> SharedFiles(const data::DatabaseFiles& files) {
  const auto is_shared = [](char type) {
    return type == data::kPathStammdaten || type == data::kPathKatalog || type == data::kPathClip ||
           type == data::kPathClipBlock;
  };
  std::vector<const data::DatabaseFile*> chosen;
  for (const data::DatabaseFile& file : files.all()) {
    if (is_shared(file.path_type()) && file.Exists()) chosen.push_back(&file);
  }
  return chosen;
}

// The currency of the amounts that name none: the one the project's LVs record (the last
// conversion set it), else the installation's base currency.
int16_t ProjectCurrency(data::TStdDb* lv_db, int16_t base) {
  if (lv_db == nullptr) return base;
  return boq::ProjectCurrency(boq::ListLvs(*lv_db), base);
}

std::string LastMessage(const data::TCollectedMessages& messages) {
  return messages.errors.empty() ? std::string() : " (" + messages.errors.back() + ")";
}

}  // namespace

void CurrencyCommand::Define(CLI::App& app) {
  app.require_subcommand(1);
  convert_ = app.add_subcommand(
      "convert", "rechnet alle gespeicherten Beträge eines Projekts in eine Währung um");
  AddDataDirOption(*convert_, request_.data_dir);
  convert_->add_option("--project", request_.project, "Projektordner (sonst das aktuelle Projekt)");
  convert_->add_option("--von", request_.source,
                       "Währung der Beträge ohne eigene Währung (sonst die Währung des "
                       "Projekts, die seine LVs nennen, ohne sie die Basiswährung der "
                       "Installation)");
  convert_->add_flag("--with-master-data", request_.with_master_data,
                     "auch Stammdaten, Kataloge und Ablagen umrechnen, die alle Projekte teilen");
  convert_->add_option("waehrung", request_.target, "neue Währung: Symbol (EUR) oder Id")
      ->required();
}

int CurrencyCommand::Run(Streams& streams) {
  if (convert_->parsed()) return RunCurrencyConvert(request_, streams);
  throw UsageError("ein Unterbefehl fehlt (convert)");
}

int RunCurrencyConvert(const CurrencyConvertRequest& request, Streams& streams) {
  Installation installation = LoadInstallation(RequireInstallation(request.data_dir));
  const std::string project_dir = ChooseProject(installation, request.project);
  const std::string user = installation.machine.SystemUserName();
  const data::DatabaseFiles files(installation.machine.ToDatabaseDirectories());
  const data::DatabaseFile* stamm = files.Find("DB_Stamm", data::kPathStammdaten);
  if (stamm == nullptr) throw CommandError("die Installation hat kein Stammdatenverzeichnis");
  const std::vector<data::DatabaseFile> project_files = ProjectFolderFiles(project_dir);
  // The template new projects are copied from holds amounts too; left in the old
  // currency, every project made from it afterwards would be.
  const std::string template_dir = installation.machine.StammprojektDirectory();
  const std::vector<data::DatabaseFile> template_files =
      template_dir.empty() ? std::vector<data::DatabaseFile>{} : ProjectFolderFiles(template_dir);
  const std::vector<const data::DatabaseFile*> shared_files =
      request.with_master_data ? SharedFiles(files) : std::vector<const data::DatabaseFile*>{};
  std::vector<std::string> directories = {stamm->directory(), project_dir};
  if (!template_files.empty()) directories.push_back(template_dir);
  for (const data::DatabaseFile* file : shared_files) directories.push_back(file->directory());
  std::sort(directories.begin(), directories.end());
  directories.erase(std::unique(directories.begin(), directories.end()), directories.end());

  const auto sign_in =
      SignInToDirectories(CommandUser(user), directories, false, "Währungskonvertierung");
  // The journal is taken before the databases are opened, as every writer does.
  const std::unique_ptr<data::TUndoRedo> journal =
      OpenJournal(request.data_dir, data::TDamagedFile::kReport);
  data::TCollectedMessages messages;
  OpenDatabases dbs(user, messages);
  data::TStdDb& stamm_db = dbs.Open(*stamm);
  std::vector<data::TStdDb*> project_dbs;
  data::TStdDb* glob = nullptr;
  data::TStdDb* lv_db = nullptr;
  for (const data::DatabaseFile& file : project_files) {
    project_dbs.push_back(&dbs.Open(file));
    if (file.group_name() == "DB_GlobData") glob = project_dbs.back();
    if (file.group_name() == boq::kLvDbGroup) lv_db = project_dbs.back();
  }
  for (const data::DatabaseFile* file : shared_files) {
    project_dbs.push_back(file == stamm ? &stamm_db : &dbs.Open(*file));
  }
  std::vector<data::TStdDb*> template_dbs;
  for (const data::DatabaseFile& file : template_files) template_dbs.push_back(&dbs.Open(file));
  data::TTableRecordRestorer restorer(dbs.All(), ProgramTables(), request.data_dir);
  NoRows rows;
  journal->SetRecordRestorer(&restorer);
  journal->SetRowRestorer(&rows);
  const data::ScopedTableChangeObserver observing(journal.get());
  if (!journal->ResolveUnfinished()) throw CommandError(journal->LastError());

  boq::TTbWaehrung currency_table(stamm_db);
  boq::TCurrencyList currencies = boq::TCurrencyList::Load(currency_table);
  if (currencies.All().empty()) {
    throw CommandError("die Währungstabelle in " + stamm->DataFileName() + " ist leer");
  }
  const std::string project_name = fs::path(project_dir).parent_path().filename().string();
  if (glob != nullptr) {
    boq::TTbPrjWaeFaktor rates(*glob);
    currencies.ApplyProjectRates(rates, project_name, Today());
  }
  const boq::TCurrency target = FindCurrency(currencies, request.target);
  const boq::TCurrency source =
      request.source.empty()
          ? FindCurrency(currencies,
                         std::to_string(ProjectCurrency(lv_db, installation.system.IdBasisWae())))
          : FindCurrency(currencies, request.source);

  boq::TValueConverterSettings settings;
  settings.round_amounts = installation.system.RundenWaehrung();
  settings.currency_rounding = installation.system.CurrencyRoundingType();
  settings.qty_rounding = installation.system.QtyRoundingType();
  settings.amount_decimals = target.decimals;
  settings.project_currency = source.id;
  const boq::TAvaUiValueConverter converter(currencies, settings);
  boq::TdmWaeConvert convert(ProgramTables(), converter, target.id);

  boq::TWaeConvertReport report;
  int failed = 0;
  data::TUndoOutcome cancelled;
  {
    ProgressLine progress(streams.err);
    const auto show = [&](const std::string& database, int64_t done, int64_t total) {
      progress.Show("Währungskonvertierung ... " + database, done, total);
    };
    const auto show_template = [&](const std::string& database, int64_t done, int64_t total) {
      progress.Show("Währungskonvertierung ... Projektvorlage " + database, done, total);
    };
    // A conversion that fails half-way, by a kernel code or an exception, is cancelled:
    // no amount stays converted, and the journal is as it was.
    JournalStep step(*journal, data::TOperationKind::okEdit,
                     "Währungskonvertierung " + source.symbol + " nach " + target.symbol);
    for (data::TStdDb* db : project_dbs) {
      if (failed == 0) failed = convert.ConvertDatabase(*db, show, report);
    }
    for (data::TStdDb* db : template_dbs) {
      if (failed == 0) failed = convert.ConvertDatabase(*db, show_template, report);
    }
    if (failed != 0) cancelled = step.Cancel();
  }
  if (failed != 0) {
    const std::string why = (report.lines.empty() ? ResultCodeText(failed) : report.lines.back()) +
                            LastMessage(messages);
    if (!cancelled.ok()) {
      throw CommandError("Währungskonvertierung abgebrochen: " + why +
                         "; die schon umgerechneten Datensätze konnten nicht zurückgenommen "
                         "werden: " +
                         cancelled.error);
    }
    throw CommandError("Währungskonvertierung abgebrochen, nichts geändert: " + why);
  }
  if (!journal->LastError().empty()) {
    throw CommandError("Währungskonvertierung nicht im Journal aufgezeichnet: " +
                       journal->LastError());
  }

  for (const std::string& line : report.lines) streams.out << line << '\n';
  streams.out << "Währungskonvertierung " << source.symbol << " nach " << target.symbol << ": "
              << report.records << " Datensätze, " << report.amounts << " Beträge in "
              << project_dbs.size() + template_dbs.size() << " Datenbanken von " << project_dir
              << (request.with_master_data
                      ? " und den gemeinsamen Stammdaten, Katalogen und Ablagen"
                      : "")
              << (template_dbs.empty() ? "" : " und der Projektvorlage") << " umgerechnet\n";
  if (report.tables == 0) {
    streams.out << "Hinweis: in diesen Datenbanken ist noch keine Tabelle mit Beträgen "
                   "eingetragen; es gab nichts umzurechnen\n";
  } else if (report.records > 0) {
    streams.out << "Rückgängig: korvan undo\n";
  }
  const std::string log_file = project_dir + kLogFileName;
  if (!boq::AppendWaeConvertLog(log_file, user, installation.machine.MachineName(), source.symbol,
                                target.symbol, report)) {
    streams.err << log_file << ": Protokoll kann nicht geschrieben werden\n";
    return kExitFailure;
  }
  streams.out << "Protokoll: " << log_file << '\n';
  return kExitOk;
}

}  // namespace korvan::app
