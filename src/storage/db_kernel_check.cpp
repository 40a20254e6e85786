// Data file headers: format check, legacy banners, version and time stamp.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "storage/data_file_banner.h"
#include "storage/db_kernel.h"
#include "storage/db_kernel_internal.h"
#include "storage/file/unique_fd.h"
#include "storage/result_codes.h"

namespace korvan::storage {
namespace {

template <typename T>
T LoadAt(const uint8_t* bytes, size_t offset) {
  T value;
  std::memcpy(&value, bytes + offset, sizeof value);
  return value;
}

int OpenError(int error) {
  if (kernel::IsNoRegularFile(error)) return kDkNotADatabaseFile;
  return error == ENOENT || error == ENOTDIR ? kDkDataFileMissing : kDkIoError;
}

// Reads up to `size` bytes from the start of a data file given by path.
int ReadFileStart(const std::string& path, size_t size, std::vector<uint8_t>* bytes) {
  const UniqueFd fd(kernel::OpenFile(path, O_RDONLY));
  if (!fd.valid()) return OpenError(errno);
  bytes->assign(size, 0);
  size_t got = 0;
  const int result = kernel::ReadAt(fd.get(), 0, bytes->data(), size, &got);
  if (result != kOk) return kDkIoError;
  bytes->resize(got);
  return kOk;
}

}  // namespace

namespace kernel {

// Without O_NONBLOCK a named pipe in place of a database file would block the open (or
// the first read) until some other process opened its other end.
int OpenFile(const std::string& path, int flags, int create_mode) {
  int fd = -1;
  do {
    fd = open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, create_mode);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0) return fd;
  struct stat info {};
  if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
    const int error = S_ISDIR(info.st_mode) ? EISDIR : ENODEV;
    Diagnostic("\"" + path + "\" is no regular file");
    close(fd);
    errno = error;
    return -1;
  }
  fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
  return fd;
}

bool IsNoRegularFile(int error) {
  return error == EISDIR || error == ENODEV;
}

int ReadDataFileInfo(int fd, DataFileInfo* info) {
  uint8_t bytes[kOldestLayoutProbeSize] = {};
  size_t got = 0;
  if (ReadAt(fd, 0, bytes, sizeof bytes, &got) != kOk) return kDkIoError;
  const bool current = got >= static_cast<size_t>(kBannerPrefixSize) &&
                       ClassifyDataFileBanner({bytes, sizeof bytes}) == kDkFormatCurrent;
  // A current file's first record may well begin with the bytes that mark the oldest
  // layout (length 273, type "V"), so the mark counts only for files that are not current.
  const bool oldest = !current && got == sizeof bytes && bytes[0] == '3' &&
                      bytes[kOldestLayoutMarkOffset] == 'V' &&
                      bytes[kOldestLayoutTagOffset] == kOldestLayoutTag;
  if (oldest) {
    info->version = LoadAt<uint32_t>(bytes, kOldestLayoutVersionOffset);
    info->time_stamp = LoadAt<double>(bytes, kOldestLayoutStampOffset);
    info->stamp_offset = kOldestLayoutStampOffset;
    return kOk;
  }
  if (got < offsetof(TDataFileHeader, Reserved)) return kDkNotADatabaseFile;
  info->version = LoadAt<uint32_t>(bytes, offsetof(TDataFileHeader, FileVersion));
  info->time_stamp = LoadAt<double>(bytes, offsetof(TDataFileHeader, FileTimeStamp));
  info->stamp_offset = offsetof(TDataFileHeader, FileTimeStamp);
  return kOk;
}

}  // namespace kernel

int iDK_DbCheckFile(char db_type, const std::string& data_file_path) {
  std::vector<uint8_t> bytes;
  const bool library = db_type == kLibraryDatabaseType;
  const size_t wanted = library ? LibraryBanner().size() : kDataFileHeaderSize;
  if (int result = ReadFileStart(data_file_path, wanted, &bytes); result != kOk) return result;
  return library ? ClassifyLibraryBanner(bytes) : ClassifyDataFileBanner(bytes);
}

int iDK_DbWriteBanner(const std::string& data_file_path, int format_code) {
  const std::span<const uint8_t> banner = BannerForFormat(format_code);
  if (banner.empty()) return kDkNoCopyright;
  uint8_t header[kDataFileHeaderSize] = {};
  std::memcpy(header, banner.data(), banner.size());
  const UniqueFd fd(kernel::OpenFile(data_file_path, O_WRONLY | O_DSYNC));
  if (!fd.valid()) return OpenError(errno);
  return kernel::WriteAt(fd.get(), 0, header, sizeof header);
}

int iDK_DbFileInfo(const std::string& data_file_path, uint32_t* version, double* time_stamp) {
  const UniqueFd fd(kernel::OpenFile(data_file_path, O_RDONLY));
  if (!fd.valid()) return OpenError(errno);
  kernel::DataFileInfo info;
  const int result = kernel::ReadDataFileInfo(fd.get(), &info);
  if (result != kOk) return result;
  *version = info.version;
  *time_stamp = info.time_stamp;
  return kOk;
}

int iDK_DbSetTimeStamp(int handle, double time_stamp) {
  auto& table = DbHandleTable::Instance();
  DbHandleSlot* slot = table.Find(handle);
  if (slot == nullptr) return kDkInvalidHandle;
  table.set_new_file_time_stamp(time_stamp);
  if (slot->file_time_stamp == time_stamp) return kOk;
  kernel::DataFileInfo info;
  if (int result = kernel::ReadDataFileInfo(slot->data_file, &info); result != kOk) return result;
  if (kernel::WriteData(*slot, info.stamp_offset, &time_stamp, sizeof time_stamp) != kOk) {
    return kDkIoError;
  }
  slot->file_time_stamp = time_stamp;
  return kOk;
}

int iDK_DbSetVersion(uint32_t version) {
  DbHandleTable::Instance().set_new_file_version(version);
  return kOk;
}

}  // namespace korvan::storage
