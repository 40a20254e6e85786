#include "storage/random_access_cache.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "storage/block_io.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

// Buffers are allocated in chunks of this many blocks (128 KiB).
constexpr uint32_t kChunkBlocks = 64;

}  // namespace

template <bool kMonitored>
TRandomAccessCache<kMonitored>::TRandomAccessCache(int fd, std::string file_name, int block_count,
                                                   bool write_by_release)
    : FIndexList(MakeRacList(block_count)),
      FFilename(std::move(file_name)),
      FKeyFile(fd),
      FBlockCount(block_count),
      FDoWriteByRelease(write_by_release) {}

template <bool kMonitored>
const CacheMonitor* TRandomAccessCache<kMonitored>::Monitoring() const {
  return kMonitored ? &FMonitorings : nullptr;
}

template <bool kMonitored>
int TRandomAccessCache<kMonitored>::Read(uint32_t block, uint8_t** data) {
  [[maybe_unused]] Scope scope(FMonitorings, MonitoredFunction::kRead);
  if (TRacBufferIndex* entry = FindBlock(block)) {
    ++entry->UsedCount;
    Stamp(*entry);
    *data = BlockData(*entry);
    return kOk;
  }
  TRacBufferIndex* entry = nullptr;
  bool listed = false;
  if (const int rc = GetBuffer(&entry, &listed); rc != kOk) return rc;
  int rc = kOk;
  try {
    rc = ReadReal(*entry, block);
  } catch (...) {
    Discard(entry, listed);
    throw;
  }
  if (rc != kOk) {
    Discard(entry, listed);
    return rc;
  }
  InstallBlock(entry, listed, block);
  *data = BlockData(*entry);
  return kOk;
}

template <bool kMonitored>
int TRandomAccessCache<kMonitored>::NewBlock(uint32_t block, uint8_t** data) {
  if (TRacBufferIndex* entry = FindBlock(block)) {
    // Still cached from an earlier use that never reached the file: hand it out again.
    ++entry->UsedCount;
    Stamp(*entry);
    *data = BlockData(*entry);
    return kOk;
  }
  TRacBufferIndex* entry = nullptr;
  bool listed = false;
  if (const int rc = GetBuffer(&entry, &listed); rc != kOk) return rc;
  // Zeroed, so that bytes a caller leaves unset never carry another block's contents.
  std::memset(BlockData(*entry), 0, kBlockSize);
  InstallBlock(entry, listed, block);
  *data = BlockData(*entry);
  return kOk;
}

template <bool kMonitored>
int TRandomAccessCache<kMonitored>::Write(uint32_t block) {
  [[maybe_unused]] Scope scope(FMonitorings, MonitoredFunction::kWrite);
  TRacBufferIndex* entry = FindBlock(block);
  if (entry == nullptr) throw CacheUsageError("No write before read");
  if (!entry->DirtyFlag) {
    entry->DirtyFlag = true;
    ++dirty_count_;
  }
  Stamp(*entry);
  return kOk;
}

template <bool kMonitored>
int TRandomAccessCache<kMonitored>::Release(uint32_t block) {
  [[maybe_unused]] Scope scope(FMonitorings, MonitoredFunction::kRelease);
  TRacBufferIndex* entry = FindBlock(block);
  if (entry == nullptr || entry->UsedCount == 0) throw CacheUsageError("No release before read");
  --entry->UsedCount;
  Stamp(*entry);
  if (entry->UsedCount == 0 && entry->DirtyFlag && FDoWriteByRelease) {
    WriteReal(*entry);
    entry->DirtyFlag = false;
    --dirty_count_;
  }
  return kOk;
}

template <bool kMonitored>
int TRandomAccessCache<kMonitored>::WriteAll() {
  [[maybe_unused]] Scope scope(FMonitorings, MonitoredFunction::kWriteAll);
  if (dirty_count_ == 0) return kOk;
  for (const TRacList::Item& item : FIndexList->items()) {
    TRacBufferIndex& entry = *item.entry;
    if (!entry.DirtyFlag) continue;
    WriteReal(entry);
    entry.DirtyFlag = false;
    --dirty_count_;
    Stamp(entry);
    // The few changed blocks of an operation are found without passing all the others.
    if (dirty_count_ == 0) break;
  }
  return kOk;
}

template <bool kMonitored>
int TRandomAccessCache<kMonitored>::CleanOrFreeBuffers() const {
  const size_t slots_in_use = FIndices.size() - free_slots_.size();
  return static_cast<int>(static_cast<size_t>(FBlockCount) - slots_in_use + FUsedCountList.size());
}

