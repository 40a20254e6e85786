// The intent file that brackets every step of the persistent journal, and what the next
// opening makes of a step a process left unfinished; the names the journal gives
// databases.
#include <gtest/gtest.h>

#include <filesystem>

#include "data/undo/journal_path.h"
#include "data/undo/undo_intent.h"
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

TEST(UndoIntent, ReadsTheStepUpToAFrameCutShortAndRefusesForeignFiles) {
  korvan::testing::TempDir dir;
  const std::string path = dir.File("PENDING.QUJ");
  EXPECT_FALSE(TUndoIntent::Read(path).has_value());
  const TableTarget target = FakeTables::Target('W');
  {
    TUndoIntent intent(path);
    intent.Begin(TIntentOperation::kUndo, 100, 16);
    intent.AddChange(TDBUndoRedoItem(target, {}, MakeImage('W', 1)));
    intent.AddChange(TDBUndoRedoItem(target, MakeImage('W', 1), MakeImage('W', 1, {2})));
    intent.Sync();
  }
  std::optional<TUnfinishedStep> step = TUndoIntent::Read(path);
  ASSERT_TRUE(step.has_value());
  EXPECT_EQ(step->operation, TIntentOperation::kUndo);
  EXPECT_EQ(step->UndoLength(), 100);
  EXPECT_EQ(step->RedoLength(), 16);
  ASSERT_EQ(step->changes.size(), 2u);
  EXPECT_EQ(step->changes[1]->After(), MakeImage('W', 1, {2}));
  EXPECT_FALSE(step->committed);

  // The process died while writing the second change: it was not made.
  std::vector<char> bytes = ReadJournalBytes(path);
  bytes.resize(bytes.size() - 3);
  WriteJournalBytes(path, bytes);
  step = TUndoIntent::Read(path);
  ASSERT_TRUE(step.has_value());
  EXPECT_EQ(step->changes.size(), 1u);

  {
    TUndoIntent intent(path);
    intent.Begin(TIntentOperation::kRecord, 16, 16);
    intent.Commit(200, 16);
  }
  step = TUndoIntent::Read(path);
  ASSERT_TRUE(step.has_value());
  EXPECT_TRUE(step->committed);
  EXPECT_EQ(step->UndoLength(), 200);

  WriteJournalBytes(path, std::vector<char>(40, 'x'));
  try {
    TUndoIntent::Read(path);
    ADD_FAILURE() << "a foreign file was read as an intent";
  } catch (const UndoJournalError& error) {
    EXPECT_TRUE(error.Damaged());
  }
  WriteJournalBytes(path, {'K', 'o', 'r'});  // cut inside the header: nothing begun
  EXPECT_FALSE(TUndoIntent::Read(path).has_value());
}

TEST(UndoPersistentJournal, AStepLeftOpenIsTakenBackWhenTheJournalIsOpenedNext) {
  korvan::testing::TempDir dir;
  const std::string path = dir.path().string();
  FakeTables tables;
  {
    auto journal = TUndoRedo::OpenPersistent(path);
    const ScopedTableChangeObserver current(journal.get());
    journal->StartTransaction(TStartItem(1, TOperationKind::okEdit, "Kurs 1"));
    tables.Insert('W', MakeImage('W', 1));
    journal->EndTransaction();
    EXPECT_FALSE(fs::exists(TUndoRedo::PendingFile(path)));
  }
  const FakeTables::State acknowledged = tables.Snapshot();
  {
    // The process "dies" with its step open: the record is written, the step not done.
    auto journal = TUndoRedo::OpenPersistent(path);
    const ScopedTableChangeObserver current(journal.get());
    journal->StartTransaction(TStartItem(1, TOperationKind::okEdit, "Kurs 2"));
    tables.Update('W', MakeImage('W', 1, {2}));
    tables.Insert('W', MakeImage('W', 2));
  }
  ASSERT_TRUE(fs::exists(TUndoRedo::PendingFile(path)));

  auto journal = TUndoRedo::OpenPersistent(path);
  EXPECT_TRUE(journal->HasUnfinished());
  EXPECT_EQ(journal->UndoCaptions(), Captions{"Kurs 1"});
  // Without table access nothing can be taken back, and nothing moves.
  EXPECT_EQ(journal->PopUndo().code, kUndoDamaged);
  journal->SetRecordRestorer(&tables);
  ASSERT_TRUE(journal->ResolveUnfinished()) << journal->LastError();
  EXPECT_EQ(tables.Snapshot(), acknowledged);
  EXPECT_NE(journal->RecoveryNote().find("zurückgenommen (2 Datensätze"), std::string::npos)
      << journal->RecoveryNote();
  EXPECT_FALSE(fs::exists(TUndoRedo::PendingFile(path)));
  ASSERT_TRUE(journal->PopUndo().ok());
  EXPECT_TRUE(tables.Snapshot().empty());
}

