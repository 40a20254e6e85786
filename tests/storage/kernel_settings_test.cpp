#include "storage/kernel_settings.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "storage/block_cache.h"

namespace korvan::storage {
namespace {

KernelSettings Read(const std::map<std::string, std::string, std::less<>>& section) {
  return ReadKernelSettings([&](std::string_view key) -> std::optional<std::string> {
    const auto it = section.find(key);
    return it == section.end() ? std::nullopt : std::optional(it->second);
  });
}

TEST(KernelSettings, ValuesOutsideTheirRangeOrUnreadableGiveTheDefault) {
  struct Case {
    const char* key;
    const char* value;
    bool classic;
    int lock, flush, cache;
  };
  const Case cases[] = {
      {"LOCK_TIMEOUT", "499", false, 5000, 3000, 31},
      {"LOCK_TIMEOUT", "500", false, 500, 3000, 31},
      {"LOCK_TIMEOUT", " 7500 ", false, 7500, 3000, 31},
      {"LOCK_TIMEOUT", "10001", false, 5000, 3000, 31},
      {"LOCK_TIMEOUT", "-7000", false, 5000, 3000, 31},
      {"Flush_TimeOut", "10000", false, 5000, 10000, 31},
      {"Flush_TimeOut", "20000", false, 5000, 3000, 31},
      {"DB_CACHESIZE", "-5", false, 5000, 3000, 7},
      {"DB_CACHESIZE", "2147483647", false, 5000, 3000, 2147483647},
      {"DB_CACHESIZE", "", true, 5000, 3000, 19},
      {"DB_CACHESIZE", "300", true, 5000, 3000, 255},
      {"DB_CACHESIZE", "3", true, 5000, 3000, 7},
  };
  for (const Case& c : cases) {
    const KernelSettings settings =
        Read({{c.key, c.value}, {"CLASSIC_CACHE_ENABLED", c.classic ? "1" : "0"}});
    EXPECT_EQ(settings.lock_timeout_ms, c.lock) << c.key << "=" << c.value;
    EXPECT_EQ(settings.flush_timeout_ms, c.flush) << c.key << "=" << c.value;
    EXPECT_EQ(settings.db_cache_size, c.cache) << c.key << "=" << c.value;
  }
  for (const char* garbage : {"", "abc", "12abc", "0x10", "1.5", "99999999999", "--3"}) {
    EXPECT_EQ(Read({{"LOCK_TIMEOUT", garbage},
                    {"Flush_TimeOut", garbage},
                    {"CLASSIC_CACHE_ENABLED", garbage},
                    {"DB_CACHESIZE", garbage},
                    {"CACHE_DOWRITEBYRELEASE", garbage},
                    {"CACHE_DOMONITORING", garbage},
                    {"CCD_ENABLED", garbage}}),
              KernelSettings{})
        << garbage;
  }
}

TEST(KernelSettings, ApplyingConfiguresTheCacheAndTheCurrentSettings) {
  const KernelSettings saved_settings = CurrentKernelSettings();
  const CacheSettings saved_cache = BlockCache::Instance().settings();
  const KernelSettings settings = Read({{"CLASSIC_CACHE_ENABLED", "1"},
                                        {"DB_CACHESIZE", "40"},
                                        {"CACHE_DOWRITEBYRELEASE", "1"},
                                        {"CACHE_DOMONITORING", "1"},
                                        {"CACHE_MONITORINGFILE", "C:\\Temp\\Cache"},
                                        {"LOCK_TIMEOUT", "800"},
                                        {"CCD_ENABLED", "1"}});
  EXPECT_TRUE(settings.ccd_enabled);
  ApplyKernelSettings(settings);
  const CacheSettings& cache = BlockCache::Instance().settings();
  EXPECT_EQ(cache.kind, CacheKind::kClassic);
  EXPECT_TRUE(cache.write_by_release);
  EXPECT_TRUE(cache.monitoring);
  EXPECT_EQ(cache.monitoring_file, "C:\\Temp\\Cache");
  EXPECT_EQ(CurrentKernelSettings(), settings);
  EXPECT_EQ(KeyFileCacheBlocks(), 40);

  ApplyKernelSettings(Read({}));
  EXPECT_EQ(BlockCache::Instance().settings().kind, CacheKind::kRandomAccess);
  EXPECT_FALSE(BlockCache::Instance().settings().monitoring);
  EXPECT_EQ(KeyFileCacheBlocks(), 31);
  ApplyKernelSettings(saved_settings);
  BlockCache::Instance().Configure(saved_cache);
}

}  // namespace
}  // namespace korvan::storage
