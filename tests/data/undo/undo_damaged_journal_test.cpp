// The persistent journal: steps survive the program run; a damaged one is reported with
// file and byte, or set aside so that work goes on with a new one; one in use is never
// set aside or deleted.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "data/undo/undo_redo.h"
#include "data/undo/undo_test_support.h"
#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

namespace fs = std::filesystem;
using testing::FakeTables;
using testing::MakeImage;
using testing::ReadJournalBytes;
using testing::WriteJournalBytes;
using Captions = std::vector<std::string>;

void Steps(const std::string& dir, FakeTables& tables, int count) {
  auto journal = TUndoRedo::OpenPersistent(dir);
  const ScopedTableChangeObserver current(journal.get());
  for (int step = 1; step <= count; ++step) {
    journal->StartTransaction(
        TStartItem(1, TOperationKind::okEdit, "Kurs " + std::to_string(step)));
    if (step == 1) {
      tables.Insert('W', MakeImage('W', 1));
    } else {
      tables.Update('W', MakeImage('W', 1, {static_cast<uint8_t>(step)}));
    }
    journal->EndTransaction();
  }
}

TEST(UndoPersistentJournal, StepsSurviveTheRunAndAJournalInUseIsLeftAlone) {
  korvan::testing::TempDir dir;
  const std::string path = dir.path().string();
  FakeTables tables;
  Steps(path, tables, 2);
  {
    auto journal = TUndoRedo::OpenPersistent(path);
    journal->SetRecordRestorer(&tables);
    EXPECT_EQ(journal->UndoCaptions(), (Captions{"Kurs 2", "Kurs 1"}));
    ASSERT_TRUE(journal->PopUndo().ok());
    EXPECT_EQ(tables.Snapshot().at('W').at(1), MakeImage('W', 1));
  }
  auto holder = TUndoRedo::OpenPersistent(path);
  EXPECT_EQ(holder->RedoCaptions(), Captions{"Kurs 2"});
  const std::vector<char> bytes = ReadJournalBytes(dir.File("UNDO.QUJ"));
  try {
    TUndoRedo::OpenPersistent(path, TDamagedFile::kSetAside);
    FAIL() << "a journal in use was opened twice";
  } catch (const UndoJournalError& error) {
    EXPECT_EQ(error.reason(), UndoJournalError::Reason::kInUse);
    EXPECT_NE(std::string(error.what()).find("anderen Programm"), std::string::npos);
  }
  EXPECT_THROW(TUndoRedo::RemovePersistent(path), UndoJournalError);
  EXPECT_FALSE(fs::exists(dir.File("UNDO.QUJ.defekt")));
  holder.reset();
  EXPECT_EQ(ReadJournalBytes(dir.File("UNDO.QUJ")), bytes);

  // Closing the project deletes the journal.
  EXPECT_EQ(TUndoRedo::RemovePersistent(path), TUndoRedo::PersistentFiles(path));
  EXPECT_FALSE(fs::exists(dir.File("UNDO.QUJ")));
  EXPECT_FALSE(fs::exists(dir.File("REDO.QUJ")));
  auto fresh = TUndoRedo::OpenPersistent(path);
  EXPECT_TRUE(fresh->Empty());
  EXPECT_FALSE(fresh->CanRedo());
}

TEST(UndoPersistentJournal, DamageIsReportedWithItsByteOrSetAside) {
  korvan::testing::TempDir dir;
  const std::string undo_file = dir.File("UNDO.QUJ");
  FakeTables tables;
  Steps(dir.path().string(), tables, 3);
  const std::vector<char> whole = ReadJournalBytes(undo_file);

  std::vector<std::vector<char>> damaged(3, whole);
  damaged[0][3] = 'x';                           // the header
  damaged[1][16 + 4] = static_cast<char>(0x40);  // an entry length past the end
  for (size_t at = whole.size() - 12; at < whole.size() - 4; ++at) damaged[2][at] ^= 0x21;
  std::mt19937 random(4711);
  for (int i = 0; i < 20; ++i) {
    const size_t cut = std::uniform_int_distribution<size_t>(1, whole.size() - 1)(random);
    damaged.emplace_back(whole.begin(), whole.begin() + static_cast<long>(cut));
  }
  int reported = 0;
  for (const std::vector<char>& bytes : damaged) {
    SCOPED_TRACE("size " + std::to_string(bytes.size()));
    WriteJournalBytes(undo_file, bytes);
    try {
      auto journal = TUndoRedo::OpenPersistent(dir.path().string());
      EXPECT_LT(journal->UndoCaptions().size(), 3u);  // a cut between entries: fewer steps
      continue;
    } catch (const UndoJournalError& error) {
      ++reported;
      EXPECT_TRUE(error.Damaged());
      EXPECT_GE(error.Position(), 0);
      EXPECT_LE(error.Position(), static_cast<int64_t>(bytes.size()));
      const std::string text = error.what();
      EXPECT_NE(text.find(undo_file + "\" ist beschädigt"), std::string::npos) << text;
      EXPECT_NE(text.find("(Byte " + std::to_string(error.Position()) + ")"), std::string::npos)
          << text;
    }
    EXPECT_EQ(ReadJournalBytes(undo_file), bytes);  // reporting leaves the file alone

    auto journal = TUndoRedo::OpenPersistent(dir.path().string(), TDamagedFile::kSetAside);
    EXPECT_TRUE(journal->Empty());
    const std::vector<TSetAsideFile> set_aside = journal->SetAsideFiles();
    ASSERT_EQ(set_aside.size(), 1u);
    EXPECT_EQ(set_aside[0].file, undo_file);
    EXPECT_EQ(set_aside[0].set_aside, undo_file + ".defekt");
    EXPECT_NE(set_aside[0].problem.find("beschädigt"), std::string::npos);
    EXPECT_EQ(ReadJournalBytes(undo_file + ".defekt"), bytes);
  }
  EXPECT_GT(reported, 15);

  // An empty file is an empty journal, not damage.
  WriteJournalBytes(undo_file, {});
  auto empty = TUndoRedo::OpenPersistent(dir.path().string());
  EXPECT_TRUE(empty->Empty());
  EXPECT_TRUE(empty->SetAsideFiles().empty());
}

}  // namespace
}  // namespace korvan::data
