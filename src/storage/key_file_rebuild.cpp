#include "storage/key_file_rebuild.h"

#include <unistd.h>

#include <cstddef>
#include <cstring>

#include "storage/block_cache.h"
#include "storage/data_file_banner.h"
#include "storage/data_file_reader.h"
#include "storage/db_kernel_codes.h"
#include "storage/db_kernel_internal.h"
#include "storage/key_file_layout.h"
#include "storage/record_header.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

RecordKeySource*& InstalledSource() {
  static RecordKeySource* source = nullptr;
  return source;
}

}  // namespace

RecordKeySource* SetRecordKeySource(RecordKeySource* source) {
  RecordKeySource* previous = InstalledSource();
  InstalledSource() = source;
  return previous;
}

RecordKeySource* CurrentRecordKeySource() {
  return InstalledSource();
}

namespace kernel {
namespace {

constexpr size_t kWritersOffset = offsetof(KeyFileHeaderV3, open_writers);
constexpr size_t kStampOffset = offsetof(KeyFileHeaderV3, change_stamp);
constexpr size_t kHighestOffset = offsetof(KeyFileHeaderV3, highest_node);

struct RebuildCount {
  int records = 0;
  int records_without_keys = 0;
  int free_blocks = 0;
  std::string stopped;  // why the walk ended before the end of the file
};

int WriteBack(int handle) {
  int result = kCacheBusy;
  while (result == kCacheBusy) result = BlockCache::Instance().WriteAll(handle);
  return result == kOk ? kOk : kDkIoError;
}

// Reads one header field of the cached block 0 or changes it.
template <typename Use>
int WithHeader(int handle, bool change, Use use) {
  auto& cache = BlockCache::Instance();
  uint8_t* block = nullptr;
  if (cache.Read(handle, 0, &block) != kOk) return kDkIoError;
  use(block);
  const int written = change ? cache.Write(handle, 0) : kOk;
  const int released = cache.Release(handle, 0);
  return written == kOk && released == kOk ? kOk : kDkIoError;
}

int ReadOldHeader(const DbHandleSlot& slot, uint8_t (&header)[kBlockSize]) {
  size_t got = 0;
  if (ReadAt(slot.key_file, 0, header, sizeof header, &got) != kOk || got != sizeof header) {
    return kDkFatalRegenerateOk;
  }
  return kOk;
}

int KeyLengthOf(const DbHandleSlot& slot, int* key_length) {
  uint8_t header[kBlockSize];
  if (int read = ReadOldHeader(slot, header); read != kOk) return read;
  *key_length = header[offsetof(KeyFileHeaderV3, key_length)];
  if (*key_length < kMinKeyFileKeyLength || *key_length > kMaxKeyFileKeyLength) {
    return kDkFatalRegenerateOk;
  }
  return kOk;
}

// An empty tree of the old key length; the writer marks stay until the end.
int StartEmptyTree(int handle, const DbHandleSlot& slot, int key_length) {
  uint8_t old_header[kBlockSize];
  if (int read = ReadOldHeader(slot, old_header); read != kOk) return read;
  if (KeyFileInit(KeyFileV3::kVersion, handle, key_length) != kOk) return kDkIoError;
  return WithHeader(handle, true, [&](uint8_t* block) {
    std::memcpy(block + kWritersOffset, old_header + kWritersOffset, sizeof(uint64_t));
    std::memcpy(block + kStampOffset, old_header + kStampOffset, sizeof(uint64_t));
  });
}

int EnterKey(int handle, const std::string& key, int32_t position) {
  KeyEntry entry;
  entry.position = static_cast<uint32_t>(position);
  std::memcpy(entry.key, key.data(), std::min(key.size(), sizeof entry.key));
  const int result = MapKeyResult(KeyInsert(handle, entry));
  return result == kDkKeyFileVeryLarge ? kOk : result;
}

int ReadRecord(const DbHandleSlot& slot, int32_t position, int32_t length,
               std::vector<uint8_t>* record) {
  record->resize(static_cast<size_t>(length));
  size_t got = 0;
  if (ReadAt(slot.data_file, position, record->data(), record->size(), &got) != kOk ||
      got != record->size()) {
    return kDkIoError;
  }
  return kOk;
}

// Walks the data file's blocks as the kernel wrote them, handing each to `on_block`
// (position, length: negative for free space). Damage ends the walk: keys made from
// blocks the reader found behind it by guessing would go into the file unseen, so the
// user is sent to the rebuild instead, which reports what it skipped; `stopped` says
// where.
template <typename OnBlock>
int WalkBlocks(const DbHandleSlot& slot, std::string* stopped, OnBlock on_block) {
  DataFileReader::FirstDamage damage;
  DataFileReader reader(slot.data_file, &damage);
  DataFileBlock block;
  while (reader.ReadBlock(&block) && !damage.seen) {
    const int32_t length = block.live ? block.length : -block.length;
    if (int result = on_block(block.position, length); result != kOk) return result;
  }
  if (reader.io_error()) return kDkIoError;
  if (damage.seen) {
    *stopped = "Block an Position " + std::to_string(damage.position) + ": " +
               BlockDamageText(damage.kind);
  }
  return kOk;
}

// Records whose keys nobody can build would lose the keys they had: then the key file
// is left as it is for a rebuild of the whole database, which keeps such records.
int CountRecordsWithoutKeys(const DbHandleSlot& slot, RecordKeySource& source, int key_length,
                            RebuildCount* count) {
  std::vector<uint8_t> record;
  std::vector<std::string> keys;
  return WalkBlocks(slot, &count->stopped, [&](int32_t position, int32_t length) {
    if (length < 0) return kOk;
    if (int read = ReadRecord(slot, position, length, &record); read != kOk) return read;
    keys.clear();
    if (!source.KeysOf(slot.db_type, key_length, record.data(), record.size(), &keys)) {
      ++count->records_without_keys;
    }
    return kOk;
  });
}

int EnterAllKeys(int handle, const DbHandleSlot& slot, RecordKeySource& source, int key_length,
                 RebuildCount* count) {
  std::vector<uint8_t> record;
  std::vector<std::string> keys;
  return WalkBlocks(slot, &count->stopped, [&](int32_t position, int32_t length) {
    int result = kOk;
    if (length > 0) {
      ++count->records;
      result = ReadRecord(slot, position, length, &record);
      keys.clear();
      if (result == kOk) {
        source.KeysOf(slot.db_type, key_length, record.data(), record.size(), &keys);
      }
      for (size_t i = 0; result == kOk && i < keys.size(); ++i) {
        result = EnterKey(handle, keys[i], position);
      }
    } else {
      ++count->free_blocks;
      result = AddFreeSpaceKey(handle, position, -int64_t{length});
    }
    // Written back as it goes: the cache may hold fewer blocks than the tree needs.
    return result == kOk ? WriteBack(handle) : result;
  });
}

// The old nodes past the new tree go; then the marks are cleared for good.
int Finish(int handle, const DbHandleSlot& slot) {
  uint32_t highest = 0;
  int result = WithHeader(handle, true, [&](uint8_t* block) {
    highest = LoadLe<uint32_t>(block + kHighestOffset);
    StoreLe<uint64_t>(block + kWritersOffset, 0);
  });
  if (result == kOk) result = WriteBack(handle);
  if (result != kOk) return result;
  const off_t end = static_cast<off_t>(highest + 1) * kBlockSize;
  if (ftruncate(slot.key_file, end) != 0 || fdatasync(slot.key_file) != 0) return kDkIoError;
  return kOk;
}

std::string Report(const DbHandleSlot& slot, const RebuildCount& count) {
  std::string line = "Schlüsseldatei \"" + KeyFileName(slot.file_name) +
                     "\" war nicht sauber geschlossen und wurde aus der Datendatei neu "
                     "aufgebaut: " +
                     std::to_string(count.records) + " Datensätze, " +
                     std::to_string(count.free_blocks) + " freie Blöcke";
  return line + ".";
}

}  // namespace

int RebuildKeyFile(int handle, DbHandleSlot& slot) {
  RecordKeySource* source = CurrentRecordKeySource();
  if (source == nullptr || !source->Knows(slot.db_type)) {
    Diagnostic(KeyFileName(slot.file_name) + ": not closed cleanly, and no table knows its keys");
    return kDkFatalRegenerateOk;
  }
  RebuildCount count;
  int key_length = 0;
  try {
    int result = KeyLengthOf(slot, &key_length);
    if (result == kOk) result = CountRecordsWithoutKeys(slot, *source, key_length, &count);
    if (result != kOk) return result;
    if (!count.stopped.empty()) {
      // Keys for only the blocks in front of the damage would hide the records behind it.
      source->Tell("Schlüsseldatei \"" + KeyFileName(slot.file_name) +
                   "\" war nicht sauber geschlossen, und die Datendatei ist beschädigt (" +
                   count.stopped + "). Die Datenbank muss mit \"korvan rebuild\" neu "
                   "aufgebaut werden.");
      return kDkFatalRegenerateOk;
    }
    if (count.records_without_keys > 0) {
      source->Tell("Schlüsseldatei \"" + KeyFileName(slot.file_name) +
                   "\" war nicht sauber geschlossen; " +
                   std::to_string(count.records_without_keys) +
                   " Datensätze gehören zu keiner bekannten Tabelle, ihre Schlüssel können "
                   "nicht neu gebildet werden. Die Datenbank muss mit \"korvan rebuild\" neu "
                   "aufgebaut werden.");
      return kDkFatalRegenerateOk;
    }
    count = RebuildCount{};
    result = StartEmptyTree(handle, slot, key_length);
    if (result == kOk) result = EnterAllKeys(handle, slot, *source, key_length, &count);
    if (result == kOk) result = Finish(handle, slot);
    if (result != kOk) return result;
  } catch (const FileIoError& error) {
    Diagnostic(error.what());
    return kDkIoError;
  }
  source->Tell(Report(slot, count));
  return kOk;
}

}  // namespace kernel
}  // namespace korvan::storage
