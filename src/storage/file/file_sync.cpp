#include "storage/file/file_sync.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "storage/file/unique_fd.h"

namespace korvan::storage {
namespace {

int SyncOpened(const std::string& path, int flags) {
  const UniqueFd fd(::open(path.c_str(), flags | O_CLOEXEC));
  if (!fd.valid() || ::fsync(fd.get()) != 0) return errno;
  return 0;
}

}  // namespace

int SyncFile(const std::string& path) {
  // Read access suffices for fsync on Linux, and lets a read-only file be synced.
  return SyncOpened(path, O_RDONLY);
}

int SyncDirectory(const std::string& directory) {
  return SyncOpened(directory.empty() ? "." : directory, O_RDONLY | O_DIRECTORY);
}

std::string DirectoryOf(const std::string& path) {
  return std::filesystem::path(path).parent_path().string();
}

int RenameDurably(const std::string& from, const std::string& to) {
  if (std::rename(from.c_str(), to.c_str()) != 0) return errno;
  return SyncDirectory(DirectoryOf(to));
}

}  // namespace korvan::storage
