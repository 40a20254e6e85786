#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "data/tables/table_change_journal.h"
#include "data/undo/undo_intent.h"
#include "data/undo/undo_items.h"
#include "data/undo/virtual_stack.h"

namespace korvan::data {

// The outcome of taking back or making again one transaction.
struct TUndoOutcome {
  int code = kUndoOk;
  std::string error;  // what went wrong, when code is not kUndoOk
  TStartItem start;   // the transaction concerned (caption, component, reload flag)
  bool ok() const { return code == kUndoOk; }
};

// The undo journal: the record changes and row changes of each user action, grouped
// into transactions on an undo stack and, once taken back, on a redo stack.
//
// The table layer reports record changes through TableChangeObserver while this journal
// is the process's current one; the data component brackets each user action with
// StartTransaction/EndTransaction, which may nest: only the outermost pair makes a step.
// The first change of a new step empties the redo stack.
class TUndoRedo : public TableChangeObserver {
 public:
  // A journal for this process in temporary files "~*.tmp" in `directory`; leftovers of
  // processes that died are removed first.
  explicit TUndoRedo(const std::string& directory = ".");
  // The journal of a data directory, kept in "UNDO.QUJ" and "REDO.QUJ" there across runs
  // of the program until cleared. Throws UndoJournalError when the files are in use by
  // another process, and when one is damaged unless `damaged` says to set it aside
  // (SetAsideFiles() then tells which).
  //
  // Every step of it is bracketed by the intent file "PENDING.QUJ" (TUndoIntent), so
  // that journal and data agree after the process is killed at any point: a step whose
  // data changes were complete is finished here; the data changes of any other are taken
  // back by ResolveUnfinished(), which needs the record restorer. Records are named
  // relative to the data directory. A journal with no step left is removed when closed.
  static std::unique_ptr<TUndoRedo> OpenPersistent(const std::string& data_directory,
                                                   TDamagedFile damaged = TDamagedFile::kReport);
  // Deletes the journal of a data directory (the user clears it; closing a project will
  // do the same); a damaged journal is deleted too. Returns the files that existed.
  // Throws UndoJournalError while another process has the journal open.
  static std::vector<std::string> RemovePersistent(const std::string& data_directory);
  // The files of the persistent journal of a data directory: undo stack, redo stack.
  static std::vector<std::string> PersistentFiles(const std::string& data_directory);
  // The intent file of the persistent journal of a data directory.
  static std::string PendingFile(const std::string& data_directory);
  ~TUndoRedo() override;
  TUndoRedo(const TUndoRedo&) = delete;
  TUndoRedo& operator=(const TUndoRedo&) = delete;

  // --- Recording ---------------------------------------------------------------------
  void StartTransaction(const TStartItem& item);
  void EndTransaction();
  // Ends the outermost transaction without keeping it, for a command that failed
  // half-way: the changes recorded in it are taken back, newest first, and the step is
  // forgotten; the undone steps stay to be made again, since the data is as they left
  // it. When a change cannot be taken back, those already taken back are made again and
  // the step is kept as EndTransaction keeps it, so that journal and data agree; the
  // outcome says why. Refused inside a nested transaction.
  TUndoOutcome CancelTransaction();
  // Records an item in the open transaction; false when nothing is recorded (no open
  // transaction, locked or switched off).
  bool Push(const TCustomUndoRedoItem& item);
  void FixStartItemCdataId(int32_t id);
  void SetStartItemDoReloadAll();
  void Lock() { ++FLocks; }
  void UnLock() { FLocks = FLocks > 0 ? FLocks - 1 : 0; }
  bool Locked() const { return FLocks > 0; }
  void SetActive(bool active) { FActive = active; }
  bool Active() const { return FActive; }
  int TransactionDepth() const { return FTransactions; }
  // Why the last step could not be recorded (the step was then dropped whole); empty
  // when recording worked.
  const std::string& LastError() const { return FLastError; }

  void RecordWillChange(const TableTarget& table, JournalImage before, JournalImage after) override;
  void RecordInserted(const TableTarget& table, JournalImage after) override;
  void RecordUpdated(const TableTarget& table, JournalImage before, JournalImage after) override;
  void RecordDeleted(const TableTarget& table, JournalImage before) override;

