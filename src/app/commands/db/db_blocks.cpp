#include "app/commands/db/db_blocks.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "app/cli/command_error.h"
#include "app/commands/db/key_text.h"
#include "storage/data_file_banner.h"
#include "storage/key_file.h"

namespace korvan::app {
namespace {

constexpr int64_t kFreeBlockMinimum = 4;      // a free block must hold its length
constexpr int64_t kMaxPosition = 2147483647;  // positions are signed 32-bit

// Closes the descriptor on every way out of the walk.
class ReadOnlyFile {
 public:
  explicit ReadOnlyFile(const std::string& path)
      : path_(path), fd_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (fd_ < 0) Fail("nicht zu öffnen");
  }
  ~ReadOnlyFile() { close(fd_); }
  ReadOnlyFile(const ReadOnlyFile&) = delete;
  ReadOnlyFile& operator=(const ReadOnlyFile&) = delete;

  int64_t Size() const {
    struct stat status {};
    if (fstat(fd_, &status) != 0) Fail("nicht lesbar");
    return status.st_size;
  }

  // Reads up to `size` bytes at `position`; returns how many were there.
  size_t ReadAt(int64_t position, void* data, size_t size) const {
    size_t done = 0;
    while (done < size) {
      const ssize_t got = pread(fd_, static_cast<char*>(data) + done, size - done,
                                static_cast<off_t>(position + static_cast<int64_t>(done)));
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) Fail("nicht lesbar");
      if (got == 0) break;
      done += static_cast<size_t>(got);
    }
    return done;
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    throw CommandError(path_ + ": " + what + ": " + std::strerror(errno));
  }

  std::string path_;
  int fd_;
};

std::string At(int64_t position) {
  return "Block an Position " + std::to_string(position) + ": ";
}

}  // namespace

std::string WalkDataFile(const std::string& data_file_path,
                         const std::function<void(const DataBlock&)>& visit) {
  const ReadOnlyFile file(data_file_path);
  const int64_t file_size = file.Size();
  if (file_size < storage::kFirstBlockPosition) {
    return "Datei von " + std::to_string(file_size) + " Bytes ist kürzer als ihr Kopf von " +
           std::to_string(storage::kDataFileHeaderSize) + " Bytes";
  }
  for (int64_t position = storage::kFirstBlockPosition; position < file_size;) {
    DataBlock block;
    storage::TDbRecordHeader& header = block.header;
    const size_t got = file.ReadAt(position, &header, sizeof header);
    if (got < sizeof header.RecLen) return At(position) + "Länge vom Dateiende abgeschnitten";
    const int64_t stored = header.RecLen;
    const int64_t size = stored < 0 ? -stored : stored;
    if (size < kFreeBlockMinimum || position + size > file_size) {
      return At(position) + "Länge " + std::to_string(stored) + " passt nicht in die Datei von " +
             std::to_string(file_size) + " Bytes";
    }
    if (position + size > kMaxPosition) {
      return At(position) + "endet jenseits der 2 GB, die eine Datendatei fassen kann";
    }
    block.position = static_cast<int32_t>(position);
    block.length = static_cast<int32_t>(size);
    block.live = stored > 0;
    block.has_header = block.live && size >= storage::kRecordHeaderSize && got == sizeof header;
    visit(block);
    position += size;
  }
  return "";
}

std::string TypeLetterText(char type) {
  const auto byte = static_cast<uint8_t>(type);
  // In a key the pad byte shows as "."; as a type letter it would only mislead.
  if (byte == storage::kKeyPad) return "\\x04";
  return KeyToText({&byte, 1});
}

}  // namespace korvan::app
