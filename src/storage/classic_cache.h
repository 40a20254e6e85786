#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "storage/block_cache.h"
#include "storage/cache_monitoring.h"

namespace korvan::storage {

inline constexpr int kClassicCacheMaxBlocks = 255;

// The alternative block cache of one file: a small fixed set of buffers (at most 255),
// all allocated up front, found by a linear scan and given up in clock order (a buffer
// used since the hand last passed gets a second chance). Pins and dirty flags are
// honoured as in the random-access cache: a pinned buffer is never given up, a changed
// one only while write-by-release is on and after it has been written. WriteAll never
// answers busy (4164).
template <bool kMonitored>
class ClassicCache final : public FileCache {
 public:
  ClassicCache(int fd, std::string file_name, int block_count, bool write_by_release);

  int Read(uint32_t block, uint8_t** data) override;
  int NewBlock(uint32_t block, uint8_t** data) override;
  int Write(uint32_t block) override;
  int Release(uint32_t block) override;
  int WriteAll() override;

  int CleanOrFreeBuffers() const override;
  int BlockCount() const override { return static_cast<int>(buffers_.size()); }
  int DirtyBlocks() const override { return dirty_count_; }
  const std::string& FileName() const override { return file_name_; }
  const CacheMonitor* Monitoring() const override;

 private:
  using Scope = MonitorScope<kMonitored>;

  struct Buffer {
    uint32_t block = 0;
    uint32_t used_count = 0;
    bool holds_block = false;
    bool dirty = false;
    bool referenced = false;
  };

  int Find(uint32_t block);
  // The slot for a block that is not cached, or -1 when every buffer is pinned or
  // changed.
  int FreeSlot();
  bool MayGiveUp(const Buffer& buffer) const {
    return !buffer.holds_block || (buffer.used_count == 0 && (!buffer.dirty || write_by_release_));
  }
  uint8_t* Data(int slot) { return memory_.get() + static_cast<size_t>(slot) * kBlockSize; }
  void WriteSlot(int slot);
  int Pin(int slot, uint8_t** data);

  mutable CacheMonitor monitor_;
  std::vector<Buffer> buffers_;
  std::unique_ptr<uint8_t[]> memory_;
  std::string file_name_;
  int fd_;
  bool write_by_release_;
  size_t hand_ = 0;
  int dirty_count_ = 0;
};

// A classic cache for `fd` (owned by the caller) with `block_count` buffers, limited to
// 1..255.
std::unique_ptr<FileCache> MakeClassicCache(int fd, std::string file_name, int block_count,
                                            bool write_by_release, bool monitoring);

}  // namespace korvan::storage
