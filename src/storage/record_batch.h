#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace korvan::storage {

// Records read together (iDK_RecordReadMany): their bytes lie one after another in one
// buffer, so a batch of thousands costs one allocation instead of one per record, and a
// caller that reads batch after batch into the same object allocates nothing once the
// buffer has grown. A record stays valid until the batch is filled again.
class RecordBatch {
 public:
  // Empties the batch for `count` records, keeping the memory it has.
  void Reset(size_t count, size_t expected_bytes);
  // Appends the bytes of record `index` (each index once).
  void Put(size_t index, std::span<const uint8_t> bytes);

  size_t size() const { return slices_.size(); }
  std::span<const uint8_t> operator[](size_t index) const {
    const Slice& slice = slices_[index];
    return {bytes_.data() + slice.offset, slice.length};
  }

 private:
  struct Slice {
    size_t offset = 0;
    size_t length = 0;
  };
  std::vector<uint8_t> bytes_;
  std::vector<Slice> slices_;
};

}  // namespace korvan::storage
