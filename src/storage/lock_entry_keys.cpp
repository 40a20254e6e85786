#include "storage/lock_entry_keys.h"

#include <algorithm>
#include <cstring>

namespace korvan::storage {
namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

// A key buffer of pad bytes with the first bytes taken from a packed key struct.
template <typename Key>
KeyEntry EntryOf(const Key& key, uint32_t position) {
  static_assert(sizeof(Key) == kLockKeyLength);
  KeyEntry entry;
  entry.position = position;
  std::memset(entry.key, kKeyPad, sizeof(entry.key));
  std::memcpy(entry.key, &key, sizeof(Key));
  return entry;
}

template <typename Key>
Key KeyOf(const KeyEntry& entry) {
  Key key;
  std::memcpy(&key, entry.key, sizeof(Key));
  return key;
}

template <typename Key>
Key PaddedKey(char kind) {
  Key key;
  std::memset(&key, kKeyPad, sizeof(Key));
  key.kind = kind;
  return key;
}

void WriteName(std::string_view name, char (&out)[kMaxLockNameLength]) {
  std::memset(out, kKeyPad, sizeof(out));
  if (!name.empty()) std::memcpy(out, name.data(), std::min<size_t>(name.size(), sizeof(out)));
}

std::string ReadName(const char (&in)[kMaxLockNameLength]) {
  const char* end = std::find(in, in + kMaxLockNameLength, static_cast<char>(kKeyPad));
  return std::string(in, end);
}

std::optional<LockMode> ReadMode(char mode) {
  if (mode == static_cast<char>(LockMode::kExclusive)) return LockMode::kExclusive;
  if (mode == static_cast<char>(LockMode::kShared)) return LockMode::kShared;
  return std::nullopt;
}

}  // namespace

std::string LockNameOf(std::string_view requested) {
  std::string_view name = requested.substr(0, requested.find(static_cast<char>(kKeyPad)));
  return std::string(name.substr(0, kMaxLockNameLength));
}

bool IsValidTask(int task) {
  return task >= 0 && task < kMaxLockTasks;
}

void WriteTaskHex(int task, char out[2]) {
  out[0] = kHexDigits[(task >> 4) & 0xF];
  out[1] = kHexDigits[task & 0xF];
}

int ReadTaskHex(const char in[2]) {
  auto digit = [](char c) -> int {
    const char* p = std::strchr(kHexDigits, c);
    return c != '\0' && p != nullptr ? static_cast<int>(p - kHexDigits) : -1;
  };
  int high = digit(in[0]);
  int low = digit(in[1]);
  if (high < 0 || low < 0) return -1;
  int task = high * 16 + low;
  return IsValidTask(task) ? task : -1;
}

bool TaskTable::Has(int task) const {
  return IsValidTask(task) && (bitmap[task / 8] & (1u << (task % 8))) != 0;
}

void TaskTable::Set(int task) {
  if (!IsValidTask(task) || Has(task)) return;
  bitmap[task / 8] = static_cast<uint8_t>(bitmap[task / 8] | (1u << (task % 8)));
  ++count;
}

void TaskTable::Clear(int task) {
  if (!Has(task)) return;
  bitmap[task / 8] = static_cast<uint8_t>(bitmap[task / 8] & ~(1u << (task % 8)));
  --count;
}

int TaskTable::LowestFree() const {
  for (int task = 0; task < kMaxLockTasks; ++task) {
    if (!Has(task)) return task;
  }
  return -1;
}

KeyEntry TaskTableEntry(const TaskTable& table) {
  auto key = PaddedKey<TaskTableKey>(kTaskTableKind);
  key.task_count = static_cast<uint8_t>(table.count);
  std::memcpy(key.bitmap, table.bitmap, sizeof(key.bitmap));
  return EntryOf(key, 0);
}

std::optional<TaskTable> ParseTaskTable(const KeyEntry& entry) {
  auto key = KeyOf<TaskTableKey>(entry);
  if (key.kind != kTaskTableKind) return std::nullopt;
  TaskTable table;
  std::memcpy(table.bitmap, key.bitmap, sizeof(table.bitmap));
  for (int task = 0; task < kMaxLockTasks; ++task) {
    if (table.Has(task)) ++table.count;
  }
  // The stored count must agree with the bitmap; a mismatch means a damaged entry.
  if (table.count != key.task_count) return std::nullopt;
  return table;
}

KeyEntry UserEntry(int task, uint32_t user_identity) {
  auto key = PaddedKey<UserKey>(kUserKind);
  WriteTaskHex(task, key.task);
  return EntryOf(key, user_identity);
}

int ParseUserTask(const KeyEntry& entry) {
  auto key = KeyOf<UserKey>(entry);
  return key.kind == kUserKind ? ReadTaskHex(key.task) : -1;
}

KeyEntry NameLockEntry(const NameLock& lock) {
  auto key = PaddedKey<NameLockKey>(kNameLockKind);
  WriteName(lock.name, key.name);
  key.mode = static_cast<char>(lock.mode);
  WriteTaskHex(lock.task, key.task);
  return EntryOf(key, lock.nesting);
}

KeyEntry TaskIndexEntry(const NameLock& lock) {
  auto key = PaddedKey<TaskIndexKey>(kTaskIndexKind);
  WriteTaskHex(lock.task, key.task);
  WriteName(lock.name, key.name);
  key.mode = static_cast<char>(lock.mode);
  return EntryOf(key, lock.nesting);
}

std::optional<NameLock> ParseNameLock(const KeyEntry& entry) {
  auto key = KeyOf<NameLockKey>(entry);
  auto mode = ReadMode(key.mode);
  int task = ReadTaskHex(key.task);
  if (key.kind != kNameLockKind || !mode || task < 0) return std::nullopt;
  return NameLock{ReadName(key.name), *mode, task, entry.position};
}

std::optional<NameLock> ParseTaskIndex(const KeyEntry& entry) {
  auto key = KeyOf<TaskIndexKey>(entry);
  auto mode = ReadMode(key.mode);
  int task = ReadTaskHex(key.task);
  if (key.kind != kTaskIndexKind || !mode || task < 0) return std::nullopt;
  return NameLock{ReadName(key.name), *mode, task, entry.position};
}

KeyEntry WriteLockEntry(const WriteLock& lock) {
  auto key = PaddedKey<WriteLockKey>(kWriteLockKind);
  WriteName(lock.name, key.name);
  WriteTaskHex(lock.task, key.task);
  return EntryOf(key, 0);
}

std::optional<WriteLock> ParseWriteLock(const KeyEntry& entry) {
  auto key = KeyOf<WriteLockKey>(entry);
  int task = ReadTaskHex(key.task);
  if (key.kind != kWriteLockKind || task < 0) return std::nullopt;
  return WriteLock{ReadName(key.name), task};
}

KeyEntry KindPattern(char kind, std::string_view prefix) {
  KeyEntry entry;
  std::memset(entry.key, kKeyPad, sizeof(entry.key));
  entry.key[0] = static_cast<uint8_t>(kind);
  if (!prefix.empty()) {
    std::memcpy(entry.key + 1, prefix.data(), std::min<size_t>(prefix.size(), kLockKeyLength - 1));
  }
  return entry;
}

KeyEntry TaskIndexPattern(int task) {
  char hex[2];
  WriteTaskHex(task, hex);
  return KindPattern(kTaskIndexKind, std::string_view(hex, 2));
}

KeyEntry UserPattern(int task) {
  char hex[2];
  WriteTaskHex(task, hex);
  return KindPattern(kUserKind, std::string_view(hex, 2));
}

}  // namespace korvan::storage
