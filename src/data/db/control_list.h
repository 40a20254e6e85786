#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "storage/file/unique_fd.h"

namespace korvan::data {

// The control file of every database directory.
inline constexpr char kControlFileName[] = "DATA.QDC";

// Shown for an entry whose user is not known.
inline constexpr char kStandardUser[] = "Standard User";

// A control file that cannot be read, written or locked, or whose content is damaged.
// The message names the file and, for damaged content, the line (counted from 1).
class ControlFileError : public std::runtime_error {
 public:
  ControlFileError(const std::string& file, int line, const std::string& problem);

  const std::string& file() const { return file_; }
  int line() const { return line_; }  // 0 when the problem is not in a particular line

 private:
  std::string file_;
  int line_;
};

// Where the diagnostics "LockRegion %d, %d" and "UnLockRegion %d, %d" go.
using ControlDiagnostics = std::function<void(const std::string&)>;

// The open control file: whole-file reads and writes, and byte-range locks. The locks
// belong to this open stream, not to the process, so two streams on the same file
// exclude each other even inside one process; they vanish when the stream is closed or
// its process ends.
class TControlStream {
 public:
  // Opens the file, creating it empty when it does not exist. Throws ControlFileError.
  TControlStream(std::string path, std::chrono::milliseconds lock_timeout,
                 ControlDiagnostics diagnostics);
  TControlStream(const TControlStream&) = delete;
  TControlStream& operator=(const TControlStream&) = delete;

  const std::string& path() const { return path_; }

  // Waits up to the lock time-out for an exclusive lock of the region; throws
  // ControlFileError when another stream holds it longer.
  void LockRegion(off_t offset, off_t length);
  void UnLockRegion(off_t offset, off_t length);
  // Takes the lock only when it is free at once.
  bool TryLockRegion(off_t offset, off_t length);
  // True when another stream holds a lock touching the region.
  bool IsRegionLockedByOther(off_t offset, off_t length) const;

  std::string ReadAll() const;
  void WriteAll(std::string_view content);

 private:
  [[noreturn]] void Fail(const std::string& problem) const;

  std::string path_;
  storage::UniqueFd fd_;
  std::chrono::milliseconds lock_timeout_;
  ControlDiagnostics diagnostics_;
};

// Who works in a directory.
struct ControlUser {
  std::string user;  // empty when not known
  std::string machine;
};

// One line of the control file: a user working in the directory. `slot` numbers the
// byte the user keeps locked while working; an entry whose slot nobody holds is left
// over from a program that ended without signing off, and is dropped.
struct ControlEntry {
  int slot = 0;
  bool exclusive = false;
  std::string user;
  std::string machine;
  int64_t process_id = 0;
  std::string since;  // local time "YYYY-MM-DD HH:MM:SS"

  // The user's name, or "Standard User" when it is not known.
  std::string DisplayName() const;
};

// What a control file holds.
struct ControlFileContent {
  std::vector<ControlEntry> users;
  std::map<std::string, uint64_t> table_counters;
};

// Parses the text of a control file; `file` names it in errors. Throws ControlFileError.
ControlFileContent ParseControlFile(std::string_view text, const std::string& file);
std::string FormatControlFile(const ControlFileContent& content);

// The list of users working in one database directory, kept in its "DATA.QDC".
//
// File format (UTF-8 text, one record per line, fields separated by "|"):
//   QDC|1                                        header, format version 1
//   U|<slot>|<X or S>|<user>|<machine>|<process id>|<since>   one per user
//   T|<table>|<change counter>                   one per table that was changed
//   END|<number of U and T lines>                last line
// An empty file is an empty list. Every change is made under the lock of one byte far
// beyond the text (the list lock); each user holds the byte of its slot for as long as
// it works in the directory. "|", line breaks and other control characters in names
// are stored as "_".
class TControlList {
 public:
  struct Options {
    std::chrono::milliseconds lock_timeout{5000};
    ControlDiagnostics diagnostics;
  };

  static constexpr int kMaxSlots = 1024;
  static constexpr off_t kListLockOffset = 0x40000000;
  static constexpr off_t kSlotLockBase = kListLockOffset + 1;

  explicit TControlList(std::string directory);
  TControlList(std::string directory, Options options);
  ~TControlList();
  TControlList(const TControlList&) = delete;
  TControlList& operator=(const TControlList&) = delete;

  // Opens the directory's control file and signs this user in, exclusively or shared.
  // Returns false, with GetLockUser naming the holder, when another user works in the
  // directory exclusively, or when `exclusive` is wanted and anyone else works in it;
  // the file then stays open without an entry of this user until Close. Throws
  // ControlFileError for an unusable or damaged file.
  bool Open(const ControlUser& me, bool exclusive);
  // Signs off and closes the file. Safe to call more than once.
  void Close();
  bool IsOpen() const { return stream_ != nullptr; }
  bool IsSignedIn() const { return own_slot_.has_value(); }

  // Enters this user into the list (see Open); the stream must be open.
  bool AddLockUser(const ControlUser& me, bool exclusive);
  // Removes this user's entry and releases its slot.
  void DeleteLockUser();
  // The user who held the directory when the last sign-in was refused.
  const std::optional<ControlEntry>& GetLockUser() const { return lock_user_; }
  // All users working in the directory now, this one included.
  std::vector<ControlEntry> Users();

  // Records that this user changed a table, for the others' IsTableChanged.
  void TableModify(const std::string& table);
  // True when another user changed the table since this one last looked (or signed in).
  bool IsTableChanged(const std::string& table);

  // Holds the list lock across several operations (nested calls are counted).
  void Lock();
  void Unlock();

  std::string ControlFilePath() const;

 private:
  TControlStream& Stream();
  ControlFileContent ReadContent();
  void WriteContent(const ControlFileContent& content);
  // Drops entries whose slot nobody holds; true when something was dropped.
  bool DropLeftovers(ControlFileContent& content) const;
  std::optional<ControlEntry> Holder(const ControlFileContent& content, bool exclusive) const;
  int ClaimSlot(const ControlFileContent& content);

  std::string directory_;
  Options options_;
  std::unique_ptr<TControlStream> stream_;
  int lock_depth_ = 0;
  std::optional<int> own_slot_;
  std::optional<ControlEntry> lock_user_;
  std::map<std::string, uint64_t> seen_counters_;
};

// Writes an empty control file into the directory unless one with content exists.
// Returns true when it wrote one. Throws ControlFileError.
bool CreateControlFile(const std::string& directory);

// The outcome of CheckExclusiveLocking.
struct ExclusiveLockingResult {
  bool held_by_other = false;
  std::optional<ControlEntry> holder;
  std::string message;  // the dialog text when held by another user
  // The signed-in list while the directory is used; empty when held by another user.
  std::unique_ptr<TControlList> list;
};

// Signs `me` into the directory's control list, exclusively when the configuration
// says the directory is to be used exclusively or when `exclusive` is wanted, and
// reports whether another user holds it (texts 1455 and 1449, the latter naming the
// holder). Throws ControlFileError for an unusable or damaged control file.
ExclusiveLockingResult CheckExclusiveLocking(const std::string& directory, bool exclusive,
                                             bool configured_exclusive, const ControlUser& me,
                                             TControlList::Options options = {});

}  // namespace korvan::data
