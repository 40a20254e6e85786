#pragma once

#include <set>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "storage/file/unique_fd.h"
#include "storage/key_file.h"
#include "storage/lock_entry_keys.h"

namespace korvan::storage {

inline constexpr int kLockFileCacheBlocks = 7;

// Who holds a lock that refused a request: the task number and, when its "U" entry
// could be read, the user's identity.
struct LockHolder {
  int task = -1;
  std::optional<uint32_t> user_identity;
};

// The lock file of one shared database (the database's base path + "2"), through which
// the users ("tasks") of the database register and lock names. It is a key file with
// 35-byte keys (see lock_entry_keys.h), registered with the BlockCache under the
// database handle + 40.
//
// Every operation runs under the lock file's byte-range mutex and is all or nothing:
// it takes the mutex (4105 when another process holds it — the caller repeats), reads
// and changes entries through the cache, writes its changes back with WriteAll and only
// then lets the mutex go. If it fails half-way, its cached changes are dropped instead.
//
// Other processes change the file between two operations of this one, so blocks cached
// during one operation are stale by the next. Each operation therefore starts, with the
// mutex held, by dropping the file's cache registration and registering it afresh
// (BlockCache::Close discards all of the file's blocks); everything it reads comes from
// the file as the previous holder of the mutex left it.
//
// A task that is registered through this object keeps its liveness byte (see
// lock_task_liveness.h); the tasks of processes that ended without unregistering are
// removed with all their locks by the next operation that registers, unregisters or
// locks, so a killed user never blocks the others.
//
// The mutex is a process-wide record lock (see lock_file_mutex.h): a process must have
// only one LockFile per file. The kernel guarantees this, since a database can be open
// only once per process.
class LockFile {
 public:
  // Opens `path` shared for reading and writing, creating it when it does not exist.
  // A new (or never completed) file is initialised as an empty lock file by whichever
  // process first takes its mutex. Results: 0; 4318 when the medium or the file refuses
  // write access; 4323 when the file cannot be created; 4320 on other failures.
  static int Open(const std::string& path, int registration, std::unique_ptr<LockFile>* out);

  // Drops the cache registration and closes the file; the file itself stays.
  ~LockFile();
  LockFile(const LockFile&) = delete;
  LockFile& operator=(const LockFile&) = delete;

  // Registers a task for the user. With `reuse`, a task already registered for the
  // same identity is taken over; otherwise the lowest free task number is taken.
  // 4306 when all 248 task numbers are in use, 4323 when a new file cannot be
  // initialised. If the last task has meanwhile deleted the file, it is created again.
  int RegisterTask(uint32_t user_identity, bool reuse, int* task);
  // Releases all locks and write locks of the task and removes it. When no task is
  // left, the file is deleted (while the mutex is still held) and deleted() is true.
  int UnregisterTask(int task);

  // Locks a name for the task, nesting: 4102 task not registered, 4103 another task
  // holds the write lock of the name, 4099 another task holds the name exclusively (or
  // the request is exclusive and another task holds it at all); the holder is returned.
  int LockSet(int task, LockMode mode, std::string_view name, LockHolder* holder);
  // Undoes one LockSet: 4100 when the task holds no lock on the name.
  int LockRelease(int task, std::string_view name);
  // Releases every lock on names the task holds, whatever the nesting.
  int LockReleaseAll(int task);
  // Takes the write lock of a name: 4098 when another task holds a lock on the name
  // or any write lock (holder returned). Taking one's own write lock again succeeds.
  int WriteLockSet(int task, std::string_view name, LockHolder* holder);
  // 4104 when the task holds no write lock on the name.
  int WriteLockRelease(int task, std::string_view name);

  // Deletes the file when no task is registered in it (for closing a database).
  int DeleteIfUnused();

  // All entries in key order (for tests and the integrity check).
  int ReadAllEntries(std::vector<KeyEntry>* entries);

  const std::string& path() const { return path_; }
  // The open descriptor (owned by this object; the handle table shows it).
  int fd() const { return fd_.get(); }
  int registration() const { return registration_; }
  bool deleted() const { return deleted_; }

 private:
  struct PrivateTag {};

 public:
  LockFile(PrivateTag, std::string path, int registration, UniqueFd fd);

 private:
  int RunLocked(const std::function<int()>& body);
  int RunBodyAndCommit(const std::function<int()>& body);
  int RefreshUnderMutex();
  int InitialiseUnderMutex();
  void DiscardCachedChanges();
  int Reopen();

  int RegisterBody(uint32_t user_identity, bool reuse, int* task);
  int UnregisterBody(int task);
  int LockSetBody(int task, LockMode mode, const std::string& name, LockHolder* holder);
  int LockReleaseBody(int task, const std::string& name);
  int ReleaseAllBody(int task);
  int WriteLockSetBody(int task, const std::string& name, LockHolder* holder);
  int WriteLockReleaseBody(int task, const std::string& name);

  // Entries whose first `prefix_length` key bytes equal the pattern's, in key order.
  int Collect(const KeyEntry& pattern, int prefix_length, std::vector<KeyEntry>* out);
  int ReadTaskTable(TaskTable* table, KeyEntry* stored);
  int WriteTaskTable(const KeyEntry& stored, const TaskTable& table);
  int IsRegistered(int task, bool* registered);
  LockHolder HolderOf(int task);
  int NameLocks(const std::string& name, std::vector<NameLock>* locks);
  int WriteLocks(std::vector<WriteLock>* locks);
  int ReplaceNameLock(const std::optional<NameLock>& old_lock,
                      const std::optional<NameLock>& new_lock);
  int RemoveWriteLocksOf(int task);
  int RemoveUserEntriesOf(int task);
  // Removes the tasks whose process has ended (their liveness byte is free) with their
  // locks and write locks.
  int RemoveDeadTasks();

  std::string path_;
  int registration_;
  UniqueFd fd_;
  bool deleted_ = false;
  bool delete_after_commit_ = false;
  std::set<int> own_tasks_;  // registered through this object, liveness byte held
};

}  // namespace korvan::storage
