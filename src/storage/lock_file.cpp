#include "storage/lock_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "storage/block_cache.h"
#include "storage/block_io.h"
#include "storage/db_kernel_codes.h"
#include "storage/file/unique_fd.h"
#include "storage/lock_file_mutex.h"
#include "storage/lock_task_liveness.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

// A valid lock file holds at least the key file header and the root node with the "L"
// entry; anything shorter was created but never completely initialised.
constexpr off_t kMinimumLockFileSize = 2 * kBlockSize;

// How often RegisterTask follows a lock file that its last user deleted meanwhile.
constexpr int kMaxReopenAttempts = 16;

bool IsNoEntry(int result) {
  return result == kKeyNoMatch || result == kKeyIndexEmpty;
}

// A lock file never comes near the size limit; "nearly full" still means inserted.
int InsertKey(int registration, const KeyEntry& entry) {
  int result = KeyInsert(registration, entry);
  return result == kKeyFileNearlyFull ? kOk : result;
}

int OpenOrCreate(const std::string& path, UniqueFd* fd) {
  *fd = UniqueFd(open(path.c_str(), O_RDWR | O_CLOEXEC));
  if (!fd->valid() && errno == ENOENT) {
    *fd = UniqueFd(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
    if (!fd->valid() && errno != EROFS && errno != EACCES && errno != EPERM) {
      return kDkLockFileInitFailed;
    }
  }
  if (fd->valid()) return kOk;
  if (errno == EROFS || errno == EACCES || errno == EPERM) return kDkMediumReadOnly;
  return kDkIoError;
}

LockMode Stronger(LockMode a, LockMode b) {
  return a == LockMode::kExclusive || b == LockMode::kExclusive ? LockMode::kExclusive
                                                                : LockMode::kShared;
}

}  // namespace

int LockFile::Open(const std::string& path, int registration, std::unique_ptr<LockFile>* out) {
  UniqueFd fd;
  int result = OpenOrCreate(path, &fd);
  if (result != kOk) return result;
  BlockCache::Instance().Close(registration);  // a leftover of an earlier use of the number
  result = BlockCache::Instance().Open(registration, fd.get(), path, kLockFileCacheBlocks);
  if (result != kOk) return kDkIoError;
  *out = std::make_unique<LockFile>(PrivateTag{}, path, registration, std::move(fd));
  return kOk;
}

LockFile::LockFile(PrivateTag, std::string path, int registration, UniqueFd fd)
    : path_(std::move(path)), registration_(registration), fd_(std::move(fd)) {}

LockFile::~LockFile() {
  BlockCache::Instance().Close(registration_);
}

// ---- The frame of every operation -------------------------------------------------

int LockFile::RunLocked(const std::function<int()>& body) {
  if (deleted_ || !fd_.valid()) return kLockFileNotOpen;
  LockFileMutex mutex(fd_.get());
  int result = mutex.TryLock();
  if (result != kOk) return result;
  try {
    result = RefreshUnderMutex();
    return result == kOk ? RunBodyAndCommit(body) : result;
  } catch (const FileIoError&) {
    // The blocks the failed read or write left in the cache are dropped by the next
    // operation's refresh; the mutex is let go by its destructor.
    return kDkIoError;
  }
}

int LockFile::RunBodyAndCommit(const std::function<int()>& body) {
  // A failed or throwing body has its cached changes dropped before the mutex is let go.
  struct DiscardUnlessCommitted {
    LockFile* file;
    bool committed = false;
    ~DiscardUnlessCommitted() {
      if (!committed) file->DiscardCachedChanges();
    }
  } guard{this};

  delete_after_commit_ = false;
  int result = body();
  if (result != kOk) return result;
  if (BlockCache::Instance().WriteAll(registration_) != kOk) return kDkIoError;
  guard.committed = true;
  if (delete_after_commit_) {
    // Deleted while the mutex is held: a process that opened the file before and waits
    // for the mutex finds it unlinked when it gets through (RefreshUnderMutex).
    unlink(path_.c_str());
    deleted_ = true;
  }
  return kOk;
}

