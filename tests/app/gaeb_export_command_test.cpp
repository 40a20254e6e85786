// `korvan gaeb export`: an LV built with `korvan lv add` written as GAEB DA XML of every
// phase, checked by `korvan gaeb check`; the default file name; wrong calls.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;
using testing::ProgramResult;

fs::path SchemaDir() {
  const char* from_environment = std::getenv("KORVAN_GAEB_DIR");
  const fs::path gaeb =
      from_environment != nullptr ? fs::path(from_environment) : fs::path(KORVAN_GAEB_DIR);
  return fs::is_directory(gaeb / "xsd-3.3") ? gaeb / "xsd-3.3" : fs::path();
}

class GaebExportCommand : public ::testing::Test {
 protected:
  void SetUp() override {
    Korvan({"demo"});
    Korvan({"lv", "new", "Rohbau", "--mask", "11.22.PPPP"});
    Korvan({"lv", "add", "Rohbau", "B", "--short", "Rohbau"});
    Korvan({"lv", "add", "Rohbau", "B", "--under", "01", "--short", "Erdarbeiten"});
    Korvan({"lv", "add", "Rohbau", "H", "--under", "01.01", "--short", "Hinweis"});
    Korvan({"lv", "add", "Rohbau", "P", "--under", "01.01", "--short", "Aushub", "--qty", "120",
            "--up", "12.5", "--unit", "m3"});
    Korvan({"lv", "add", "Rohbau", "L", "--under", "01.01", "--short", "Verfüllen & Verdichten",
            "--qty", "80", "--up", "9.99"});
    Korvan(
        {"lv", "add", "Rohbau", "U", "--under", "01.01", "--short", "lagenweise", "--qty", "40"});
  }
  ProgramResult Korvan(std::vector<std::string> args, int exit_code = 0,
                       const std::vector<std::string>& parts = {}) {
    args.insert(args.end(), {"-d", base_.string()});
    return testing::ExpectKorvan(args, exit_code, parts);
  }
  // `korvan gaeb check` of a written file, against the schemas when they are here.
  void ExpectNoFindings(const std::string& file) {
    std::vector<std::string> args = {"gaeb", "check", file};
    if (!SchemaDir().empty()) args.insert(args.end(), {"--schemas", SchemaDir().string()});
    testing::ExpectKorvan(args, 0, {"Fehler: 0, Warnungen: 0"});
  }

  korvan::testing::TempDir dir_;
  fs::path base_ = dir_.path() / "sample";
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
