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

struct Held {
  LockMode mode;
  uint32_t nesting;
};

// What the lock file should hold.
class LockModel {
 public:
  std::map<int, uint32_t> users;                     // task -> identity
  std::map<std::string, std::map<int, Held>> locks;  // name -> task -> lock
  std::map<int, std::set<std::string>> write_locks;  // task -> names

  bool Registered(int task) const { return users.count(task) != 0; }

  int Register(uint32_t identity) {
    int task = 0;
    while (users.count(task) != 0) ++task;
    users[task] = identity;
    return task;
  }

  void Unregister(int task) {
    ReleaseAll(task);
    write_locks.erase(task);
    users.erase(task);
  }

  // Expected result of LockSet; applies it on success.
  int LockSet(int task, LockMode mode, const std::string& name, int* holder) {
    if (!Registered(task)) return kLockTaskNotRegistered;
    for (const auto& [owner, names] : write_locks) {
      if (owner != task && names.count(name) != 0) return *holder = owner, kLockWriteLockHeld;
    }
    for (const auto& [owner, held] : InKeyOrder(name)) {
      if (owner != task && (held.mode == LockMode::kExclusive || mode == LockMode::kExclusive)) {
        return *holder = owner, kLockNameExclusive;
      }
    }
    auto& own = locks[name];
    auto it = own.find(task);
    if (it == own.end()) {
      own[task] = Held{mode, 1};
    } else {
      if (mode == LockMode::kExclusive) it->second.mode = mode;
      ++it->second.nesting;
    }
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
    for (auto it = locks.begin(); it != locks.end();) {
      it->second.erase(task);
      it = it->second.empty() ? locks.erase(it) : std::next(it);
    }
    return kOk;
  }

  int WriteLockSet(int task, const std::string& name, int* holder) {
    if (!Registered(task)) return kLockTaskNotRegistered;
    for (const auto& [owner, held] : InKeyOrder(name)) {
      if (owner != task) return *holder = owner, kLockNameWriteLocked;
    }
    // Key order of "W" entries: by name, then by task.
    std::set<std::pair<std::string, int>> others;
    for (const auto& [owner, names] : write_locks) {
      for (const auto& other_name : names) {
        if (owner != task) others.insert({other_name, owner});
      }
    }
    if (!others.empty()) return *holder = others.begin()->second, kLockNameWriteLocked;
    write_locks[task].insert(name);
    return kOk;
  }

  int WriteLockRelease(int task, const std::string& name) {
    if (!Registered(task)) return kLockTaskNotRegistered;
    if (write_locks[task].erase(name) == 0) return kLockNoWriteLock;
    return kOk;
  }

 private:
  // The holders of a name in the order of their "I" keys: mode letter, then task.
  std::vector<std::pair<int, Held>> InKeyOrder(const std::string& name) const {
    std::vector<std::pair<int, Held>> ordered;
    auto it = locks.find(name);
    if (it == locks.end()) return ordered;
    for (const auto& entry : it->second) ordered.push_back(entry);
    std::stable_sort(ordered.begin(), ordered.end(), [](const auto& a, const auto& b) {
      return std::tuple(static_cast<char>(a.second.mode), a.first) <
             std::tuple(static_cast<char>(b.second.mode), b.first);
    });
    return ordered;
  }
};

using LockRow = std::tuple<std::string, char, int, uint32_t>;

