#include "storage/block_io.h"

#include <unistd.h>

#include <cerrno>
#include <string>

#include "storage/block_cache.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

off_t BlockOffset(uint32_t block) {
  return static_cast<off_t>(block) * kBlockSize;
}

}  // namespace

FileIoError::FileIoError(const char* operation, int code)
    : std::runtime_error("FileIoError " + std::string(operation) + " " + std::to_string(code)),
      code_(code) {}

int ReadBlock(int fd, uint32_t block, uint8_t* data) {
  const off_t offset = BlockOffset(block);
  size_t done = 0;
  while (done < kBlockSize) {
    const ssize_t n = pread(fd, data + done, kBlockSize - done, offset + done);
    if (n < 0) {
      if (errno == EINTR) continue;
      throw FileIoError("Read", errno);
    }
    // End of file before the block is complete: the block is not part of the file.
    if (n == 0) return kBlockBeyondEnd;
    done += static_cast<size_t>(n);
  }
  return kOk;
}

void WriteBlock(int fd, uint32_t block, const uint8_t* data) {
  const off_t offset = BlockOffset(block);
  size_t done = 0;
  while (done < kBlockSize) {
    const ssize_t n = pwrite(fd, data + done, kBlockSize - done, offset + done);
    if (n < 0) {
      if (errno == EINTR) continue;
      throw FileIoError("Write", errno);
    }
    // A system that takes nothing more would make this loop spin for ever.
    if (n == 0) throw FileIoError("Write", static_cast<int>(kBlockSize - done));
    done += static_cast<size_t>(n);
  }
}

}  // namespace korvan::storage
