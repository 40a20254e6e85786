#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "storage/block_cache.h"
#include "storage/cache_monitoring.h"
#include "storage/rac_lists.h"

namespace korvan::storage {

// The default block cache of one file: up to FBlockCount buffers, found by block number
// through FIndexList and given up in least-recently-stamped order through
// FUsedCountList. Only buffers that are unpinned and clean (or dirty while
// write-by-release is on) are candidates, so a miss never scans pinned or changed
// buffers. Buffer memory is taken as buffers are first used, so a large cache size
// costs memory only up to the size of the file.
//
// kMonitored selects at construction whether the calls are measured; the unmonitored
// variant carries no measuring code at all.
template <bool kMonitored>
class TRandomAccessCache final : public FileCache {
 public:
  TRandomAccessCache(int fd, std::string file_name, int block_count, bool write_by_release);

  int Read(uint32_t block, uint8_t** data) override;
  int NewBlock(uint32_t block, uint8_t** data) override;
  int Write(uint32_t block) override;
  int Release(uint32_t block) override;
  int WriteAll() override;

  int CleanOrFreeBuffers() const override;
  int BlockCount() const override { return FBlockCount; }
  int DirtyBlocks() const override { return dirty_count_; }
  const std::string& FileName() const override { return FFilename; }
  const CacheMonitor* Monitoring() const override;

 private:
  using Scope = MonitorScope<kMonitored>;

  TRacBufferIndex* FindBlock(uint32_t block);
  // A buffer for a block that is not cached: an unused slot or the oldest buffer that
  // may be given up (written first when dirty). *listed tells whether the entry is
  // still in FIndexList under its previous block number.
  int GetBuffer(TRacBufferIndex** entry, bool* listed);
  TRacBufferIndex* NewSlot();
  // Puts a taken buffer into FIndexList as block `block`, pinned once and stamped.
  void InstallBlock(TRacBufferIndex* entry, bool listed, uint32_t block);
  // Returns a taken buffer whose block could not be read to the unused slots.
  void Discard(TRacBufferIndex* entry, bool listed);

  uint8_t* BlockData(const TRacBufferIndex& entry) const;
  int ReadReal(const TRacBufferIndex& entry, uint32_t block);
  void WriteReal(TRacBufferIndex& entry);
  // Gives the entry the next time stamp and files it in FUsedCountList if it may be
  // given up.
  void Stamp(TRacBufferIndex& entry);
  bool MayGiveUp(const TRacBufferIndex& entry) const {
    return entry.UsedCount == 0 && (!entry.DirtyFlag || FDoWriteByRelease);
  }

  mutable CacheMonitor FMonitorings;
  std::vector<std::unique_ptr<uint8_t[]>> FBlocks;  // chunks of kChunkBlocks buffers
  std::deque<TRacBufferIndex> FIndices;             // one per slot taken so far
  std::vector<TRacBufferIndex*> free_slots_;        // taken slots holding no block
  std::unique_ptr<TRacList> FIndexList;
  TRacAgeList FUsedCountList;
  uint64_t TimeStamp = 0;
  std::string FFilename;
  int FKeyFile;
  int FBlockCount;
  bool FDoWriteByRelease;
  int dirty_count_ = 0;
};

// A random-access cache for `fd` (owned by the caller) with `block_count` buffers
// (at least 1).
std::unique_ptr<FileCache> MakeRandomAccessCache(int fd, std::string file_name, int block_count,
                                                 bool write_by_release, bool monitoring);

}  // namespace korvan::storage
