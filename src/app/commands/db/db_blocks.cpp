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

// Closes the descriptor on every way out of the walk.
class ReadOnlyFile {
 public:
  // Without O_NONBLOCK a named pipe in the file's place would block the walk.
  explicit ReadOnlyFile(const std::string& path)
      : path_(path), fd_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
    if (fd_ < 0) Fail("nicht zu öffnen");
    struct stat status {};
    if (fstat(fd_, &status) != 0) Fail("nicht lesbar");
    if (!S_ISREG(status.st_mode)) {
      close(fd_);
      throw CommandError(path_ + ": " +
                         (S_ISDIR(status.st_mode) ? "ist ein Verzeichnis, keine Datendatei"
                                                  : "ist keine gewöhnliche Datei"));
    }
  }
  ~ReadOnlyFile() { close(fd_); }
  ReadOnlyFile(const ReadOnlyFile&) = delete;
  ReadOnlyFile& operator=(const ReadOnlyFile&) = delete;

  int64_t Size() const {
    struct stat status {};
    if (fstat(fd_, &status) != 0) Fail("nicht lesbar");
    return status.st_size;
  }

  int fd() const { return fd_; }

  [[noreturn]] void Fail(const std::string& what) const {
    throw CommandError(path_ + ": " + what + ": " + std::strerror(errno));
  }

 private:
  std::string path_;
  int fd_;
};

// The stretches the reader skipped, one after the other.
struct DamageText : storage::DataFileReader::Reporter {
  void Damaged(int64_t position, int64_t length, storage::BlockDamage damage) override {
    if (!text.empty()) text += "; ";
    text += "Block an Position " + std::to_string(position) + ": " +
            storage::BlockDamageText(damage) + ", " + std::to_string(length) +
            " Bytes übersprungen";
  }
  std::string text;
};

}  // namespace

std::string WalkDataFile(const std::string& data_file_path,
                         const std::function<void(const DataBlock&)>& visit) {
  const ReadOnlyFile file(data_file_path);
  const int64_t file_size = file.Size();
  if (file_size < storage::kFirstBlockPosition) {
    return "Datei von " + std::to_string(file_size) + " Bytes ist kürzer als ihr Kopf von " +
           std::to_string(storage::kDataFileHeaderSize) + " Bytes";
  }
  DamageText damage;
  storage::DataFileReader reader(file.fd(), &damage);
  storage::DataFileBlock block;
  while (reader.ReadBlock(&block)) visit(block);
  if (reader.io_error()) file.Fail("nicht lesbar");
  return damage.text;
}

std::string TypeLetterText(char type) {
  const auto byte = static_cast<uint8_t>(type);
  // In a key the pad byte shows as "."; as a type letter it would only mislead.
  if (byte == storage::kKeyPad) return "\\x04";
  return KeyToText({&byte, 1});
}

}  // namespace korvan::app