// Called with the mutex held. Makes sure the descriptor still names the file at path_
// (the last user may have deleted it after this process opened it), drops every block
// cached during earlier operations, and initialises a file that is new.
int LockFile::RefreshUnderMutex() {
  struct stat by_fd = {};
  struct stat by_path = {};
  if (fstat(fd_.get(), &by_fd) != 0) return kDkIoError;
  if (stat(path_.c_str(), &by_path) != 0 || by_fd.st_nlink == 0 || by_fd.st_ino != by_path.st_ino ||
      by_fd.st_dev != by_path.st_dev) {
    return kLockFileNotOpen;
  }
  bool is_new = by_fd.st_size < kMinimumLockFileSize;
  if (is_new && ftruncate(fd_.get(), 0) != 0) return kDkLockFileInitFailed;

  BlockCache& cache = BlockCache::Instance();
  cache.Close(registration_);
  if (cache.Open(registration_, fd_.get(), path_, kLockFileCacheBlocks) != kOk) return kDkIoError;
  return is_new ? InitialiseUnderMutex() : kOk;
}

int LockFile::InitialiseUnderMutex() {
  if (KeyFileInit(3, registration_, kLockKeyLength) != kOk ||
      InsertKey(registration_, TaskTableEntry(TaskTable{})) != kOk ||
      BlockCache::Instance().WriteAll(registration_) != kOk) {
    DiscardCachedChanges();
    return kDkLockFileInitFailed;
  }
  return kOk;
}

void LockFile::DiscardCachedChanges() {
  BlockCache& cache = BlockCache::Instance();
  cache.Close(registration_);
  cache.Open(registration_, fd_.get(), path_, kLockFileCacheBlocks);
}

int LockFile::Reopen() {
  BlockCache::Instance().Close(registration_);
  fd_.Close();
  deleted_ = false;
  own_tasks_.clear();  // their liveness bytes went with the descriptor
  int result = OpenOrCreate(path_, &fd_);
  if (result != kOk) return result;
  if (BlockCache::Instance().Open(registration_, fd_.get(), path_, kLockFileCacheBlocks) != kOk) {
    return kDkIoError;
  }
  return kOk;
}

// ---- Public operations --------------------------------------------------------------

int LockFile::RegisterTask(uint32_t user_identity, bool reuse, int* task) {
  int result = kLockFileNotOpen;
  for (int attempt = 0; attempt < kMaxReopenAttempts; ++attempt) {
    if (deleted_ || attempt > 0) {
      result = Reopen();
      if (result != kOk) return result;
    }
    result = RunLocked([&] { return RegisterBody(user_identity, reuse, task); });
    if (result != kLockFileNotOpen) return result;
  }
  return result;
}

int LockFile::UnregisterTask(int task) {
  return RunLocked([&] { return UnregisterBody(task); });
}

int LockFile::LockSet(int task, LockMode mode, std::string_view name, LockHolder* holder) {
  std::string lock_name = LockNameOf(name);
  return RunLocked([&] { return LockSetBody(task, mode, lock_name, holder); });
}

int LockFile::LockRelease(int task, std::string_view name) {
  std::string lock_name = LockNameOf(name);
  return RunLocked([&] { return LockReleaseBody(task, lock_name); });
}

int LockFile::LockReleaseAll(int task) {
  return RunLocked([&] {
    bool registered = false;
    int result = IsRegistered(task, &registered);
    if (result != kOk) return result;
    return registered ? ReleaseAllBody(task) : kLockTaskNotRegistered;
  });
}

int LockFile::WriteLockSet(int task, std::string_view name, LockHolder* holder) {
  std::string lock_name = LockNameOf(name);
  return RunLocked([&] { return WriteLockSetBody(task, lock_name, holder); });
}

int LockFile::WriteLockRelease(int task, std::string_view name) {
  std::string lock_name = LockNameOf(name);
  return RunLocked([&] { return WriteLockReleaseBody(task, lock_name); });
}

int LockFile::DeleteIfUnused() {
  return RunLocked([&] {
    TaskTable table;
    KeyEntry stored;
    int result = ReadTaskTable(&table, &stored);
    if (result != kOk) return result;
    delete_after_commit_ = table.count == 0;
    return kOk;
  });
}

