#include "storage/file/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "storage/file/file_sync.h"
#include "storage/file/unique_fd.h"

namespace korvan::storage {
namespace {

constexpr mode_t kNewFileMode = 0644;

// A hidden name next to the target ("dir/.name.XXXXXX"), unique per writer, so that
// two writers of the same file never share a temporary file.
std::string TemporaryNamePattern(const std::string& path) {
  const std::filesystem::path target(path);
  return (target.parent_path() / ("." + target.filename().string() + ".XXXXXX")).string();
}

mode_t ModeFor(const std::string& path) {
  struct stat existing {};
  return ::stat(path.c_str(), &existing) == 0 ? existing.st_mode & 07777 : kNewFileMode;
}

int WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t put = ::write(fd, bytes.data(), bytes.size());
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) return errno;
    if (put == 0) return EIO;
    bytes.remove_prefix(static_cast<size_t>(put));
  }
  return 0;
}

int CopyAll(int from, int to) {
  char buffer[64 * 1024];
  for (;;) {
    const ssize_t got = ::read(from, buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return errno;
    if (got == 0) return 0;
    if (const int error = WriteAll(to, std::string_view(buffer, static_cast<size_t>(got)));
        error != 0) {
      return error;
    }
  }
}

// Writes, sets the mode and (when asked) syncs the open temporary file, then closes it.
FileWriteResult FillTemporary(UniqueFd fd, const std::string& path, Durability durability,
                              const FileFiller& fill) {
  if (const int error = fill(fd.get()); error != 0) return {FileWriteStep::kWrite, error};
  if (::fchmod(fd.get(), ModeFor(path)) != 0) return {FileWriteStep::kWrite, errno};
  if (durability == Durability::kDurable && ::fsync(fd.get()) != 0) {
    return {FileWriteStep::kSync, errno};
  }
  // close() reports write errors that some file systems (NFS) hold back until then.
  if (fd.Close() != 0) return {FileWriteStep::kSync, errno};
  return {};
}

}  // namespace

std::string FileWriteResult::ErrorText() const {
  return std::strerror(error);
}

FileWriteResult ReplaceFileAtomically(const std::string& path, Durability durability,
                                      const FileFiller& fill) {
  std::string temporary = TemporaryNamePattern(path);
  UniqueFd fd(::mkostemp(temporary.data(), O_CLOEXEC));
  if (!fd.valid()) return {FileWriteStep::kCreate, errno};
  FileWriteResult result = FillTemporary(std::move(fd), path, durability, fill);
  if (result.ok() && std::rename(temporary.c_str(), path.c_str()) != 0) {
    result = {FileWriteStep::kReplace, errno};
  }
  if (!result.ok()) {
    ::unlink(temporary.c_str());
    return result;
  }
  if (durability == Durability::kDurable) {
    if (const int error = SyncDirectory(DirectoryOf(path)); error != 0) {
      return {FileWriteStep::kSyncDirectory, error};
    }
  }
  return {};
}

FileWriteResult WriteFileAtomically(const std::string& path, std::string_view content,
                                    Durability durability) {
  return ReplaceFileAtomically(path, durability,
                               [content](int fd) { return WriteAll(fd, content); });
}

FileWriteResult CopyFileAtomically(const std::string& source, const std::string& path,
                                   Durability durability) {
  const UniqueFd from(::open(source.c_str(), O_RDONLY | O_CLOEXEC));
  if (!from.valid()) return {FileWriteStep::kWrite, errno};
  return ReplaceFileAtomically(path, durability,
                               [&from](int fd) { return CopyAll(from.get(), fd); });
}

}  // namespace korvan::storage
