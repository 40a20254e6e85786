#include "app/commands/lists/journal_undo.h"

#include "app/commands/lists/master_data_session.h"
#include "app/program/program_tables.h"

namespace korvan::app {

JournalStepOutcome TakeJournalStep(const std::string& data_dir, bool redo) {
  // The journal puts records back through the table objects of the program's registry.
  MasterDataSession session(ProgramTables(), data_dir, false);
  data::TUndoRedo& journal = session.Journal();
  JournalStepOutcome result;
  result.recovery_note = journal.RecoveryNote();
  if (redo ? !journal.CanRedo() : journal.Empty()) {
    result.text =
        redo ? "Es gibt nichts wiederherzustellen" : "Es gibt nichts rückgängig zu machen";
    return result;
  }
  const data::TUndoOutcome outcome = redo ? journal.PopRedo() : journal.PopUndo();
  if (!outcome.ok()) {
    result.text = std::string(redo ? "Wiederherstellen" : "Rückgängig") + " nicht möglich: \"" +
                  outcome.start.Caption() + "\": " + outcome.error +
                  "\nEs wurde nichts geändert; der Schritt bleibt im Journal.";
    if (outcome.code == data::kUndoConflict) {
      result.text +=
          " Soll die neuere Änderung bleiben, leert \"korvan undo --clear\" das Journal.";
    } else if (outcome.code == data::kUndoDamaged) {
      result.text += " \"korvan undo --clear\" löscht das Journal.";
    }
    return result;
  }
  result.done = true;
  result.text =
      std::string(redo ? "Wiederhergestellt: " : "Rückgängig gemacht: ") + outcome.start.Caption();
  return result;
}

}  // namespace korvan::app