int LockFile::ReadAllEntries(std::vector<KeyEntry>* entries) {
  return RunLocked([&] { return Collect(KindPattern(static_cast<char>(kKeyPad)), 0, entries); });
}

// ---- Operation bodies (mutex held, cache fresh) -------------------------------------

int LockFile::RegisterBody(uint32_t user_identity, bool reuse, int* task) {
  int result = RemoveDeadTasks();
  if (result != kOk) return result;
  TaskTable table;
  KeyEntry stored;
  if ((result = ReadTaskTable(&table, &stored)) != kOk) return result;

  if (reuse) {
    std::vector<KeyEntry> users;
    result = Collect(KindPattern(kUserKind), 1, &users);
    if (result != kOk) return result;
    for (const KeyEntry& user : users) {
      int owner = ParseUserTask(user);
      if (owner < 0 || user.position != user_identity) continue;
      *task = owner;
      // Shared with the earlier registration when that process still lives.
      if (HoldTaskAlive(fd_.get(), owner)) own_tasks_.insert(owner);
      if (table.Has(owner)) return kOk;
      table.Set(owner);  // repair a table that lost the bit
      return WriteTaskTable(stored, table);
    }
  }

  int free_task = table.LowestFree();
  if (free_task < 0) return kDkTooManyTasks;
  // A free number must not hand a new user the leftovers of an earlier one.
  if ((result = RemoveUserEntriesOf(free_task)) != kOk ||
      (result = ReleaseAllBody(free_task)) != kOk ||
      (result = RemoveWriteLocksOf(free_task)) != kOk) {
    return result;
  }
  if (!HoldTaskAlive(fd_.get(), free_task)) return kDkIoError;
  own_tasks_.insert(free_task);
  table.Set(free_task);
  if ((result = WriteTaskTable(stored, table)) != kOk ||
      (result = InsertKey(registration_, UserEntry(free_task, user_identity))) != kOk) {
    return result;
  }
  *task = free_task;
  return kOk;
}

int LockFile::UnregisterBody(int task) {
  // Dead tasks gone first: the last live user deletes the file.
  int result = RemoveDeadTasks();
  if (result != kOk) return result;
  TaskTable table;
  KeyEntry stored;
  if ((result = ReadTaskTable(&table, &stored)) != kOk) return result;
  bool registered = false;
  if ((result = IsRegistered(task, &registered)) != kOk) return result;
  if (!registered && !table.Has(task)) return kLockTaskNotRegistered;

  if ((result = ReleaseAllBody(task)) != kOk || (result = RemoveWriteLocksOf(task)) != kOk ||
      (result = RemoveUserEntriesOf(task)) != kOk) {
    return result;
  }
  if (table.Has(task)) {
    table.Clear(task);
    if ((result = WriteTaskTable(stored, table)) != kOk) return result;
  }
  delete_after_commit_ = table.count == 0;
  ReleaseTaskAlive(fd_.get(), task);
  own_tasks_.erase(task);
  return kOk;
}

int LockFile::LockSetBody(int task, LockMode mode, const std::string& name, LockHolder* holder) {
  int result = RemoveDeadTasks();
  if (result != kOk) return result;
  bool registered = false;
  result = IsRegistered(task, &registered);
  if (result != kOk) return result;
  if (!registered) return kLockTaskNotRegistered;

  std::vector<WriteLock> write_locks;
  if ((result = WriteLocks(&write_locks)) != kOk) return result;
  for (const WriteLock& write_lock : write_locks) {
    if (write_lock.name == name && write_lock.task != task) {
      *holder = HolderOf(write_lock.task);
      return kLockWriteLockHeld;
    }
  }

  std::vector<NameLock> locks;
  if ((result = NameLocks(name, &locks)) != kOk) return result;
  std::optional<NameLock> own;
  for (const NameLock& lock : locks) {
    if (lock.task == task) {
      own = lock;
    } else if (lock.mode == LockMode::kExclusive || mode == LockMode::kExclusive) {
      *holder = HolderOf(lock.task);
      return kLockNameExclusive;
    }
  }
  // A nested shared request does not weaken an exclusive lock the task already holds.
  NameLock next{name, own ? Stronger(own->mode, mode) : mode, task, own ? own->nesting + 1 : 1};
  return ReplaceNameLock(own, next);
}

