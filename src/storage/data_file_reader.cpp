#include "storage/data_file_reader.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>

#include "storage/data_file_banner.h"
#include "storage/db_kernel_internal.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

// A new start after damage must carry this many blocks (or reach the end of the file)
// before the reader believes it, unless its first block proves itself (below): a stray
// number inside a record rarely does.
constexpr int kChainProof = 8;
// Dates a record header can carry: after 30 December 1899, up to 31 December 9999.
constexpr double kLastDate = 2958465.0;
constexpr size_t kWindowSize = 64 * 1024;
constexpr size_t kZeroProbeSize = 1024 * 1024;

bool IsTableLetter(char letter) {
  return letter >= 'A' && letter <= 'Z';
}

bool IsDate(double value) {
  return std::isfinite(value) && value > 0 && value <= kLastDate;
}

}  // namespace

std::string BlockDamageText(BlockDamage damage) {
  switch (damage) {
    case BlockDamage::kLengthCutOff:
      return "Blocklänge vom Dateiende abgeschnitten";
    case BlockDamage::kZeroLength:
      return "Blocklänge 0";
    case BlockDamage::kFreeBlockTooShort:
      return "freier Block kürzer als seine Längenangabe";
    case BlockDamage::kRecordTooShort:
      return "Datensatz kürzer als sein Kopf";
    case BlockDamage::kPastEndOfFile:
      return "Block reicht über das Dateiende hinaus";
    case BlockDamage::kBeyondLargestFile:
      return "Block endet jenseits von 2 GB";
    case BlockDamage::kLeadsIntoDamage:
      return "Blocklänge führt mitten in andere Blöcke";
  }
  return "unbekannter Schaden";
}

DataFileReader::DataFileReader(int fd, Reporter* reporter)
    : fd_(fd), reporter_(reporter), position_(kFirstBlockPosition) {
  if (kernel::FileSize(fd_, &file_size_) != kOk) io_error_ = true;
}

bool DataFileReader::ReadBlock(DataFileBlock* block) {
  while (!io_error_ && position_ < file_size_) {
    const Probe probe = Look(position_);
    if (io_error_) return false;
    if (!probe.ok) {
      Skip(NextChainStart(position_ + 1), probe.damage);
      continue;
    }
    const int64_t end = position_ + probe.size();
    if (end < file_size_ && !Look(end).ok) {
      // Either the block behind is damaged, or this block's own length is: then a
      // chain starts before that length says the block ends.
      int64_t next = NextChainStart(position_ + 1);
      while (next < end && !Continues(next) && !io_error_) next = NextChainStart(next + 1);
      if (next < end) {
        Skip(next, BlockDamage::kLeadsIntoDamage);
        continue;
      }
    }
    if (io_error_) return false;
    *block = DataFileBlock{};
    block->position = static_cast<int32_t>(position_);
    block->length = static_cast<int32_t>(probe.size());
    block->live = probe.length > 0;
    block->has_header = block->live && probe.size() >= kRecordHeaderSize;
    if (block->has_header && !Bytes(position_, &block->header, sizeof block->header)) {
      return false;
    }
    position_ = end;
    return true;
  }
  return false;
}

bool DataFileReader::ReadRecord(const DataFileBlock& block, std::vector<uint8_t>* bytes) {
  bytes->resize(static_cast<size_t>(block.length));
  size_t got = 0;
  if (kernel::ReadAt(fd_, block.position, bytes->data(), bytes->size(), &got) != kOk ||
      got != bytes->size()) {
    io_error_ = true;
    return false;
  }
  return true;
}

DataFileReader::Probe DataFileReader::Look(int64_t position) {
  Probe probe;
  const int64_t left = file_size_ - position;
  if (left < 4) return probe;  // kLengthCutOff
  TDbCoreHeader core{};
  if (!Bytes(position, &core, static_cast<size_t>(std::min<int64_t>(left, sizeof core)))) {
    return probe;
  }
  probe.length = core.RecLen;
  probe.type = left >= static_cast<int64_t>(sizeof core) ? core.RecTyp : 0;
  const int64_t size = probe.size();
  if (probe.length == 0) {
    probe.damage = BlockDamage::kZeroLength;
  } else if (probe.length < 0 && size < 4) {
    probe.damage = BlockDamage::kFreeBlockTooShort;
  } else if (probe.length > 0 && size < kRecordHeaderSize) {
    probe.damage = BlockDamage::kRecordTooShort;
  } else if (position + size > file_size_) {
    probe.damage = BlockDamage::kPastEndOfFile;
  } else if (position + size > kernel::kMaxDataFileSize) {
    probe.damage = BlockDamage::kBeyondLargestFile;
  } else {
    probe.ok = true;
  }
  return probe;
}

// A chain found by lengths alone may be old lengths left in free space, and it may step
// over the start of a record written there later. Up to the first block of the chain
// that proves itself, a record that proves itself and is followed by a block starts
// the chain instead.
int64_t DataFileReader::ProvingStartWithin(int64_t chain_start) {
  int64_t block = chain_start;
  for (int i = 0; i < kChainProof && block < file_size_ && !io_error_; ++i) {
    if (i > 0 && ProvesItself(block)) break;
    const int64_t end = block + Look(block).size();
    for (int64_t position = block + 1; position < end && !io_error_; ++position) {
      if (ProvesItself(position) && Continues(position)) return position;
    }
    block = end;
  }
  return chain_start;
}

