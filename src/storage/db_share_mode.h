#pragma once

#include <cstdint>

namespace korvan::storage {

// Share modes on POSIX. Windows decides at open time whether the access and share
// flags of a new open fit those of every open already made on the file; POSIX has no
// such check, so each open of a data file records its flags as shared open-file-
// description locks (fcntl F_OFD_SETLK) on four marker bytes far beyond any data:
//   "reads" and "writes": held by every open with read / write access;
//   "denies reads" and "denies writes": held by every open whose share flags deny it.
// After taking its own markers an open asks (F_OFD_GETLK) whether anyone else holds
// the opposite ones: its access against others' denials, its denials against others'
// access. Both sides test after publishing, so two conflicting opens can never both
// succeed (at worst two racing opens both fail). The locks vanish with the open file
// description, including when a process dies.
//
//   0x40 read, deny none       reads
//   0x41/0x42 read/write       reads, writes
//   0x22 read/write, deny write reads, writes, denies writes
//   0x10 share part            denies reads and writes

// Open flags (O_RDONLY or O_RDWR) for an access/share mode.
int OpenFlagsForMode(uint16_t open_mode);

// Publishes the mode's markers on fd and checks them against other opens. Returns 0,
// or the errno of the failure: EWOULDBLOCK for a sharing violation.
int AcquireShareMode(int fd, uint16_t open_mode);

}  // namespace korvan::storage
