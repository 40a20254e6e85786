#include "data/db/directory_sign_in.h"

#include <thread>

#include "data/db/db_groups.h"

namespace korvan::data {
namespace {

constexpr std::chrono::milliseconds kRetryPause{50};

std::string WithSlash(std::string directory) {
  if (!directory.empty() && directory.back() != '/') directory.push_back('/');
  return directory;
}

}  // namespace

std::string UserAndMachine(const ControlEntry& entry) {
  std::string who = "\"" + entry.DisplayName() + "\"";
  if (!entry.machine.empty()) who += " (" + entry.machine + ")";
  return who;
}

TDirectorySignIn::TDirectorySignIn(ControlUser me, bool exclusive, std::chrono::milliseconds wait)
    : me_(std::move(me)), exclusive_(exclusive), wait_(wait) {}

// Signed off newest first, as a later directory may only have been entered because of
// an earlier one.
TDirectorySignIn::~TDirectorySignIn() {
  while (!held_.empty()) held_.erase(std::prev(held_.end()));
}

bool TDirectorySignIn::Holds(const std::string& directory) const {
  return held_.contains(WithSlash(directory));
}

void TDirectorySignIn::Add(const std::string& directory) {
  const std::string key = WithSlash(directory);
  if (held_.contains(key)) return;
  const auto deadline = std::chrono::steady_clock::now() + wait_;
  for (;;) {
    auto list = std::make_unique<TControlList>(key);
    if (list->Open(me_, exclusive_)) {
      held_.emplace(key, std::move(list));
      return;
    }
    const ControlEntry holder = list->GetLockUser().value_or(ControlEntry{});
    list->Close();
    if (std::chrono::steady_clock::now() >= deadline) {
      throw DirectoryInUseError(RefusalText(key, holder), key, holder);
    }
    std::this_thread::sleep_for(kRetryPause);
  }
}

void TDirectorySignIn::AddDirectoriesOf(const std::vector<const DatabaseFile*>& files) {
  for (const DatabaseFile* file : files) Add(file->directory());
}

std::string TDirectorySignIn::RefusalText(const std::string& directory,
                                          const ControlEntry& holder) const {
  const std::string waited = " (" + std::to_string(wait_.count()) + " ms gewartet)";
  if (exclusive_) {
    return "Verzeichnis \"" + directory + "\" wird benutzt von " + UserAndMachine(holder) + waited;
  }
  return "Verzeichnis \"" + directory + "\" wird gerade von " + UserAndMachine(holder) +
         " allein benutzt (Neuaufbau oder Reorganisation)" + waited +
         "; bitte später noch einmal versuchen";
}

}  // namespace korvan::data