int LockFile::LockReleaseBody(int task, const std::string& name) {
  bool registered = false;
  int result = IsRegistered(task, &registered);
  if (result != kOk) return result;
  if (!registered) return kLockTaskNotRegistered;

  std::vector<NameLock> locks;
  if ((result = NameLocks(name, &locks)) != kOk) return result;
  auto own = std::find_if(locks.begin(), locks.end(),
                          [task](const NameLock& lock) { return lock.task == task; });
  if (own == locks.end()) return kLockNotHeld;
  std::optional<NameLock> next;
  if (own->nesting > 1) {
    next = *own;
    --next->nesting;
  }
  return ReplaceNameLock(*own, next);
}

int LockFile::ReleaseAllBody(int task) {
  std::vector<KeyEntry> index;
  int result = Collect(TaskIndexPattern(task), 3, &index);
  if (result != kOk) return result;
  for (const KeyEntry& entry : index) {
    auto lock = ParseTaskIndex(entry);
    if (lock) {
      result = KeyDelete(registration_, NameLockEntry(*lock));
      if (result != kOk && result != kKeyNotFoundOnDelete) return result;
    }
    if ((result = KeyDelete(registration_, entry)) != kOk) return result;
  }
  return kOk;
}

int LockFile::WriteLockSetBody(int task, const std::string& name, LockHolder* holder) {
  int result = RemoveDeadTasks();
  if (result != kOk) return result;
  bool registered = false;
  result = IsRegistered(task, &registered);
  if (result != kOk) return result;
  if (!registered) return kLockTaskNotRegistered;

  std::vector<NameLock> locks;
  if ((result = NameLocks(name, &locks)) != kOk) return result;
  for (const NameLock& lock : locks) {
    if (lock.task != task) {
      *holder = HolderOf(lock.task);
      return kLockNameWriteLocked;
    }
  }
  std::vector<WriteLock> write_locks;
  if ((result = WriteLocks(&write_locks)) != kOk) return result;
  bool own = false;
  for (const WriteLock& write_lock : write_locks) {
    if (write_lock.task != task) {
      *holder = HolderOf(write_lock.task);
      return kLockNameWriteLocked;
    }
    own = own || write_lock.name == name;
  }
  return own ? kOk : InsertKey(registration_, WriteLockEntry(WriteLock{name, task}));
}

int LockFile::WriteLockReleaseBody(int task, const std::string& name) {
  bool registered = false;
  int result = IsRegistered(task, &registered);
  if (result != kOk) return result;
  if (!registered) return kLockTaskNotRegistered;

  result = KeyDelete(registration_, WriteLockEntry(WriteLock{name, task}));
  return result == kKeyNotFoundOnDelete || result == kKeyIndexEmpty ? kLockNoWriteLock : result;
}

// ---- Entry helpers ------------------------------------------------------------------

int LockFile::Collect(const KeyEntry& pattern, int prefix_length, std::vector<KeyEntry>* out) {
  out->clear();
  KeyEntry cursor = pattern;
  cursor.position = 0;
  int result = KeyFirstMatch(registration_, cursor);
  while (result == kOk && std::memcmp(cursor.key, pattern.key, prefix_length) == 0) {
    out->push_back(cursor);
    result = KeyNext(registration_, cursor);
  }
  return result == kOk || IsNoEntry(result) ? kOk : result;
}

int LockFile::ReadTaskTable(TaskTable* table, KeyEntry* stored) {
  std::vector<KeyEntry> entries;
  int result = Collect(KindPattern(kTaskTableKind), 1, &entries);
  if (result != kOk) return result;
  if (entries.size() != 1) return kLockEntryMissing;
  auto parsed = ParseTaskTable(entries.front());
  if (!parsed) return kLockEntryMissing;
  *table = *parsed;
  *stored = entries.front();
  return kOk;
}

int LockFile::WriteTaskTable(const KeyEntry& stored, const TaskTable& table) {
  KeyEntry updated = TaskTableEntry(table);
  if (std::memcmp(updated.key, stored.key, kLockKeyLength) == 0) return kOk;
  int result = InsertKey(registration_, updated);
  return result != kOk ? result : KeyDelete(registration_, stored);
}

