#pragma once

#include <string>

#include "data/undo/undo_redo.h"

namespace korvan::app {

// One step of the journal for the lifetime of the object: everything the command changes
// meanwhile is taken back by one `korvan undo`. A command that fails half-way cancels
// the step (Cancel, or an exception leaving the scope): what it wrote is taken back and
// the journal stays as it was, the steps undone before included.
class JournalStep {
 public:
  JournalStep(data::TUndoRedo& journal, data::TOperationKind kind, std::string caption);
  ~JournalStep();
  JournalStep(const JournalStep&) = delete;
  JournalStep& operator=(const JournalStep&) = delete;

  // Takes back what the step recorded and forgets it; the outcome says when something
  // could not be taken back (the step then stays, as the data has it).
  data::TUndoOutcome Cancel();

 private:
  data::TUndoRedo& journal_;
  int exceptions_;  // in flight when the step began
  bool ended_ = false;
};

}  // namespace korvan::app
