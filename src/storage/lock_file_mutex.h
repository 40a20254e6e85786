#pragma once

namespace korvan::storage {

// The cross-process mutex of a lock file: a POSIX record lock (fcntl F_SETLK) on bytes
// 0..2047, the file's first block. It never waits: when another process holds the
// range, TryLock answers 4105 (busy) and the caller repeats. Record locks work between
// processes on one machine and, through the lock manager, over NFS; a process that
// dies loses its locks, so a crashed user cannot leave the mutex taken.
//
// Record locks belong to the process, not to the descriptor or this object: two
// mutexes of one process on the same file do not exclude each other, and closing any
// descriptor of the file in the process drops the process's locks on it. The kernel
// therefore keeps exactly one open descriptor per lock file (a database path can be
// open only once per process) and runs one lock operation at a time.
class LockFileMutex {
 public:
  explicit LockFileMutex(int fd) : fd_(fd) {}
  ~LockFileMutex() { Unlock(); }
  LockFileMutex(const LockFileMutex&) = delete;
  LockFileMutex& operator=(const LockFileMutex&) = delete;

  // 0 when taken, 4105 when another process holds it, 4320 on any other failure.
  int TryLock();
  void Unlock();
  bool held() const { return held_; }

 private:
  int fd_;
  bool held_ = false;
};

}  // namespace korvan::storage
