#include "data/undo/undo_redo.h"

#include <filesystem>

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

TUndoRedo::TUndoRedo(const std::string& directory) {
  TVirtualStack::RemoveLeftoverFiles(directory);
  FUndoStack = std::make_unique<TVirtualStack>(directory);
  FRedoStack = std::make_unique<TVirtualStack>(directory);
}

TUndoRedo::TUndoRedo(std::unique_ptr<TVirtualStack> undo, std::unique_ptr<TVirtualStack> redo)
    : FRedoStack(std::move(redo)), FUndoStack(std::move(undo)) {}

namespace {
constexpr const char* kUndoFileName = "UNDO.QUJ";
constexpr const char* kRedoFileName = "REDO.QUJ";
}  // namespace

std::vector<std::string> TUndoRedo::PersistentFiles(const std::string& data_directory) {
  const std::filesystem::path dir = data_directory;
  return {(dir / kUndoFileName).string(), (dir / kRedoFileName).string()};
}

std::unique_ptr<TUndoRedo> TUndoRedo::OpenPersistent(const std::string& data_directory,
                                                     TDamagedFile damaged) {
  const std::vector<std::string> files = PersistentFiles(data_directory);
  auto undo = TVirtualStack::OpenPersistent(files[0], damaged);
  auto redo = TVirtualStack::OpenPersistent(files[1], damaged);
  return std::unique_ptr<TUndoRedo>(new TUndoRedo(std::move(undo), std::move(redo)));
}

std::vector<std::string> TUndoRedo::RemovePersistent(const std::string& data_directory) {
  return TVirtualStack::RemovePersistent(PersistentFiles(data_directory));
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

void TUndoRedo::StartTransaction(const TStartItem& item) {
  if (!FActive || Locked()) return;
  if (FTransactions++ > 0) return;
  FRecordedInStep = false;
  FStepBroken = false;
  try {
    FUndoStack->StartTransaction(item);
  } catch (const UndoJournalError& error) {
    FStepBroken = true;
    FLastError = error.what();
  }
}

void TUndoRedo::EndTransaction() {
  if (Locked() || FTransactions == 0) return;
  if (--FTransactions > 0) return;
  try {
    if (FStepBroken) {
      // An incomplete step must never be offered: taking it back would restore only part.
      FUndoStack->DropLastTransaction();
      return;
    }
    if (FUndoStack->Normalize()) return;
    FUndoStack->UpdateLastStartItem();
  } catch (const UndoJournalError& error) {
    FLastError = error.what();
    return;
  }
  FUndoStack->SetModified(true);
  FRedoStack->SetModified(true);
  Notify();
}

bool TUndoRedo::Push(const TCustomUndoRedoItem& item) {
  if (!FActive || Locked() || FTransactions == 0 || FStepBroken) return false;
  try {
    if (!FRecordedInStep) {
      // A new change makes the undone steps meaningless: redo would overwrite it.
      if (!FRedoStack->Empty()) FRedoStack->Clear();
      FRecordedInStep = true;
    }
    FUndoStack->Push(item);
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

void TUndoRedo::RecordChange(const TableTarget& table, JournalImage before, JournalImage after,
                             TRecordChange change) {
  if (!Push(TDBUndoRedoItem(table, before, after))) return;
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

TUndoOutcome TUndoRedo::PopUndo() {
  return Transfer(*FUndoStack, *FRedoStack);
}

TUndoOutcome TUndoRedo::PopRedo() {
  return Transfer(*FRedoStack, *FUndoStack);
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

  std::vector<std::unique_ptr<TCustomUndoRedoItem>> applied;
  const TLockScope no_recording(*this);
  for (size_t i = step.items.size(); i-- > 0;) {
    const int result = step.items[i]->Reverse(FTargets, outcome.error);
    if (result != kUndoOk) {
      TakeBack(applied, FTargets);
      outcome.code = result;
      return outcome;
    }
    applied.push_back(std::move(step.items[i]));
  }
  bool started = false;
  try {
    to.StartTransaction(step.start);
    started = true;
    for (const auto& item : applied) to.Push(*item);
    from.DropLastTransaction();
  } catch (const UndoJournalError& error) {
    TakeBack(applied, FTargets);
    try {
      if (started) to.DropLastTransaction();
    } catch (const UndoJournalError&) {
    }
    outcome.code = kUndoDamaged;
    outcome.error = error.what();
    return outcome;
  }
  Notify();
  return outcome;
}

}  // namespace korvan::data
