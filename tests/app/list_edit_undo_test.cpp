// `korvan list`, `korvan edit`, `korvan undo` and `korvan redo` on a sample installation.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <regex>
#include <sstream>
#include <string>

#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ProgramResult;
using testing::RunKorvanBinary;

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

  // Edits the factor of the row that shows `name`.
  void EditFactor(const std::string& name, const std::string& factor) {
    const int row = RowOf(Korvan({"list", "waehrung"}).out, name);
    ASSERT_GT(row, 0) << name;
    const ProgramResult edit =
        Korvan({"edit", "waehrung", std::to_string(row), "Faktor=" + factor});
    ASSERT_EQ(edit.exit_code, 0) << edit.err;
  }

  korvan::testing::TempDir dir_;
  fs::path base_ = dir_.path() / "sample";
  fs::path undo_file_ = base_ / "UNDO.QUJ";
  fs::path redo_file_ = base_ / "REDO.QUJ";
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

std::vector<char> ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void WriteFile(const fs::path& path, const std::vector<char>& bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

TEST_F(ListEditUndo, ListShowsTheStepsAndClearEmptiesTheJournal) {
  // Nothing recorded yet: the list is empty and looking creates no files.
  const ProgramResult empty = Korvan({"undo", "--list"});
  ASSERT_EQ(empty.exit_code, 0) << empty.err;
  EXPECT_TRUE(Contains(empty.out, "Rückgängig machen (0 Schritte")) << empty.out;
  EXPECT_FALSE(fs::exists(undo_file_));

  EditFactor("Schweizer Franken", "0,97");
  EditFactor("Schweizer Franken", "0,98");
  EditFactor("Pfund", "1,2");
  ASSERT_EQ(Korvan({"undo"}).exit_code, 0);
  const ProgramResult listed = Korvan({"undo", "--list"});
  ASSERT_EQ(listed.exit_code, 0) << listed.err;
  EXPECT_TRUE(Contains(listed.out,
                       "Rückgängig machen (2 Schritte, neuester zuerst):\n"
                       "  1. Bearbeiten\n  2. Bearbeiten\n"))
      << listed.out;
  EXPECT_TRUE(Contains(listed.out,
                       "Wiederherstellen (1 Schritt, neuester zuerst):\n"
                       "  1. Bearbeiten\n"))
      << listed.out;
  EXPECT_EQ(Korvan({"undo", "--list", "--clear"}).exit_code, 2);
  EXPECT_EQ(Korvan({"redo", "--list"}).exit_code, 2);  // the journal is shown by undo only

  const std::string before_clear = DumpCurrencies();
  const ProgramResult cleared = Korvan({"undo", "--clear"});
  ASSERT_EQ(cleared.exit_code, 0) << cleared.err;
  EXPECT_TRUE(Contains(cleared.out,
                       "2 Schritte zum Rückgängigmachen und 1 Schritt zum "
                       "Wiederherstellen verworfen"))
      << cleared.out;
  EXPECT_TRUE(Contains(cleared.out, "UNDO.QUJ")) << cleared.out;
  EXPECT_FALSE(fs::exists(undo_file_));
  EXPECT_FALSE(fs::exists(redo_file_));
  EXPECT_EQ(DumpCurrencies(), before_clear);  // the data stays as it is

  const ProgramResult nothing = Korvan({"undo"});
  EXPECT_EQ(nothing.exit_code, 1);
  EXPECT_TRUE(Contains(nothing.err, "Es gibt nichts rückgängig zu machen")) << nothing.err;
  EXPECT_EQ(Korvan({"redo"}).exit_code, 1);
  const ProgramResult again = Korvan({"undo", "--clear"});
  EXPECT_EQ(again.exit_code, 0) << again.err;
  EXPECT_TRUE(Contains(again.out, "leer")) << again.out;

  const ProgramResult nowhere =
      RunKorvanBinary({"undo", "--clear", "-d", (dir_.path() / "fehlt").string()});
  EXPECT_EQ(nowhere.exit_code, 1);
  EXPECT_TRUE(Contains(nowhere.err, "fehlt")) << nowhere.err;
}

TEST_F(ListEditUndo, UndoAfterAnUnjournaledChangeRefusesAndChangesNothing) {
  EditFactor("Schweizer Franken", "0,97");
  // Another change of the same record that this journal did not see: made while the
  // journal was elsewhere.
  const fs::path kept = dir_.path() / "UNDO.QUJ.kept";
  fs::rename(undo_file_, kept);
  EditFactor("Schweizer Franken", "0,91");
  fs::remove(undo_file_);
  fs::rename(kept, undo_file_);

  const std::string before = DumpCurrencies();
  const ProgramResult undo = Korvan({"undo"});
  EXPECT_EQ(undo.exit_code, 1);
  for (const char* part :
       {"Rückgängig nicht möglich", "der Datensatz \"", "der Tabelle \"", "DB_Stamm",
        "wurde inzwischen geändert", "Es wurde nichts geändert", "korvan undo --clear"}) {
    EXPECT_TRUE(Contains(undo.err, part)) << part << " in " << undo.err;
  }
  EXPECT_EQ(DumpCurrencies(), before);
  EXPECT_TRUE(Contains(Korvan({"list", "waehrung"}).out, "0,91"));
  const ProgramResult listed = Korvan({"undo", "--list"});
  EXPECT_TRUE(Contains(listed.out, "Rückgängig machen (1 Schritt")) << listed.out;  // kept
}

// The frame boundaries of a journal file: header, then per entry kind (1), data length
// (4), data, CRC (4). A cut exactly there leaves a shorter journal that is whole.
std::vector<size_t> FrameBoundaries(const std::vector<char>& bytes) {
  std::vector<size_t> boundaries{16};
  size_t at = 16;
  while (at + 5 <= bytes.size()) {
    uint32_t length = 0;
    for (int i = 0; i < 4; ++i)
      length |= uint32_t{static_cast<uint8_t>(bytes[at + 1 + static_cast<size_t>(i)])} << (8 * i);
    at += 5 + length + 4;
    boundaries.push_back(at);
  }
  return boundaries;
}

TEST_F(ListEditUndo, ADamagedJournalIsReportedAndSetAsideByTheNextEdit) {
  EditFactor("Schweizer Franken", "0,97");
  EditFactor("Pfund", "1,2");
  const std::vector<char> journal = ReadFile(undo_file_);
  const std::vector<size_t> boundaries = FrameBoundaries(journal);
  ASSERT_EQ(boundaries.back(), journal.size());

  struct Case {
    std::string name;
    std::vector<char> bytes;
  };
  std::vector<Case> cases;
  std::mt19937 random(20240611);
  for (int i = 0; i < 2; ++i) {
    size_t cut = 0;
    do {
      cut = std::uniform_int_distribution<size_t>(1, journal.size() - 1)(random);
    } while (std::find(boundaries.begin(), boundaries.end(), cut) != boundaries.end());
    cases.push_back({"cut at " + std::to_string(cut),
                     {journal.begin(), journal.begin() + static_cast<long>(cut)}});
  }
  std::vector<char> scrambled = journal;
  for (size_t at = journal.size() / 2; at < journal.size() / 2 + 8; ++at) scrambled[at] ^= 0x5A;
  cases.push_back({"scrambled", scrambled});
  std::vector<char> header = journal;
  header[0] = 'X';
  cases.push_back({"wrong header", header});
  std::vector<char> past_end = journal;
  past_end[boundaries[1] + 4] = static_cast<char>(0x7F);  // length of the second entry
  cases.push_back({"length past the end", past_end});

  const std::string before = DumpCurrencies();
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string unchanged = DumpCurrencies();
    WriteFile(undo_file_, c.bytes);
    const ProgramResult refused = Korvan({"undo"});
    EXPECT_EQ(refused.exit_code, 1);
    for (const char* part : {"UNDO.QUJ", "ist beschädigt", "(Byte ", "korvan undo --clear"}) {
      EXPECT_TRUE(Contains(refused.err, part)) << part << " in " << refused.err;
    }
    EXPECT_EQ(DumpCurrencies(), unchanged);

    // Listing and editing go on: the damaged file is set aside as it was, a new journal
    // begins.
    const int row = RowOf(Korvan({"list", "waehrung"}).out, "Schweizer Franken");
    ASSERT_GT(row, 0);
    const ProgramResult edit = Korvan({"edit", "waehrung", std::to_string(row), "Faktor=0,5"});
    ASSERT_EQ(edit.exit_code, 0) << edit.err;
    EXPECT_TRUE(Contains(edit.err, "Warnung")) << edit.err;
    EXPECT_TRUE(Contains(edit.err, "UNDO.QUJ.defekt")) << edit.err;
    EXPECT_EQ(ReadFile(base_ / "UNDO.QUJ.defekt"), c.bytes);
    const ProgramResult undo = Korvan({"undo"});
    ASSERT_EQ(undo.exit_code, 0) << undo.err;
    EXPECT_EQ(WithoutTimeStamps(DumpCurrencies()), WithoutTimeStamps(before));
    fs::remove(redo_file_);  // the step just taken back
  }
  EXPECT_EQ(Korvan({"undo"}).exit_code, 1);  // the damaged steps are gone
  const ProgramResult listed = Korvan({"undo", "--list"});
  EXPECT_TRUE(Contains(listed.out, "Rückgängig machen (0 Schritte")) << listed.out;

  // --list and redo report a damaged journal too.
  WriteFile(undo_file_, header);
  for (const char* command : {"--list", ""}) {
    const ProgramResult refused = *command ? Korvan({"undo", command}) : Korvan({"redo"});
    EXPECT_EQ(refused.exit_code, 1);
    EXPECT_TRUE(Contains(refused.err, "ist beschädigt")) << refused.err;
  }

  // An empty file is an empty journal (a crash right after creating it leaves one).
  WriteFile(undo_file_, {});
  const ProgramResult empty = Korvan({"undo"});
  EXPECT_EQ(empty.exit_code, 1);
  EXPECT_TRUE(Contains(empty.err, "Es gibt nichts rückgängig zu machen")) << empty.err;

  // A damaged redo file is named as such; --clear deletes damaged files without reading.
  WriteFile(redo_file_, header);
  const ProgramResult redo = Korvan({"redo"});
  EXPECT_EQ(redo.exit_code, 1);
  EXPECT_TRUE(Contains(redo.err, "REDO.QUJ")) << redo.err;
  const ProgramResult cleared = Korvan({"undo", "--clear"});
  EXPECT_EQ(cleared.exit_code, 0) << cleared.err;
  EXPECT_TRUE(Contains(cleared.out, "beschädigt")) << cleared.out;
  EXPECT_FALSE(fs::exists(redo_file_));
}

}  // namespace
}  // namespace korvan::app
