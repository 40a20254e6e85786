#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "data/undo_redo.h"
#include "testing/temp_dir.h"
#include "undo_test_support.h"

namespace korvan::data {
namespace {

using testing::FakeRows;
using testing::FakeTables;
using testing::MakeImage;

class UndoJournalTest : public ::testing::Test {
 protected:
  void SetUp() override {
    journal_.SetRecordRestorer(&tables_);
    journal_.SetRowRestorer(&rows_);
    journal_.SetOnChange([this] { ++notified_; });
  }
  void Begin(const std::string& caption) {
    journal_.StartTransaction(TStartItem(1, TOperationKind::okEdit, caption));
  }

  korvan::testing::TempDir dir_;
  TUndoRedo journal_{dir_.path().string()};
  ScopedTableChangeObserver current_{&journal_};
  FakeTables tables_;
  FakeRows rows_;
  int notified_ = 0;
};

TEST_F(UndoJournalTest, NestedTransactionsMakeOneStepNotifiedOnce) {
  Begin("outer");
  tables_.Insert('W', MakeImage('W', 1));
  Begin("inner");
  tables_.Insert('W', MakeImage('W', 2));
  tables_.Update('W', MakeImage('W', 1, {7}));
  journal_.EndTransaction();
  EXPECT_EQ(notified_, 0);
  tables_.Delete('W', 2);
  journal_.EndTransaction();
  EXPECT_EQ(notified_, 1);
  journal_.EndTransaction();  // one too many: the depth stays 0
  EXPECT_EQ(journal_.TransactionDepth(), 0);
  EXPECT_EQ(notified_, 1);

  EXPECT_EQ(journal_.UndoCaptions(), (std::vector<std::string>{"outer"}));
  const TStartItem* start = journal_.UndoStack().LastStartItem();
  ASSERT_NE(start, nullptr);
  ASSERT_EQ(start->GetCounterItems().size(), 1u);
  EXPECT_EQ(start->GetCounterItems()[0].counters, (TCounterItem{2, 1, 1}));

  const FakeTables::State after = tables_.Snapshot();
  const TUndoOutcome undone = journal_.PopUndo();
  ASSERT_TRUE(undone.ok()) << undone.error;
  EXPECT_EQ(undone.start.Caption(), "outer");
  EXPECT_TRUE(tables_.Snapshot().empty());
  EXPECT_EQ(notified_, 2);
  EXPECT_TRUE(journal_.Empty());
  EXPECT_EQ(journal_.RedoCaptions(), (std::vector<std::string>{"outer"}));
  ASSERT_TRUE(journal_.PopRedo().ok());
  EXPECT_EQ(tables_.Snapshot(), after);
  EXPECT_EQ(journal_.PopRedo().code, kUndoNothingToDo);
}

TEST_F(UndoJournalTest, EmptyActionsLocksAndSwitchingOffRecordNothing) {
  Begin("nothing changed");
  journal_.EndTransaction();
  EXPECT_TRUE(journal_.Empty());
  EXPECT_EQ(notified_, 0);

  tables_.Insert('W', MakeImage('W', 1));  // outside a transaction
  EXPECT_TRUE(journal_.Empty());

  Begin("locked");
  journal_.Lock();
  journal_.Lock();
  tables_.Insert('W', MakeImage('W', 2));
  journal_.UnLock();
  EXPECT_TRUE(journal_.Locked());
  tables_.Insert('W', MakeImage('W', 3));
  journal_.UnLock();
  journal_.UnLock();  // never below zero
  EXPECT_FALSE(journal_.Locked());
  journal_.EndTransaction();
  EXPECT_TRUE(journal_.Empty());

  journal_.SetActive(false);
  Begin("off");
  tables_.Insert('W', MakeImage('W', 4));
  journal_.EndTransaction();
  EXPECT_TRUE(journal_.Empty());
  journal_.SetActive(true);

  Begin("one");
  tables_.Insert('W', MakeImage('W', 5));
  journal_.EndTransaction();
  EXPECT_EQ(journal_.UndoCaptions(), (std::vector<std::string>{"one"}));
  EXPECT_EQ(journal_.UndoStack().TransactionCount(), 1);
  journal_.Clear();
  EXPECT_TRUE(journal_.Empty());
  EXPECT_EQ(journal_.PopUndo().code, kUndoNothingToDo);
}

TEST_F(UndoJournalTest, NewChangeEmptiesRedoButEmptyActionDoesNot) {
  Begin("a");
  tables_.Insert('W', MakeImage('W', 1));
  journal_.EndTransaction();
  ASSERT_TRUE(journal_.PopUndo().ok());
  EXPECT_TRUE(journal_.CanRedo());
  Begin("nothing");
  journal_.EndTransaction();
  EXPECT_TRUE(journal_.CanRedo());
  Begin("b");
  tables_.Insert('W', MakeImage('W', 2));
  journal_.EndTransaction();
  EXPECT_FALSE(journal_.CanRedo());
  EXPECT_EQ(journal_.UndoCaptions(), (std::vector<std::string>{"b"}));
}

TEST_F(UndoJournalTest, FailedOrConflictingStepChangesNothing) {
  Begin("three inserts");
  for (int32_t id = 1; id <= 3; ++id) tables_.Insert('W', MakeImage('W', id));
  journal_.EndTransaction();
  const FakeTables::State before = tables_.Snapshot();

  tables_.fail_at = tables_.restore_calls + 3;  // the third fails: two are taken back
  TUndoOutcome outcome = journal_.PopUndo();
  EXPECT_EQ(outcome.code, kUndoConflict);
  EXPECT_EQ(outcome.error, "injected failure");
  EXPECT_EQ(tables_.restore_calls, 5);
  EXPECT_EQ(tables_.Snapshot(), before);
  EXPECT_EQ(journal_.UndoStack().TransactionCount(), 1);
  EXPECT_FALSE(journal_.CanRedo());

  // Somebody changed a record meanwhile, without the journal.
  {
    journal_.Lock();
    tables_.Update('W', MakeImage('W', 2, {42}));
    journal_.UnLock();
  }
  const FakeTables::State changed = tables_.Snapshot();
  outcome = journal_.PopUndo();
  EXPECT_EQ(outcome.code, kUndoConflict);
  EXPECT_NE(outcome.error.find("record 2"), std::string::npos);
  EXPECT_EQ(tables_.Snapshot(), changed);

  Begin("open");
  EXPECT_EQ(journal_.PopUndo().code, kUndoInTransaction);
  journal_.EndTransaction();
}

TEST_F(UndoJournalTest, RowMovesAndDeletesAreTakenBackAndMadeAgain) {
  rows_.rows_[7] = {"a", "b", "c", "d"};
  Begin("rows");
  TCDataUndoRedoItem item(7);
  std::string ignored;
  rows_.MoveRow(7, 1, 3, ignored);  // a to the third row
  item.AddMove(1, 3);
  rows_.RemoveRow(7, "d", 4, ignored);
  item.AddDelete("d", 4);
  ASSERT_TRUE(journal_.Push(item));
  journal_.FixStartItemCdataId(7);
  journal_.SetStartItemDoReloadAll();
  journal_.EndTransaction();
  const std::vector<std::string> changed = {"b", "c", "a"};
  ASSERT_EQ(rows_.rows_[7], changed);

  const TUndoOutcome undone = journal_.PopUndo();
  ASSERT_TRUE(undone.ok()) << undone.error;
  EXPECT_EQ(undone.start.Modul(), 7);
  EXPECT_TRUE(undone.start.ReloadAll());
  EXPECT_EQ(rows_.rows_[7], (std::vector<std::string>{"a", "b", "c", "d"}));
  ASSERT_TRUE(journal_.PopRedo().ok());
  EXPECT_EQ(rows_.rows_[7], changed);
}

// Random actions of inserts, updates and deletes in several tables, with undo and redo
// interleaved; after every step the tables equal the state the model expects.
TEST_F(UndoJournalTest, RandomStepsUndoAndRedoFollowTheModel) {
  std::mt19937 random(20261122);
  std::vector<FakeTables::State> history = {tables_.Snapshot()};
  size_t current = 0;  // history[current] is the state now; later entries can be redone
  for (int round = 0; round < 400; ++round) {
    const int choice = static_cast<int>(random() % 10);
    if (choice < 2 && current > 0) {
      ASSERT_TRUE(journal_.PopUndo().ok());
      --current;
    } else if (choice < 4 && current + 1 < history.size()) {
      ASSERT_TRUE(journal_.PopRedo().ok());
      ++current;
    } else {
      Begin("step " + std::to_string(round));
      const int changes = static_cast<int>(random() % 4);
      for (int c = 0; c < changes; ++c) {
        const char type = "WXY"[random() % 3];
        const int32_t id = static_cast<int32_t>(random() % 12);
        const FakeTables::State now = tables_.Snapshot();
        const auto table = now.find(FakeTables::Target(type).db_file + type);
        const bool exists = table != now.end() && table->second.count(id) > 0;
        const std::vector<uint8_t> payload(random() % 20, static_cast<uint8_t>(random()));
        if (!exists) {
          tables_.Insert(type, MakeImage(type, id, payload));
        } else if (random() % 2) {
          tables_.Update(type, MakeImage(type, id, payload));
        } else {
          tables_.Delete(type, id);
        }
      }
      journal_.EndTransaction();
      if (changes > 0) {
        history.resize(current + 1);
        history.push_back(tables_.Snapshot());
        ++current;
      }
    }
    ASSERT_EQ(tables_.Snapshot(), history[current]) << "round " << round;
    ASSERT_EQ(journal_.UndoStack().TransactionCount(), static_cast<int>(current));
    ASSERT_EQ(journal_.RedoStack().TransactionCount(),
              static_cast<int>(history.size() - 1 - current));
  }
  while (current > 0) {
    ASSERT_TRUE(journal_.PopUndo().ok());
    --current;
  }
  EXPECT_TRUE(tables_.Snapshot().empty());
}

TEST(UndoJournalPersistent, StepsSurviveTheRunAndDamageIsReported) {
  korvan::testing::TempDir dir;
  FakeTables tables;
  {
    auto journal = TUndoRedo::OpenPersistent(dir.path().string());
    const ScopedTableChangeObserver current(journal.get());
    journal->StartTransaction(TStartItem(1, TOperationKind::okInsert, "Neue Währung"));
    tables.Insert('W', MakeImage('W', 1));
    journal->EndTransaction();
    journal->StartTransaction(TStartItem(1, TOperationKind::okEdit, "Kurs ändern"));
    tables.Update('W', MakeImage('W', 1, {5}));
    journal->EndTransaction();
    EXPECT_THROW(TUndoRedo::OpenPersistent(dir.path().string()), UndoJournalError);
  }
  {
    auto journal = TUndoRedo::OpenPersistent(dir.path().string());
    journal->SetRecordRestorer(&tables);
    EXPECT_EQ(journal->UndoCaptions(), (std::vector<std::string>{"Kurs ändern", "Neue Währung"}));
    ASSERT_TRUE(journal->PopUndo().ok());
    EXPECT_EQ(tables.Snapshot().begin()->second.at(1), MakeImage('W', 1));
  }
  const std::string undo_file = dir.File("UNDO.QUJ");
  EXPECT_TRUE(std::filesystem::exists(dir.File("REDO.QUJ")));
  {
    auto journal = TUndoRedo::OpenPersistent(dir.path().string());
    journal->SetRecordRestorer(&tables);
    EXPECT_EQ(journal->RedoCaptions(), (std::vector<std::string>{"Kurs ändern"}));
  }
  // A byte of the remaining undo step damaged: reported on opening, tables untouched.
  std::fstream file(undo_file, std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(-6, std::ios::end);
  file.put('\x7F');
  file.close();
  const FakeTables::State before = tables.Snapshot();
  try {
    TUndoRedo::OpenPersistent(dir.path().string());
    FAIL() << "a damaged journal was opened";
  } catch (const UndoJournalError& error) {
    EXPECT_NE(std::string(error.what()).find("UNDO.QUJ"), std::string::npos) << error.what();
  }
  EXPECT_EQ(tables.Snapshot(), before);

  // Closing the project deletes the journal, damaged or not, unless it is in use.
  {
    auto other = TVirtualStack::OpenPersistent(dir.File("REDO.QUJ"));
    EXPECT_THROW(TUndoRedo::RemovePersistent(dir.path().string()), UndoJournalError);
    EXPECT_TRUE(std::filesystem::exists(undo_file));  // none is deleted
  }
  TUndoRedo::RemovePersistent(dir.path().string());
  EXPECT_FALSE(std::filesystem::exists(undo_file));
  EXPECT_FALSE(std::filesystem::exists(dir.File("REDO.QUJ")));
  auto fresh = TUndoRedo::OpenPersistent(dir.path().string());
  EXPECT_TRUE(fresh->Empty());
  EXPECT_FALSE(fresh->CanRedo());
}

}  // namespace
}  // namespace korvan::data
