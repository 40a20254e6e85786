#include "storage/classic_cache.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "storage/block_io.h"
#include "storage/rac_lists.h"
#include "storage/result_codes.h"

namespace korvan::storage {

template <bool kMonitored>
ClassicCache<kMonitored>::ClassicCache(int fd, std::string file_name, int block_count,
                                       bool write_by_release)
    : buffers_(static_cast<size_t>(std::clamp(block_count, 1, kClassicCacheMaxBlocks))),
      memory_(std::make_unique<uint8_t[]>(buffers_.size() * kBlockSize)),
      file_name_(std::move(file_name)),
      fd_(fd),
      write_by_release_(write_by_release) {}

template <bool kMonitored>
const CacheMonitor* ClassicCache<kMonitored>::Monitoring() const {
  return kMonitored ? &monitor_ : nullptr;
}

template <bool kMonitored>
int ClassicCache<kMonitored>::Read(uint32_t block, uint8_t** data) {
  [[maybe_unused]] Scope scope(monitor_, MonitoredFunction::kRead);
  if (const int slot = Find(block); slot >= 0) return Pin(slot, data);
  const int slot = FreeSlot();
  if (slot < 0) return kNoBlocksFree;
  Buffer& buffer = buffers_[static_cast<size_t>(slot)];
  // The buffer no longer holds its old block once reading into it starts.
  buffer.holds_block = false;
  int rc = kOk;
  {
    [[maybe_unused]] Scope read_scope(monitor_, MonitoredFunction::kReadReal);
    rc = ReadBlock(fd_, block, Data(slot));
  }
  if (rc != kOk) return rc;
  buffer = Buffer{block, 0, true, false, false};
  return Pin(slot, data);
}

template <bool kMonitored>
int ClassicCache<kMonitored>::NewBlock(uint32_t block, uint8_t** data) {
  if (const int slot = Find(block); slot >= 0) return Pin(slot, data);
  int slot = -1;
  {
    [[maybe_unused]] Scope scope(monitor_, MonitoredFunction::kNewBlock);
    slot = FreeSlot();
  }
  if (slot < 0) return kNoBlocksFree;
  std::memset(Data(slot), 0, kBlockSize);
  buffers_[static_cast<size_t>(slot)] = Buffer{block, 0, true, false, false};
  return Pin(slot, data);
}

template <bool kMonitored>
int ClassicCache<kMonitored>::Write(uint32_t block) {
  [[maybe_unused]] Scope scope(monitor_, MonitoredFunction::kWrite);
  const int slot = Find(block);
  if (slot < 0) throw CacheUsageError("No write before read");
  Buffer& buffer = buffers_[static_cast<size_t>(slot)];
  if (!buffer.dirty) ++dirty_count_;
  buffer.dirty = true;
  buffer.referenced = true;
  return kOk;
}

template <bool kMonitored>
int ClassicCache<kMonitored>::Release(uint32_t block) {
  [[maybe_unused]] Scope scope(monitor_, MonitoredFunction::kRelease);
  const int slot = Find(block);
  if (slot < 0 || buffers_[static_cast<size_t>(slot)].used_count == 0) {
    throw CacheUsageError("No release before read");
  }
  Buffer& buffer = buffers_[static_cast<size_t>(slot)];
  --buffer.used_count;
  buffer.referenced = true;
  if (buffer.used_count == 0 && buffer.dirty && write_by_release_) WriteSlot(slot);
  return kOk;
}

template <bool kMonitored>
int ClassicCache<kMonitored>::WriteAll() {
  [[maybe_unused]] Scope scope(monitor_, MonitoredFunction::kWriteAll);
  for (size_t slot = 0; slot < buffers_.size() && dirty_count_ > 0; ++slot) {
    if (buffers_[slot].holds_block && buffers_[slot].dirty) WriteSlot(static_cast<int>(slot));
  }
  return kOk;
}

template <bool kMonitored>
int ClassicCache<kMonitored>::CleanOrFreeBuffers() const {
  return static_cast<int>(std::count_if(buffers_.begin(), buffers_.end(),
                                        [this](const Buffer& b) { return MayGiveUp(b); }));
}

template <bool kMonitored>
int ClassicCache<kMonitored>::Find(uint32_t block) {
  [[maybe_unused]] Scope scope(monitor_, MonitoredFunction::kFindBlock);
  for (size_t slot = 0; slot < buffers_.size(); ++slot) {
    if (buffers_[slot].holds_block && buffers_[slot].block == block) {
      return static_cast<int>(slot);
    }
  }
  return -1;
}

template <bool kMonitored>
int ClassicCache<kMonitored>::FreeSlot() {
  // Two rounds: the first may only clear the second-chance marks.
  for (size_t step = 0; step < 2 * buffers_.size(); ++step) {
    const size_t slot = hand_;
    hand_ = (hand_ + 1) % buffers_.size();
    Buffer& buffer = buffers_[slot];
    if (!MayGiveUp(buffer)) continue;
    if (buffer.holds_block && buffer.referenced) {
      buffer.referenced = false;
      continue;
    }
    if (buffer.holds_block && buffer.dirty) WriteSlot(static_cast<int>(slot));
    return static_cast<int>(slot);
  }
  return -1;
}

template <bool kMonitored>
void ClassicCache<kMonitored>::WriteSlot(int slot) {
  [[maybe_unused]] Scope scope(monitor_, MonitoredFunction::kWriteReal);
  Buffer& buffer = buffers_[static_cast<size_t>(slot)];
  WriteBlock(fd_, buffer.block, Data(slot));
  buffer.dirty = false;
  --dirty_count_;
}

template <bool kMonitored>
int ClassicCache<kMonitored>::Pin(int slot, uint8_t** data) {
  Buffer& buffer = buffers_[static_cast<size_t>(slot)];
  ++buffer.used_count;
  buffer.referenced = true;
  *data = Data(slot);
  return kOk;
}

template class ClassicCache<false>;
template class ClassicCache<true>;

std::unique_ptr<FileCache> MakeClassicCache(int fd, std::string file_name, int block_count,
                                            bool write_by_release, bool monitoring) {
  if (monitoring) {
    return std::make_unique<ClassicCache<true>>(fd, std::move(file_name), block_count,
                                                write_by_release);
  }
  return std::make_unique<ClassicCache<false>>(fd, std::move(file_name), block_count,
                                               write_by_release);
}

}  // namespace korvan::storage
