// `korvan edit <module> <row> <column>=<value> ...`: one edit of one row, stored through
// the data component as the list's mask stores it.
#include "app/commands/lists/edit_command.h"

#include <ostream>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/commands/lists/data_module_registry.h"
#include "app/commands/lists/master_data_session.h"
#include "app/program/data_dir.h"
#include "app/program/program_tables.h"
#include "data/component/column_view.h"
#include "data/component/list_operation.h"

namespace korvan::app {
namespace {

// The column named by its name ("Faktor") or its German caption ("Währung"); -1 if none.
int FindColumn(const data::TColumnStructure& columns, const std::string& name) {
  for (int i = 0; i < columns.FeldAnzahl(); ++i) {
    const data::TColumnDef& column = columns[i];
    if (column.Name == name || data::ColumnCaption(column) == name) return i;
  }
  return -1;
}

// A damaged journal must not keep the user from working: it was set aside, and the user
// learns which steps are lost and where the damaged bytes are.
void WarnSetAside(std::ostream& err, const std::vector<data::TSetAsideFile>& set_aside) {
  for (const data::TSetAsideFile& file : set_aside) {
    err << "Warnung: " << file.problem << '\n'
        << "Das beschädigte Journal wurde als \"" << file.set_aside
        << "\" beiseitegelegt und ein neues begonnen; die Schritte darin können nicht mehr "
           "rückgängig gemacht oder wiederhergestellt werden.\n";
  }
}

// A wrong call: the message is printed and the program ends with exit code 2.
int Usage(std::ostream& err, const std::string& message) {
  err << message << '\n';
  return kExitUsage;
}

}  // namespace

void EditCommand::Define(CLI::App& app) {
  app.add_option("modul", module_, "Datenmodul: " + DataModuleNames(ProgramTables()))->required();
  app.add_option("zeile", row_, "Zeilennummer, wie `korvan list` sie zeigt")->required();
  app.add_option("zuweisungen", assignments_, "<Spalte>=<Wert>")->required();
  app.add_flag("--force", force_,
               "überschreibt einen Datensatz, den inzwischen ein anderer Benutzer geändert hat");
  AddDataDirOption(app, data_dir_);
}

int EditCommand::Run(Streams& streams) {
  if (!IsDataModule(ProgramTables(), module_)) {
    return Usage(streams.err, "Unbekanntes Datenmodul \"" + module_ +
                                  "\" (bekannt: " + DataModuleNames(ProgramTables()) + ")");
  }
  MasterDataSession session(ProgramTables(), data_dir_, force_, data::TDamagedFile::kSetAside);
  WarnSetAside(streams.err, session.Journal().SetAsideFiles());
  if (!session.Journal().RecoveryNote().empty()) {
    streams.err << session.Journal().RecoveryNote() << '\n';
  }
  const std::unique_ptr<data::TTableListModule> module =
      MakeDataModule(ProgramTables(), module_, session.Db());
  data::TCData& cdata = module->CData1;
  if (row_ < 1 || row_ > cdata.GetRmax()) {
    return Usage(streams.err, "Zeile " + std::to_string(row_) + " gibt es in der Liste \"" +
                                  module_ + "\" nicht (Zeilen 1 bis " +
                                  std::to_string(cdata.GetRmax()) + ")");
  }
  // The row is opened for editing as the mask opens it: what it shows now is what a
  // change by another user before the store is compared with.
  cdata.ListOperation(row_, data::loChangeRecordIndex);
  data::TStringList values = cdata.CurrentRecord();
  const data::TColumnStructure& columns = cdata.Struktur();
  for (const std::string& assignment : assignments_) {
    const size_t equals = assignment.find('=');
    if (equals == std::string::npos) {
      return Usage(streams.err, "\"" + assignment + "\" ist keine Zuweisung <Spalte>=<Wert>");
    }
    const std::string name = assignment.substr(0, equals);
    const std::string value = assignment.substr(equals + 1);
    const int column = FindColumn(columns, name);
    if (column < 0) {
      return Usage(streams.err,
                   "Spalte \"" + name + "\" gibt es in der Liste \"" + module_ + "\" nicht");
    }
    const int at = columns[column].Spalte;
    if (const std::string form = module->CheckValue(at, value); !form.empty()) {
      return Usage(streams.err,
                   "Spalte \"" + name + "\": erwartet " + form + ", nicht \"" + value + "\"");
    }
    if (static_cast<size_t>(at) >= values.size()) values.resize(static_cast<size_t>(at) + 1);
    values[static_cast<size_t>(at)] = value;
  }

  cdata.SetUndoJournal(&session.Actions());
  const data::TScreen2DataResult result = cdata.Screen2Data(row_, values);
  cdata.SetUndoJournal(nullptr);
  if (result != data::TScreen2DataResult::Stored) {
    const std::string reason =
        module->LastError().empty() ? session.Journal().LastError() : module->LastError();
    streams.err << "Zeile " << row_ << " wurde nicht gespeichert"
                << (reason.empty() ? "" : ": " + reason) << '\n';
    return kExitFailure;
  }
  if (!session.Journal().LastError().empty()) {
    streams.err << "Warnung: die Änderung kann nicht rückgängig gemacht werden: "
                << session.Journal().LastError() << '\n';
  }
  streams.out << "Zeile " << row_ << " gespeichert\n";
  return kExitOk;
}

}  // namespace korvan::app
