#pragma once

// The pieces that make file changes survive a crash: a write is on disk only after the
// file is synced, and a created, renamed or removed name only after its directory is.
// Results are 0 or the system's error number (errno), so that each caller can name the
// file and the step in its own message.

#include <string>

namespace korvan::storage {

// fsync of the file at `path`.
int SyncFile(const std::string& path);

// fsync of a directory; "" is the current one.
int SyncDirectory(const std::string& directory);

// The directory `path` lies in: its parent, or "" for a bare name.
std::string DirectoryOf(const std::string& path);

// Renames `from` to `to` (replacing it) and syncs the directory of `to`, so that the
// new name is there after a crash.
int RenameDurably(const std::string& from, const std::string& to);

}  // namespace korvan::storage
