#include "data/db/file_size_check.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

// A sparse file of the given size: no disk space is used.
std::string SparseFile(const korvan::testing::TempDir& temp, const std::string& name,
                       uintmax_t size) {
  const std::string path = temp.File(name);
  std::ofstream{path};
  std::filesystem::resize_file(path, size);
  return path;
}

TEST(CheckFileSizes, WarnsAboveOneGigabyteAndAtTheHardLimit) {
  korvan::testing::TempDir temp;
  const std::string small = SparseFile(temp, "DB_Lv.QA0", 1073741823);
  const std::string at_limit = SparseFile(temp, "DB_Kat.QB0", 1073741824);
  const std::string one_and_a_half = SparseFile(temp, "DB_Texte.QC0", 1610612736);
  const std::string one_more = SparseFile(temp, "DB_Ris.QD0", 1610612737);

  std::vector<std::string> messages;
  EXPECT_TRUE(CheckFileSizes({small}, kFileSizeWarningLimit, messages));
  EXPECT_TRUE(messages.empty());
  EXPECT_FALSE(
      CheckFileSizes({small, at_limit, one_and_a_half, one_more}, kFileSizeWarningLimit, messages));
  ASSERT_EQ(messages.size(), 3u);
  EXPECT_EQ(messages[0], "Datei \"" + at_limit + "\" ist größer als 1 GB");
  EXPECT_EQ(messages[1], "Datei \"" + one_and_a_half + "\" ist größer als 1 GB");
  EXPECT_EQ(messages[2],
            "Datei \"" + one_more + "\" erreicht mit 1.500000 GB bald die max Größe von 2 GB");

  const std::string under = SparseFile(temp, "under.QA0", kFileSizeHardLimit - 1);
  const std::string full = SparseFile(temp, "full.QA0", kFileSizeHardLimit);
  messages.clear();
  EXPECT_FALSE(CheckFileSizes({under, full}, kFileSizeHardLimit, messages));
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_NE(messages[0].find("\"" + full + "\""), std::string::npos) << messages[0];
  EXPECT_EQ(messages[0].find("ist größer als 1 GB"), std::string::npos);
  EXPECT_EQ(messages[0].find("bald die max"), std::string::npos);
}

TEST(CheckFileSizes, SkipBitAndMissingFiles) {
  korvan::testing::TempDir temp;
  const std::string big = SparseFile(temp, "big.QA0", 1610612737);
  std::vector<std::string> messages;
  EXPECT_TRUE(CheckFileSizes({big}, kFileSizeWarningLimit, messages, kSkipFileSizeCheck | 0x1));
  EXPECT_TRUE(messages.empty());
  EXPECT_FALSE(CheckFileSizes({big}, kFileSizeWarningLimit, messages, 0x0FFF));
  EXPECT_EQ(messages.size(), 1u);

  messages.clear();
  EXPECT_TRUE(CheckFileSizes({temp.File("missing.QA0")}, kFileSizeWarningLimit, messages));
  EXPECT_TRUE(messages.empty());
}

}  // namespace
}  // namespace korvan::data
