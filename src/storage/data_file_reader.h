#pragma once

// The one reader of a data file's blocks. Everything that walks a data file (the
// record count, the consistency check, the rebuild, the maintenance commands) reads it
// through this class, so the rules of what a block is live in one place.
//
// From offset 80 the file is a chain of blocks, each starting with its signed 32-bit
// length (positive: a record with a 48-byte header; negative: free space). A block
// that cannot be one (length 0, too short, running past the end of the file) is
// damage. The reader does not stop there: it looks for the next position from which
// the chain reads again and goes on, reporting the bytes it skipped. A block whose
// length is plausible but leads into damage is suspected too: if a chain starts
// inside it, its own length was the damaged part and the reader goes on from there.

#include <cstdint>
#include <string>
#include <vector>

#include "storage/record_header.h"

namespace korvan::storage {

// Why a stretch of a data file could not be read as blocks.
enum class BlockDamage {
  kLengthCutOff,       // fewer than 4 bytes left for a block length
  kZeroLength,         // a length of 0
  kFreeBlockTooShort,  // a free block shorter than its length field
  kRecordTooShort,     // a record shorter than its header
  kPastEndOfFile,      // the block runs past the end of the file
  kBeyondLargestFile,  // the block ends beyond the 2 GB a data file can hold
  kLeadsIntoDamage,    // a plausible length that lands in the middle of other blocks
};

// The reason as a text for people.
std::string BlockDamageText(BlockDamage damage);

struct DataFileBlock {
  int32_t position = 0;
  int32_t length = 0;  // the whole block, positive for free blocks too
  bool live = false;
  bool has_header = false;   // live and long enough for a record header
  TDbRecordHeader header{};  // valid when has_header
};

class DataFileReader {
 public:
  // Told about every stretch of the file the reader skipped.
  class Reporter {
   public:
    virtual ~Reporter() = default;
    virtual void Damaged(int64_t position, int64_t length, BlockDamage damage) = 0;
  };

  // Remembers the first stretch skipped, for walks that stop at damage instead of
  // going on (the record count, the key-file rebuild on open).
  class FirstDamage : public Reporter {
   public:
    void Damaged(int64_t position, int64_t /*length*/, BlockDamage damage) override {
      if (seen) return;
      seen = true;
      this->position = position;
      kind = damage;
    }
    bool seen = false;
    int64_t position = 0;
    BlockDamage kind = BlockDamage::kZeroLength;
  };

  // Reads the data file open on `fd` (not owned) up to the size it has now. The
  // reporter may be null when the caller only wants the intact blocks.
  DataFileReader(int fd, Reporter* reporter);
  DataFileReader(const DataFileReader&) = delete;
  DataFileReader& operator=(const DataFileReader&) = delete;

  // The next intact block in file order; false at the end of the file or when the
  // file cannot be read (then io_error() is set).
  bool ReadBlock(DataFileBlock* block);
  // All bytes of a live block the reader returned.
  bool ReadRecord(const DataFileBlock& block, std::vector<uint8_t>* bytes);

  bool io_error() const { return io_error_; }
  int64_t file_size() const { return file_size_; }
  // Bytes skipped as damage so far.
  int64_t damaged_bytes() const { return damaged_bytes_; }

 private:
  struct Probe {
    bool ok = false;
    BlockDamage damage = BlockDamage::kLengthCutOff;
    int32_t length = 0;  // as stored
    char type = 0;
    int64_t size() const { return length < 0 ? -int64_t{length} : int64_t{length}; }
  };

  Probe Look(int64_t position);
  bool ProvesItself(int64_t position);
  bool ChainHolds(int64_t position);
  int64_t ProvingStartWithin(int64_t chain_start);
  int64_t NextChainStart(int64_t from);
  bool Continues(int64_t position);
  int64_t FirstNonZeroFrom(int64_t from);
  void Skip(int64_t to, BlockDamage damage);
  bool Bytes(int64_t position, void* data, size_t size);

  int fd_;
  Reporter* reporter_;
  int64_t file_size_ = 0;
  int64_t position_;
  int64_t damaged_bytes_ = 0;
  bool io_error_ = false;
  // A window of the file, so that probing byte by byte through damage stays cheap.
  std::vector<uint8_t> window_;
  int64_t window_start_ = 0;
  // Where the last search for a chain ended; searches only move forward, so a later
  // search that starts before it ends there too.
  int64_t chain_hint_ = -1;
};

}  // namespace korvan::storage
