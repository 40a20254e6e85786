#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <unordered_map>
#include <vector>

namespace korvan::storage {

// Records this process read recently, per database handle and position, so that a
// repeated read under the tree lock costs no system call.
//
// A cached record is the file's record only while nobody else changed the data file
// since it was read. The key file's change stamp says so (key_file_sharing.h): every
// writer raises it in the file before the first change of its hold reaches either file,
// and the tree lock drops a handle's records together with its key blocks when it finds
// another stamp than the one they belong to. Hence records are served and stored only
// while the tree lock is held, and this process's own writes forget the positions they
// change. The data file itself is never cached: the records here are whole, live
// records as the kernel read them, a small number of them.
class RecordCache {
 public:
  static RecordCache& Instance();

  // The cached record at a position of a handle, or nullptr.
  const std::vector<uint8_t>* Find(int handle, int32_t position);
  // Keeps a copy of a whole record; records beyond kMaxRecordSize are not kept.
  void Store(int handle, int32_t position, const uint8_t* record, size_t length);
  // This process changes the block at a position.
  void Forget(int handle, int32_t position);
  // Forgets every record of a handle (another process changed the file, or it closes).
  void Drop(int handle);
  // Bytes of records kept per handle; the least recently used go first.
  void SetCapacity(size_t bytes_per_handle);
  size_t capacity() const { return capacity_; }

  static constexpr size_t kMaxRecordSize = 4096;

 private:
  RecordCache();
  struct Entry {
    std::vector<uint8_t> bytes;
    std::list<int32_t>::iterator use;  // place in the recency list
  };
  struct HandleRecords {
    std::unordered_map<int32_t, Entry> by_position;
    std::list<int32_t> recency;  // most recently used first
    size_t bytes = 0;
  };
  HandleRecords& RecordsOf(int handle);
  void Evict(HandleRecords& records, size_t limit);

  std::unordered_map<int, HandleRecords> handles_;
  size_t capacity_ = 0;
};

}  // namespace korvan::storage
