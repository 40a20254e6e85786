#pragma once

// Replacing a file's content as one step: the new content goes into a temporary file
// next to the target, which is then renamed over it. Readers and a crash see either the
// old content or the new one, never a mix; when anything fails, the target is left as it
// was and the temporary file is removed.

#include <functional>
#include <string>
#include <string_view>

namespace korvan::storage {

enum class Durability {
  // Old or new content after a crash; the new content may still be lost to one. For
  // files the program can produce again (caches, hand-over lists, clipboard blocks).
  kAtomic,
  // The new content is on disk when the call returns: the temporary file is synced
  // before the rename and the directory after it.
  kDurable,
};

// The step of a replacement that failed.
enum class FileWriteStep {
  kNone,           // nothing failed
  kCreate,         // the temporary file could not be created
  kWrite,          // writing (or copying into) the temporary file failed
  kSync,           // the temporary file could not be synced or closed
  kReplace,        // the rename over the target failed
  kSyncDirectory,  // the target has the new content, but its directory could not be synced
};

struct FileWriteResult {
  FileWriteStep failed = FileWriteStep::kNone;
  int error = 0;  // the system's error number of the failed step

  bool ok() const { return failed == FileWriteStep::kNone; }
  // The system's text for `error`.
  std::string ErrorText() const;
};

// Fills the open temporary file through its descriptor; returns 0 or an error number.
using FileFiller = std::function<int(int fd)>;

// Replaces the content of `path` with what `fill` writes. The new file keeps the
// permissions of the file it replaces; a new file gets 0644. The directory of `path`
// must exist.
FileWriteResult ReplaceFileAtomically(const std::string& path, Durability durability,
                                      const FileFiller& fill);

// Replaces the content of `path` with `content`.
FileWriteResult WriteFileAtomically(const std::string& path, std::string_view content,
                                    Durability durability);

// Replaces the content of `path` with a copy of the file `source`.
FileWriteResult CopyFileAtomically(const std::string& source, const std::string& path,
                                   Durability durability);

}  // namespace korvan::storage
