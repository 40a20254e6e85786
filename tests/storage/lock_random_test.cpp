// Random lock operations of several tasks against a model of who holds what.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "storage/db_kernel_codes.h"
#include "storage/lock_file.h"
#include "storage/result_codes.h"
#include "testing/temp_dir.h"

namespace korvan::storage {
namespace {

// What the lock file should hold, and what each operation should answer.
struct LockModel {
  std::map<int, uint32_t> users;                         // task -> identity
  std::map<std::string, std::map<int, NameLock>> locks;  // name -> task -> lock
  std::set<std::pair<std::string, int>> write_locks;     // in key order: name, task

  bool Registered(int task) const { return users.count(task) != 0; }

  int Register(uint32_t identity) {
    int task = 0;
    while (users.count(task) != 0) ++task;
    users[task] = identity;
    return task;
  }

  void Unregister(int task) {
    ReleaseAll(task);
    std::erase_if(write_locks, [task](const auto& lock) { return lock.second == task; });
    users.erase(task);
  }

  int LockSet(int task, LockMode mode, const std::string& name, int* holder) {
    if (!Registered(task)) return kLockTaskNotRegistered;
    for (const auto& [locked, owner] : write_locks) {
      if (owner != task && locked == name) return *holder = owner, kLockWriteLockHeld;
    }
    for (const NameLock& held : InKeyOrder(name)) {
      if (held.task != task &&
          (held.mode == LockMode::kExclusive || mode == LockMode::kExclusive)) {
        return *holder = held.task, kLockNameExclusive;
      }
    }
    auto [it, added] = locks[name].try_emplace(task, NameLock{name, mode, task, 0});
    if (mode == LockMode::kExclusive) it->second.mode = mode;
    ++it->second.nesting;
    return kOk;
  }

  int LockRelease(int task, const std::string& name) {
    if (!Registered(task)) return kLockTaskNotRegistered;
    auto name_it = locks.find(name);
    if (name_it == locks.end() || name_it->second.count(task) == 0) return kLockNotHeld;
    if (--name_it->second[task].nesting == 0) name_it->second.erase(task);
    if (name_it->second.empty()) locks.erase(name_it);
    return kOk;
  }

  int ReleaseAll(int task) {
    if (!Registered(task)) return kLockTaskNotRegistered;
    for (auto& [name, holders] : locks) holders.erase(task);
    std::erase_if(locks, [](const auto& name_locks) { return name_locks.second.empty(); });
    return kOk;
  }

  int WriteLockSet(int task, const std::string& name, int* holder) {
    if (!Registered(task)) return kLockTaskNotRegistered;
    for (const NameLock& held : InKeyOrder(name)) {
      if (held.task != task) return *holder = held.task, kLockNameWriteLocked;
    }
    for (const auto& [locked, owner] : write_locks) {
      if (owner != task) return *holder = owner, kLockNameWriteLocked;
    }
    write_locks.insert({name, task});
    return kOk;
  }

  int WriteLockRelease(int task, const std::string& name) {
    if (!Registered(task)) return kLockTaskNotRegistered;
    return write_locks.erase({name, task}) == 0 ? kLockNoWriteLock : kOk;
  }

  // The holders of a name in the order of their "I" keys: mode letter, then task.
  std::vector<NameLock> InKeyOrder(const std::string& name) const {
    std::vector<NameLock> ordered;
    if (auto it = locks.find(name); it != locks.end()) {
      for (const auto& [task, lock] : it->second) ordered.push_back(lock);
    }
    std::stable_sort(ordered.begin(), ordered.end(), [](const auto& a, const auto& b) {
      return std::tuple(static_cast<char>(a.mode), a.task) <
             std::tuple(static_cast<char>(b.mode), b.task);
    });
    return ordered;
  }

  // Every entry the lock file should hold, as key bytes and position.
  std::multiset<std::pair<std::string, uint32_t>> Entries() const {
    std::vector<KeyEntry> entries;
    TaskTable table;
    for (const auto& [task, identity] : users) {
      table.Set(task);
      entries.push_back(UserEntry(task, identity));
    }
    entries.push_back(TaskTableEntry(table));
    for (const auto& [name, holders] : locks) {
      for (const auto& [task, lock] : holders) {
        entries.push_back(NameLockEntry(lock));
        entries.push_back(TaskIndexEntry(lock));
      }
    }
    for (const auto& [name, task] : write_locks) entries.push_back(WriteLockEntry({name, task}));
    return AsStrings(entries);
  }

  static std::multiset<std::pair<std::string, uint32_t>> AsStrings(
      const std::vector<KeyEntry>& entries) {
    std::multiset<std::pair<std::string, uint32_t>> strings;
    for (const KeyEntry& entry : entries) {
      strings.insert(
          {std::string(reinterpret_cast<const char*>(entry.key), kLockKeyLength), entry.position});
    }
    return strings;
  }
};

TEST(LockRandom, OperationsAgreeWithAModelOfHolders) {
  korvan::testing::TempDir dir;
  std::unique_ptr<LockFile> lock_file;
  ASSERT_EQ(LockFile::Open(dir.File("DB_Lv.QA2"), 41, &lock_file), kOk);
  LockModel model;
  std::mt19937 random(20240611);
  const std::vector<std::string> names = {"A", "AB", "B", "Pos1", "Pos10", std::string(31, 'z')};
  uint32_t next_identity = 100;
  auto register_one = [&] {
    int task = -1;
    ASSERT_EQ(lock_file->RegisterTask(next_identity, false, &task), kOk);
    EXPECT_EQ(task, model.Register(next_identity++));
  };
  for (int i = 0; i < 3; ++i) register_one();

  for (int step = 0; step < 400; ++step) {
    const int task = static_cast<int>(random() % 5);  // tasks 3 and 4 are mostly unregistered
    const std::string& name = names[random() % names.size()];
    const unsigned operation = random() % 12;
    const LockMode mode = operation < 3 ? LockMode::kShared : LockMode::kExclusive;
    int expected_holder = -1;
    LockHolder holder;
    int result = kOk;
    int expected = kOk;
    if (operation < 5) {
      expected = model.LockSet(task, mode, name, &expected_holder);
      result = lock_file->LockSet(task, mode, name, &holder);
    } else if (operation < 8) {
      expected = model.LockRelease(task, name);
      result = lock_file->LockRelease(task, name);
    } else if (operation == 8) {
      expected = model.WriteLockSet(task, name, &expected_holder);
      result = lock_file->WriteLockSet(task, name, &holder);
    } else if (operation == 9) {
      expected = model.WriteLockRelease(task, name);
      result = lock_file->WriteLockRelease(task, name);
    } else if (operation == 10) {
      expected = model.ReleaseAll(task);
      result = lock_file->LockReleaseAll(task);
    } else if (model.Registered(task)) {
      model.Unregister(task);
      result = lock_file->UnregisterTask(task);
    } else {
      register_one();
    }
    ASSERT_EQ(result, expected) << "step " << step << " task " << task << " name " << name;
    if (expected_holder >= 0) {
      EXPECT_EQ(holder.task, expected_holder) << "step " << step;
    }
    if (model.users.empty()) {
      EXPECT_TRUE(lock_file->deleted()) << "the last task deleted the file";
      register_one();
    }
    std::vector<KeyEntry> entries;
    ASSERT_EQ(lock_file->ReadAllEntries(&entries), kOk);
    ASSERT_EQ(LockModel::AsStrings(entries), model.Entries()) << "step " << step;
  }
}

}  // namespace
}  // namespace korvan::storage
