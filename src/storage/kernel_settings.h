#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace korvan::storage {

// Range and defaults of the [DBKERNEL] keys.
inline constexpr int kDefaultLockTimeoutMs = 5000;
inline constexpr int kDefaultFlushTimeoutMs = 3000;
inline constexpr int kMinTimeoutMs = 500;
inline constexpr int kMaxTimeoutMs = 10000;
inline constexpr int kDefaultRandomAccessCacheBlocks = 31;
inline constexpr int kDefaultClassicCacheBlocks = 19;
inline constexpr int kMinCacheBlocks = 7;
inline constexpr int kMaxRandomAccessCacheBlocks = 2147483647;
inline constexpr int kMaxClassicCacheBlocks = 255;

// The kernel settings of section [DBKERNEL] of "Helvio.ini", already checked: every
// value is in its range.
struct KernelSettings {
  int lock_timeout_ms = kDefaultLockTimeoutMs;          // "LOCK_TIMEOUT"
  int flush_timeout_ms = kDefaultFlushTimeoutMs;        // "Flush_TimeOut"
  bool classic_cache_enabled = false;                   // "CLASSIC_CACHE_ENABLED"
  int db_cache_size = kDefaultRandomAccessCacheBlocks;  // "DB_CACHESIZE", blocks per key file
  bool cache_do_write_by_release = false;               // "CACHE_DOWRITEBYRELEASE"
  bool cache_do_monitoring = false;                     // "CACHE_DOMONITORING"
  std::string cache_monitoring_file;                    // "CACHE_MONITORINGFILE"
  bool ccd_enabled = false;                             // "CCD_ENABLED"

  bool operator==(const KernelSettings&) const = default;
};

// The value of a key of the section, or nothing when the key is absent.
using SettingLookup = std::function<std::optional<std::string>(std::string_view key)>;

// Reads the keys in a fixed order (the cache kind before the cache size, whose default
// and range depend on it). Absent keys and values that are not whole numbers (for
// integers and booleans) give the default; a boolean is true for any number but 0.
KernelSettings ReadKernelSettings(const SettingLookup& lookup);

// Makes `settings` the current settings of the process and configures the block cache
// with the chosen kind, write-by-release, monitoring and monitoring file. Caches opened
// before keep their configuration.
void ApplyKernelSettings(const KernelSettings& settings);

// The settings in force: the defaults until ApplyKernelSettings is called.
const KernelSettings& CurrentKernelSettings();

// Buffers of the block cache for a key file opened now ("DB_CACHESIZE").
int KeyFileCacheBlocks();

}  // namespace korvan::storage
