#pragma once

// Result codes of the storage engine. 0 is success everywhere; every other value is
// one of these. The key layer returns its own codes (42xx), the kernel maps them to
// its codes (43xx) with their German texts (see db_error_translate.h).
namespace korvan::storage {

inline constexpr int kOk = 0;

// Lock file (lock protocol).
inline constexpr int kLockEntryMissing = 4096;
inline constexpr int kLockFileNotOpen = 4097;
inline constexpr int kLockNameWriteLocked = 4098;
inline constexpr int kLockNameExclusive = 4099;
inline constexpr int kLockNotHeld = 4100;
inline constexpr int kLockTaskNotRegistered = 4102;
inline constexpr int kLockWriteLockHeld = 4103;
inline constexpr int kLockNoWriteLock = 4104;
inline constexpr int kLockFileBusy = 4105;

// Block cache and block I/O.
inline constexpr int kBlockBeyondEnd = 4160;  // read at or past the end of the file
inline constexpr int kNoBlocksFree = 4163;    // "No Blocks free"
inline constexpr int kCacheBusy = 4164;       // classic cache flush: try again

// Key files.
inline constexpr int kKeyLengthOutOfRange = 4224;
inline constexpr int kKeyFileNearlyFull = 4225;  // the insert succeeded
inline constexpr int kKeyFileFull = 4226;
inline constexpr int kKeyDuplicate = 4227;
inline constexpr int kKeyIndexEmpty = 4228;
inline constexpr int kKeyNotFoundOnDelete = 4229;
inline constexpr int kKeyNoMatch = 4230;  // also: end of index reached
inline constexpr int kKeyFileCorrupt = 4231;
inline constexpr int kKeyFileUnknownVersion = 4232;

}  // namespace korvan::storage
