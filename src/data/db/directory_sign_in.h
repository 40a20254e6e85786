#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "data/db/control_list.h"

namespace korvan::data {

class DatabaseFile;

// A user who could not sign in to a data directory, and why.
class DirectoryInUseError : public std::runtime_error {
 public:
  DirectoryInUseError(const std::string& message, std::string directory, ControlEntry holder)
      : std::runtime_error(message), directory_(std::move(directory)), holder_(std::move(holder)) {}
  const std::string& directory() const { return directory_; }
  const ControlEntry& holder() const { return holder_; }

 private:
  std::string directory_;
  ControlEntry holder_;
};

// The sign-in of one process to the control files "DATA.QDC" of the data directories
// it works in, held until the object goes away. Shared sign-ins are the everyday case:
// any number of users work side by side, and none of them can start while a rebuild or
// a reorganisation holds the directory alone. An exclusive sign-in (rebuild, reorg) is
// granted only while nobody else works there and keeps everybody else out; it is held
// for the whole run, so that nothing written meanwhile can be replaced or put back
// over. Both wait up to `wait` for the others to finish. The entry of a process that
// ended without signing off is dropped by the control list, so it never blocks.
class TDirectorySignIn {
 public:
  TDirectorySignIn(ControlUser me, bool exclusive, std::chrono::milliseconds wait);
  ~TDirectorySignIn();
  TDirectorySignIn(const TDirectorySignIn&) = delete;
  TDirectorySignIn& operator=(const TDirectorySignIn&) = delete;

  // Signs in to the directory unless this object already holds it. Throws
  // DirectoryInUseError naming the directory and the other user when the wait ends
  // without a sign-in; ControlFileError for an unusable control file.
  void Add(const std::string& directory);
  // Every directory of the files, in order; on a refusal the directories signed in so
  // far stay held until the object goes away.
  void AddDirectoriesOf(const std::vector<const DatabaseFile*>& files);
  bool Holds(const std::string& directory) const;
  bool exclusive() const { return exclusive_; }

 private:
  std::string RefusalText(const std::string& directory, const ControlEntry& holder) const;

  ControlUser me_;
  bool exclusive_;
  std::chrono::milliseconds wait_;
  std::map<std::string, std::unique_ptr<TControlList>> held_;
};

// "Meier (buero-2)": how the messages name a user of a directory.
std::string UserAndMachine(const ControlEntry& entry);

}  // namespace korvan::data
