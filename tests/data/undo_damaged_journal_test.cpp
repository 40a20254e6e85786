// A damaged persistent journal: reported with file and byte, or set aside so that work
// goes on with a new one; a journal in use is never set aside.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "data/undo_redo.h"
#include "testing/temp_dir.h"
#include "undo_test_support.h"

namespace korvan::data {
namespace {

namespace fs = std::filesystem;
using testing::FakeTables;
using testing::MakeImage;

std::vector<char> ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void WriteFile(const std::string& path, const std::vector<char>& bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// A journal of three steps in `dir`, returned as the bytes of its undo file.
std::vector<char> ThreeSteps(const std::string& dir) {
  FakeTables tables;
  auto journal = TUndoRedo::OpenPersistent(dir);
  const ScopedTableChangeObserver current(journal.get());
  for (int step = 1; step <= 3; ++step) {
    journal->StartTransaction(
        TStartItem(1, TOperationKind::okEdit, "Schritt " + std::to_string(step)));
    tables.Insert('W', MakeImage('W', step));
    journal->EndTransaction();
  }
  return ReadFile(journal->UndoStack().FileName());
}

TEST(UndoDamagedJournal, CutsAreReportedWithTheirByteOrSetAside) {
  korvan::testing::TempDir dir;
  const std::string undo_file = dir.File("UNDO.QUJ");
  const std::vector<char> whole = ThreeSteps(dir.path().string());
  std::mt19937 random(4711);
  int reported = 0;
  for (int i = 0; i < 40; ++i) {
    const size_t cut = std::uniform_int_distribution<size_t>(1, whole.size() - 1)(random);
    SCOPED_TRACE("cut at " + std::to_string(cut));
    const std::vector<char> bytes(whole.begin(), whole.begin() + static_cast<long>(cut));
    WriteFile(undo_file, bytes);
    try {
      auto journal = TUndoRedo::OpenPersistent(dir.path().string());
      EXPECT_LT(journal->UndoCaptions().size(), 3u);  // a cut between entries: fewer steps
      continue;
    } catch (const UndoJournalError& error) {
      ++reported;
      EXPECT_TRUE(error.Damaged());
      EXPECT_GE(error.Position(), 0);
      EXPECT_LE(error.Position(), static_cast<int64_t>(cut));
      const std::string text = error.what();
      EXPECT_NE(text.find(undo_file + "\" ist beschädigt"), std::string::npos) << text;
      EXPECT_NE(text.find("(Byte " + std::to_string(error.Position()) + ")"), std::string::npos)
          << text;
    }
    EXPECT_EQ(ReadFile(undo_file), bytes);  // reporting leaves the file alone

    auto journal = TUndoRedo::OpenPersistent(dir.path().string(), TDamagedFile::kSetAside);
    EXPECT_TRUE(journal->Empty());
    const std::vector<TSetAsideFile> set_aside = journal->SetAsideFiles();
    ASSERT_EQ(set_aside.size(), 1u);
    EXPECT_EQ(set_aside[0].file, undo_file);
    EXPECT_EQ(set_aside[0].set_aside, undo_file + ".defekt");
    EXPECT_NE(set_aside[0].problem.find("beschädigt"), std::string::npos);
    EXPECT_EQ(ReadFile(undo_file + ".defekt"), bytes);
  }
  EXPECT_GT(reported, 30);

  // Wrong header, an entry length past the end, and scrambled bytes of an item.
  std::vector<std::vector<char>> damaged(3, whole);
  damaged[0][3] = 'x';
  damaged[1][16 + 4] = static_cast<char>(0x40);
  for (size_t at = whole.size() - 12; at < whole.size() - 4; ++at) damaged[2][at] ^= 0x21;
  for (const std::vector<char>& bytes : damaged) {
    WriteFile(undo_file, bytes);
    EXPECT_THROW(TUndoRedo::OpenPersistent(dir.path().string()), UndoJournalError);
    EXPECT_TRUE(TUndoRedo::OpenPersistent(dir.path().string(), TDamagedFile::kSetAside)->Empty());
  }

  // An empty file is an empty journal, not damage.
  WriteFile(undo_file, {});
  auto empty = TUndoRedo::OpenPersistent(dir.path().string());
  EXPECT_TRUE(empty->Empty());
  EXPECT_TRUE(empty->SetAsideFiles().empty());
}

TEST(UndoDamagedJournal, AJournalInUseIsNeitherSetAsideNorDeleted) {
  korvan::testing::TempDir dir;
  ThreeSteps(dir.path().string());
  const std::vector<char> bytes = ReadFile(dir.File("UNDO.QUJ"));
  auto holder = TUndoRedo::OpenPersistent(dir.path().string());
  try {
    TUndoRedo::OpenPersistent(dir.path().string(), TDamagedFile::kSetAside);
    FAIL() << "a journal in use was opened twice";
  } catch (const UndoJournalError& error) {
    EXPECT_EQ(error.reason(), UndoJournalError::Reason::kInUse);
    EXPECT_NE(std::string(error.what()).find("anderen Programm"), std::string::npos);
  }
  EXPECT_THROW(TUndoRedo::RemovePersistent(dir.path().string()), UndoJournalError);
  EXPECT_FALSE(fs::exists(dir.File("UNDO.QUJ.defekt")));
  holder.reset();
  EXPECT_EQ(ReadFile(dir.File("UNDO.QUJ")), bytes);
  EXPECT_EQ(TUndoRedo::RemovePersistent(dir.path().string()),
            TUndoRedo::PersistentFiles(dir.path().string()));
  EXPECT_FALSE(fs::exists(dir.File("UNDO.QUJ")));
}

}  // namespace
}  // namespace korvan::data
