#include <gtest/gtest.h>

#include <filesystem>

#include "storage/file/file_names.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

using testing::Contains;
using testing::RunKorvanBinary;

TEST(CommandLine, HelpAndVersion) {
  testing::ExpectKorvan({"--help"}, 0, {"demo"});
  testing::ExpectKorvan({"help", "demo"}, 0, {"--data"});
  EXPECT_EQ(testing::ExpectKorvan({"--version"}, 0).out.rfind("korvan ", 0), 0u);
}

// Words of the command-line library's own English texts that must not reach the user.
const char* const kEnglish[] = {"The following",   "is required",   "Expected",
                                "not in range",    "excludes",      "Usage",
                                "OPTIONS",         "SUBCOMMAND",    "Positionals",
                                "Options:",        "Subcommands:",  "Print this help",
                                "Display program", "show the help", "database type letter",
                                "only report"};

void ExpectGerman(const std::string& text, const std::string& call) {
  for (const char* english : kEnglish) {
    EXPECT_FALSE(Contains(text, english)) << call << ": \"" << english << "\" in\n" << text;
  }
}

// Help texts are German, as every answer to a wrong call below.
TEST(CommandLine, HelpTextsAreGerman) {
  ExpectGerman(testing::ExpectKorvan({"--help"}, 0, {"Aufruf", "Befehle"}).out, "--help");
  for (const char* command : {"demo", "db", "check", "list", "edit", "undo", "config"}) {
    ExpectGerman(testing::ExpectKorvan({"help", command}, 0, {"Aufruf"}).out, command);
  }
  ExpectGerman(testing::ExpectKorvan({"db", "create", "--help"}, 0, {"--keylen"}).out, "db create");
}

// Every wrong call exits with 2, names what was wrong (where there is a culprit) in
// German and changes nothing in the installation.
TEST(CommandLine, WrongCallsExitWithTwoNameTheCulpritAndChangeNothing) {
  testing::TempDir dir;
  const std::string base = testing::MakeInstallation(dir).string();
  const std::string stamm = base + "/STAMMDATEN/DB_Stamm.QE";
  const std::string db = dir.File("t");
  const auto before = testing::FileContents(base);
  struct Case {
    std::vector<std::string> args;
    std::vector<std::string> named;
  };
  const Case cases[] = {
      {{"frobnicate"}, {"frobnicate"}},
      {{"demo", "--bogus"}, {"--bogus", "nicht erwartet"}},
      {{"help", "frobnicate"}, {"frobnicate"}},
      {{"list"}, {"modul", "fehlt"}},
      {{"db"}, {"Unterbefehl", "create"}},
      {{"db", "frobnicate", db}, {"frobnicate", "create", "shell"}},
      {{"db", "info"}, {}},
      {{"db", "create", db, "--type", "TT", "--keylen", "20"}, {"TT"}},
      {{"db", "create", db, "--type", "T", "--keylen", "11"}, {"--keylen", "11"}},
      {{"db", "create", db, "--keylen", "20"}, {"--type", "fehlt"}},
      {{"db", "create", db, "--type"}, {"--type"}},
      {{"db", "dump", "--table", "WE", stamm}, {"WE"}},
      {{"init", "-d", dir.File("neu"), "--project", "../nebenan"}, {"../nebenan"}},
      {{"check", "-d", base, "--group", "DB_Gibtsnicht"}, {"DB_Gibtsnicht"}},
      {{"config", "-d", base}, {}},
      {{"config", "show", "--user", "--system", "-d", base}, {}},
      {{"config", "set", "-d", base, "Strings.OZFormat"}, {}},
      {{"config", "set", "-d", base, "OZFormat", "1.PPPP"}, {"<Abschnitt>.<Schlüssel>"}},
      {{"config", "set", "-d", base, "Numerics.Gibtsnicht", "1"},
       {"unbekannter Schlüssel \"Numerics.Gibtsnicht\""}},
      // The option narrows the search for the key to one file.
      {{"config", "set", "--user", "-d", base, "Strings.OZFormat", "1.PPPP"}, {"OZFormat"}},
      {{"list", "kunden", "-d", base}, {"\"kunden\""}},
      {{"edit", "kunden", "1", "Land=X", "-d", base}, {"\"kunden\""}},
      {{"edit", "waehrung", "99", "Land=X", "-d", base}, {"Zeile 99"}},
      {{"edit", "waehrung", "1", "Farbe=rot", "-d", base}, {"\"Farbe\""}},
      {{"edit", "waehrung", "1", "Faktor=viel", "-d", base}, {"\"Faktor\"", "Zahl"}},
      {{"edit", "waehrung", "1", "Symbol=EURO1", "-d", base},
       {"\"Symbol\"", "höchstens 4 Zeichen"}},
      {{"edit", "waehrung", "1", "kzBasis=vielleicht", "-d", base}, {"\"kzBasis\"", "J oder N"}},
      {{"edit", "einheit", "1", "Preisanteile=Z", "-d", base}, {"\"Preisanteile\"", "1 2 3 A B"}},
      {{"edit", "waehrung", "1", "Land", "-d", base}, {"\"Land\"", "Zuweisung"}},
      {{"undo", "--list", "--clear", "-d", base}, {"--list", "--clear"}},
      {{"redo", "--list", "-d", base}, {}},
  };
  for (const Case& c : cases) {
    const testing::ProgramResult result = RunKorvanBinary(c.args);
    const std::string call = c.args[0] + " " + (c.args.size() > 1 ? c.args[1] : "");
    EXPECT_EQ(result.exit_code, 2) << call << ": " << result.err;
    EXPECT_FALSE(result.err.empty()) << call;
    EXPECT_FALSE(testing::Crashed(result)) << call << ": " << result.err;
    EXPECT_TRUE(result.out.empty()) << call << ": " << result.out;
    ExpectGerman(result.err, call);
    for (const std::string& name : c.named) {
      EXPECT_TRUE(Contains(result.err, name)) << call << ": " << name << " in " << result.err;
    }
  }
  // A refused edit may leave an empty undo journal behind, but records no step.
  auto after = testing::FileContents(base);
  std::erase_if(after, [](const auto& entry) { return entry.first.ends_with(".QUJ"); });
  for (const auto& [path, content] : after) {
    EXPECT_TRUE(before.count(path) && before.at(path) == content) << path << " changed";
  }
  EXPECT_EQ(after.size(), before.size());
  testing::ExpectKorvan({"undo", "-d", base}, 1, {"Es gibt nichts rückgängig zu machen"});
  EXPECT_FALSE(std::filesystem::exists(storage::DataFileName(db)));
  EXPECT_FALSE(std::filesystem::exists(dir.File("neu")));
}

}  // namespace
}  // namespace korvan
