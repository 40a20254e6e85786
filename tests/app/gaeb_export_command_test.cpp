// `korvan gaeb export`: an LV built with `korvan lv add` written as GAEB DA XML of every
// phase, checked by `korvan gaeb check`; the default file name; wrong calls.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "exchange/gaeb_xml/gaeb_test_files.h"
#include "gaeb_lv_fixture.h"
#include "testing/run_korvan.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;
using testing::ProgramResult;

class GaebExportCommand : public GaebLvFixture {
 protected:
  // `korvan gaeb check` of a written file, against the schemas when they are here.
  void ExpectNoFindings(const std::string& file) {
    std::vector<std::string> args = {"gaeb", "check", file};
    const fs::path schemas = exchange::gaeb_xml::testing::SchemaDir();
    if (!schemas.empty()) args.insert(args.end(), {"--schemas", schemas.string()});
    testing::ExpectKorvan(args, 0, {"Fehler: 0, Warnungen: 0"});
  }
};

TEST_F(GaebExportCommand, AnLvBuiltOnTheCommandLineIsAnX83WithoutFindingsWrongCallsAreNot) {
  const std::string file = dir_.File("rohbau.X83");
  const ProgramResult result = Korvan({"gaeb", "export", "Rohbau", "--phase", "83", "-o", file}, 0,
                                      {"als GAEB DA XML 3.3, Phase 83 - Angebotsaufforderung, mit "
                                       "6 Einträgen geschrieben: " +
                                       file});
  EXPECT_TRUE(result.err.empty()) << result.err;
  ExpectNoFindings(file);

  const std::string other = dir_.File("x.X83");
  Korvan({"gaeb", "export", "Rohbau", "--phase", "87", "-o", other}, 2, {"erwartet 81 bis 86"});
  Korvan({"gaeb", "export", "Rohbau", "--phase", "83", "--version", "3.4", "-o", other}, 2,
         {"erwartet 3.1, 3.2 oder 3.3"});
  Korvan({"gaeb", "export", "Rohbau", "--phase", "83", "--prices", "estimate", "-o", other}, 2,
         {"enthält keine Preise"});
  Korvan({"gaeb", "export", "Rohbau", "--phase", "86", "--prices", "billing", "-o", other}, 1,
         {"keine Abrechnungspreise"});
  Korvan({"gaeb", "export", "Keller", "--phase", "83", "-o", other}, 1, {"Keller"});
  EXPECT_FALSE(fs::exists(other));
}

TEST_F(GaebExportCommand, AnotherVersionAndTheDefaultName) {
  // Every phase and version is the exchange suite's; here the version option reaches it.
  const std::string file = dir_.File("rohbau3.2.X82");
  Korvan({"gaeb", "export", "Rohbau", "--phase", "82", "--version", "3.2", "--prices", "award",
          "-o", file},
         0, {"GAEB DA XML 3.2"});
  testing::ExpectKorvan({"gaeb", "check", file}, 0, {"GAEB DA XML 3.2, Phase 82", "Fehler: 0"});
  // Without -o: "<project>_<LV>.X81" in the current folder.
  const ProgramResult result = Korvan({"gaeb", "export", "Rohbau", "--phase", "81", "--json"});
  const size_t start = result.out.find("\"file\": \"") + 9;
  const std::string named = result.out.substr(start, result.out.find('"', start) - start);
  EXPECT_EQ(fs::path(named).extension(), ".X81");
  EXPECT_TRUE(testing::Contains(named, "_Rohbau")) << named;
  EXPECT_TRUE(testing::Contains(result.out, "\"phase\": 81, \"version\": \"3.3\", \"entries\": 6"))
      << result.out;
  ExpectNoFindings(named);
  fs::remove(named);
}

}  // namespace
}  // namespace korvan::app