// Compares every entry of the file with the model.
void ExpectFileMatchesModel(LockFile& lock_file, const LockModel& model, int step) {
  std::vector<KeyEntry> entries;
  ASSERT_EQ(lock_file.ReadAllEntries(&entries), kOk);
  std::set<LockRow> name_locks, index, expected_locks;
  std::set<std::pair<std::string, int>> write_locks, expected_write_locks;
  std::map<int, uint32_t> users;
  std::optional<TaskTable> tasks;
  for (const KeyEntry& entry : entries) {
    switch (entry.key[0]) {
      case 'L':
        ASSERT_FALSE(tasks) << "one L entry";
        tasks = ParseTaskTable(entry);
        ASSERT_TRUE(tasks);
        break;
      case 'U':
        users[ParseUserTask(entry)] = entry.position;
        break;
      case 'I': {
        auto lock = ParseNameLock(entry);
        ASSERT_TRUE(lock);
        name_locks.insert({lock->name, static_cast<char>(lock->mode), lock->task, lock->nesting});
        break;
      }
      case 'D': {
        auto lock = ParseTaskIndex(entry);
        ASSERT_TRUE(lock);
        index.insert({lock->name, static_cast<char>(lock->mode), lock->task, lock->nesting});
        break;
      }
      case 'W': {
        auto lock = ParseWriteLock(entry);
        ASSERT_TRUE(lock);
        write_locks.insert({lock->name, lock->task});
        break;
      }
      default:
        FAIL() << "unexpected entry kind " << entry.key[0];
    }
  }
  for (const auto& [name, holders] : model.locks) {
    for (const auto& [task, held] : holders) {
      expected_locks.insert({name, static_cast<char>(held.mode), task, held.nesting});
    }
  }
  for (const auto& [task, names] : model.write_locks) {
    for (const auto& name : names) expected_write_locks.insert({name, task});
  }
  ASSERT_TRUE(tasks);
  EXPECT_EQ(tasks->count, static_cast<int>(model.users.size())) << "step " << step;
  for (const auto& [task, identity] : model.users) {
    EXPECT_TRUE(tasks->Has(task)) << step;
  }
  EXPECT_EQ(users, model.users) << "step " << step;
  EXPECT_EQ(name_locks, expected_locks) << "step " << step;
  EXPECT_EQ(index, expected_locks) << "step " << step << ": D mirrors I";
  EXPECT_EQ(write_locks, expected_write_locks) << "step " << step;
}

TEST(LockRandom, OperationsAgreeWithAModelOfHolders) {
  testing::TempDir dir;
  std::unique_ptr<LockFile> lock_file;
  ASSERT_EQ(LockFile::Open(dir.File("DB_Lv.QA2"), 41, &lock_file), kOk);
  LockModel model;
  std::mt19937 random(20240611);
  const std::vector<std::string> names = {"A", "AB", "B", "Pos1", "Pos10", std::string(31, 'z')};
  uint32_t next_identity = 100;

  for (int i = 0; i < 3; ++i) {
    int task = -1;
    ASSERT_EQ(lock_file->RegisterTask(next_identity, false, &task), kOk);
    EXPECT_EQ(task, model.Register(next_identity++));
  }

  for (int step = 0; step < 400; ++step) {
    int task = static_cast<int>(random() % 5);  // tasks 3 and 4 are mostly unregistered
    const std::string& name = names[random() % names.size()];
    int expected_holder = -1;
    LockHolder holder;
    int result = 0, expected = 0;
    switch (random() % 12) {
      case 0:
      case 1:
      case 2:
        expected = model.LockSet(task, LockMode::kShared, name, &expected_holder);
        result = lock_file->LockSet(task, LockMode::kShared, name, &holder);
        break;
      case 3:
      case 4:
        expected = model.LockSet(task, LockMode::kExclusive, name, &expected_holder);
        result = lock_file->LockSet(task, LockMode::kExclusive, name, &holder);
        break;
      case 5:
      case 6:
      case 7:
        expected = model.LockRelease(task, name);
        result = lock_file->LockRelease(task, name);
        break;
      case 8:
        expected = model.WriteLockSet(task, name, &expected_holder);
        result = lock_file->WriteLockSet(task, name, &holder);
        break;
      case 9:
        expected = model.WriteLockRelease(task, name);
        result = lock_file->WriteLockRelease(task, name);
        break;
      case 10:
        expected = model.ReleaseAll(task);
        result = lock_file->LockReleaseAll(task);
        break;
      case 11:
        if (model.Registered(task)) {
          model.Unregister(task);
          expected = kOk;
          result = lock_file->UnregisterTask(task);
        } else {
          int registered = -1;
          expected = kOk;
          result = lock_file->RegisterTask(next_identity, false, &registered);
          EXPECT_EQ(registered, model.Register(next_identity++)) << "step " << step;
        }
        break;
    }
    ASSERT_EQ(result, expected) << "step " << step << " task " << task << " name " << name;
    if (expected_holder >= 0) {
      EXPECT_EQ(holder.task, expected_holder) << "step " << step;
    }
    if (model.users.empty()) {
      EXPECT_TRUE(lock_file->deleted()) << "the last task deleted the file";
      int registered = -1;
      ASSERT_EQ(lock_file->RegisterTask(next_identity, false, &registered), kOk);
      EXPECT_EQ(registered, model.Register(next_identity++));
    }
    ExpectFileMatchesModel(*lock_file, model, step);
    if (HasFatalFailure()) return;
  }
}

}  // namespace
}  // namespace korvan::storage
