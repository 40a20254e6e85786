// `korvan gaeb check`: findings with lines, exit codes, the JSON answer.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "exchange/gaeb_xml/gaeb_test_files.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

namespace fs = std::filesystem;
using testing::ExpectKorvan;
using testing::ProgramResult;
using testing::WriteFile;

const char* const kPricedLv = R"(<?xml version="1.0" encoding="UTF-8"?>
<GAEB xmlns="http://www.gaeb.de/GAEB_DA_XML/DA86/3.3">
  <GAEBInfo><Version>3.3</Version></GAEBInfo>
  <Award>
    <DP>86</DP>
    <BoQ ID="B1">
      <BoQInfo><Name>LV</Name><Totals><Total>100.00</Total></Totals></BoQInfo>
      <BoQBody>
        <Itemlist>
          <Item ID="I1" RNoPart="0010">
            <Qty>3.000</Qty>
            <UP>40.00</UP>
            <IT>100.00</IT>
          </Item>
        </Itemlist>
      </BoQBody>
    </BoQ>
  </Award>
</GAEB>
)";

TEST(GaebCheckCommand, ArithmeticErrorsNameTheLineAndFailAlsoAsJson) {
  testing::TempDir dir;
  WriteFile(dir.File("lv.X86"), kPricedLv);
  const ProgramResult result = ExpectKorvan(
      {"gaeb", "check", dir.File("lv.X86")}, 1,
      {dir.File("lv.X86") + ": GAEB DA XML 3.3, Phase 86",
       dir.File("lv.X86") + ":13: Fehler: Item I1 (RNoPart 0010): IT 100.00 ist nicht Menge × "
                            "Einheitspreis = 120.00",
       "Fehler: 1, Warnungen: 0, Hinweise: 0, Struktur: 0, Schema nicht geprüft"});
  EXPECT_TRUE(result.err.empty()) << result.err;
  ExpectKorvan({"gaeb", "check", "--json", dir.File("lv.X86")}, 1,
               {"\"version\":\"3.3\",\"phase\":86,\"schema\":null,"
                "\"counts\":{\"error\":1,\"warning\":0,\"hint\":0,"
                "\"structure\":0},\"findings\":[{\"kind\":\"error\","
                "\"line\":13,\"message\":\"Item I1"});
}

TEST(GaebCheckCommand, UnreadableFilesAndWrongCallsAreNamed) {
  testing::TempDir dir;
  WriteFile(dir.File("kaputt.x83"), "<GAEB>\n<Award>\n</GAEB>");
  ExpectKorvan({"gaeb", "check", dir.File("kaputt.x83")}, 1,
               {dir.File("kaputt.x83") + ":3: Fehler: XML nicht lesbar"});
  ExpectKorvan({"gaeb", "check", dir.File("fehlt.x83")}, 1, {"fehlt.x83"});
  ExpectKorvan({"gaeb", "check", dir.File("kaputt.x83"), "--schemas", dir.File("nicht-da")}, 2,
               {"kein Ordner"});
}

TEST(GaebCheckCommand, SamplesPassAndTheNonconformingOneFailsWithTheSchema) {
  const fs::path samples = exchange::gaeb_xml::testing::SampleDir();
  const fs::path schemas = exchange::gaeb_xml::testing::SchemaDir();
  if (samples.empty() || schemas.empty()) {
    GTEST_SKIP() << exchange::gaeb_xml::testing::kNoSamples << "; "
                 << exchange::gaeb_xml::testing::kNoSchemas;
  }
  ExpectKorvan({"gaeb", "check", (samples / "boq.x83").string(), "--schemas", schemas.string()}, 0,
               {"Fehler: 0", "Schema geprüft"});
  ExpectKorvan(
      {"gaeb", "check", (samples / "nonconforming.x83").string(), "--schemas", schemas.string()}, 1,
      {"Struktur: BoQInfo: Element Name fehlt", "Attribut ID fehlt",
       "Fehler: Schema: Element '{http://www.gaeb.de/GAEB_DA_XML/DA83/3.3}LblBoQ'"});
}

}  // namespace
}  // namespace korvan
