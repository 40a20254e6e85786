#include "data/undo/undo_redo.h"

#include <algorithm>
#include <filesystem>

#include "data/tables/batch_hold.h"
#include "data/undo/journal_path.h"
#include "data/undo/test_kill_point.h"
#include "data/undo/undo_table_restorer.h"
#include "storage/result_codes.h"

namespace korvan::data {

namespace {

// Marks a scope in which the journal records nothing, also when it is left by an
// exception.
class TLockScope {
 public:
  explicit TLockScope(TUndoRedo& journal) : journal_(journal) { journal_.Lock(); }
  ~TLockScope() { journal_.UnLock(); }
  TLockScope(const TLockScope&) = delete;
  TLockScope& operator=(const TLockScope&) = delete;

 private:
  TUndoRedo& journal_;
};

// Takes back the items of a partly applied step, given in the order they were applied:
// the last applied goes first.
void TakeBack(std::vector<std::unique_ptr<TCustomUndoRedoItem>>& applied,
              const TUndoTargets& targets) {
  for (size_t i = applied.size(); i-- > 0;) {
    std::string ignored;
    applied[i]->Reverse(targets, ignored);
  }
}

}  // namespace

// The databases a step's records are written to, so that the step is written in batches.
std::vector<const TStdDb*> TUndoRedo::DatabasesOf(
    const std::vector<std::unique_ptr<TCustomUndoRedoItem>>& items) const {
  if (FTargets.records == nullptr) return {};
  std::vector<TableTarget> tables;
  for (const auto& item : items) {
    const auto* record = dynamic_cast<const TDBUndoRedoItem*>(item.get());
    if (record == nullptr) continue;
    const TableTarget target = record->Target();
    const bool known = std::any_of(tables.begin(), tables.end(), [&](const TableTarget& seen) {
      return seen.db_file == target.db_file && seen.db_type == target.db_type &&
             seen.table_type == target.table_type;
    });
    if (!known) tables.push_back(target);
  }
  return FTargets.records->DatabasesOf(tables);
}

TUndoRedo::TUndoRedo(const std::string& directory) {
  TVirtualStack::RemoveLeftoverFiles(directory);
  FUndoStack = std::make_unique<TVirtualStack>(directory);
  FRedoStack = std::make_unique<TVirtualStack>(directory);
}

TUndoRedo::TUndoRedo(std::unique_ptr<TVirtualStack> undo, std::unique_ptr<TVirtualStack> redo,
                     std::string directory)
    : FDirectory(std::move(directory)),
      FIntent(std::make_unique<TUndoIntent>(PendingFile(FDirectory))),
      FRedoStack(std::move(redo)),
      FUndoStack(std::move(undo)) {}

namespace {
constexpr const char* kUndoFileName = "UNDO.QUJ";
constexpr const char* kRedoFileName = "REDO.QUJ";
constexpr const char* kPendingFileName = "PENDING.QUJ";
}  // namespace

std::vector<std::string> TUndoRedo::PersistentFiles(const std::string& data_directory) {
  const std::filesystem::path dir = data_directory;
  return {(dir / kUndoFileName).string(), (dir / kRedoFileName).string()};
}

std::string TUndoRedo::PendingFile(const std::string& data_directory) {
  return (std::filesystem::path(data_directory) / kPendingFileName).string();
}

std::unique_ptr<TUndoRedo> TUndoRedo::OpenPersistent(const std::string& data_directory,
                                                     TDamagedFile damaged) {
  const std::vector<std::string> files = PersistentFiles(data_directory);
  std::optional<TUnfinishedStep> unfinished;
  // The intent file is read under the undo file's lock: whoever holds it holds the
  // journal. The stacks are cut to the lengths the unfinished step calls for before they
  // are read, so that a frame the dead process was writing is not taken for damage.
  auto undo = TVirtualStack::OpenPersistent(files[0], damaged, [&] {
    try {
      unfinished = TUndoIntent::Read(PendingFile(data_directory));
    } catch (const UndoJournalError& error) {
      // Not the stack's damage: setting the stack aside would not help.
      throw UndoJournalError(std::string(error.what()) +
                             "; \"korvan undo --clear\" löscht das Journal");
    }
    return unfinished ? unfinished->UndoLength() : int64_t{-1};
  });
  auto redo = TVirtualStack::OpenPersistent(
      files[1], damaged, [&] { return unfinished ? unfinished->RedoLength() : int64_t{-1}; });
  std::unique_ptr<TUndoRedo> journal(
      new TUndoRedo(std::move(undo), std::move(redo), data_directory));
  if (!unfinished) return journal;
  if (unfinished->committed || unfinished->changes.empty()) {
    if (unfinished->committed) {
      journal->FRecoveryNote =
          "Hinweis: ein abgebrochener Schritt des Rückgängig-Journals wurde abgeschlossen";
    }
    journal->FIntent->Finish();
  } else {
    journal->FUnfinished = std::move(unfinished);
  }
  return journal;
}

std::vector<std::string> TUndoRedo::RemovePersistent(const std::string& data_directory) {
  std::vector<std::string> files = PersistentFiles(data_directory);
  files.push_back(PendingFile(data_directory));
  return TVirtualStack::RemovePersistent(files);
}

// A persistent journal with nothing to take back or make again leaves no files: looking
// at it, or an edit that was refused, must not leave empty journals behind.
TUndoRedo::~TUndoRedo() {
  if (FDirectory.empty() || FUnfinished || FIntent->Begun() || FTransactions > 0) return;
  if (!FUndoStack->Empty() || !FRedoStack->Empty()) return;
  try {
    FRedoStack->RemoveFile();
    FUndoStack->RemoveFile();
  } catch (const UndoJournalError&) {
    // Empty files are an empty journal; leaving them is harmless.
  }
}

std::vector<TSetAsideFile> TUndoRedo::SetAsideFiles() const {
  std::vector<TSetAsideFile> files;
  for (const TVirtualStack* stack : {FUndoStack.get(), FRedoStack.get()}) {
    if (stack->SetAside()) files.push_back(*stack->SetAside());
  }
  return files;
}

void TUndoRedo::Notify() {
  if (FOnChange) FOnChange();
}

bool TUndoRedo::Recording() const {
  return FActive && !Locked() && FTransactions > 0 && !FStepBroken;
}

TableTarget TUndoRedo::JournalTarget(const TableTarget& table) const {
  if (FDirectory.empty()) return table;
  TableTarget named = table;
  named.db_file = JournalPathOf(table.db_file, FDirectory);
  return named;
}

void TUndoRedo::StartTransaction(const TStartItem& item) {
  if (!FActive || Locked()) return;
  if (FTransactions++ > 0) return;
  FRecordedInStep = false;
  FStepBroken = false;
  try {
    if (!ResolveUnfinished()) throw UndoJournalError(FLastError);
    // The intent comes first: a stack that grew without it would look damaged.
    FUndoStack->Normalize();
    if (FIntent) {
      FIntent->Begin(TIntentOperation::kRecord, FUndoStack->FileSize(), FRedoStack->FileSize());
    }
    FUndoStack->StartTransaction(item);
  } catch (const UndoJournalError& error) {
    FStepBroken = true;
    FLastError = error.what();
  }
}

// The data changed but the step cannot be offered (taking it back would restore only
// part of it): it is dropped whole, and the undone steps with it, which no longer fit
// the data.
void TUndoRedo::DropStep() {
  try {
    FUndoStack->DropLastTransaction();
    if (!FRedoStack->Empty()) FRedoStack->Clear();
    if (FIntent && FIntent->Begun()) FIntent->Finish();
  } catch (const UndoJournalError& error) {
    if (FLastError.empty()) FLastError = error.what();
  }
}

void TUndoRedo::EndTransaction() {
  if (Locked() || FTransactions == 0) return;
  if (--FTransactions > 0) return;
  if (FStepBroken) {
    DropStep();
    return;
  }
  if (!EndEmptyStep()) KeepStep();
}

// Whether the step just ended recorded nothing: it is then removed, and the undone steps
// stay. A journal that cannot be written drops the step.
bool TUndoRedo::EndEmptyStep() {
  try {
    if (!FUndoStack->Normalize()) return false;
    if (FIntent && FIntent->Begun()) FIntent->Finish();
  } catch (const UndoJournalError& error) {
    FLastError = error.what();
    DropStep();
  }
  return true;
}

// The step just ended stays on the undo stack.
void TUndoRedo::KeepStep() {
  try {
    FUndoStack->UpdateLastStartItem();
    FinishRecording();
  } catch (const UndoJournalError& error) {
    FLastError = error.what();
    DropStep();
    return;
  }
  FUndoStack->SetModified(true);
  FRedoStack->SetModified(true);
  Notify();
}

// The changes are taken back while the step is still open, before its commit: should
// the process die meanwhile, the next opening takes back the rest by the intent, which
// holds every change, and finds those already taken back as they were.
TUndoOutcome TUndoRedo::CancelTransaction() {
  TUndoOutcome outcome;
  if (Locked() || FTransactions == 0) return outcome;
  if (FTransactions > 1) {
    outcome.code = kUndoInTransaction;
    outcome.error = "ein äußerer Schritt ist noch offen";
    return outcome;
  }
  FTransactions = 0;
  if (FStepBroken) {
    // Changes made after the break were not recorded and cannot be taken back.
    DropStep();
    outcome.code = kUndoDamaged;
    outcome.error = FLastError;
    return outcome;
  }
  if (EndEmptyStep()) return outcome;
  TUndoTransaction step;
  try {
    FUndoStack->UpdateLastStartItem();
    step = FUndoStack->ReadLastTransaction();
  } catch (const UndoJournalError& error) {
    FLastError = error.what();
    DropStep();
    outcome.code = kUndoDamaged;
    outcome.error = FLastError;
    return outcome;
  }
  outcome.start = step.start;
  std::vector<std::unique_ptr<TCustomUndoRedoItem>> applied;
  {
    const TLockScope no_recording(*this);
    if (!ReverseItems(step, applied, outcome)) {
      KeepStep();
      return outcome;
    }
  }
  try {
    FUndoStack->DropLastTransaction();
    if (FIntent) FIntent->Finish();
  } catch (const UndoJournalError& error) {
    // The data is as before the step; the next opening cuts the stack by the intent.
    FLastError = error.what();
  }
  return outcome;
}

// The step is complete on the undo stack. A new change makes the undone steps
// meaningless (redo would overwrite it), so the redo stack is emptied - but only after
// the commit, so that a step taken back after a crash keeps them.
void TUndoRedo::FinishRecording() {
  if (!FIntent) {
    if (!FRedoStack->Empty()) FRedoStack->Clear();
    return;
  }
  FUndoStack->Sync();
  FIntent->Commit(FUndoStack->FileSize(),
                  std::min(FRedoStack->FileSize(), TVirtualStack::kEmptyLength));
  try {
    if (!FRedoStack->Empty()) FRedoStack->Clear();
    FIntent->Finish();
  } catch (const UndoJournalError& error) {
    // The step is final: the next opening of the journal finishes the files.
    FLastError = error.what();
  }
}

bool TUndoRedo::Push(const TCustomUndoRedoItem& item) {
  if (!Recording()) return false;
  try {
    FUndoStack->Push(item);
    FRecordedInStep = true;
  } catch (const UndoJournalError& error) {
    FStepBroken = true;
    FLastError = error.what();
    return false;
  }
  return true;
}

void TUndoRedo::FixStartItemCdataId(int32_t id) {
  if (FTransactions == 0) return;
  if (TStartItem* start = FUndoStack->LastStartItem()) start->SetModul(id);
}

void TUndoRedo::SetStartItemDoReloadAll() {
  if (FTransactions == 0) return;
  if (TStartItem* start = FUndoStack->LastStartItem()) start->SetReloadAll(true);
}

namespace {

// Whether a record change leaves the record as it was (the write only stamped it anew).
bool Unchanged(JournalImage before, JournalImage after) {
  return !before.empty() && !after.empty() && SameRecordContent(after, before);
}

}  // namespace

// Made durable before the record is written: if the process dies before the step is
// complete, the next opening finds the change and takes it back.
void TUndoRedo::RecordWillChange(const TableTarget& table, JournalImage before,
                                 JournalImage after) {
  if (!Recording() || !FIntent || Unchanged(before, after)) return;
  try {
    FIntent->AddChange(TDBUndoRedoItem(JournalTarget(table), before, after));
    FIntent->Sync();
  } catch (const UndoJournalError& error) {
    FStepBroken = true;
    FLastError = error.what();
  }
  TestKillPoint();  // the intent holds the change, the record is not written yet
}

void TUndoRedo::RecordChange(const TableTarget& table, JournalImage before, JournalImage after,
                             TRecordChange change) {
  TestKillPoint();  // the record is written, the undo stack does not hold it yet
  if (Unchanged(before, after)) return;
  if (!Push(TDBUndoRedoItem(JournalTarget(table), before, after))) return;
  if (TStartItem* start = FUndoStack->LastStartItem()) {
    start->AddCounterInfo(table.db_type, table.table_type, change);
  }
}

void TUndoRedo::RecordInserted(const TableTarget& table, JournalImage after) {
  RecordChange(table, {}, after, TRecordChange::kInsert);
}

void TUndoRedo::RecordUpdated(const TableTarget& table, JournalImage before, JournalImage after) {
  RecordChange(table, before, after, TRecordChange::kUpdate);
}

void TUndoRedo::RecordDeleted(const TableTarget& table, JournalImage before) {
  RecordChange(table, before, {}, TRecordChange::kDelete);
}

void TUndoRedo::Clear() {
  FUndoStack->Clear();
  FRedoStack->Clear();
  Notify();
}

bool TUndoRedo::ResolveUnfinished() {
  if (!FUnfinished) return true;
  if (FTargets.records == nullptr) {
    FLastError =
        "ein abgebrochener Schritt des Rückgängig-Journals kann ohne Tabellenzugriff "
        "nicht zurückgenommen werden";
    return false;
  }
  const TLockScope no_recording(*this);
  int taken_back = 0;
  std::vector<std::unique_ptr<TDBUndoRedoItem>>& changes = FUnfinished->changes;
  for (size_t i = changes.size(); i-- > 0;) {
    std::string error;
    TestKillPoint();
    const int result = changes[i]->Reverse(FTargets, error);
    if (result == kUndoOk) {
      ++taken_back;
    } else if (result != kUndoConflict) {
      // Found neither as the change left it nor missing: the step stays unfinished, and
      // the changes already taken back are found as they were before it next time.
      FLastError =
          "ein abgebrochener Schritt des Rückgängig-Journals kann nicht "
          "zurückgenommen werden: " +
          error;
      return false;
    }
    // A conflict: the record is not as the change would have left it - the change was
    // never made, the process died before it.
  }
  try {
    FIntent->Finish();
  } catch (const UndoJournalError& error) {
    FLastError = error.what();
    return false;
  }
  FUnfinished.reset();
  FRecoveryNote = taken_back == 0
                      ? "Hinweis: ein abgebrochener Schritt des Rückgängig-Journals wurde "
                        "verworfen; er hatte noch nichts gespeichert"
                      : "Hinweis: ein abgebrochener Schritt des Rückgängig-Journals wurde "
                        "zurückgenommen (" +
                            std::to_string(taken_back) +
                            (taken_back == 1 ? " Datensatz" : " Datensätze") + " zurückgesetzt)";
  return true;
}

TUndoOutcome TUndoRedo::PopUndo() {
  return Transfer(*FUndoStack, *FRedoStack);
}

TUndoOutcome TUndoRedo::PopRedo() {
  return Transfer(*FRedoStack, *FUndoStack);
}

namespace {

// The change that applying `item` makes, as an undo item: reversing it takes the change
// back.
TDBUndoRedoItem ChangeOf(const TDBUndoRedoItem& item) {
  const bool undo = item.Kind() == TUndoRedoItemKind::ikUndo;
  const std::vector<uint8_t>& now = undo ? item.After() : item.Before();
  const std::vector<uint8_t>& then = undo ? item.Before() : item.After();
  return TDBUndoRedoItem(item.Target(), now, then);
}

}  // namespace

// The record changes of a step about to be taken back or made again, in the order they
// will be made, durable before the first is made.
void TUndoRedo::BeginIntent(TIntentOperation operation,
                            const std::vector<std::unique_ptr<TCustomUndoRedoItem>>& items) {
  FIntent->Begin(operation, FUndoStack->FileSize(), FRedoStack->FileSize());
  for (size_t i = items.size(); i-- > 0;) {
    if (const auto* record = dynamic_cast<const TDBUndoRedoItem*>(items[i].get())) {
      FIntent->AddChange(ChangeOf(*record));
    }
  }
  FIntent->Sync();
}

// The newest step of `from` is read and checked whole, then its items are reversed
// newest first. If one cannot be, those already reversed are reversed again, so that
// tables and stacks stay as they were. Only then is the step recorded on `to`, in the
// order applied, so that moving it back applies the items in their original order.
TUndoOutcome TUndoRedo::Transfer(TVirtualStack& from, TVirtualStack& to) {
  TUndoOutcome outcome;
  if (FTransactions > 0) {
    outcome.code = kUndoInTransaction;
    outcome.error = "ein Schritt ist noch nicht abgeschlossen";
    return outcome;
  }
  if (!ResolveUnfinished()) {
    outcome.code = kUndoDamaged;
    outcome.error = FLastError;
    return outcome;
  }
  if (from.TransactionCount() == 0) {
    outcome.code = kUndoNothingToDo;
    outcome.error = "es gibt keinen Schritt";
    return outcome;
  }
  TUndoTransaction step;
  try {
    step = from.ReadLastTransaction();
  } catch (const UndoJournalError& error) {
    outcome.code = kUndoDamaged;
    outcome.error = error.what();
    return outcome;
  }
  outcome.start = step.start;

  const TLockScope no_recording(*this);
  if (FIntent) {
    try {
      BeginIntent(&from == FUndoStack.get() ? TIntentOperation::kUndo : TIntentOperation::kRedo,
                  step.items);
    } catch (const UndoJournalError& error) {
      outcome.code = kUndoDamaged;
      outcome.error = error.what();
      try {
        FIntent->Finish();
      } catch (const UndoJournalError&) {
      }
      return outcome;
    }
  }
  std::vector<std::unique_ptr<TCustomUndoRedoItem>> applied;
  if (!ReverseItems(step, applied, outcome)) {
    try {
      if (FIntent) FIntent->Finish();
    } catch (const UndoJournalError&) {
      // Left for the next opening, which finds every change taken back already.
    }
    return outcome;
  }
  outcome = MoveStep(from, to, step, applied);
  if (outcome.ok()) Notify();
  return outcome;
}

// Reverses the items of `step` newest first, written in batches; they move to `applied`
// in the order reversed. When one cannot be reversed, or the data cannot be written,
// those already reversed are made again and `outcome` says why.
bool TUndoRedo::ReverseItems(TUndoTransaction& step,
                             std::vector<std::unique_ptr<TCustomUndoRedoItem>>& applied,
                             TUndoOutcome& outcome) {
  TBatchHold batch(DatabasesOf(step.items));
  for (size_t i = step.items.size(); i-- > 0;) {
    TestKillPoint();
    int result = step.items[i]->Reverse(FTargets, outcome.error);
    if (int written = result == kUndoOk ? batch.Step() : kUndoOk; written != storage::kOk) {
      result = written;
      outcome.error = "die Daten können nicht auf die Platte geschrieben werden (Fehler " +
                      std::to_string(written) + ")";
    }
    if (result != kUndoOk) {
      TakeBack(applied, FTargets);
      outcome.code = result;
      return false;
    }
    applied.push_back(std::move(step.items[i]));
  }
  if (int written = batch.Finish(); written != storage::kOk) {
    TakeBack(applied, FTargets);
    outcome.code = written;
    outcome.error = "die Daten können nicht auf die Platte geschrieben werden (Fehler " +
                    std::to_string(written) + ")";
    return false;
  }
  return true;
}

// Records the applied step on `to` and removes it from `from`. Up to the commit in the
// intent file, a failure takes the data back; after it, the step is made, and should the
// files fail, the next opening finishes them.
TUndoOutcome TUndoRedo::MoveStep(TVirtualStack& from, TVirtualStack& to, TUndoTransaction& step,
                                 std::vector<std::unique_ptr<TCustomUndoRedoItem>>& applied) {
  TUndoOutcome outcome;
  outcome.start = step.start;
  bool started = false;
  bool committed = false;
  try {
    to.StartTransaction(step.start);
    started = true;
    for (const auto& item : applied) to.Push(*item);
    if (FIntent) {
      to.Sync();
      const int64_t from_final = from.LastTransactionPosition();
      const bool undoing = &from == FUndoStack.get();
      FIntent->Commit(undoing ? from_final : to.FileSize(), undoing ? to.FileSize() : from_final);
      committed = true;
    }
    from.DropLastTransaction();
    if (FIntent) FIntent->Finish();
  } catch (const UndoJournalError& error) {
    if (committed) return outcome;
    TakeBack(applied, FTargets);
    try {
      if (started) to.DropLastTransaction();
      if (FIntent) FIntent->Finish();
    } catch (const UndoJournalError&) {
    }
    outcome.code = kUndoDamaged;
    outcome.error = error.what();
  }
  return outcome;
}

}  // namespace korvan::data
