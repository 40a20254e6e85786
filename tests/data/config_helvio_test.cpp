#include <gtest/gtest.h>

#include "config_test_support.h"
#include "data/helvio_ini.h"
#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

using testing::WriteBytes;

TEST(HelvioIni, ReadsKernelSettingsAndRegenCheck) {
  korvan::testing::TempDir dir;
  // No file: every default.
  const THelvioIni missing = THelvioIni::Load(THelvioIni::FindIn(dir.path()));
  EXPECT_EQ(missing.KernelSettings(), storage::KernelSettings{});
  EXPECT_TRUE(missing.RegenCheck());
  EXPECT_TRUE(missing.Warnings().empty());

  WriteBytes(dir.File("HELVIO.INI"),
             "[dbkernel]\r\n"
             "LOCK_TIMEOUT=7000\r\n"
             "flush_timeout=1200\r\n"
             "CLASSIC_CACHE_ENABLED=1\r\n"
             "DB_CACHESIZE=40\r\n"
             "CACHE_MONITORINGFILE=C:\\Temp\\Cache.txt\r\n"
             "CCD_ENABLED=1\r\n"
             "[DEFAULTINFO]\r\n"
             "REGEN_CHECK=0\r\n");
  EXPECT_EQ(THelvioIni::FindIn(dir.path()), dir.path() / "HELVIO.INI");
  const THelvioIni helvio = THelvioIni::Load(THelvioIni::FindIn(dir.path()));
  const storage::KernelSettings settings = helvio.KernelSettings();
  EXPECT_EQ(settings.lock_timeout_ms, 7000);
  EXPECT_EQ(settings.flush_timeout_ms, 1200);
  EXPECT_TRUE(settings.classic_cache_enabled);
  EXPECT_EQ(settings.db_cache_size, 40);
  EXPECT_EQ(settings.cache_monitoring_file, "C:\\Temp\\Cache.txt");
  EXPECT_TRUE(settings.ccd_enabled);
  EXPECT_FALSE(helvio.RegenCheck());
  // The lookup stays valid after the object is gone.
  const auto lookup = THelvioIni::Load(dir.File("HELVIO.INI")).KernelSettingLookup();
  EXPECT_EQ(lookup("Lock_Timeout"), "7000");
  EXPECT_EQ(lookup("NOT_THERE"), std::nullopt);
}

TEST(HelvioIni, InvalidValuesFallBackToTheirDefaults) {
  korvan::testing::TempDir dir;
  WriteBytes(dir.File("Helvio.ini"),
             "[DBKERNEL]\n"
             "LOCK_TIMEOUT=100\n"
             "Flush_TimeOut=schnell\n"
             "CLASSIC_CACHE_ENABLED=ja\n"
             "DB_CACHESIZE=3\n"
             "CACHE_DOWRITEBYRELEASE=\n"
             "kaputt\n"
             "[DEFAULTINFO]\n"
             "REGEN_CHECK=vielleicht\n");
  const THelvioIni helvio = THelvioIni::Load(dir.File("Helvio.ini"));
  const storage::KernelSettings settings = helvio.KernelSettings();
  const storage::KernelSettings defaults;
  EXPECT_EQ(settings.lock_timeout_ms, defaults.lock_timeout_ms);
  EXPECT_EQ(settings.flush_timeout_ms, defaults.flush_timeout_ms);
  EXPECT_EQ(settings.classic_cache_enabled, defaults.classic_cache_enabled);
  EXPECT_GE(settings.db_cache_size, storage::kMinCacheBlocks);
  EXPECT_EQ(settings.cache_do_write_by_release, defaults.cache_do_write_by_release);
  EXPECT_TRUE(helvio.RegenCheck());
  ASSERT_EQ(helvio.Warnings().size(), 2u);
  EXPECT_EQ(helvio.Warnings()[0].ToString(),
            "Helvio.ini, Zeile 7: Zeile ohne \"=\" wird übergangen");
  EXPECT_EQ(helvio.Warnings()[1].line, 9);
}

}  // namespace
}  // namespace korvan::data
