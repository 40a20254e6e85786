#pragma once

#include <string>

namespace korvan::app {

// What taking back (or making again) the newest step of a data directory's journal gave.
struct JournalStepOutcome {
  bool done = false;
  // When done: "Rückgängig gemacht: <caption>" / "Wiederhergestellt: <caption>"; else why
  // nothing changed and what the user can do about it.
  std::string text;
  // What the journal found of a step a killed process left, when anything.
  std::string recovery_note;
};

// Takes back the newest step of the journal of `data_dir` (`redo`: makes the newest step
// taken back again), whole or not at all. CommandError when the journal or a database
// cannot be opened.
JournalStepOutcome TakeJournalStep(const std::string& data_dir, bool redo);

}  // namespace korvan::app
