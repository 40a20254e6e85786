#include "data/component/clip_block.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

TEST(BlockFile, RoundTripKeepsEveryCharacterAndAFailedWriteLeavesNoFile) {
  korvan::testing::TempDir dir;
  const std::string path = dir.File(std::string(kBlockFileName));
  TBlockFile block;
  block.Origin = "C:\\Daten\\Projekt 1\\LV;4711";
  block.Info = "Währungen\t2 Zeilen\r\nzweite Zeile";
  block.Rows.push_back({"00000000042", 'P', 2, {"Größe", "a\\tb", "", "x\ty\nz\\"}});
  block.Rows.push_back({"", '\t', -1, {}});
  WriteBlockFile(path, block);
  const TBlockFile read = ReadBlockFile(path);
  EXPECT_EQ(read.Origin, block.Origin);
  EXPECT_EQ(read.Info, block.Info);
  ASSERT_EQ(read.Rows.size(), 2u);
  for (size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(read.Rows[i].Key, block.Rows[i].Key);
    EXPECT_EQ(read.Rows[i].ZArt, block.Rows[i].ZArt);
    EXPECT_EQ(read.Rows[i].Level, block.Rows[i].Level);
    EXPECT_EQ(read.Rows[i].Values, block.Rows[i].Values);
  }
  EXPECT_FALSE(std::filesystem::exists(path + ".tmp"));

  const std::string unwritable = dir.File("no such dir/BLOCK.BLK");
  EXPECT_THROW(WriteBlockFile(unwritable, block), EBlockFileError);
  EXPECT_FALSE(std::filesystem::exists(unwritable));
}

TEST(BlockFile, DamagedFilesNameFileAndLine) {
  korvan::testing::TempDir dir;
  const std::string path = dir.File("damaged.blk");
  const std::pair<std::string, std::string> cases[] = {
      {"", "Zeile 1: \"Origin=\" fehlt"},
      {"Info=x\r\n", "Zeile 1: \"Origin=\" erwartet"},
      {"Origin=a\nRows=1\n", "Zeile 2: \"Info=\" erwartet"},
      {"Origin=a\nInfo=b\nRows=zwei\n", "Zeile 3: ungültige Zeilenzahl"},
      {"Origin=a\nInfo=b\nRows=2\nk\tP\t0\n", "Zeile 5: Datenzeile fehlt"},
      {"Origin=a\nInfo=b\nRows=1\nk\tP\n", "Zeile 4: Datenzeile braucht"},
      {"Origin=a\nInfo=b\nRows=1\nk\tPP\t0\n", "Zeile 4: ungültige Zeilenart"},
      {"Origin=a\nInfo=b\nRows=1\nk\tP\teins\n", "Zeile 4: ungültige Ebene"},
      {"Origin=a\nInfo=b\nRows=1\nk\\q\tP\t0\n", "Zeile 4: unbekannte Escape-Folge"},
      {"Origin=a\\\nInfo=b\nRows=0\n", "Zeile 1: unvollständige Escape-Folge"},
      {"Origin=a\nInfo=b\nRows=0\nk\tP\t0\n", "Zeile 4: mehr Zeilen"},
  };
  for (const auto& [text, expected] : cases) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
    try {
      ReadBlockFile(path);
      ADD_FAILURE() << "accepted: " << text;
    } catch (const EBlockFileError& error) {
      const std::string message = error.what();
      EXPECT_NE(message.find(path), std::string::npos) << message;
      EXPECT_NE(message.find(expected), std::string::npos) << message;
    }
  }
  EXPECT_THROW(ReadBlockFile(dir.File("missing.blk")), EBlockFileError);
}

}  // namespace
}  // namespace korvan::data
