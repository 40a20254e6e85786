// `korvan oz format` and `korvan oz mask`: numbering checks without a project.
#include <gtest/gtest.h>

#include "testing/run_korvan.h"

namespace korvan::app {
namespace {

using testing::ExpectKorvan;

TEST(OzCommands, FormatWidensEachPartToTheMask) {
  EXPECT_EQ(ExpectKorvan({"oz", "format", "11.22.PPPP", "1.2.30"}, 0).out, "01.02.0030\n");
  EXPECT_EQ(ExpectKorvan({"oz", "format", "11.22.PPPP", "1.2"}, 0).out, "01.02\n");
  EXPECT_EQ(ExpectKorvan({"oz", "format", "11.22.PPPP", "1,2.30"}, 0).out, "1?2.30\n");
  EXPECT_EQ(ExpectKorvan({"oz", "format", "11.22.PPPP", "1.2.30.?"}, 0).out, "01.02.0030.?\n");
}

TEST(OzCommands, MaskShowsItsFieldsAndLevels) {
  EXPECT_EQ(
      ExpectKorvan({"oz", "mask", "11.22.PPPP.I", "--json"}, 0).out,
      "{\"mask\": \"11.22.PPPP.I\", \"max_len\": 12, \"indexed\": true, \"max_level\": 3, "
      "\"begin_pos_index\": 7, \"end_pos_index\": 10, \"levels\": ["
      "{\"level\": 1, \"length\": 2, \"label\": \"Hierarchiestufe 1\", \"type\": \"LVStufe\"}, "
      "{\"level\": 2, \"length\": 2, \"label\": \"Hierarchiestufe 2\", \"type\": \"LVStufe\"}, "
      "{\"level\": 6, \"length\": 4, \"label\": \"Teilleistung\", \"type\": \"Position\"}]}\n");
  ExpectKorvan({"oz", "mask", "1.PPP"}, 0, {"Stufen:           2", "Teilleistung"});
}

TEST(OzCommands, MaskThatNoLvCouldHoldIsRefused) {
  ExpectKorvan({"oz", "mask", "11.22.33.44.55.PPPPPPP"}, 2, {"länger als 20 Zeichen"});
  ExpectKorvan({"oz", "format", "", "1.2"}, 2, {"OZ-Maske ist leer"});
}

}  // namespace
}  // namespace korvan::app
