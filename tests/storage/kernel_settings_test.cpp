#include "storage/kernel_settings.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "storage/block_cache.h"

namespace korvan::storage {
namespace {

using Section = std::map<std::string, std::string, std::less<>>;

KernelSettings Read(const Section& section, std::vector<std::string>* asked = nullptr) {
  return ReadKernelSettings([&](std::string_view key) -> std::optional<std::string> {
    if (asked != nullptr) asked->emplace_back(key);
    const auto it = section.find(key);
    if (it == section.end()) return std::nullopt;
    return it->second;
  });
}

TEST(KernelSettings, DefaultsAndReadingOrder) {
  std::vector<std::string> asked;
  const KernelSettings settings = Read({}, &asked);
  EXPECT_EQ(settings.lock_timeout_ms, 5000);
  EXPECT_EQ(settings.flush_timeout_ms, 3000);
  EXPECT_FALSE(settings.classic_cache_enabled);
  EXPECT_EQ(settings.db_cache_size, 31);
  EXPECT_FALSE(settings.cache_do_write_by_release);
  EXPECT_FALSE(settings.cache_do_monitoring);
  EXPECT_EQ(settings.cache_monitoring_file, "");
  EXPECT_FALSE(settings.ccd_enabled);
  const std::vector<std::string> order = {
      "LOCK_TIMEOUT",           "Flush_TimeOut",      "CLASSIC_CACHE_ENABLED", "DB_CACHESIZE",
      "CACHE_DOWRITEBYRELEASE", "CACHE_DOMONITORING", "CACHE_MONITORINGFILE",  "CCD_ENABLED"};
  EXPECT_EQ(asked, order);

  EXPECT_EQ(Read({{"CLASSIC_CACHE_ENABLED", "1"}}).db_cache_size, 19);
}

TEST(KernelSettings, TimeoutsOutsideTheirRangeFallBackToTheDefault) {
  EXPECT_EQ(Read({{"LOCK_TIMEOUT", "100"}}).lock_timeout_ms, 5000);
  EXPECT_EQ(Read({{"LOCK_TIMEOUT", "499"}}).lock_timeout_ms, 5000);
  EXPECT_EQ(Read({{"LOCK_TIMEOUT", "500"}}).lock_timeout_ms, 500);
  EXPECT_EQ(Read({{"LOCK_TIMEOUT", "10000"}}).lock_timeout_ms, 10000);
  EXPECT_EQ(Read({{"LOCK_TIMEOUT", "10001"}}).lock_timeout_ms, 5000);
  EXPECT_EQ(Read({{"LOCK_TIMEOUT", "-7000"}}).lock_timeout_ms, 5000);
  EXPECT_EQ(Read({{"LOCK_TIMEOUT", " 7500 "}}).lock_timeout_ms, 7500);

  EXPECT_EQ(Read({{"Flush_TimeOut", "100"}}).flush_timeout_ms, 3000);
  EXPECT_EQ(Read({{"Flush_TimeOut", "500"}}).flush_timeout_ms, 500);
  EXPECT_EQ(Read({{"Flush_TimeOut", "10000"}}).flush_timeout_ms, 10000);
  EXPECT_EQ(Read({{"Flush_TimeOut", "20000"}}).flush_timeout_ms, 3000);
}

TEST(KernelSettings, CacheSizeIsClampedPerCacheKind) {
  EXPECT_EQ(Read({{"DB_CACHESIZE", "3"}}).db_cache_size, 7);
  EXPECT_EQ(Read({{"DB_CACHESIZE", "-5"}}).db_cache_size, 7);
  EXPECT_EQ(Read({{"DB_CACHESIZE", "7"}}).db_cache_size, 7);
  EXPECT_EQ(Read({{"DB_CACHESIZE", "1024"}}).db_cache_size, 1024);
  EXPECT_EQ(Read({{"DB_CACHESIZE", "2147483647"}}).db_cache_size, 2147483647);
  EXPECT_EQ(Read({{"DB_CACHESIZE", "300"}, {"CLASSIC_CACHE_ENABLED", "1"}}).db_cache_size, 255);
  EXPECT_EQ(Read({{"DB_CACHESIZE", "255"}, {"CLASSIC_CACHE_ENABLED", "1"}}).db_cache_size, 255);
  EXPECT_EQ(Read({{"DB_CACHESIZE", "3"}, {"CLASSIC_CACHE_ENABLED", "1"}}).db_cache_size, 7);
}

TEST(KernelSettings, UnreadableValuesGiveTheDefault) {
  for (const char* garbage : {"", "abc", "12abc", "0x10", "1.5", "99999999999", "--3"}) {
    SCOPED_TRACE(garbage);
    const KernelSettings settings = Read({{"LOCK_TIMEOUT", garbage},
                                          {"Flush_TimeOut", garbage},
                                          {"CLASSIC_CACHE_ENABLED", garbage},
                                          {"DB_CACHESIZE", garbage},
                                          {"CACHE_DOWRITEBYRELEASE", garbage},
                                          {"CACHE_DOMONITORING", garbage},
                                          {"CCD_ENABLED", garbage}});
    EXPECT_EQ(settings, KernelSettings{});
  }
}

TEST(KernelSettings, BooleansAndTextAreTakenAsGiven) {
  const KernelSettings on = Read({{"CLASSIC_CACHE_ENABLED", "1"},
                                  {"CACHE_DOWRITEBYRELEASE", "1"},
                                  {"CACHE_DOMONITORING", "1"},
                                  {"CACHE_MONITORINGFILE", "C:\\Temp\\Cache"},
                                  {"CCD_ENABLED", "1"}});
  EXPECT_TRUE(on.classic_cache_enabled);
  EXPECT_TRUE(on.cache_do_write_by_release);
  EXPECT_TRUE(on.cache_do_monitoring);
  EXPECT_EQ(on.cache_monitoring_file, "C:\\Temp\\Cache");
  EXPECT_TRUE(on.ccd_enabled);

  const KernelSettings off = Read({{"CLASSIC_CACHE_ENABLED", "0"}, {"CCD_ENABLED", "0"}});
  EXPECT_FALSE(off.classic_cache_enabled);
  EXPECT_FALSE(off.ccd_enabled);
}

TEST(KernelSettings, ApplyingConfiguresTheCacheAndTheCurrentSettings) {
  const KernelSettings saved_settings = CurrentKernelSettings();
  const CacheSettings saved_cache = BlockCache::Instance().settings();

  const KernelSettings settings = Read({{"CLASSIC_CACHE_ENABLED", "1"},
                                        {"DB_CACHESIZE", "40"},
                                        {"CACHE_DOWRITEBYRELEASE", "1"},
                                        {"CACHE_DOMONITORING", "1"},
                                        {"CACHE_MONITORINGFILE", "stats"},
                                        {"LOCK_TIMEOUT", "800"},
                                        {"CCD_ENABLED", "1"}});
  ApplyKernelSettings(settings);
  const CacheSettings& cache = BlockCache::Instance().settings();
  EXPECT_EQ(cache.kind, CacheKind::kClassic);
  EXPECT_TRUE(cache.write_by_release);
  EXPECT_TRUE(cache.monitoring);
  EXPECT_EQ(cache.monitoring_file, "stats");
  EXPECT_EQ(CurrentKernelSettings(), settings);
  EXPECT_EQ(CurrentKernelSettings().lock_timeout_ms, 800);
  EXPECT_TRUE(CurrentKernelSettings().ccd_enabled);
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
