#include <gtest/gtest.h>

#include <set>

#include "db_kernel_fixture.h"
#include "storage/data_file_banner.h"
#include "storage/db_kernel.h"

namespace korvan::storage::testing {
namespace {

using DbKernelBanner = DbKernelTest;

const int kLegacyCodes[] = {4344, 4343, 4342, 4341, 4340, 4338, 4331, 4303, 4312, 4311};

TEST_F(DbKernelBanner, LegacyBannersFollowTheirShape) {
  const std::string prefix("3DB \xA9", 5);
  std::set<std::string> distinct;
  for (int code : kLegacyCodes) {
    const auto banner = BannerForFormat(code);
    const std::string text(banner.begin(), banner.end());
    ASSERT_FALSE(text.empty()) << code;
    EXPECT_LE(text.size(), 80u);
    EXPECT_EQ(text[0], '3') << code;
    distinct.insert(text);
    if (code == 4344) {
      EXPECT_EQ(text, prefix + " 2018 Torvelin AG  " + std::string(1, '\0'));
      continue;
    }
    EXPECT_EQ(text.back(), '\x1A') << code;
    EXPECT_NE(text.substr(0, 5), prefix) << code;
    if (code >= 4340 && code <= 4343) {
      EXPECT_TRUE(text.size() == 52 || text.size() == 53) << code;
      EXPECT_EQ(text[text.size() - 2], ' ') << code;
      EXPECT_NE(text.find(std::to_string(2011 + (code == 4341) * 2 + (code == 4342) * 3 +
                                         (code == 4343) * 5)),
                std::string::npos)
          << code;
    }
  }
  EXPECT_EQ(distinct.size(), std::size(kLegacyCodes));
  const auto current = BannerForFormat(4345);
  EXPECT_EQ(std::string(current.begin(), current.end()), prefix + " 2023 Torvelin AG  ");
  EXPECT_TRUE(BannerForFormat(4310).empty());
}

TEST_F(DbKernelBanner, CheckFileReportsEveryFormat) {
  const int handle = Create("db");
  ASSERT_EQ(iDK_DbClose(handle), 0);
  EXPECT_EQ(iDK_DbCheckFile('T', DataFile("db")), 4345);
  for (int code : kLegacyCodes) {
    ASSERT_EQ(iDK_DbWriteBanner(DataFile("db"), code), 0);
    // The 2018 banner starts with the current prefix and is taken as current.
    EXPECT_EQ(iDK_DbCheckFile('T', DataFile("db")), code == 4344 ? 4345 : code) << code;
  }
  EXPECT_EQ(iDK_DbWriteBanner(DataFile("db"), 4310), 4310);
  EXPECT_EQ(iDK_DbWriteBanner(DataFile("none"), 4311), 4307);

  auto bytes = FileBytes(DataFile("db"));
  bytes[0] = '4';
  WriteFileBytes(DataFile("db"), bytes);
  EXPECT_EQ(iDK_DbCheckFile('T', DataFile("db")), 4310);
  bytes.resize(79);
  WriteFileBytes(DataFile("db"), bytes);
  EXPECT_EQ(iDK_DbCheckFile('T', DataFile("db")), 4320);
  EXPECT_EQ(iDK_DbCheckFile('T', DataFile("missing")), 4307);
}

TEST_F(DbKernelBanner, LibraryFilesOfTypeG) {
  const auto banner = LibraryBanner();
  std::vector<uint8_t> bytes(banner.begin(), banner.end());
  ASSERT_EQ(std::string(bytes.begin(), bytes.begin() + 9), "3Daten un");
  EXPECT_EQ(bytes.back(), 0x1A);
  WriteFileBytes(dir_.File("lib"), bytes);
  EXPECT_EQ(iDK_DbCheckFile('G', dir_.File("lib")), 0);
  bytes[8] = 'X';
  WriteFileBytes(dir_.File("lib"), bytes);
  EXPECT_EQ(iDK_DbCheckFile('G', dir_.File("lib")), 4309);
  bytes.resize(20);
  WriteFileBytes(dir_.File("lib"), bytes);
  EXPECT_EQ(iDK_DbCheckFile('G', dir_.File("lib")), 4320);
  // A current data file is no library.
  const int handle = Create("db");
  ASSERT_EQ(iDK_DbClose(handle), 0);
  EXPECT_EQ(iDK_DbCheckFile('G', DataFile("db")), 4309);
}

}  // namespace
}  // namespace korvan::storage::testing
