// `korvan gaeb check`: findings with lines, exit codes, the JSON answer.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ExpectKorvan;
using testing::ProgramResult;

// The shared GAEB folder: $KORVAN_GAEB_DIR when set, else ../shared/gaeb beside the
// repository.
fs::path GaebDir() {
  const char* from_environment = std::getenv("KORVAN_GAEB_DIR");
  return from_environment != nullptr ? fs::path(from_environment) : fs::path(KORVAN_GAEB_DIR);
}

void WriteFile(const std::string& path, const std::string& content) {
  std::ofstream(path, std::ios::binary) << content;
}

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

TEST(GaebCheckCommand, ArithmeticErrorsNameTheLineAndFail) {
  testing::TempDir dir;
  WriteFile(dir.File("lv.X86"), kPricedLv);
  const ProgramResult result = ExpectKorvan(
      {"gaeb", "check", dir.File("lv.X86")}, 1,
      {dir.File("lv.X86") + ": GAEB DA XML 3.3, Phase 86",
       dir.File("lv.X86") + ":13: Fehler: Item I1 (RNoPart 0010): IT 100.00 ist nicht Menge × "
                            "Einheitspreis = 120.00",
       "Fehler: 1, Warnungen: 0, Hinweise: 0, Struktur: 0, Schema nicht geprüft"});
  EXPECT_TRUE(result.err.empty()) << result.err;
}

TEST(GaebCheckCommand, JsonListsFindingsWithKindAndLine) {
  testing::TempDir dir;
  WriteFile(dir.File("lv.X86"), kPricedLv);
  const ProgramResult result = ExpectKorvan({"gaeb", "check", "--json", dir.File("lv.X86")}, 1);
  EXPECT_TRUE(Contains(result.out,
                       "\"version\":\"3.3\",\"phase\":86,\"schema\":null,"
                       "\"counts\":{\"error\":1,\"warning\":0,\"hint\":0,"
                       "\"structure\":0},\"findings\":[{\"kind\":\"error\","
                       "\"line\":13,\"message\":\"Item I1"))
      << result.out;
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
  const fs::path samples = GaebDir() / "samples";
  const fs::path schemas = GaebDir() / "xsd-3.3";
  if (!fs::is_directory(samples) || !fs::is_directory(schemas)) {
    GTEST_SKIP() << "the GAEB samples and schemas are not here (../shared/gaeb beside the "
                    "repository)";
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
