#include "storage/record_batch.h"

namespace korvan::storage {

void RecordBatch::Reset(size_t count, size_t expected_bytes) {
  bytes_.clear();
  bytes_.reserve(expected_bytes);
  slices_.assign(count, Slice{});
}

void RecordBatch::Put(size_t index, std::span<const uint8_t> bytes) {
  slices_[index] = {bytes_.size(), bytes.size()};
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
}

}  // namespace korvan::storage
