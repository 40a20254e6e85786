#include "storage/record_cache.h"

#include "storage/block_cache.h"
#include "storage/kernel_settings.h"

namespace korvan::storage {

// As much memory for records as a handle's key file has for its blocks.
RecordCache::RecordCache() : capacity_(static_cast<size_t>(KeyFileCacheBlocks()) * kBlockSize) {}

RecordCache& RecordCache::Instance() {
  static RecordCache cache;
  return cache;
}

RecordCache::HandleRecords& RecordCache::RecordsOf(int handle) {
  return handles_[handle];
}

const std::vector<uint8_t>* RecordCache::Find(int handle, int32_t position) {
  const auto records = handles_.find(handle);
  if (records == handles_.end()) return nullptr;
  const auto found = records->second.by_position.find(position);
  if (found == records->second.by_position.end()) return nullptr;
  std::list<int32_t>& recency = records->second.recency;
  recency.splice(recency.begin(), recency, found->second.use);
  return &found->second.bytes;
}

void RecordCache::Store(int handle, int32_t position, const uint8_t* record, size_t length) {
  if (length > kMaxRecordSize || length > capacity_) return;
  Forget(handle, position);
  HandleRecords& records = RecordsOf(handle);
  Evict(records, capacity_ - length);
  records.recency.push_front(position);
  records.by_position.emplace(
      position, Entry{std::vector<uint8_t>(record, record + length), records.recency.begin()});
  records.bytes += length;
}

void RecordCache::Forget(int handle, int32_t position) {
  const auto records = handles_.find(handle);
  if (records == handles_.end()) return;
  HandleRecords& of_handle = records->second;
  const auto found = of_handle.by_position.find(position);
  if (found == of_handle.by_position.end()) return;
  of_handle.bytes -= found->second.bytes.size();
  of_handle.recency.erase(found->second.use);
  of_handle.by_position.erase(found);
}

void RecordCache::Drop(int handle) {
  handles_.erase(handle);
}

void RecordCache::SetCapacity(size_t bytes_per_handle) {
  capacity_ = bytes_per_handle;
  for (auto& [handle, records] : handles_) Evict(records, capacity_);
}

void RecordCache::Evict(HandleRecords& records, size_t limit) {
  while (records.bytes > limit && !records.recency.empty()) {
    const auto found = records.by_position.find(records.recency.back());
    records.bytes -= found->second.bytes.size();
    records.by_position.erase(found);
    records.recency.pop_back();
  }
}

}  // namespace korvan::storage
