#pragma once

#include <sys/types.h>

namespace korvan::storage {

// Whether the task of a lock file is still alive. A registered task keeps an
// open-file-description lock on one byte of its own far beyond the file's blocks
// (kTaskAliveBase + task) for as long as it is registered. The system drops the lock
// when the process ends in any way, so the entries of a killed process can be told from
// those of a live one and cleaned up instead of blocking the others for ever.
inline constexpr off_t kTaskAliveBase = 0x40000000;

// Takes the task's byte on the descriptor; false when another open file holds it.
bool HoldTaskAlive(int fd, int task);
void ReleaseTaskAlive(int fd, int task);
// True when another open file holds the task's byte (or the state cannot be read, which
// must never make a live task look dead).
bool TaskAliveElsewhere(int fd, int task);

}  // namespace korvan::storage
