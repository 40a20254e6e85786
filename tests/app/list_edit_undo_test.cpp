// `korvan list`, `korvan edit`, `korvan undo` and `korvan redo` on a sample installation.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <sstream>
#include <string>

#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;
using testing::ProgramResult;
using testing::RunKorvanBinary;

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// The row number `korvan list` shows in front of the line that holds `text`; 0 if none.
int RowOf(const std::string& listing, const std::string& text) {
  std::istringstream lines(listing);
  std::string line;
  while (std::getline(lines, line)) {
    if (!Contains(line, text)) continue;
    std::istringstream fields(line);
    int row = 0;
    fields >> row;
    return row;
  }
  return 0;
}

// A table dump without the time of each record's last change, which every write stamps.
std::string WithoutTimeStamps(const std::string& dump) {
  static const std::regex stamp("LastModified: [^\t\n]*");
  return std::regex_replace(dump, stamp, "LastModified: -");
}

class ListEditUndo : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(RunKorvanBinary({"demo", "-d", base_.string()}).exit_code, 0); }
  ProgramResult Korvan(std::vector<std::string> args) {
    args.push_back("-d");
    args.push_back(base_.string());
    return RunKorvanBinary(args);
  }
  std::string DumpCurrencies() {
    const ProgramResult dump = RunKorvanBinary({"db", "dump", "--table", "W", stamm_});
    EXPECT_EQ(dump.exit_code, 0) << dump.err;
    return dump.out;
  }

  korvan::testing::TempDir dir_;
  fs::path base_ = dir_.path() / "sample";
  std::string stamm_ = (base_ / "STAMMDATEN/DB_Stamm.QE").string();
};

TEST_F(ListEditUndo, ListShowsRowsUnderGermanCaptions) {
  const ProgramResult currencies = Korvan({"list", "waehrung"});
  ASSERT_EQ(currencies.exit_code, 0) << currencies.err;
  const std::string header = currencies.out.substr(0, currencies.out.find('\n'));
  for (const char* caption :
       {"Zeile", "ID", "Land", "Währung", "Symbol", "Faktor", "Basiswährung", "Ländernummer"}) {
    EXPECT_TRUE(Contains(header, caption)) << caption << " in " << header;
  }
  EXPECT_GT(RowOf(currencies.out, "Schweizer Franken"), 0) << currencies.out;
  EXPECT_TRUE(Contains(currencies.out, "0,94")) << currencies.out;

  const ProgramResult units = Korvan({"list", "einheit"});
  ASSERT_EQ(units.exit_code, 0) << units.err;
  EXPECT_TRUE(Contains(units.out, "Bezeichnung")) << units.out;
  EXPECT_GT(RowOf(units.out, "Quadratmeter"), 0) << units.out;

  const ProgramResult unknown = Korvan({"list", "kunden"});
  EXPECT_EQ(unknown.exit_code, 2);
  EXPECT_TRUE(Contains(unknown.err, "\"kunden\"")) << unknown.err;
}

TEST_F(ListEditUndo, EditThenUndoRestoresTheRecordAndRedoMakesItAgain) {
  const int row = RowOf(Korvan({"list", "waehrung"}).out, "Schweizer Franken");
  ASSERT_GT(row, 0);
  const std::string before = DumpCurrencies();

  const ProgramResult edit =
      Korvan({"edit", "waehrung", std::to_string(row), "Faktor=0,97", "Währung=Franken"});
  ASSERT_EQ(edit.exit_code, 0) << edit.err;
  const std::string listing = Korvan({"list", "waehrung"}).out;
  EXPECT_EQ(RowOf(listing, "Franken"), row);
  EXPECT_FALSE(Contains(listing, "Schweizer Franken")) << listing;
  EXPECT_TRUE(Contains(listing, "0,97")) << listing;
  const std::string edited = DumpCurrencies();
  ASSERT_NE(WithoutTimeStamps(edited), WithoutTimeStamps(before));

  const ProgramResult undo = Korvan({"undo"});
  ASSERT_EQ(undo.exit_code, 0) << undo.err;
  EXPECT_EQ(WithoutTimeStamps(DumpCurrencies()), WithoutTimeStamps(before));

  const ProgramResult redo = Korvan({"redo"});
  ASSERT_EQ(redo.exit_code, 0) << redo.err;
  EXPECT_EQ(WithoutTimeStamps(DumpCurrencies()), WithoutTimeStamps(edited));
  ASSERT_EQ(Korvan({"undo"}).exit_code, 0);
  EXPECT_EQ(WithoutTimeStamps(DumpCurrencies()), WithoutTimeStamps(before));

  const ProgramResult nothing = Korvan({"undo"});
  EXPECT_EQ(nothing.exit_code, 1);
  EXPECT_TRUE(Contains(nothing.err, "nichts")) << nothing.err;
}

TEST_F(ListEditUndo, WrongEditsNameWhatWasWrongAndChangeNothing) {
  const std::string before = DumpCurrencies();
  struct Case {
    std::vector<std::string> args;
    std::vector<std::string> named;
  };
  const Case cases[] = {
      {{"edit", "kunden", "1", "Land=X"}, {"\"kunden\""}},
      {{"edit", "waehrung", "99", "Land=X"}, {"Zeile 99"}},
      {{"edit", "waehrung", "1", "Farbe=rot"}, {"\"Farbe\""}},
      {{"edit", "waehrung", "1", "Faktor=viel"}, {"\"Faktor\"", "Zahl"}},
      {{"edit", "waehrung", "1", "Symbol=EURO1"}, {"\"Symbol\"", "höchstens 4 Zeichen"}},
      {{"edit", "waehrung", "1", "kzBasis=vielleicht"}, {"\"kzBasis\"", "J oder N"}},
      {{"edit", "einheit", "1", "Preisanteile=Z"}, {"\"Preisanteile\"", "1 2 3 A B"}},
      {{"edit", "waehrung", "1", "Land"}, {"\"Land\"", "Zuweisung"}},
  };
  for (const Case& c : cases) {
    const ProgramResult result = Korvan(c.args);
    EXPECT_EQ(result.exit_code, 2) << c.args[3] << ": " << result.err;
    for (const std::string& name : c.named) {
      EXPECT_TRUE(Contains(result.err, name)) << name << " in " << result.err;
    }
  }
  EXPECT_EQ(DumpCurrencies(), before);
  EXPECT_EQ(Korvan({"undo"}).exit_code, 1);  // nothing was recorded
}

}  // namespace
}  // namespace korvan::app