int LockFile::IsRegistered(int task, bool* registered) {
  *registered = false;
  if (!IsValidTask(task)) return kOk;
  std::vector<KeyEntry> users;
  int result = Collect(UserPattern(task), 3, &users);
  *registered = !users.empty();
  return result;
}

LockHolder LockFile::HolderOf(int task) {
  LockHolder holder;
  holder.task = task;
  std::vector<KeyEntry> users;
  if (Collect(UserPattern(task), 3, &users) == kOk && !users.empty()) {
    holder.user_identity = users.front().position;
  }
  return holder;
}

int LockFile::NameLocks(const std::string& name, std::vector<NameLock>* locks) {
  std::vector<KeyEntry> entries;
  int result =
      Collect(KindPattern(kNameLockKind, name), 1 + static_cast<int>(name.size()), &entries);
  locks->clear();
  for (const KeyEntry& entry : entries) {
    auto lock = ParseNameLock(entry);
    // The prefix search also finds longer names that start with this one.
    if (lock && lock->name == name) locks->push_back(*lock);
  }
  return result;
}

int LockFile::WriteLocks(std::vector<WriteLock>* locks) {
  std::vector<KeyEntry> entries;
  int result = Collect(KindPattern(kWriteLockKind), 1, &entries);
  locks->clear();
  for (const KeyEntry& entry : entries) {
    if (auto lock = ParseWriteLock(entry)) locks->push_back(*lock);
  }
  return result;
}

// Replaces a task's "I" entry and its "D" twin. New entries go in before the old ones
// go out, so that a failure half-way never loses a lock that was held.
int LockFile::ReplaceNameLock(const std::optional<NameLock>& old_lock,
                              const std::optional<NameLock>& new_lock) {
  int result = kOk;
  if (new_lock && ((result = InsertKey(registration_, NameLockEntry(*new_lock))) != kOk ||
                   (result = InsertKey(registration_, TaskIndexEntry(*new_lock))) != kOk)) {
    return result;
  }
  if (old_lock && ((result = KeyDelete(registration_, NameLockEntry(*old_lock))) != kOk ||
                   (result = KeyDelete(registration_, TaskIndexEntry(*old_lock))) != kOk)) {
    return result;
  }
  return kOk;
}

int LockFile::RemoveWriteLocksOf(int task) {
  std::vector<KeyEntry> entries;
  int result = Collect(KindPattern(kWriteLockKind), 1, &entries);
  if (result != kOk) return result;
  for (const KeyEntry& entry : entries) {
    auto lock = ParseWriteLock(entry);
    if (lock && lock->task == task && (result = KeyDelete(registration_, entry)) != kOk) {
      return result;
    }
  }
  return kOk;
}

int LockFile::RemoveUserEntriesOf(int task) {
  std::vector<KeyEntry> users;
  int result = Collect(UserPattern(task), 3, &users);
  if (result != kOk) return result;
  for (const KeyEntry& user : users) {
    if ((result = KeyDelete(registration_, user)) != kOk) return result;
  }
  return kOk;
}

int LockFile::RemoveDeadTasks() {
  TaskTable table;
  KeyEntry stored;
  int result = ReadTaskTable(&table, &stored);
  if (result != kOk) return result;
  std::set<int> tasks;
  for (int task = 0; task < kMaxLockTasks; ++task) {
    if (table.Has(task)) tasks.insert(task);
  }
  std::vector<KeyEntry> users;
  if ((result = Collect(KindPattern(kUserKind), 1, &users)) != kOk) return result;
  for (const KeyEntry& user : users) {
    if (const int task = ParseUserTask(user); task >= 0) tasks.insert(task);
  }
  const TaskTable before = table;
  for (const int task : tasks) {
    if (own_tasks_.contains(task) || TaskAliveElsewhere(fd_.get(), task)) continue;
    if ((result = ReleaseAllBody(task)) != kOk || (result = RemoveWriteLocksOf(task)) != kOk ||
        (result = RemoveUserEntriesOf(task)) != kOk) {
      return result;
    }
    if (table.Has(task)) table.Clear(task);
  }
  return table.count == before.count ? kOk : WriteTaskTable(stored, table);
}

}  // namespace korvan::storage
