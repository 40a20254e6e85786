// Many records at once: a walk or a list of lookups reads its records in file order, and
// records that lie close together come in with one system call.
#include <algorithm>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

#include "storage/data_file_banner.h"
#include "storage/db_kernel.h"
#include "storage/db_kernel_internal.h"
#include "storage/record_batch.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

// Two records at most this far apart are read together: copying the bytes between them
// costs less than another system call. Beyond a page it costs more: a walk in an order
// other than the file's spreads a read-ahead batch over the whole file, and with 16 KB it
// read most of the file for every batch (three times slower than reading by the page).
constexpr int64_t kMaxGap = 4 * 1024;
// One read brings at most this much.
constexpr int64_t kMaxSpan = 256 * 1024;

// A position and the index it was asked for, packed so that plain integer order is file
// order: sorting these is several times faster than sorting indexes through the positions.
uint64_t FileOrderKey(int32_t position, size_t index) {
  const auto biased = static_cast<uint64_t>(static_cast<int64_t>(position) + INT64_C(0x80000000));
  return biased << 32 | static_cast<uint32_t>(index);
}
size_t IndexOf(uint64_t key) {
  return static_cast<uint32_t>(key);
}
int64_t PositionOf(uint64_t key) {
  return static_cast<int64_t>(key >> 32) - INT64_C(0x80000000);
}

// The record at a position through the single read, with its failure as a code.
int ReadAlone(int handle, int32_t position, int32_t length_hint, std::vector<uint8_t>& record) {
  try {
    int32_t length = std::max(length_hint, kRecordHeaderSize);
    record.assign(static_cast<size_t>(length), 0);
    iDK_RecordRead(handle, position, record.data(), &length, true);
    int32_t stored = 0;
    std::memcpy(&stored, record.data(), sizeof stored);
    if (stored > length) {
      record.assign(static_cast<size_t>(stored), 0);
      length = stored;
      iDK_RecordRead(handle, position, record.data(), &length, true);
    }
    record.resize(static_cast<size_t>(length));
    return kOk;
  } catch (const EDbKernelException& error) {
    return error.FErrorCode;
  }
}

// The whole record at `offset` of a read span, when the span holds all of it and it is
// live; empty leaves it to the single read, which also names what is wrong.
std::span<const uint8_t> TakeFromSpan(std::span<const uint8_t> span, size_t offset) {
  if (offset + sizeof(TDbRecordHeader) > span.size()) return {};
  int32_t length = 0;
  std::memcpy(&length, span.data() + offset, sizeof length);
  if (length < kRecordHeaderSize || offset + static_cast<size_t>(length) > span.size()) return {};
  return span.subspan(offset, static_cast<size_t>(length));
}

// One read buffer for all spans of a batch, grown when a span needs more; its bytes are
// overwritten by each read, so they are never cleared.
class SpanBuffer {
 public:
  uint8_t* Get(size_t size) {
    if (size > capacity_) {
      bytes_ = std::make_unique_for_overwrite<uint8_t[]>(size);
      capacity_ = size;
    }
    return bytes_.get();
  }

 private:
  std::unique_ptr<uint8_t[]> bytes_;
  size_t capacity_ = 0;
};

}  // namespace

int iDK_RecordReadMany(int handle, const std::vector<int32_t>& positions, int32_t length_hint,
                       RecordBatch* records, size_t* failed) {
  const DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  const int64_t guess = std::max<int64_t>(length_hint, kRecordHeaderSize);
  records->Reset(positions.size(), positions.size() * static_cast<size_t>(guess));
  std::vector<uint64_t> order(positions.size());
  for (size_t i = 0; i < positions.size(); ++i) order[i] = FileOrderKey(positions[i], i);
  std::sort(order.begin(), order.end());
  SpanBuffer buffer;
  std::vector<uint8_t> alone;
  for (size_t first = 0; first < order.size();) {
    const int64_t start = PositionOf(order[first]);
    int64_t end = start + guess;
    size_t last = first + 1;
    for (; last < order.size(); ++last) {
      const int64_t next = PositionOf(order[last]);
      if (next - end > kMaxGap || next + guess - start > kMaxSpan) break;
      end = std::max(end, next + guess);
    }
    uint8_t* bytes = buffer.Get(static_cast<size_t>(end - start));
    size_t got = 0;
    if (start < kFirstBlockPosition ||
        kernel::ReadAt(slot->data_file, start, bytes, static_cast<size_t>(end - start), &got) !=
            kOk) {
      got = 0;
    }
    const std::span<const uint8_t> span(bytes, got);
    for (size_t i = first; i < last; ++i) {
      const size_t index = IndexOf(order[i]);
      const auto offset = static_cast<size_t>(PositionOf(order[i]) - start);
      if (const std::span<const uint8_t> record = TakeFromSpan(span, offset); !record.empty()) {
        records->Put(index, record);
      } else if (int result = ReadAlone(handle, positions[index], length_hint, alone);
                 result == kOk) {
        records->Put(index, alone);
      } else {
        *failed = index;
        return result;
      }
    }
    first = last;
  }
  return kOk;
}

}  // namespace korvan::storage
