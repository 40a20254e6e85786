#include <gtest/gtest.h>

#include <random>

#include "data/undo/undo_redo.h"
#include "data/undo/undo_test_support.h"
#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

using testing::FakeTables;
using testing::MakeImage;
using Captions = std::vector<std::string>;

class UndoJournalTest : public ::testing::Test {
 protected:
  void SetUp() override {
    journal_.SetRecordRestorer(&tables_);
    journal_.SetOnChange([this] { ++notified_; });
  }
  void Begin(const std::string& caption) {
    journal_.StartTransaction(TStartItem(1, TOperationKind::okEdit, caption));
  }
  void InsertStep(const std::string& caption, int32_t id) {
    Begin(caption);
    tables_.Insert('W', MakeImage('W', id));
    journal_.EndTransaction();
  }

  korvan::testing::TempDir dir_;
  TUndoRedo journal_{dir_.path().string()};
  ScopedTableChangeObserver current_{&journal_};
  FakeTables tables_;
  int notified_ = 0;
};

TEST_F(UndoJournalTest, NestedTransactionsMakeOneStepAndNewStepsEmptyRedo) {
  Begin("outer");
  tables_.Insert('W', MakeImage('W', 1));
  Begin("inner");
  tables_.Insert('W', MakeImage('W', 2));
  tables_.Update('W', MakeImage('W', 1, {7}));
  journal_.EndTransaction();
  EXPECT_EQ(notified_, 0);
  tables_.Delete('W', 2);
  journal_.EndTransaction();
  journal_.EndTransaction();  // one too many: the depth stays 0
  EXPECT_EQ(journal_.TransactionDepth(), 0);
  EXPECT_EQ(notified_, 1);
  EXPECT_EQ(journal_.UndoCaptions(), Captions{"outer"});
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
  EXPECT_EQ(journal_.RedoCaptions(), Captions{"outer"});
  ASSERT_TRUE(journal_.PopRedo().ok());
  EXPECT_EQ(tables_.Snapshot(), after);
  EXPECT_EQ(journal_.PopRedo().code, kUndoNothingToDo);

  // An action that changed nothing keeps the redo steps, a new change drops them.
  ASSERT_TRUE(journal_.PopUndo().ok());
  Begin("nothing");
  journal_.EndTransaction();
  EXPECT_TRUE(journal_.CanRedo());
  InsertStep("b", 3);
  EXPECT_FALSE(journal_.CanRedo());
  EXPECT_EQ(journal_.UndoCaptions(), Captions{"b"});
}

// A command that fails half-way cancels its step: what it wrote is taken back, neither
// undo nor redo offers the half step, and the step undone before can still be made again.
TEST_F(UndoJournalTest, CancelledStepIsTakenBackAndTheUndoneStepsStay) {
  InsertStep("kept", 1);
  InsertStep("undone", 2);
  ASSERT_TRUE(journal_.PopUndo().ok());
  const FakeTables::State before = tables_.Snapshot();
  Begin("half");
  tables_.Insert('W', MakeImage('W', 3));
  tables_.Update('W', MakeImage('W', 1, {7}));
  ASSERT_TRUE(journal_.CancelTransaction().ok());
  EXPECT_EQ(tables_.Snapshot(), before);
  EXPECT_EQ(journal_.UndoCaptions(), Captions{"kept"});
  EXPECT_EQ(journal_.RedoCaptions(), Captions{"undone"});
  // Nothing was recorded: nothing to take back, both stacks stay.
  Begin("nothing");
  ASSERT_TRUE(journal_.CancelTransaction().ok());
  EXPECT_EQ(journal_.UndoCaptions(), Captions{"kept"});
  ASSERT_TRUE(journal_.PopRedo().ok());
  EXPECT_EQ(journal_.UndoCaptions(), (Captions{"undone", "kept"}));
}

TEST_F(UndoJournalTest, EmptyActionsLocksAndSwitchingOffRecordNothing) {
  Begin("nothing changed");
  journal_.EndTransaction();
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
  InsertStep("off", 4);
  EXPECT_TRUE(journal_.Empty());
  journal_.SetActive(true);

  InsertStep("one", 5);
  EXPECT_EQ(journal_.UndoStack().TransactionCount(), 1);
  journal_.Clear();
  EXPECT_TRUE(journal_.Empty());
  EXPECT_EQ(journal_.PopUndo().code, kUndoNothingToDo);
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

  journal_.Lock();  // somebody changes a record without the journal
  tables_.Update('W', MakeImage('W', 2, {42}));
  journal_.UnLock();
  const FakeTables::State changed = tables_.Snapshot();
  outcome = journal_.PopUndo();
  EXPECT_EQ(outcome.code, kUndoConflict);
  EXPECT_NE(outcome.error.find("record 2"), std::string::npos);
  EXPECT_EQ(tables_.Snapshot(), changed);

  Begin("open");
  EXPECT_EQ(journal_.PopUndo().code, kUndoInTransaction);
  journal_.EndTransaction();
}

// Random actions of inserts, updates and deletes in several tables, with undo and redo
// interleaved; after every step the tables equal the state the model expects.
TEST_F(UndoJournalTest, RandomStepsUndoAndRedoFollowTheModel) {
  std::mt19937 random(20261122);
  std::vector<FakeTables::State> history = {tables_.Snapshot()};
  size_t current = 0;  // history[current] is the state now; later entries can be redone
  for (int round = 0; round < 300; ++round) {
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
        const auto id = static_cast<int32_t>(random() % 12);
        const std::vector<uint8_t> payload(random() % 20, static_cast<uint8_t>(random()));
        if (!tables_.Contains(type, id)) {
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
  for (; current > 0; --current) ASSERT_TRUE(journal_.PopUndo().ok());
  EXPECT_TRUE(tables_.Snapshot().empty());
}

}  // namespace
}  // namespace korvan::data
