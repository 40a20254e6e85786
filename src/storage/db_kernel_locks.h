#pragma once

#include <cstdint>
#include <string_view>

#include "storage/lock_wait.h"

// The kernel's lock operations on shared databases. A process registers as a task of a
// database (iDK_DbLock), then locks names — record keys or region names — shared or
// exclusively, nesting, and may take write locks. All coordination runs through the
// database's lock file (base path + "2"). Results are kernel codes: a name that stays
// locked gives 4317, a wait the handler gave up 4319, other failures 4320.
namespace korvan::storage {

// Registers this process as a task of the database and returns its number; with
// `reuse` the task of an earlier registration of the same user identity is taken over.
// A handle that already has a task returns it. 4292 for a type that is not shared;
// 4306 when 248 tasks are registered; 4323 when the lock file cannot be initialised;
// 4318 when the medium refuses write access.
int iDK_DbLock(int handle, uint32_t user_identity, bool reuse, int* task);
// Removes the task with all its locks; the lock file is closed and, when no task is
// left, deleted. A handle without a task is left as it is. 4292 for a type not shared.
int iDK_DbUnlock(int handle);

// Locks a name (cut at its first pad byte 0x04 and to 31 bytes), waiting as the handler
// allows (none: no waiting). 4332 for a type that is not shared.
int iDK_LockSet(int handle, int task, bool exclusive, std::string_view name,
                LockWaitHandler* handler);
// Undoes one iDK_LockSet of the name (4320 when the task holds no lock on it).
int iDK_LockRelease(int handle, int task, std::string_view name);
int iDK_LockReleaseAll(int handle, int task);
// The write lock of a name; refused while another task holds a lock on the name or any
// write lock. 4332 for a type that is not shared or while no lock file is open.
int iDK_WriteLockSet(int handle, int task, std::string_view name, LockWaitHandler* handler);
int iDK_WriteLockRelease(int handle, int task, std::string_view name);

// For closing a database: unregisters this process's task, if it has one, as
// iDK_DbUnlock does. The lock file is never deleted while other tasks are registered.
int DbCloseLockFile(int handle);

// The "test" switch of the command line: lock requests that have to wait are reported
// on standard error ("DBKernel: Pending LockSet. DB ... has exclusive lock").
void SetPendingLockDiagnostics(bool on);

// The lock file a handle has open, or nullptr (for tests and the integrity check).
LockFile* DbOpenLockFile(int handle);

}  // namespace korvan::storage
