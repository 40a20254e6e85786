#pragma once

#include <cstdint>
#include <stdexcept>

namespace korvan::storage {

// A failed positioned read or write of a cached file. The text is "FileIoError Read %d"
// or "FileIoError Write %d" with the system error number; a write that the system
// accepted only partly and then stopped taking reports the number of missing bytes.
class FileIoError : public std::runtime_error {
 public:
  FileIoError(const char* operation, int code);
  int code() const { return code_; }

 private:
  int code_;
};

// Reads block `block` (2048 bytes at block * 2048) of the open file `fd` into `data`.
// Returns 0, or 4160 when the block does not lie wholly inside the file (at or past the
// end, or cut short by the end). Short reads are repeated; other failures throw
// FileIoError.
int ReadBlock(int fd, uint32_t block, uint8_t* data);

// Writes the 2048 bytes of `data` as block `block`, extending the file when needed.
// Throws FileIoError when the system refuses.
void WriteBlock(int fd, uint32_t block, const uint8_t* data);

}  // namespace korvan::storage
