#pragma once

#include <cstdint>
#include <string>

#include "storage/db_handle_table.h"

// Sharing one key file between processes, and telling a key file that was not closed
// cleanly from one that was.
//
// Each process caches key blocks and writes them back later; on its own that lets a
// process read blocks another one has changed meanwhile, and a process killed before
// its write-back leaves a key file that misses keys of records already in the data
// file. Both are handled with open-file-description locks on bytes far beyond any
// block of the key file (they vanish with the process) and two fields of the version 3
// header:
//
//   tree lock   Every kernel operation on records or keys holds it, shared to read and
//               exclusive to change. Taking it reads the header's change stamp; when it
//               differs from the stamp the cached blocks belong to, they are dropped.
//               An exclusive holder that changed blocks raises the stamp and writes them
//               all back before letting go. Cost: two fcntl calls and one pread per
//               operation, plus the writes of the changed blocks.
//   writer slot Every handle open for writing holds one of 64 slot locks while it is
//               open. Before its first change reaches either file, its bit in the
//               header's writer set is written and synced (once per open); a clean
//               close clears it after everything is written back and synced.
//   guard       Held while an open decides about the header and, if needed, rebuilds,
//               so that two opens never both rebuild.
//
// A bit whose slot nobody holds belongs to a writer that ended without closing: the key
// file cannot be trusted. When no writer is alive, the open that finds it rebuilds the
// key file from the data file (key_file_rebuild.h) before anybody reads or writes; while
// others still work on the file it stays marked, and the first open after them
// rebuilds. Version 2 key files have no room for the fields and are shared unguarded.
namespace korvan::storage::kernel {

enum class TreeAccess { kRead, kChange };

// Holds the tree lock of a handle's key file for one operation. Nested holders of the
// same handle share the outermost lock (a change inside a read is a programming error
// and refused). Check result() before using the key file: 0, or 4320.
class TreeLock {
 public:
  TreeLock(int handle, DbHandleSlot& slot, TreeAccess access);
  ~TreeLock();
  TreeLock(const TreeLock&) = delete;
  TreeLock& operator=(const TreeLock&) = delete;

  int result() const { return result_; }
  // Writes the changed blocks back and lets go now; the result of the write-back.
  int Release();
  // Leaves the lock held beyond this object, as one level of the handle's nesting;
  // EndTreeHold lets go of it.
  void Keep() { held_ = false; }

 private:
  int handle_;
  DbHandleSlot& slot_;
  bool held_ = false;
  int result_ = 0;
};

// Holds the tree lock of a handle over several kernel operations (iDK_TreeLock): the
// operations inside nest in the hold and take no lock of their own. 0, or 4320.
int HoldTreeLock(int handle, DbHandleSlot& slot, TreeAccess access);
// Ends the innermost hold; when it was the outermost level, the changed blocks are
// written back and the lock is let go. 0, the write-back's result, or 4320 when the
// handle holds nothing.
int EndTreeHold(int handle, DbHandleSlot& slot);

// Takes the tree lock (exclusive) and, before the first change of a handle open for
// writing, records its writer bit durably. 0, or 4320.
int BeginChange(int handle, DbHandleSlot& slot, TreeLock& lock);

// At open, after the key file is registered with the cache and the slot is in the
// handle table: takes a writer slot (writable handles), and rebuilds the key file when
// it was not closed cleanly and nobody else writes it. 0; 4306 when all writer slots
// are taken; 4325 when it must be rebuilt and cannot be; 4320 for I/O errors.
int JoinKeyFile(int handle, DbHandleSlot& slot);

// At a clean close, after the key file is written back and synced: clears the
// handle's writer bit durably. 0 or 4320 (the handle then stays open).
int LeaveKeyFile(int handle, DbHandleSlot& slot);

// Whether a key file ended cleanly: no writer bit set whose writer is gone. Reads the
// header only; false with 0 for a key file whose writer is gone. 4308 missing, 4320
// unreadable.
int KeyFileClosedCleanly(const std::string& key_file, bool* clean);

}  // namespace korvan::storage::kernel
