#include <gtest/gtest.h>

#include "data/config/config_test_support.h"
#include "data/config/helvio_ini.h"
#include "testing/files.h"
#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

TEST(HelvioIni, ReadsKernelSettingsAndFallsBackOnBadValues) {
  korvan::testing::TempDir dir;
  const THelvioIni missing = THelvioIni::Load(THelvioIni::FindIn(dir.path()));
  EXPECT_EQ(missing.KernelSettings(), storage::KernelSettings{});
  EXPECT_TRUE(missing.RegenCheck());

  korvan::testing::WriteFile(dir.File("HELVIO.INI"),
                             "[dbkernel]\r\nLOCK_TIMEOUT=7000\r\nflush_timeout=1200\r\n"
                             "CLASSIC_CACHE_ENABLED=1\r\nDB_CACHESIZE=40\r\n"
                             "CACHE_MONITORINGFILE=C:\\Temp\\Cache.txt\r\nCCD_ENABLED=1\r\n"
                             "[DEFAULTINFO]\r\nREGEN_CHECK=0\r\n");
  EXPECT_EQ(THelvioIni::FindIn(dir.path()), dir.path() / "HELVIO.INI");
  const THelvioIni helvio = THelvioIni::Load(THelvioIni::FindIn(dir.path()));
  storage::KernelSettings expected;
  expected.lock_timeout_ms = 7000;
  expected.flush_timeout_ms = 1200;
  expected.classic_cache_enabled = expected.ccd_enabled = true;
  expected.db_cache_size = 40;
  expected.cache_monitoring_file = "C:\\Temp\\Cache.txt";
  EXPECT_EQ(helvio.KernelSettings(), expected);
  EXPECT_FALSE(helvio.RegenCheck());
  // The lookup stays valid after the object is gone.
  const auto lookup = THelvioIni::Load(dir.File("HELVIO.INI")).KernelSettingLookup();
  EXPECT_EQ(lookup("Lock_Timeout"), "7000");
  EXPECT_EQ(lookup("NOT_THERE"), std::nullopt);

  korvan::testing::WriteFile(
      dir.File("Helvio.ini"),
      "[DBKERNEL]\nLOCK_TIMEOUT=100\nFlush_TimeOut=schnell\n"
      "CLASSIC_CACHE_ENABLED=ja\nDB_CACHESIZE=3\nCACHE_DOWRITEBYRELEASE=\nkaputt\n"
      "[DEFAULTINFO]\nREGEN_CHECK=vielleicht\n");
  const THelvioIni bad = THelvioIni::Load(dir.File("Helvio.ini"));
  storage::KernelSettings defaults;
  EXPECT_GE(bad.KernelSettings().db_cache_size, storage::kMinCacheBlocks);
  defaults.db_cache_size = bad.KernelSettings().db_cache_size;
  EXPECT_EQ(bad.KernelSettings(), defaults);
  EXPECT_TRUE(bad.RegenCheck());
  ASSERT_EQ(bad.Warnings().size(), 2u);
  EXPECT_EQ(bad.Warnings()[0].ToString(), "Helvio.ini, Zeile 7: Zeile ohne \"=\" wird übergangen");
  EXPECT_EQ(bad.Warnings()[1].line, 9);
}

}  // namespace
}  // namespace korvan::data
