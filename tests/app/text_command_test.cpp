// `korvan text to-rtf` and `korvan text to-plain`: the converter on its own.
#include <gtest/gtest.h>

#include <string>

#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

using testing::ExpectKorvan;
using testing::ProgramResult;
using testing::WriteFile;

TEST(TextCommand, PlainTextThroughRtfAndBackIsUnchanged) {
  testing::TempDir dir;
  const std::string plain =
      "Stahlbetonwand C25/30, Dicke ..\n\tÄußere Schalung glatt – 12,50 € je m²\nΩ 😀 ÿ\n";
  WriteFile(dir.File("lang.txt"), plain);
  const ProgramResult rtf = ExpectKorvan({"text", "to-rtf", dir.File("lang.txt")}, 0, {"{\\rtf1"});
  EXPECT_TRUE(rtf.err.empty()) << rtf.err;
  WriteFile(dir.File("lang.rtf"), rtf.out);
  const ProgramResult back = ExpectKorvan({"text", "to-plain", dir.File("lang.rtf")}, 0);
  EXPECT_EQ(back.out, plain);
  EXPECT_TRUE(back.err.empty()) << back.err;
}

TEST(TextCommand, GapMarkersBecomeComplementsOnRequest) {
  testing::TempDir dir;
  WriteFile(dir.File("luecken.txt"), "Dicke XX cm, Farbe variabel");
  const ProgramResult rtf =
      ExpectKorvan({"text", "to-rtf", "--luecken", dir.File("luecken.txt")}, 0, {"\\'ff\\'ff"});
  WriteFile(dir.File("luecken.rtf"), rtf.out);
  ExpectKorvan({"text", "to-plain", dir.File("luecken.rtf")}, 0, {"Dicke .. cm, Farbe .."});
}

TEST(TextCommand, ProblemsAndWrongInputNameFileAndPosition) {
  testing::TempDir dir;
  WriteFile(dir.File("kaputt.rtf"), "{\\rtf1 A\\'zz\nB");
  const ProgramResult damaged = ExpectKorvan({"text", "to-plain", dir.File("kaputt.rtf")}, 0);
  EXPECT_EQ(damaged.out, "AzzB");
  EXPECT_TRUE(testing::Contains(damaged.err, dir.File("kaputt.rtf") + ": Byte 8 (Zeile 1)"))
      << damaged.err;
  EXPECT_TRUE(testing::Contains(damaged.err, "nicht geschlossen")) << damaged.err;

  WriteFile(dir.File("kein.rtf"), "Nur Text");
  ExpectKorvan({"text", "to-plain", dir.File("kein.rtf")}, 1,
               {dir.File("kein.rtf") + ": Byte 0 (Zeile 1): keine RTF-Datei"});
  WriteFile(dir.File("latin1.txt"),
            "Zeile 1\nGr\xF6\xDF"
            "e");
  const ProgramResult latin1 = ExpectKorvan({"text", "to-rtf", dir.File("latin1.txt")}, 1,
                                            {dir.File("latin1.txt") + ": Byte 10 (Zeile 2)"});
  EXPECT_TRUE(latin1.out.empty());
  ExpectKorvan({"text", "to-plain", dir.File("fehlt.rtf")}, 1, {"fehlt.rtf"});
}

}  // namespace
}  // namespace korvan
