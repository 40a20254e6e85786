#pragma once

#include <bitset>
#include <cstdint>
#include <optional>
#include <string>

namespace korvan::storage {

inline constexpr int kMaxDbHandles = 40;
inline constexpr uint16_t kNoTask = 65535;

// Access/share flags of the platform's file layer as the kernel stores them. Bit values
// 1 and 2 ask for read/write access (2 = opened for writing); the share part 0x10 denies
// everything to others, 0x20 lets others only read, anything else shares fully.
inline constexpr uint16_t kOpenReadDenyNone = 0x40;
inline constexpr uint16_t kOpenReadWriteDenyNone = 0x41;
inline constexpr uint16_t kOpenSharedReadWrite = 0x42;
inline constexpr uint16_t kOpenExclusiveWriter = 0x22;
inline constexpr uint16_t kShareDenyAll = 0x10;
inline constexpr uint16_t kShareDenyWrite = 0x20;
inline constexpr uint16_t kShareMask = 0x70;

// The lock file of a database: none for types that are not shared, otherwise either
// not opened yet or open on lock_file.
enum class LockFileState { kNoLocking, kNotOpen, kOpen };

struct DbHandleSlot {
  std::string file_name;  // base path; "0", "1", "2" give data, key and lock file
  char db_type = 0;
  int data_file = -1;
  int key_file = -1;
  LockFileState lock_state = LockFileState::kNoLocking;
  int lock_file = -1;
  uint8_t key_file_version = 0;
  uint16_t open_mode = 0;
  uint32_t file_version = 0;
  double file_time_stamp = 0;
  double open_time = 0;
  uint16_t task_number = kNoTask;
  // Sharing of the key file between processes (key_file_sharing.h).
  int writer_slot = -1;              // the slot lock this writer holds, or -1
  bool writer_marked = false;        // its bit in the key-file header is set on disk
  uint64_t cached_change_stamp = 0;  // the stamp the cached key blocks belong to
  int tree_lock_depth = 0;           // nesting of TreeLock on this handle
  bool tree_lock_exclusive = false;
  int tree_holds = 0;          // levels of tree_lock_depth held over several operations
  bool stamp_raised = false;   // the exclusive lock held now has raised the stamp on disk
  uint64_t change_mark = 0;    // goes up with every change this handle sees (iDK_ChangeMark)
  bool data_unsynced = false;  // data written under the tree lock waits for its sync

  bool InUse() const { return !file_name.empty(); }
  bool IsWritable() const { return (open_mode & 2) != 0; }
};

// The process-wide table of open databases, handles 1..40, and the values the kernel
// writes into data files it creates.
class DbHandleTable {
 public:
  static DbHandleTable& Instance();

  // The slot of an open handle, or nullptr for a handle outside 1..40 or a free slot.
  DbHandleSlot* Find(int handle);
  // The lowest free handle, or 0 when all are taken.
  int FindFree() const;
  // The handle that has this base path open, or 0.
  int FindOpen(const std::string& base_path) const;
  // Takes a free slot for a handle from FindFree.
  DbHandleSlot& Take(int handle, DbHandleSlot slot);
  void Release(int handle);

  uint32_t new_file_version() const { return new_file_version_; }
  void set_new_file_version(uint32_t version) { new_file_version_ = version; }
  // A fixed stamp for new files, or none: new files get the current time.
  std::optional<double> new_file_time_stamp() const { return new_file_time_stamp_; }
  void set_new_file_time_stamp(double stamp) { new_file_time_stamp_ = stamp; }

  // Types registered as shared between users get a lock file and open shared.
  bool IsShareableType(char db_type) const {
    return shareable_types_.test(static_cast<unsigned char>(db_type));
  }
  void SetShareableType(char db_type, bool shareable) {
    shareable_types_.set(static_cast<unsigned char>(db_type), shareable);
  }

 private:
  DbHandleTable() = default;
  DbHandleSlot slots_[kMaxDbHandles + 1];  // index 0 unused: handles count from 1
  uint32_t new_file_version_ = 0;
  std::optional<double> new_file_time_stamp_;
  std::bitset<256> shareable_types_;
};

}  // namespace korvan::storage
