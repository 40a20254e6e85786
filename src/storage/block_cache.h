#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "storage/btree_walk_hint.h"
#include "storage/cache_monitoring.h"
#include "storage/cache_usage_error.h"

namespace korvan::storage {

inline constexpr int kBlockSize = 2048;

// Registration numbers: the database handle (1..40) for key files, handle + 40 for
// lock files.
inline constexpr int kMaxCacheRegistrations = 80;

enum class CacheKind { kRandomAccess, kClassic };

// How the process-wide cache is set up (from the [DBKERNEL] settings).
struct CacheSettings {
  CacheKind kind = CacheKind::kRandomAccess;
  bool write_by_release = false;
  bool monitoring = false;
  std::string monitoring_file;  // ".csv" is appended when the statistics are saved
};

// Statistics of one monitored function.
struct CacheMonitoring {
  std::string function;      // "ReadReal", "WriteReal", "Read", ...
  uint32_t calls = 0;        // Si
  double total_seconds = 0;  // ST
  double last_seconds = 0;   // dT
};

// The cache of one registered file. Both implementations (random-access and classic)
// derive from it; callers only ever see this interface. All results are 0 or a code
// of result_codes.h. Blocks handed out stay valid and pinned until released.
//
// Errors that are not results: a Write or Release of a block that is not cached (or, for
// Release, not pinned) throws CacheUsageError ("No write before read", "No release
// before read"); a failing read or write of the file throws FileIoError ("FileIoError
// Read %d" / "FileIoError Write %d"). Read answers 4160 for a block that is not wholly
// inside the file and 4163 ("No Blocks free") when every buffer is pinned or changed.
class FileCache {
 public:
  virtual ~FileCache() = default;

  // Block n, pinned (used count + 1), read from the file if not cached.
  virtual int Read(uint32_t block, uint8_t** data) = 0;
  // Like Read for a block that is new at the end of the file: not read but zeroed; the
  // caller fills it. A block still cached (say, from an earlier NewBlock) is handed out
  // as it is.
  virtual int NewBlock(uint32_t block, uint8_t** data) = 0;
  // Marks the caller's pinned block as changed (a cached block nobody holds may be
  // marked too).
  virtual int Write(uint32_t block) = 0;
  // Unpins the block (used count - 1).
  virtual int Release(uint32_t block) = 0;
  // Writes every changed block of the file.
  virtual int WriteAll() = 0;

  // How many blocks that are not cached could be taken right now without 4163: unused
  // buffers, unpinned clean ones and, while write-by-release is on, unpinned changed
  // ones (written back when taken).
  virtual int CleanOrFreeBuffers() const = 0;
  virtual int BlockCount() const = 0;
  virtual int DirtyBlocks() const = 0;
  virtual const std::string& FileName() const = 0;
  // The statistics of this cache, or nullptr when it was opened without monitoring.
  virtual const CacheMonitor* Monitoring() const { return nullptr; }

  // Where the last search or in-order step on this file as a key file ended. It lives
  // and dies with the registration; the key-file layer checks it before every use.
  WalkHint& walk_hint() { return walk_hint_; }

 private:
  WalkHint walk_hint_;
};

// The process-wide block cache: one FileCache per registration number, all of the kind
// installed at start-up. Key files and lock files reach their blocks only through it.
class BlockCache {
 public:
  static BlockCache& Instance();

  // Chooses the implementation and flags for caches opened from now on.
  void Configure(const CacheSettings& settings);
  const CacheSettings& settings() const { return settings_; }

  // Registers an open file (fd stays owned by the caller) with a number of buffers
  // (at least 1; the classic cache keeps at most 255). A registration number outside
  // 1..kMaxCacheRegistrations, one already open or a block count below 1 throws
  // CacheUsageError.
  int Open(int registration, int fd, const std::string& file_name, int block_count);
  // Drops the registration (callers write changed blocks first with WriteAll); changed
  // blocks still cached are lost. Closing a number that is not open does nothing.
  int Close(int registration);
  // The cache of a registered file, or nullptr.
  FileCache* Find(int registration);

  // The operations below throw CacheUsageError for a registration that is not open.
  int Read(int registration, uint32_t block, uint8_t** data);
  int NewBlock(int registration, uint32_t block, uint8_t** data);
  int Write(int registration, uint32_t block);
  int Release(int registration, uint32_t block);
  int WriteAll(int registration);
  // The cache-wide flush: writes the changed blocks of every registered file.
  int FlashCache();

  // Monitoring: figures of all caches opened with monitoring on (also those closed
  // since) added up, and the file "<monitoring_file>.csv" of them. SaveMonitoring does
  // nothing without a file name and throws FileIoError when the file cannot be written.
  std::vector<CacheMonitoring> GetMonitorings() const;
  void SaveMonitoring() const;

 private:
  BlockCache() = default;
  FileCache& Get(int registration);
  CacheMonitor CollectMonitoring() const;
  void RememberMonitoredFile(const std::string& file_name, int block_count);

  CacheSettings settings_;
  std::unique_ptr<FileCache> caches_[kMaxCacheRegistrations + 1];
  // Figures of closed caches and of the cache-wide flush, and the files seen.
  CacheMonitor retired_monitoring_;
  std::vector<MonitoredFile> monitored_files_;
};

}  // namespace korvan::storage
