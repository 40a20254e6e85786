#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "data/undo/undo_items.h"

namespace korvan::data {

// What a step of the persistent journal does to the data: record a new user action, take
// back the newest step, or make the newest undone step again.
enum class TIntentOperation : uint8_t { kRecord = 0, kUndo = 1, kRedo = 2 };

// What a process that died in the middle of a step left behind, read back from the intent
// file.
struct TUnfinishedStep {
  TIntentOperation operation = TIntentOperation::kRecord;
  // The lengths of the undo and redo files before the step began.
  int64_t undo_length = 0;
  int64_t redo_length = 0;
  // The record changes the step made or was about to make, in that order. Each is an undo
  // item: reversing it takes its change back, and finds the record as it was before the
  // change when the change never happened.
  std::vector<std::unique_ptr<TDBUndoRedoItem>> changes;
  // Set once the data changes were all made: the step is then finished by giving the
  // files these lengths.
  bool committed = false;
  int64_t undo_final = 0;
  int64_t redo_final = 0;

  // The lengths the stack files must have: as the step leaves them when it was
  // committed, as before it otherwise.
  int64_t UndoLength() const { return committed ? undo_final : undo_length; }
  int64_t RedoLength() const { return committed ? redo_final : redo_length; }
};

// The intent file of the persistent journal ("PENDING.QUJ"): written before the data is
// changed, so that the journal and the data can be brought to agree after the process is
// killed at any point of a step.
//
// A step goes: Begin (the operation and the stacks' lengths), the record changes, each
// made durable before the record is written; Commit (made durable once every change is
// made and the stacks hold the step's final form); then the stacks are cut to their
// final lengths and the file is removed. Whoever opens the journal next finds the file
// (only the holder of the journal's lock reads or writes it): a committed step is
// finished from the lengths, any other is taken back from the changes.
//
// File form: the 16-byte header "KorvPend", version (32-bit), zero (32-bit); then frames
// as in the stack files (kind, data length, data, CRC-32): kind 0 begin (operation byte,
// undo and redo length as 64-bit), kind 1 a change (a record item), kind 2 commit (final
// undo and redo length). A frame cut short or with a wrong checksum ends the file: it was
// being written when the process died, so nothing after it happened.
class TUndoIntent {
 public:
  explicit TUndoIntent(std::string path) : FFileName(std::move(path)) {}
  ~TUndoIntent();
  TUndoIntent(const TUndoIntent&) = delete;
  TUndoIntent& operator=(const TUndoIntent&) = delete;

  // The step a dead process left in `path`, or nothing when there is none. A file that is
  // not an intent file is reported with UndoJournalError (damaged).
  static std::optional<TUnfinishedStep> Read(const std::string& path);

  // Starts a step, replacing any earlier file.
  void Begin(TIntentOperation operation, int64_t undo_length, int64_t redo_length);
  // Adds a change (written, not yet durable: Sync makes it so).
  void AddChange(const TDBUndoRedoItem& change);
  void Sync();
  // Marks the data changes complete (durable on return).
  void Commit(int64_t undo_final, int64_t redo_final);
  // The step is finished on disk: the file goes.
  void Finish();
  bool Begun() const { return FStream >= 0; }
  const std::string& FileName() const { return FFileName; }

 private:
  void Append(uint8_t kind, const std::vector<uint8_t>& data);
  void Close();
  [[noreturn]] void Fail(const std::string& problem) const;

  std::string FFileName;
  int FStream = -1;
  int64_t FSize = 0;
};

}  // namespace korvan::data