template <bool kMonitored>
TRacBufferIndex* TRandomAccessCache<kMonitored>::FindBlock(uint32_t block) {
  [[maybe_unused]] Scope scope(FMonitorings, MonitoredFunction::kFindBlock);
  return FIndexList->Find(block);
}

template <bool kMonitored>
int TRandomAccessCache<kMonitored>::GetBuffer(TRacBufferIndex** entry, bool* listed) {
  [[maybe_unused]] Scope scope(FMonitorings, MonitoredFunction::kNewBlock);
  if (!free_slots_.empty()) {
    *entry = free_slots_.back();
    free_slots_.pop_back();
    *listed = false;
    return kOk;
  }
  if (FIndices.size() < static_cast<size_t>(FBlockCount)) {
    *entry = NewSlot();
    *listed = false;
    return kOk;
  }
  TRacBufferIndex* victim = FUsedCountList.Oldest();
  if (victim == nullptr) return kNoBlocksFree;
  if (victim->DirtyFlag) {
    WriteReal(*victim);
    victim->DirtyFlag = false;
    --dirty_count_;
  }
  {
    [[maybe_unused]] Scope sort_scope(FMonitorings, MonitoredFunction::kUsedCountListSort);
    FUsedCountList.Remove(victim);
  }
  *entry = victim;
  *listed = true;
  return kOk;
}

template <bool kMonitored>
TRacBufferIndex* TRandomAccessCache<kMonitored>::NewSlot() {
  const auto slot = static_cast<uint32_t>(FIndices.size());
  if (slot % kChunkBlocks == 0) {
    const uint32_t blocks = std::min(kChunkBlocks, static_cast<uint32_t>(FBlockCount) - slot);
    FBlocks.push_back(std::make_unique<uint8_t[]>(static_cast<size_t>(blocks) * kBlockSize));
  }
  TRacBufferIndex& entry = FIndices.emplace_back();
  entry.BlockNo = slot;
  return &entry;
}

template <bool kMonitored>
void TRandomAccessCache<kMonitored>::InstallBlock(TRacBufferIndex* entry, bool listed,
                                                  uint32_t block) {
  {
    [[maybe_unused]] Scope scope(FMonitorings, MonitoredFunction::kIndexListSort);
    if (listed) {
      FIndexList->ChangeIndex(entry, block);
    } else {
      entry->Index = block;
      FIndexList->Add(entry);
    }
  }
  entry->UsedCount = 1;
  entry->DirtyFlag = false;
  Stamp(*entry);
}

template <bool kMonitored>
void TRandomAccessCache<kMonitored>::Discard(TRacBufferIndex* entry, bool listed) {
  if (listed) FIndexList->Remove(entry);
  entry->UsedCount = 0;
  entry->DirtyFlag = false;
  free_slots_.push_back(entry);
}

template <bool kMonitored>
uint8_t* TRandomAccessCache<kMonitored>::BlockData(const TRacBufferIndex& entry) const {
  return FBlocks[entry.BlockNo / kChunkBlocks].get() +
         static_cast<size_t>(entry.BlockNo % kChunkBlocks) * kBlockSize;
}

template <bool kMonitored>
int TRandomAccessCache<kMonitored>::ReadReal(const TRacBufferIndex& entry, uint32_t block) {
  [[maybe_unused]] Scope scope(FMonitorings, MonitoredFunction::kReadReal);
  return ReadBlock(FKeyFile, block, BlockData(entry));
}

template <bool kMonitored>
void TRandomAccessCache<kMonitored>::WriteReal(TRacBufferIndex& entry) {
  [[maybe_unused]] Scope scope(FMonitorings, MonitoredFunction::kWriteReal);
  WriteBlock(FKeyFile, static_cast<uint32_t>(entry.Index), BlockData(entry));
}

template <bool kMonitored>
void TRandomAccessCache<kMonitored>::Stamp(TRacBufferIndex& entry) {
  [[maybe_unused]] Scope scope(FMonitorings, MonitoredFunction::kUsedCountListSort);
  entry.TimeStamp = ++TimeStamp;
  if (entry.in_age_list) FUsedCountList.Remove(&entry);
  if (MayGiveUp(entry)) FUsedCountList.PushNewest(&entry);
}

template class TRandomAccessCache<false>;
template class TRandomAccessCache<true>;

std::unique_ptr<FileCache> MakeRandomAccessCache(int fd, std::string file_name, int block_count,
                                                 bool write_by_release, bool monitoring) {
  if (monitoring) {
    return std::make_unique<TRandomAccessCache<true>>(fd, std::move(file_name), block_count,
                                                      write_by_release);
  }
  return std::make_unique<TRandomAccessCache<false>>(fd, std::move(file_name), block_count,
                                                     write_by_release);
}

}  // namespace korvan::storage
