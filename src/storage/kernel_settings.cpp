#include "storage/kernel_settings.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "storage/block_cache.h"
#include "storage/record_cache.h"

namespace korvan::storage {
namespace {

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// A whole number in the range of a 32-bit integer, or nothing.
std::optional<int> ParseInteger(std::string_view text) {
  text = Trimmed(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) return {};
  if (value < INT32_MIN || value > INT32_MAX) return {};
  return static_cast<int>(value);
}

class SettingReader {
 public:
  explicit SettingReader(const SettingLookup& lookup) : lookup_(lookup) {}

  int Integer(std::string_view key, int default_value) const {
    const std::optional<std::string> text = lookup_(key);
    if (!text) return default_value;
    return ParseInteger(*text).value_or(default_value);
  }
  bool Boolean(std::string_view key, bool default_value) const {
    return Integer(key, default_value ? 1 : 0) != 0;
  }
  std::string Text(std::string_view key) const { return lookup_(key).value_or(""); }

 private:
  const SettingLookup& lookup_;
};

int TimeoutInRange(int value, int default_value) {
  return value < kMinTimeoutMs || value > kMaxTimeoutMs ? default_value : value;
}

KernelSettings& MutableCurrentSettings() {
  static KernelSettings settings;
  return settings;
}

}  // namespace

KernelSettings ReadKernelSettings(const SettingLookup& lookup) {
  const SettingReader reader(lookup);
  KernelSettings s;
  s.lock_timeout_ms =
      TimeoutInRange(reader.Integer("LOCK_TIMEOUT", kDefaultLockTimeoutMs), kDefaultLockTimeoutMs);
  s.flush_timeout_ms = TimeoutInRange(reader.Integer("Flush_TimeOut", kDefaultFlushTimeoutMs),
                                      kDefaultFlushTimeoutMs);
  s.classic_cache_enabled = reader.Boolean("CLASSIC_CACHE_ENABLED", false);
  const int default_blocks =
      s.classic_cache_enabled ? kDefaultClassicCacheBlocks : kDefaultRandomAccessCacheBlocks;
  const int max_blocks =
      s.classic_cache_enabled ? kMaxClassicCacheBlocks : kMaxRandomAccessCacheBlocks;
  s.db_cache_size =
      std::clamp(reader.Integer("DB_CACHESIZE", default_blocks), kMinCacheBlocks, max_blocks);
  s.cache_do_write_by_release = reader.Boolean("CACHE_DOWRITEBYRELEASE", false);
  s.cache_do_monitoring = reader.Boolean("CACHE_DOMONITORING", false);
  s.cache_monitoring_file = reader.Text("CACHE_MONITORINGFILE");
  s.ccd_enabled = reader.Boolean("CCD_ENABLED", false);
  return s;
}

void ApplyKernelSettings(const KernelSettings& settings) {
  MutableCurrentSettings() = settings;
  RecordCache::Instance().SetCapacity(static_cast<size_t>(settings.db_cache_size) * kBlockSize);
  BlockCache::Instance().Configure({
      settings.classic_cache_enabled ? CacheKind::kClassic : CacheKind::kRandomAccess,
      settings.cache_do_write_by_release,
      settings.cache_do_monitoring,
      settings.cache_monitoring_file,
  });
}

const KernelSettings& CurrentKernelSettings() {
  return MutableCurrentSettings();
}

int KeyFileCacheBlocks() {
  return CurrentKernelSettings().db_cache_size;
}

}  // namespace korvan::storage
