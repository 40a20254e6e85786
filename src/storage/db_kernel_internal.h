#pragma once

// Helpers shared by the db_kernel_*.cpp files; not part of the kernel's interface.

#include <cstddef>
#include <cstdint>
#include <string>

#include "storage/block_io.h"
#include "storage/db_handle_table.h"
#include "storage/file/file_names.h"
#include "storage/key_file.h"
#include "storage/record_header.h"

namespace korvan::storage::kernel {

inline constexpr int64_t kMaxDataFileSize = 2147483647;  // positions are signed 32-bit
inline constexpr char kFreeSpaceKeyLead = '~';
inline constexpr int kFreeSpaceDigits = 11;
inline constexpr int kFreeBlockMinimum = 4;  // room for the length of a free block
inline constexpr int kMaxSlack = 3;          // bytes a record may leave unused in its slot

// Positioned read of up to `size` bytes; *got receives the number read. Returns 0, or
// 4352 for a position the file cannot seek to, 4320 for other failures.
int ReadAt(int fd, int64_t position, void* data, size_t size, size_t* got);
// Positioned write of exactly `size` bytes: 0, or 4320.
int WriteAt(int fd, int64_t position, const void* data, size_t size);
// 0 or 4320.
int FileSize(int fd, int64_t* size);

// Writes to a data file. Outside a change under the tree lock the bytes are on disk when
// this returns. Inside one they are synced once, when the outermost level of the lock
// ends (SyncDataFile from the lock's release): an operation, or a batch of operations
// under one hold, costs one sync, and other processes, which see the change only after
// that release, never see data that is not on disk.
int WriteData(DbHandleSlot& slot, int64_t position, const void* data, size_t size);
// Puts the data file's outstanding writes on disk: at the end of a change, and between
// two writes whose order must survive a power cut. 0 or 4320.
int SyncDataFile(DbHandleSlot& slot);

// The kernel's code for a key layer result (4315, 4336, 4326, 4291, 4314, else as is).
int MapKeyResult(int key_result);
// Runs a key layer call and turns a block I/O failure into 4320.
template <typename Call>
int CallKeyLayer(Call&& call);

// The free-space key of a block: "~", the length right-aligned in 11 characters, then
// pad bytes; its position is the block's.
KeyEntry FreeSpaceKey(int64_t block_length, int32_t position);

struct FreeBlock {
  int32_t position = 0;
  int32_t length = 0;  // positive
};
// The largest free block if it holds `wanted` bytes: 0, 4314 when there is none big
// enough, 4315 cache too small, 4325 when index and data file disagree.
int FindFreeBlock(int handle, const DbHandleSlot& slot, int32_t wanted, FreeBlock* block);
// Enters / removes the "~" key of a free block; any failure is 4325.
int AddFreeSpaceKey(int handle, int32_t position, int64_t block_length);
int RemoveFreeSpaceKey(int handle, int32_t position, int64_t block_length);
// Frees the record block at `position`: merges the free blocks that follow it into one
// free block, whose header (`freed`, its length negated) is written once, or truncates
// the file when only free space follows.
int FreeRecordBlock(int handle, DbHandleSlot& slot, int32_t position, TDbRecordHeader freed);

struct DataFileInfo {
  uint32_t version = 0;
  double time_stamp = 0;
  int64_t stamp_offset = 0;  // where the stamp sits (44, or 89 in the oldest layout)
};
// Version and time stamp from a data file's header: 0, 4309 when the file is too short
// to have a header, 4320 when it cannot be read.
int ReadDataFileInfo(int fd, DataFileInfo* info);

// Opens with O_CLOEXEC, repeating on EINTR; -1 with errno set on failure. Only regular
// files open: a directory gives EISDIR, a named pipe or device ENODEV, without waiting.
int OpenFile(const std::string& path, int flags, int create_mode = 0);
// Whether an errno of OpenFile says that the path is no regular file.
bool IsNoRegularFile(int error);

// Cache buffers per key file from the kernel settings.
int ConfiguredCacheSize();
// The process-wide concurrency-detection switch.
bool ConcurrencyDetectionOn();
bool SetConcurrencyDetection(bool on);  // returns the previous state

// "DBKernel: " diagnostics for the developer (standard error when KORVAN_DBKERNEL_TRACE
// is set).
void Diagnostic(const std::string& text);

template <typename Call>
int CallKeyLayer(Call&& call) {
  try {
    return MapKeyResult(call());
  } catch (const FileIoError& error) {
    Diagnostic(error.what());
    return 4320;
  }
}

}  // namespace korvan::storage::kernel
