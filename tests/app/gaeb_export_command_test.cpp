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

TEST_F(GaebExportCommand, EveryPhaseAndVersionAndTheDefaultName) {
  for (const std::string phase : {"82", "84", "85", "86"}) {
    const std::string file = dir_.File("rohbau.X" + phase);
    const ProgramResult result = Korvan({"gaeb", "export", "Rohbau", "--phase", phase, "-o", file});
    if (phase == "86") {
      EXPECT_TRUE(testing::Contains(result.err, "Warnung: Die Anschrift des Auftraggebers"))
          << result.err;
    }
    ExpectNoFindings(file);
  }
  for (const std::string version : {"3.1", "3.2"}) {
    const std::string file = dir_.File("rohbau" + version + ".X82");
    Korvan({"gaeb", "export", "Rohbau", "--phase", "82", "--version", version, "--prices", "award",
            "-o", file},
           0, {"GAEB DA XML " + version});
    testing::ExpectKorvan({"gaeb", "check", file}, 0,
                          {"GAEB DA XML " + version + ", Phase 82", "Fehler: 0"});
  }
  // Without -o: "<project>_<LV>.X81" in the current folder.
  const ProgramResult result = Korvan({"gaeb", "export", "Rohbau", "--phase", "81", "--json"});
  const size_t start = result.out.find("\"file\": \"") + 9;
  const std::string file = result.out.substr(start, result.out.find('"', start) - start);
  EXPECT_EQ(fs::path(file).extension(), ".X81");
  EXPECT_TRUE(testing::Contains(file, "_Rohbau")) << file;
  EXPECT_TRUE(testing::Contains(result.out, "\"phase\": 81, \"version\": \"3.3\", \"entries\": 6"))
      << result.out;
  ExpectNoFindings(file);
  fs::remove(file);
}

}  // namespace
}  // namespace korvan::app
