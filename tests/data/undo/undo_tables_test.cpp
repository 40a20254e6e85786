#include <gtest/gtest.h>

#include <map>
#include <random>

#include "data/tables/std_tb_test_support.h"
#include "data/undo/undo_redo.h"
#include "data/undo/undo_table_restorer.h"

namespace korvan::data::testing {
namespace {

using Records = std::map<int32_t, std::vector<uint8_t>>;

class UndoTablesTest : public TableTest {
 protected:
  UndoTablesTest()
      : restorer_([this](const TableTarget& target) -> TStdTB* {
          return db_ && db_->BasePath() == target.db_file ? db_->GetTable(target.table_type)
                                                          : nullptr;
        }) {}
  void SetUp() override {
    TableTest::SetUp();
    table_ = std::make_unique<TTbTestItem>(*db_);
    journal_.SetRecordRestorer(&restorer_);
  }
  void TearDown() override {
    table_.reset();
    TableTest::TearDown();
  }

  // Every record of the table by id, as stored, without what each write stamps anew: the
  // length field (slot length) and the time of the last change.
  Records Snapshot() {
    std::vector<std::vector<uint8_t>> records;
    EXPECT_EQ(table_->GetBatch("", '1', records), 0);
    Records result;
    for (std::vector<uint8_t>& record : records) {
      record.resize(static_cast<size_t>(table_->RecordLength(record)));
      std::fill_n(record.begin(), 4, 0);
      std::fill_n(record.begin() + offsetof(storage::TDbRecordHeader, LastModified), 8, 0);
      result[TTbTestItem::Of(record).Id] = record;
    }
    return result;
  }
  std::vector<std::string> KeyStrings() const {  // without the positions
    std::vector<std::string> keys = AllKeys();
    for (std::string& key : keys) key.erase(key.find('@'));
    return keys;
  }
  void Begin(const std::string& caption) {
    journal_.StartTransaction(TStartItem(1, TOperationKind::okEdit, caption));
  }
  bool Load(int32_t id) { return table_->GetKey(KeyNumber(id), '1'); }

  korvan::testing::TempDir journal_dir_;
  TUndoRedo journal_{journal_dir_.path().string()};
  ScopedTableChangeObserver current_{&journal_};
  TTableRecordRestorer restorer_;
  std::unique_ptr<TTbTestItem> table_;
};

// A record changed outside the journal is not overwritten by a redo.
TEST_F(UndoTablesTest, RedoOverARecordChangedOutsideTheJournalIsRefused) {
  Begin("insert");
  ASSERT_EQ(InsertItem(*table_, 1, 100, 10, 0xAA), 0);
  journal_.EndTransaction();
  Begin("update");
  ASSERT_TRUE(Load(1));
  table_->Rec().Code = 200;
  ASSERT_EQ(table_->UpDateRec(), 0);
  journal_.EndTransaction();
  ASSERT_TRUE(journal_.PopUndo().ok());
  journal_.Lock();
  ASSERT_TRUE(Load(1));
  table_->Rec().Code = 300;
  ASSERT_EQ(table_->UpDateRec(), 0);
  journal_.UnLock();
  const Records foreign = Snapshot();
  const TUndoOutcome refused = journal_.PopRedo();
  EXPECT_EQ(refused.code, kUndoConflict);
  EXPECT_NE(refused.error.find("wurde inzwischen geändert"), std::string::npos) << refused.error;
  EXPECT_EQ(Snapshot(), foreign);
}

// Random steps of inserts, updates (which change keys and outgrow slots) and deletes,
// with undo and redo interleaved: after each, the records (creation time included) and
// both indexes equal the state recorded when the step was made.
TEST_F(UndoTablesTest, RandomStepsAgainstRecordedStates) {
  std::mt19937 random(1122);
  for (int32_t id = 0; id < 6; ++id) ASSERT_EQ(InsertItem(*table_, id, 1000 + id, id * 7, 1), 0);
  using State = std::pair<Records, std::vector<std::string>>;
  const auto state = [&] { return State{Snapshot(), KeyStrings()}; };
  const State start = state();
  std::vector<State> history = {start};
  size_t current = 0;
  for (int round = 0; round < 100; ++round) {
    const int choice = static_cast<int>(random() % 10);
    if (choice < 2 && current > 0) {
      ASSERT_TRUE(journal_.PopUndo().ok());
      --current;
    } else if (choice < 4 && current + 1 < history.size()) {
      ASSERT_TRUE(journal_.PopRedo().ok());
      ++current;
    } else {
      Begin("step " + std::to_string(round));
      const int changes = 1 + static_cast<int>(random() % 3);
      for (int c = 0; c < changes; ++c) {
        const auto id = static_cast<int32_t>(random() % 12);
        const int32_t code = random() % 4 == 0 ? kNullId : static_cast<int32_t>(random() % 30);
        const int tail = static_cast<int>(random() % 200);
        const auto fill = static_cast<uint8_t>(random());
        if (!Load(id)) {
          InsertItem(*table_, id, code, tail, fill);  // a duplicate code is refused
        } else if (random() % 3 != 0) {
          table_->Rec().Code = code;
          table_->SetTail(tail, fill);
          table_->UpDateRec();
        } else {
          ASSERT_EQ(table_->DeleteRec(), 0);
        }
      }
      journal_.EndTransaction();
      if (journal_.UndoStack().TransactionCount() > static_cast<int>(current)) {
        history.resize(current + 1);
        history.push_back(state());
        ++current;
      }
    }
    ASSERT_EQ(state(), history[current]) << "round " << round;
    ASSERT_EQ(journal_.UndoStack().TransactionCount(), static_cast<int>(current));
  }
  for (; current > 0; --current) ASSERT_TRUE(journal_.PopUndo().ok());
  EXPECT_EQ(state(), start);
  EXPECT_TRUE(StorageProblems().empty());
}

}  // namespace
}  // namespace korvan::data::testing