// Whether the blocks from `position` on read as a chain: kChainProof blocks, or fewer
// that end exactly at the end of the file. Records must carry a type letter here: a
// chain found by probing must look like records, not merely like lengths.
bool DataFileReader::ChainHolds(int64_t position) {
  for (int i = 0; i < kChainProof && position != file_size_; ++i) {
    const Probe probe = Look(position);
    if (!probe.ok || (probe.length > 0 && !IsTableLetter(probe.type))) return false;
    position += probe.size();
  }
  return true;
}

// A block whose 48-byte header carries a type letter (records) and two dates, as every
// record and every freed record does: random bytes hardly ever look like that, so such
// a block is believed on its own, even when the block behind it is damaged too.
bool DataFileReader::ProvesItself(int64_t position) {
  const Probe probe = Look(position);
  if (!probe.ok || probe.size() < kRecordHeaderSize) return false;
  if (probe.length > 0 && !IsTableLetter(probe.type)) return false;
  TDbRecordHeader header{};
  if (!Bytes(position, &header, sizeof header)) return false;
  return IsDate(header.LastModified) && IsDate(header.CreationDate);
}

// The first position at or after `from` where a chain of blocks starts; the end of
// the file when there is none.
int64_t DataFileReader::NextChainStart(int64_t from) {
  if (chain_hint_ >= from) return chain_hint_;
  for (int64_t candidate = from; candidate + 4 <= file_size_ && !io_error_; ++candidate) {
    // Four zero bytes are no length, so runs of zeros are passed in one step.
    if (Look(candidate).length == 0) {
      const int64_t nonzero = FirstNonZeroFrom(candidate);
      if (nonzero - 3 > candidate) {
        candidate = nonzero - 4;
        continue;
      }
    }
    if (ProvesItself(candidate)) {
      chain_hint_ = candidate;
      return candidate;
    }
    if (ChainHolds(candidate)) {
      // Free space keeps the lengths of the blocks it once held, and they still read
      // as a chain; a record put there later proves itself and wins.
      candidate = ProvingStartWithin(candidate);
      chain_hint_ = candidate;
      return candidate;
    }
  }
  if (!io_error_) chain_hint_ = file_size_;
  return file_size_;
}

// Holes of a sparse file are skipped without reading them.
int64_t DataFileReader::FirstNonZeroFrom(int64_t from) {
  std::vector<uint8_t> chunk(kZeroProbeSize);
  for (int64_t position = from; position < file_size_ && !io_error_;) {
    const off_t data = ::lseek(fd_, static_cast<off_t>(position), SEEK_DATA);
    if (data < 0 && errno == ENXIO) return file_size_;  // only a hole up to the end
    if (data > position) {
      position = data;
      continue;
    }
    size_t got = 0;
    const size_t want =
        static_cast<size_t>(std::min<int64_t>(kZeroProbeSize, file_size_ - position));
    if (kernel::ReadAt(fd_, position, chunk.data(), want, &got) != kOk || got == 0) {
      io_error_ = true;
      return file_size_;
    }
    const auto nonzero =
        std::find_if(chunk.begin(), chunk.begin() + static_cast<std::ptrdiff_t>(got),
                     [](uint8_t byte) { return byte != 0; });
    if (nonzero != chunk.begin() + static_cast<std::ptrdiff_t>(got)) {
      return position + (nonzero - chunk.begin());
    }
    position += static_cast<int64_t>(got);
  }
  return file_size_;
}

// Whether the block at `position` is followed by another or by the end of the file. A
// block found inside another one must show this before it wins over the outer block's
// length: two dates can be found inside a record's own bytes too.
bool DataFileReader::Continues(int64_t position) {
  const int64_t end = position + Look(position).size();
  return end == file_size_ || Look(end).ok;
}

void DataFileReader::Skip(int64_t to, BlockDamage damage) {
  if (io_error_) return;
  damaged_bytes_ += to - position_;
  if (reporter_ != nullptr) reporter_->Damaged(position_, to - position_, damage);
  position_ = to;
}

bool DataFileReader::Bytes(int64_t position, void* data, size_t size) {
  const int64_t window_end = window_start_ + static_cast<int64_t>(window_.size());
  if (position < window_start_ || position + static_cast<int64_t>(size) > window_end) {
    window_.resize(kWindowSize);
    size_t got = 0;
    if (kernel::ReadAt(fd_, position, window_.data(), window_.size(), &got) != kOk) {
      window_.clear();
      io_error_ = true;
      return false;
    }
    window_.resize(got);
    window_start_ = position;
    if (got < size) {  // the file shrank under the reader
      io_error_ = true;
      return false;
    }
  }
  std::memcpy(data, window_.data() + (position - window_start_), size);
  return true;
}

}  // namespace korvan::storage