TEST(UndoPersistentJournal, NothingChangedLeavesNoStepAndAnEmptyJournalNoFiles) {
  korvan::testing::TempDir dir;
  const std::string path = dir.path().string();
  const std::vector<std::string> files = TUndoRedo::PersistentFiles(path);
  FakeTables tables;
  TUndoRedo::OpenPersistent(path).reset();
  EXPECT_FALSE(fs::exists(files[0]));
  EXPECT_FALSE(fs::exists(files[1]));

  auto journal = TUndoRedo::OpenPersistent(path);
  journal->SetRecordRestorer(&tables);
  const ScopedTableChangeObserver current(journal.get());
  journal->StartTransaction(TStartItem(1, TOperationKind::okEdit, "anlegen"));
  tables.Insert('W', MakeImage('W', 1, {5}));
  journal->EndTransaction();
  journal->StartTransaction(TStartItem(1, TOperationKind::okEdit, "gleich"));
  tables.Update('W', MakeImage('W', 1, {5}));  // written again as it was
  journal->EndTransaction();
  EXPECT_EQ(journal->UndoCaptions(), Captions{"anlegen"});
  ASSERT_TRUE(journal->PopUndo().ok());
  ASSERT_TRUE(journal->PopRedo().ok());
  EXPECT_TRUE(fs::exists(files[0]));
}

TEST(UndoJournalPath, DatabasesAreNamedFromTheDataDirectoryAndOldAbsoluteNamesStillMatch) {
  EXPECT_EQ(JournalPathOf("/inst/ava/STAMMDATEN/DB_Stamm", "/inst/ava"), "STAMMDATEN/DB_Stamm");
  EXPECT_EQ(JournalPathOf("/inst/ava/STAMMDATEN/DB_Stamm", "/inst/ava/"), "STAMMDATEN/DB_Stamm");
  EXPECT_EQ(JournalPathOf("/other/DB_Stamm", "/inst/ava"), "/other/DB_Stamm");
  EXPECT_EQ(JournalPathOf("/inst/ava/STAMMDATEN/DB_Stamm", ""), "/inst/ava/STAMMDATEN/DB_Stamm");

  EXPECT_TRUE(IsJournalPathOf("STAMMDATEN/DB_Stamm", "/copy/STAMMDATEN/DB_Stamm", "/copy"));
  EXPECT_FALSE(IsJournalPathOf("STAMMDATEN/DB_Stamm", "/copy/PROJEKTE/DB_Stamm", "/copy"));
  EXPECT_TRUE(IsJournalPathOf("/inst/ava/STAMMDATEN/DB_Stamm", "/inst/ava/STAMMDATEN/DB_Stamm",
                              "/inst/ava"));
  EXPECT_TRUE(
      IsJournalPathOf("/inst/ava/STAMMDATEN/DB_Stamm", "/copy/STAMMDATEN/DB_Stamm", "/copy"));
  EXPECT_FALSE(
      IsJournalPathOf("/inst/ava/STAMMDATEN/DB_Stamm", "/copy/STAMMDATEN/DB_Text", "/copy"));
}

}  // namespace
}  // namespace korvan::data
