#pragma once

#include <chrono>
#include <string>
#include <thread>

#include "data/undo/undo_stream.h"
#include "storage/kernel_settings.h"

namespace korvan::app {

// Runs `open` (anything that takes the journal of a data directory) and, while another
// program holds the journal, tries again until the kernel's LOCK_TIMEOUT has passed: an
// edit of a colleague takes a moment, and the user should not be turned away for it.
// After the time-out the refusal passes on with the time waited and that nothing was
// changed.
template <typename Open>
auto WaitWhileJournalInUse(const Open& open) {
  const std::chrono::milliseconds wait(storage::CurrentKernelSettings().lock_timeout_ms);
  const auto deadline = std::chrono::steady_clock::now() + wait;
  for (;;) {
    try {
      return open();
    } catch (const data::UndoJournalError& error) {
      if (error.reason() != data::UndoJournalError::Reason::kInUse) throw;
      if (std::chrono::steady_clock::now() >= deadline) {
        throw data::UndoJournalError(std::string(error.what()) + " (" +
                                         std::to_string(wait.count()) +
                                         " ms gewartet); nichts geändert",
                                     error.reason());
      }
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

}  // namespace korvan::app
