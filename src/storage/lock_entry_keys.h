#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "storage/key_file.h"

// The entries of a lock file. A lock file is a key file with 35-byte keys; the first
// key byte names the kind of entry, unused bytes hold the pad byte 0x04, and the
// entry's record position carries a number (user identity or nesting count).
namespace korvan::storage {

inline constexpr int kLockKeyLength = 35;
inline constexpr int kMaxLockTasks = 248;  // bits of the task table
inline constexpr int kMaxLockNameLength = 31;

inline constexpr char kTaskTableKind = 'L';
inline constexpr char kUserKind = 'U';
inline constexpr char kWriteLockKind = 'W';
inline constexpr char kNameLockKind = 'I';
inline constexpr char kTaskIndexKind = 'D';

enum class LockMode : char { kExclusive = 'X', kShared = 'Y' };

#pragma pack(push, 1)

// "L": the one entry that records which task numbers are in use (position 0). The
// bitmap starts at byte 2: bit t (value 1 << (t % 8)) of byte 2 + t / 8 set means task
// t is registered; 31 bytes cover tasks 0..247.
struct TaskTableKey {
  char kind;
  uint8_t task_count;
  uint8_t bitmap[31];
  uint8_t pad[2];
};
static_assert(sizeof(TaskTableKey) == kLockKeyLength);
static_assert(offsetof(TaskTableKey, task_count) == 1);
static_assert(offsetof(TaskTableKey, bitmap) == 2);
static_assert(sizeof(TaskTableKey::bitmap) * 8 == kMaxLockTasks);

// "U": one per registered task; the position is the user's identity number.
struct UserKey {
  char kind;
  char task[2];
  uint8_t pad[32];
};
static_assert(sizeof(UserKey) == kLockKeyLength);
static_assert(offsetof(UserKey, task) == 1);

// "W": a write lock on a name (position 0).
struct WriteLockKey {
  char kind;
  char name[31];
  char task[2];
  uint8_t pad[1];
};
static_assert(sizeof(WriteLockKey) == kLockKeyLength);
static_assert(offsetof(WriteLockKey, name) == 1);
static_assert(offsetof(WriteLockKey, task) == 32);

// "I": one lock held on a name; the position is the nesting count.
struct NameLockKey {
  char kind;
  char name[31];
  char mode;
  char task[2];
};
static_assert(sizeof(NameLockKey) == kLockKeyLength);
static_assert(offsetof(NameLockKey, mode) == 32);
static_assert(offsetof(NameLockKey, task) == 33);

// "D": the per-task index of the "I" entries; the position is the nesting count.
struct TaskIndexKey {
  char kind;
  char task[2];
  char name[31];
  char mode;
};
static_assert(sizeof(TaskIndexKey) == kLockKeyLength);
static_assert(offsetof(TaskIndexKey, task) == 1);
static_assert(offsetof(TaskIndexKey, name) == 3);
static_assert(offsetof(TaskIndexKey, mode) == 34);

#pragma pack(pop)

// The name under which a lock is kept: the caller's name up to its first pad byte
// (table keys arrive padded with 0x04), cut to 31 bytes. Names that agree in their
// first 31 bytes therefore share one lock, which can only make locking stricter.
std::string LockNameOf(std::string_view requested);

// Task numbers as two uppercase hexadecimal digits; -1 for anything else.
void WriteTaskHex(int task, char out[2]);
int ReadTaskHex(const char in[2]);
bool IsValidTask(int task);

// The task table ("L" entry).
struct TaskTable {
  uint8_t bitmap[31] = {};
  int count = 0;

  bool Has(int task) const;
  void Set(int task);
  void Clear(int task);
  // The lowest task number not in use, or -1 when all 248 are taken.
  int LowestFree() const;
};

KeyEntry TaskTableEntry(const TaskTable& table);
std::optional<TaskTable> ParseTaskTable(const KeyEntry& entry);

KeyEntry UserEntry(int task, uint32_t user_identity);
// Task of a "U" entry, or -1 when the entry is not one.
int ParseUserTask(const KeyEntry& entry);

// A lock on a name as stored in an "I" entry and its "D" twin.
struct NameLock {
  std::string name;
  LockMode mode = LockMode::kShared;
  int task = 0;
  uint32_t nesting = 0;

  bool operator==(const NameLock&) const = default;
};

KeyEntry NameLockEntry(const NameLock& lock);
KeyEntry TaskIndexEntry(const NameLock& lock);
std::optional<NameLock> ParseNameLock(const KeyEntry& entry);
std::optional<NameLock> ParseTaskIndex(const KeyEntry& entry);

// A write lock ("W") on a name.
struct WriteLock {
  std::string name;
  int task = 0;

  bool operator==(const WriteLock&) const = default;
};

KeyEntry WriteLockEntry(const WriteLock& lock);
std::optional<WriteLock> ParseWriteLock(const KeyEntry& entry);

// Search patterns: the kind letter followed by a prefix, the rest pad bytes.
KeyEntry KindPattern(char kind, std::string_view prefix = {});
// "D" + task: all index entries of one task.
KeyEntry TaskIndexPattern(int task);
// "U" + task.
KeyEntry UserPattern(int task);

}  // namespace korvan::storage
