// `korvan undo` / `korvan redo`: one step of the data directory's journal; `korvan undo
// --list` and `--clear` show and empty the journal.
#include "app/commands/lists/undo_command.h"

#include <filesystem>
#include <ostream>

#include <CLI/CLI.hpp>

#include "app/cli/command_error.h"
#include "app/commands/lists/journal_undo.h"
#include "app/commands/lists/journal_wait.h"
#include "app/commands/lists/master_data_session.h"
#include "app/program/data_dir.h"
#include "app/program/program_tables.h"

namespace korvan::app {
namespace {

// "1 Schritt", "3 Schritte"
std::string Steps(size_t count) {
  return std::to_string(count) + (count == 1 ? " Schritt" : " Schritte");
}

void PrintCaptions(std::ostream& out, const char* title, const std::vector<std::string>& captions) {
  out << title << " (" << Steps(captions.size()) << ", neuester zuerst):\n";
  if (captions.empty()) out << "  -\n";
  for (size_t i = 0; i < captions.size(); ++i) out << "  " << i + 1 << ". " << captions[i] << '\n';
}

bool AnyExists(const std::vector<std::string>& files) {
  std::error_code error;
  for (const std::string& file : files) {
    if (std::filesystem::exists(file, error)) return true;
  }
  return false;
}

// The journal lives in the data directory; a mistyped -d must not create files elsewhere.
void RequireDataDir(const std::string& data_dir) {
  std::error_code error;
  if (!std::filesystem::is_directory(data_dir, error)) {
    throw CommandError("Datenverzeichnis \"" + data_dir + "\" gibt es nicht");
  }
}

}  // namespace

void UndoCommand::Define(CLI::App& app) {
  AddDataDirOption(app, data_dir_);
  if (redo_) return;
  CLI::Option* list = app.add_flag(
      "--list", list_,
      "zeigt die Schritte, die rückgängig gemacht und wiederhergestellt werden können");
  CLI::Option* clear = app.add_flag(
      "--clear", clear_, "leert das Journal und löscht seine Dateien (UNDO.QUJ, REDO.QUJ)");
  list->excludes(clear);
}

int UndoCommand::Run(Streams& streams) {
  if (list_) return List(streams);
  if (clear_) return Clear(streams);
  return Step(streams);
}

int UndoCommand::Step(Streams& streams) {
  const JournalStepOutcome outcome = TakeJournalStep(data_dir_, redo_);
  if (!outcome.recovery_note.empty()) streams.err << outcome.recovery_note << '\n';
  (outcome.done ? streams.out : streams.err) << outcome.text << '\n';
  return outcome.done ? kExitOk : kExitFailure;
}

int UndoCommand::List(Streams& streams) {
  RequireDataDir(data_dir_);
  std::vector<std::string> undo;
  std::vector<std::string> redo;
  std::error_code missing;
  if (std::filesystem::exists(data::TUndoRedo::PendingFile(data_dir_), missing)) {
    // A step a killed process left is settled first: the list shows what undo finds.
    MasterDataSession session(ProgramTables(), data_dir_, false);
    undo = session.Journal().UndoCaptions();
    redo = session.Journal().RedoCaptions();
    if (!session.Journal().RecoveryNote().empty()) {
      streams.err << session.Journal().RecoveryNote() << '\n';
    }
  } else if (AnyExists(data::TUndoRedo::PersistentFiles(data_dir_))) {
    // Looking must not create the files of a journal that does not exist yet.
    const std::unique_ptr<data::TUndoRedo> journal =
        OpenJournal(data_dir_, data::TDamagedFile::kReport);
    undo = journal->UndoCaptions();
    redo = journal->RedoCaptions();
  }
  PrintCaptions(streams.out, "Rückgängig machen", undo);
  PrintCaptions(streams.out, "Wiederherstellen", redo);
  return kExitOk;
}

int UndoCommand::Clear(Streams& streams) {
  RequireDataDir(data_dir_);
  std::error_code missing;
  if (std::filesystem::exists(data::TUndoRedo::PendingFile(data_dir_), missing)) {
    // Only the intent of a step a killed process left knows what that step changed:
    // it is taken back or finished before the journal goes, never dropped with it.
    MasterDataSession session(ProgramTables(), data_dir_, false);
    if (!session.Journal().RecoveryNote().empty()) {
      streams.err << session.Journal().RecoveryNote() << '\n';
    }
  }
  const std::vector<std::string> files = data::TUndoRedo::PersistentFiles(data_dir_);
  if (!AnyExists(files)) {
    streams.out << "Das Rückgängig-Journal ist leer; es gibt nichts zu löschen\n";
    return kExitOk;
  }
  std::string counted;
  try {
    // Counted first, for the report; the journal is closed again before it is deleted.
    const std::unique_ptr<data::TUndoRedo> journal =
        WaitWhileJournalInUse([&] { return data::TUndoRedo::OpenPersistent(data_dir_); });
    counted = Steps(journal->UndoCaptions().size()) + " zum Rückgängigmachen und " +
              Steps(journal->RedoCaptions().size()) + " zum Wiederherstellen verworfen";
  } catch (const data::UndoJournalError& error) {
    if (!error.Damaged()) throw CommandError(error.what());
    counted = "das beschädigte Journal wurde verworfen";
  }
  std::vector<std::string> removed;
  try {
    removed = WaitWhileJournalInUse([&] { return data::TUndoRedo::RemovePersistent(data_dir_); });
  } catch (const data::UndoJournalError& error) {
    throw CommandError(std::string(error.what()) + "; das Journal wurde nicht geleert");
  }
  streams.out << "Rückgängig-Journal geleert: " << counted << '\n';
  for (const std::string& file : removed) streams.out << "Gelöscht: \"" << file << "\"\n";
  return kExitOk;
}

}  // namespace korvan::app
