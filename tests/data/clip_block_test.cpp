#include "data/clip_block.h"

#include <gtest/gtest.h>

#include <fstream>

#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

void WriteText(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

TEST(BlockFile, RoundTripKeepsEveryCharacter) {
  korvan::testing::TempDir dir;
  const std::string path = dir.File(std::string(kBlockFileName));
  TBlockFile block;
  block.Origin = "C:\\Daten\\Projekt 1\\LV;4711";
  block.Info = "Währungen\t2 Zeilen\r\nzweite Zeile";
  block.Rows.push_back({"00000000042", 'P', 2, {"Größe", "a\\tb", "", "x\ty\nz\\"}});
  block.Rows.push_back({"", '\t', -1, {}});
  WriteBlockFile(path, block);

  TBlockFile read = ReadBlockFile(path);
  EXPECT_EQ(read.Origin, block.Origin);
  EXPECT_EQ(read.Info, block.Info);
  ASSERT_EQ(read.Rows.size(), 2u);
  EXPECT_EQ(read.Rows[0].Key, "00000000042");
  EXPECT_EQ(read.Rows[0].ZArt, 'P');
  EXPECT_EQ(read.Rows[0].Level, 2);
  EXPECT_EQ(read.Rows[0].Values, block.Rows[0].Values);
  EXPECT_EQ(read.Rows[1].ZArt, '\t');
  EXPECT_EQ(read.Rows[1].Level, -1);
  EXPECT_TRUE(read.Rows[1].Values.empty());

  std::ifstream in(path);
  std::string first;
  std::getline(in, first);
  EXPECT_EQ(first, "Origin=C:\\\\Daten\\\\Projekt 1\\\\LV;4711\r");
  EXPECT_FALSE(std::filesystem::exists(path + ".tmp"));
}

TEST(BlockFile, DamagedFilesNameFileAndLine) {
  korvan::testing::TempDir dir;
  const std::string path = dir.File("damaged.blk");
  struct Case {
    std::string text;
    std::string expected;
  };
  const std::vector<Case> cases = {
      {"", "Zeile 1: \"Origin=\" fehlt"},
      {"Info=x\r\n", "Zeile 1: \"Origin=\" erwartet"},
      {"Origin=a\nRows=1\n", "Zeile 2: \"Info=\" erwartet"},
      {"Origin=a\nInfo=b\nRows=-1\n", "Zeile 3: ungültige Zeilenzahl"},
      {"Origin=a\nInfo=b\nRows=zwei\n", "Zeile 3: ungültige Zeilenzahl"},
      {"Origin=a\nInfo=b\nRows=2\nk\tP\t0\n", "Zeile 5: Datenzeile fehlt"},
      {"Origin=a\nInfo=b\nRows=1\nk\tP\n", "Zeile 4: Datenzeile braucht"},
      {"Origin=a\nInfo=b\nRows=1\nk\tPP\t0\n", "Zeile 4: ungültige Zeilenart"},
      {"Origin=a\nInfo=b\nRows=1\nk\tP\teins\n", "Zeile 4: ungültige Ebene"},
      {"Origin=a\nInfo=b\nRows=1\nk\\q\tP\t0\n", "Zeile 4: unbekannte Escape-Folge"},
      {"Origin=a\\\nInfo=b\nRows=0\n", "Zeile 1: unvollständige Escape-Folge"},
      {"Origin=a\nInfo=b\nRows=0\nk\tP\t0\n", "Zeile 4: mehr Zeilen"},
  };
  for (const Case& c : cases) {
    WriteText(path, c.text);
    try {
      ReadBlockFile(path);
      ADD_FAILURE() << "accepted: " << c.text;
    } catch (const EBlockFileError& error) {
      std::string message = error.what();
      EXPECT_NE(message.find(path), std::string::npos) << message;
      EXPECT_NE(message.find(c.expected), std::string::npos) << message;
    }
  }
  EXPECT_THROW(ReadBlockFile(dir.File("missing.blk")), EBlockFileError);
}

TEST(BlockFile, UnwritableTargetLeavesNoFile) {
  korvan::testing::TempDir dir;
  const std::string path = dir.File("no such dir/BLOCK.BLK");
  EXPECT_THROW(WriteBlockFile(path, TBlockFile{}), EBlockFileError);
  EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace
}  // namespace korvan::data
