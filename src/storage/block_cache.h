#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

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
  std::string function;    // "ReadReal", "WriteReal", "Read", ...
  uint32_t calls = 0;      // Si
  double total_seconds = 0;  // ST
  double last_seconds = 0;   // dT
};

// The cache of one registered file. Both implementations (random-access and classic)
// derive from it; callers only ever see this interface. All results are 0 or a code
// of result_codes.h. Blocks handed out stay valid and pinned until released.
class FileCache {
 public:
  virtual ~FileCache() = default;

  // Block n, pinned (used count + 1), read from the file if not cached.
  virtual int Read(uint32_t block, uint8_t** data) = 0;
  // Like Read for a block that is new at the end of the file: not read; the caller
  // fills all of it.
  virtual int NewBlock(uint32_t block, uint8_t** data) = 0;
  // Marks the caller's pinned block as changed.
  virtual int Write(uint32_t block) = 0;
  // Unpins the block (used count - 1).
  virtual int Release(uint32_t block) = 0;
  // Writes every changed block of the file.
  virtual int WriteAll() = 0;

  // Buffers that are neither pinned nor changed, plus unused slots: how many new
  // blocks could be taken right now without writing anything back.
  virtual int CleanOrFreeBuffers() const = 0;
  virtual int BlockCount() const = 0;
  virtual int DirtyBlocks() const = 0;
  virtual const std::string& FileName() const = 0;
};

// The process-wide block cache: one FileCache per registration number, all of the kind
// installed at start-up. Key files and lock files reach their blocks only through it.
class BlockCache {
 public:
  static BlockCache& Instance();

  // Chooses the implementation and flags for caches opened from now on.
  void Configure(const CacheSettings& settings);
  const CacheSettings& settings() const { return settings_; }

  // Registers an open file (fd stays owned by the caller) with a number of buffers.
  int Open(int registration, int fd, const std::string& file_name, int block_count);
  // Drops the registration (callers write changed blocks first with WriteAll).
  int Close(int registration);
  // The cache of a registered file, or nullptr.
  FileCache* Find(int registration);

  int Read(int registration, uint32_t block, uint8_t** data);
  int NewBlock(int registration, uint32_t block, uint8_t** data);
  int Write(int registration, uint32_t block);
  int Release(int registration, uint32_t block);
  int WriteAll(int registration);
  // The cache-wide flush: writes the changed blocks of every registered file.
  int FlashCache();

  // Monitoring: figures of all files' caches added up, and the CSV file of them.
  std::vector<CacheMonitoring> GetMonitorings() const;
  void SaveMonitoring() const;

 private:
  BlockCache() = default;
  CacheSettings settings_;
  std::unique_ptr<FileCache> caches_[kMaxCacheRegistrations + 1];
};

}  // namespace korvan::storage
