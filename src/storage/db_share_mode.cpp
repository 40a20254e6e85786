#include "storage/db_share_mode.h"

#include <fcntl.h>

#include <cerrno>

#include "storage/db_handle_table.h"

namespace korvan::storage {
namespace {

// Far beyond the 2 GB a data file can reach, so no data byte is ever covered.
constexpr off_t kMarkerBase = off_t{1} << 40;
enum Marker : int { kReads = 0, kWrites = 1, kDeniesReads = 2, kDeniesWrites = 3 };

bool HasWriteAccess(uint16_t mode) {
  return (mode & 3) != 0;
}
bool DeniesWrites(uint16_t mode) {
  const uint16_t share = mode & kShareMask;
  return share == kShareDenyAll || share == kShareDenyWrite;
}
bool DeniesReads(uint16_t mode) {
  return (mode & kShareMask) == kShareDenyAll;
}

struct flock MarkerLock(Marker marker, short type) {
  struct flock lock {};
  lock.l_type = type;
  lock.l_whence = SEEK_SET;
  lock.l_start = kMarkerBase + marker;
  lock.l_len = 1;
  return lock;
}

int Publish(int fd, Marker marker) {
  struct flock lock = MarkerLock(marker, F_RDLCK);
  return fcntl(fd, F_OFD_SETLK, &lock) == 0 ? 0 : errno;
}

// Whether another open file description holds the marker.
int HeldByOthers(int fd, Marker marker, bool* held) {
  struct flock lock = MarkerLock(marker, F_WRLCK);
  if (fcntl(fd, F_OFD_GETLK, &lock) != 0) return errno;
  *held = lock.l_type != F_UNLCK;
  return 0;
}

void Withdraw(int fd) {
  struct flock lock = MarkerLock(kReads, F_UNLCK);
  lock.l_len = 4;
  fcntl(fd, F_OFD_SETLK, &lock);
}

int PublishAll(int fd, uint16_t mode) {
  int error = Publish(fd, kReads);
  if (error == 0 && HasWriteAccess(mode)) error = Publish(fd, kWrites);
  if (error == 0 && DeniesReads(mode)) error = Publish(fd, kDeniesReads);
  if (error == 0 && DeniesWrites(mode)) error = Publish(fd, kDeniesWrites);
  return error;
}

int CheckConflicts(int fd, uint16_t mode) {
  struct Check {
    bool applies;
    Marker opposite;
  };
  const Check checks[] = {
      {true, kDeniesReads},
      {HasWriteAccess(mode), kDeniesWrites},
      {DeniesReads(mode), kReads},
      {DeniesWrites(mode), kWrites},
  };
  for (const Check& check : checks) {
    if (!check.applies) continue;
    bool held = false;
    if (int error = HeldByOthers(fd, check.opposite, &held); error != 0) return error;
    if (held) return EWOULDBLOCK;
  }
  return 0;
}

}  // namespace

int OpenFlagsForMode(uint16_t open_mode) {
  return HasWriteAccess(open_mode) ? O_RDWR : O_RDONLY;
}

int AcquireShareMode(int fd, uint16_t open_mode) {
  int error = PublishAll(fd, open_mode);
  if (error == 0) error = CheckConflicts(fd, open_mode);
  if (error != 0) Withdraw(fd);
  return error;
}

}  // namespace korvan::storage
