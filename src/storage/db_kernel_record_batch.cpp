// Many records at once: a walk or a list of lookups reads its records in file order, and
// records that lie close together come in with one system call.
#include <algorithm>
#include <cstring>
#include <numeric>
#include <vector>

#include "storage/data_file_banner.h"
#include "storage/db_kernel.h"
#include "storage/db_kernel_internal.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

// Two records at most this far apart are read together: copying the bytes between them
// costs less than another system call.
constexpr int64_t kMaxGap = 16 * 1024;
// One read brings at most this much.
constexpr int64_t kMaxSpan = 256 * 1024;

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
// live; false leaves it to the single read, which also names what is wrong.
bool TakeFromSpan(const std::vector<uint8_t>& span, size_t offset, std::vector<uint8_t>& record) {
  if (offset + sizeof(TDbRecordHeader) > span.size()) return false;
  int32_t length = 0;
  std::memcpy(&length, span.data() + offset, sizeof length);
  if (length < kRecordHeaderSize || offset + static_cast<size_t>(length) > span.size())
    return false;
  record.assign(span.begin() + static_cast<std::ptrdiff_t>(offset),
                span.begin() + static_cast<std::ptrdiff_t>(offset + static_cast<size_t>(length)));
  return true;
}

}  // namespace

int iDK_RecordReadMany(int handle, const std::vector<int32_t>& positions, int32_t length_hint,
                       std::vector<std::vector<uint8_t>>* records, size_t* failed) {
  const DbHandleSlot* slot = DbHandleTable::Instance().Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  records->assign(positions.size(), {});
  std::vector<size_t> order(positions.size());
  std::iota(order.begin(), order.end(), size_t{0});
  std::sort(order.begin(), order.end(),
            [&](size_t a, size_t b) { return positions[a] < positions[b]; });
  const int64_t guess = std::max<int64_t>(length_hint, kRecordHeaderSize);
  std::vector<uint8_t> span;
  for (size_t first = 0; first < order.size();) {
    const int64_t start = positions[order[first]];
    int64_t end = start + guess;
    size_t last = first + 1;
    for (; last < order.size(); ++last) {
      const int64_t next = positions[order[last]];
      if (next - end > kMaxGap || next + guess - start > kMaxSpan) break;
      end = std::max(end, next + guess);
    }
    span.assign(static_cast<size_t>(end - start), 0);
    size_t got = 0;
    if (start < kFirstBlockPosition ||
        kernel::ReadAt(slot->data_file, start, span.data(), span.size(), &got) != kOk) {
      got = 0;
    }
    span.resize(got);
    for (size_t i = first; i < last; ++i) {
      const size_t index = order[i];
      auto& record = (*records)[index];
      if (TakeFromSpan(span, static_cast<size_t>(positions[index] - start), record)) continue;
      if (int result = ReadAlone(handle, positions[index], length_hint, record); result != kOk) {
        *failed = index;
        return result;
      }
    }
    first = last;
  }
  return kOk;
}

}  // namespace korvan::storage