  // --- Taking back -------------------------------------------------------------------
  // Takes back the newest step and records it for redo, or makes the newest undone
  // step again and records it for undo. A step whose data changed meanwhile or whose
  // journal entry is damaged is not applied at all: nothing is written and the stacks
  // stay as they were.
  TUndoOutcome PopUndo();
  TUndoOutcome PopRedo();
  void Clear();
  bool Empty() const { return FUndoStack->TransactionCount() == 0; }
  bool CanRedo() const { return FRedoStack->TransactionCount() > 0; }
  std::vector<std::string> UndoCaptions() const { return FUndoStack->GetTransactions(); }
  std::vector<std::string> RedoCaptions() const { return FRedoStack->GetTransactions(); }

  // --- A step a killed process left ------------------------------------------------------
  // Whether the data changes of an unfinished step still wait to be taken back.
  bool HasUnfinished() const { return FUnfinished.has_value(); }
  // Takes back the data changes of the unfinished step through the record restorer and
  // ends it; false (with LastError set) when that is not possible yet. Recording and
  // undo call it first; nothing is recorded or taken back while a step is unfinished.
  bool ResolveUnfinished();
  // What opening and ResolveUnfinished did about an unfinished step, for the user; empty
  // when there was none.
  const std::string& RecoveryNote() const { return FRecoveryNote; }

  // --- Connections -------------------------------------------------------------------
  void SetRecordRestorer(RecordRestorer* restorer) { FTargets.records = restorer; }
  void SetRowRestorer(TCDataRowRestorer* restorer) { FTargets.rows = restorer; }
  // Called when the undo state changed: a step was recorded, taken back or made again,
  // or the journal was cleared. The shell refreshes its undo and redo commands.
  void SetOnChange(std::function<void()> on_change) { FOnChange = std::move(on_change); }

  // The damaged files that opening set aside, undo stack first.
  std::vector<TSetAsideFile> SetAsideFiles() const;

  TVirtualStack& UndoStack() { return *FUndoStack; }
  TVirtualStack& RedoStack() { return *FRedoStack; }

 private:
  TUndoRedo(std::unique_ptr<TVirtualStack> undo, std::unique_ptr<TVirtualStack> redo,
            std::string directory);
  TUndoOutcome Transfer(TVirtualStack& from, TVirtualStack& to);
  TUndoOutcome MoveStep(TVirtualStack& from, TVirtualStack& to, TUndoTransaction& step,
                        std::vector<std::unique_ptr<TCustomUndoRedoItem>>& applied);
  std::vector<const TStdDb*> DatabasesOf(
      const std::vector<std::unique_ptr<TCustomUndoRedoItem>>& items) const;
  void BeginIntent(TIntentOperation operation,
                   const std::vector<std::unique_ptr<TCustomUndoRedoItem>>& items);
  bool ReverseItems(TUndoTransaction& step,
                    std::vector<std::unique_ptr<TCustomUndoRedoItem>>& applied,
                    TUndoOutcome& outcome);
  void FinishRecording();
  bool EndEmptyStep();
  void KeepStep();
  void DropStep();
  TableTarget JournalTarget(const TableTarget& table) const;
  bool Recording() const;
  void RecordChange(const TableTarget& table, JournalImage before, JournalImage after,
                    TRecordChange change);
  void Notify();

  int FTransactions = 0;
  int FLocks = 0;
  bool FActive = true;
  bool FRecordedInStep = false;
  bool FStepBroken = false;
  std::string FLastError;
  std::string FDirectory;  // of a persistent journal; empty for a temporary one
  std::unique_ptr<TUndoIntent> FIntent;
  std::optional<TUnfinishedStep> FUnfinished;
  std::string FRecoveryNote;
  std::unique_ptr<TVirtualStack> FRedoStack;
  std::unique_ptr<TVirtualStack> FUndoStack;
  TUndoTargets FTargets;
  std::function<void()> FOnChange;
};

}  // namespace korvan::data
