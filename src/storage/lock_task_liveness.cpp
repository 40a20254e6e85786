#include "storage/lock_task_liveness.h"

#include <fcntl.h>

#include <cerrno>

namespace korvan::storage {
namespace {

struct flock TaskByte(short type, int task) {
  struct flock range = {};
  range.l_type = type;
  range.l_whence = SEEK_SET;
  range.l_start = kTaskAliveBase + task;
  range.l_len = 1;
  return range;
}

int Control(int fd, int command, struct flock* range) {
  int result;
  do {
    result = fcntl(fd, command, range);
  } while (result != 0 && errno == EINTR);
  return result;
}

}  // namespace

bool HoldTaskAlive(int fd, int task) {
  struct flock range = TaskByte(F_WRLCK, task);
  return Control(fd, F_OFD_SETLK, &range) == 0;
}

void ReleaseTaskAlive(int fd, int task) {
  struct flock range = TaskByte(F_UNLCK, task);
  Control(fd, F_OFD_SETLK, &range);
}

bool TaskAliveElsewhere(int fd, int task) {
  struct flock range = TaskByte(F_WRLCK, task);
  if (Control(fd, F_OFD_GETLK, &range) != 0) return true;
  return range.l_type != F_UNLCK;
}

}  // namespace korvan::storage
