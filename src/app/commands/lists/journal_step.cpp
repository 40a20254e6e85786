#include "app/commands/lists/journal_step.h"

#include <exception>
#include <utility>

namespace korvan::app {

JournalStep::JournalStep(data::TUndoRedo& journal, data::TOperationKind kind, std::string caption)
    : journal_(journal), exceptions_(std::uncaught_exceptions()) {
  journal_.StartTransaction(data::TStartItem(0, kind, std::move(caption)));
}

JournalStep::~JournalStep() {
  if (ended_) return;
  if (std::uncaught_exceptions() == exceptions_) {
    journal_.EndTransaction();
    return;
  }
  // Unwinding: the exception that left the command half-way is what the user reads; a
  // failure to take back is left to the next opening of the journal, which finds the
  // step's changes in its intent.
  try {
    journal_.CancelTransaction();
  } catch (...) {
  }
}

data::TUndoOutcome JournalStep::Cancel() {
  ended_ = true;
  return journal_.CancelTransaction();
}

}  // namespace korvan::app
