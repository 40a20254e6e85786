#include <gtest/gtest.h>

#include <iterator>
#include <set>

#include "data/tables/std_tb_test_support.h"
#include "data/tables/table_key.h"
#include "data/tables/tb_counter.h"
#include "data/test_tables.h"
#include "storage/db_kernel_fixture.h"

namespace korvan::data::testing {
namespace {

std::string Pads(size_t count) {
  return std::string(count, kKeyPadChar);
}

TEST(TableKeyEncoding, NumbersTextsAndFullKeys) {
  EXPECT_EQ(KeyNumber(42), "00000000042");
  EXPECT_EQ(KeyNumber(-2147483647 - 1), "-2147483648");
  EXPECT_EQ(KeyNumber(kNullId), Pads(11));
  EXPECT_EQ(KeyNumber16(-3), "-00003");
  EXPECT_EQ(KeyNumber16(kNullId16), Pads(6));
  EXPECT_EQ(KeyText("m2", 4), "m2  ");
  EXPECT_EQ(KeyText("Kubikmeter", 4), "Kubi");
  EXPECT_EQ(BuildFullKey('W', '1', "00000000042", 20), "W100000000042" + Pads(7));
  EXPECT_EQ(BuildFullKey('W', '2', "0123456789", 8), "W2012345");
  EXPECT_TRUE(KeyMatchesPattern("W1000042", "W1" + Pads(2) + "0042"));
  EXPECT_FALSE(KeyMatchesPattern("W2000042", "W1" + Pads(6)));
  EXPECT_EQ(KeyStringOf("E1000001" + Pads(4)), "000001");
}

class TableWalk : public TableTest {
 protected:
  void SetUp() override {
    TableTest::SetUp();
    // Neighbours in the tree on both sides of the rates ("M..." and "Z...").
    TTbTestMeasure measures(*db_);
    for (int16_t id : {1, 2}) {
      measures.InitRecord();
      measures.Rec().IdLang = 1;
      measures.Rec().IdMeasure = id;
      measures.Rec().Sz = id;
      ASSERT_EQ(measures.UpDateRec(), 0);
    }
    TTbCounter counters(*db_);
    int32_t id = 0;
    ASSERT_EQ(counters.NextId('W', "Waehrung", &id), 0);
  }

  void AddRate(TTbTestRate& table, int32_t id, int32_t group) {
    table.InitRecord();
    table.Rec().Id = id;
    table.Rec().Group = group;
    ASSERT_EQ(table.UpDateRec(), 0) << table.LastErrorText();
  }

  static std::vector<int32_t> Walk(TTbTestRate& table, std::string_view pattern, char index,
                                   bool backwards = false) {
    std::vector<int32_t> ids;
    bool found = backwards ? table.GetLastKey(pattern, index) : table.GetFirstKey(pattern, index);
    while (found) {
      ids.push_back(table.Rec().Id);
      found = backwards ? table.GetPreviousKey(pattern, index) : table.GetNextKey(pattern, index);
    }
    return ids;
  }
};

TEST_F(TableWalk, EmptyPatternVisitsTheWholeTableInIndexOrderAndNothingElse) {
  TTbTestRate table(*db_);
  EXPECT_FALSE(table.GetFirstKey("", '1'));  // no rate yet: the neighbours stay out
  for (auto [id, group] : {std::pair{42, 49}, {-1, 30}, {7, 49}, {-5, 1}, {kNullId, 2}}) {
    AddRate(table, id, group);
  }
  // Pad bytes sort before every digit and the minus sign: the null id comes first, then
  // the negative ids in reverse, then the others.
  EXPECT_EQ(Walk(table, "", '1'), (std::vector<int32_t>{kNullId, -1, -5, 7, 42}));
  EXPECT_EQ(Walk(table, "", '1', true), (std::vector<int32_t>{42, 7, -5, -1, kNullId}));
  // Index "2" by group; equal groups in position order.
  EXPECT_EQ(Walk(table, "", '2'), (std::vector<int32_t>{-5, kNullId, -1, 42, 7}));
  EXPECT_EQ(Walk(table, KeyNumber(49), '2'), (std::vector<int32_t>{42, 7}));
  EXPECT_EQ(Walk(table, KeyNumber(48), '2'), std::vector<int32_t>{});

  // A walk continues only with its own pattern and index.
  ASSERT_TRUE(table.GetFirstKey("", '1'));
  EXPECT_FALSE(table.GetNextKey(KeyNumber(49), '1'));
  EXPECT_FALSE(table.GetNextKey("", '2'));
  ASSERT_TRUE(table.GetFirstKey("", '1'));
  EXPECT_TRUE(table.GetNextKey());
  EXPECT_EQ(table.Rec().Id, -1);

  std::string found;
  ASSERT_TRUE(table.GetFirstKeyEx(KeyNumber(49), '2', found));
  EXPECT_EQ(found, "P2" + KeyNumber(49) + Pads(kKeyLength - 13));
  EXPECT_EQ(table.UniqueResultKey(), "P1" + KeyNumber(42) + Pads(kKeyLength - 13));
  ASSERT_TRUE(table.GetNextKeyEx(KeyNumber(49), '2', found));
  EXPECT_EQ(table.Rec().Id, 7);
  EXPECT_FALSE(table.GetNextKeyEx(KeyNumber(49), '2', found));
  EXPECT_TRUE(found.empty());
  ASSERT_TRUE(table.GetLastKeyEx("", '1', found));
  ASSERT_TRUE(table.GetPreviousKeyEx("", '1', found));
  EXPECT_EQ(found, "P1" + KeyNumber(7) + Pads(kKeyLength - 13));

  std::vector<std::vector<uint8_t>> batch;
  ASSERT_EQ(table.GetBatch("", '2', batch), 0);
  std::vector<int32_t> batch_ids;
  for (const auto& record : batch) batch_ids.push_back(TTbTestRate::Of(record).Id);
  EXPECT_EQ(batch_ids, Walk(table, "", '2'));
}

TEST_F(TableWalk, NullIdIsPadsAndFoundByAnOpenPattern) {
  TTbTestMeasure measures(*db_);
  measures.InitRecord();
  measures.Rec().IdLang = kNullId16;  // the language left open
  measures.Rec().IdMeasure = 5;
  measures.Rec().Sz = 1;
  ASSERT_EQ(measures.UpDateRec(), 0);
  EXPECT_EQ(measures.CurrentKey('1'), "M1" + Pads(6) + "000005" + Pads(kKeyLength - 14));
  // A pattern that leaves the language open finds it, one that names a language does not.
  ASSERT_TRUE(measures.GetKey(Pads(6) + KeyNumber16(5), '1'));
  EXPECT_FALSE(measures.GetKey(KeyNumber16(1) + KeyNumber16(5), '1'));
  // The null language (pads) sorts before language 1 and its two measures.
  std::vector<int16_t> all;
  for (bool found = measures.GetFirstKey("", '2'); found; found = measures.GetNextKey()) {
    all.push_back(measures.Rec().IdMeasure);
  }
  EXPECT_EQ(all, (std::vector<int16_t>{5, 1, 2}));
}

TEST_F(TableWalk, DeletingTheCurrentRecordDoesNotEndTheWalk) {
  TTbTestRate table(*db_);
  for (int32_t id = 1; id <= 6; ++id) AddRate(table, id, 49);
  std::vector<int32_t> visited;
  for (bool found = table.GetFirstKey("", '1'); found; found = table.GetNextKey()) {
    visited.push_back(table.Rec().Id);
    if (table.Rec().Id % 2 == 0) {
      ASSERT_EQ(table.DeleteRec(), 0);
    }
  }
  EXPECT_EQ(visited, (std::vector<int32_t>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(Walk(table, "", '1'), (std::vector<int32_t>{1, 3, 5}));
  EXPECT_TRUE(StorageProblems().empty());
}

// Walks that read ahead: long enough for several read-aheads, changed between steps. What
// a step returns must be the first record beyond the last one returned, in the table as
// it is at that step.
class TableWalkReadAhead : public TableWalk {
 protected:
  static constexpr int kRecords = 700;
  void SetUp() override {
    TableWalk::SetUp();
    TTbTestRate table(*db_);
    for (int i = 1; i <= kRecords; ++i) {
      AddRate(table, 10 * i, 1);
      ids_.insert(10 * i);
    }
  }
  // The step a walk without read-ahead makes from `last`.
  int32_t Following(int32_t last, bool forward) const {
    if (forward) {
      const auto next = ids_.upper_bound(last);
      return next == ids_.end() ? 0 : *next;
    }
    const auto next = ids_.lower_bound(last);
    return next == ids_.begin() ? 0 : *std::prev(next);
  }
  // Deletes a rate through the table layer of this process.
  void Delete(TTbTestRate& other, int32_t id) {
    ASSERT_TRUE(other.GetKey(KeyNumber(id), '1'));
    ASSERT_EQ(other.DeleteRec(), 0);
    ids_.erase(id);
  }
  void Insert(TTbTestRate& other, int32_t id) {
    AddRate(other, id, 1);
    ids_.insert(id);
  }

  std::set<int32_t> ids_;
};

TEST_F(TableWalkReadAhead, ChangesOfThisProcessBetweenStepsAreSeenAtTheNextStep) {
  for (bool forward : {true, false}) {
    SCOPED_TRACE(forward ? "forward" : "backward");
    TTbTestRate table(*db_);
    TTbTestRate other(*db_);
    int32_t expected = forward ? *ids_.begin() : *ids_.rbegin();
    bool found = forward ? table.GetFirstKey("", '1') : table.GetLastKey("", '1');
    for (int step = 0; found; ++step) {
      ASSERT_EQ(table.Rec().Id, expected) << "step " << step;
      const int32_t id = table.Rec().Id;
      const int32_t ahead = forward ? id + 30 : id - 30;
      if (step % 7 == 3) {
        ASSERT_EQ(table.DeleteRec(), 0);  // the current record, as a cleaning loop does
        ids_.erase(id);
      } else if (step % 11 == 5 && ids_.contains(ahead)) {
        Delete(other, ahead);
      } else if (step % 13 == 6 && !ids_.contains(forward ? id + 5 : id - 5)) {
        Insert(other, forward ? id + 5 : id - 5);
      } else if (step % 17 == 8 && ids_.contains(ahead) &&
                 !ids_.contains(forward ? id - 3 : id + 3)) {
        ASSERT_TRUE(other.GetKey(KeyNumber(ahead), '1'));  // moved behind the walk
        other.Rec().Id = forward ? id - 3 : id + 3;
        ASSERT_EQ(other.UpDateRec(), 0);
        ids_.erase(ahead);
        ids_.insert(other.Rec().Id);
      }
      expected = Following(id, forward);
      found = forward ? table.GetNextKey() : table.GetPreviousKey();
    }
    EXPECT_EQ(expected, 0) << "the walk ended early";
  }
  EXPECT_TRUE(StorageProblems().empty());
}

TEST_F(TableWalkReadAhead, TurningBackAndStartingAgainLeaveNothingReadAheadBehind) {
  TTbTestRate table(*db_);
  ASSERT_TRUE(table.GetFirstKey("", '1'));
  for (int step = 0; step < 40; ++step) ASSERT_TRUE(table.GetNextKey());
  EXPECT_EQ(table.Rec().Id, 410);
  ASSERT_TRUE(table.GetPreviousKey());
  EXPECT_EQ(table.Rec().Id, 400);
  ASSERT_TRUE(table.GetNextKey());
  EXPECT_EQ(table.Rec().Id, 410);
  ASSERT_TRUE(table.GetFirstKey(KeyNumber(1), '2'));
  EXPECT_EQ(table.Rec().Id, 10);
  EXPECT_FALSE(table.GetNextKey(KeyNumber(1), '1'));  // not the running walk's index
}

TEST_F(TableWalkReadAhead, ChangesOfAnotherProcessBetweenStepsAreSeenAtTheNextStep) {
  TTbTestRate table(*db_);
  ASSERT_TRUE(table.GetFirstKey("", '1'));
  for (int step = 1; step < 100; ++step) ASSERT_TRUE(table.GetNextKey());
  const int32_t current = table.Rec().Id;
  ASSERT_EQ(current, 1000);
  // The other process deletes the next record, puts one in before the one after it and
  // gives a later one a new group; this walk has read all of them ahead.
  TTbTestRate builder(*db_);
  builder.InitRecord();
  builder.Rec().Id = 1015;
  builder.Rec().Group = 2;
  const std::vector<uint8_t> inserted = builder.CurrentRecord();
  const TRecordKeys inserted_keys = builder.BuildKeys(inserted);
  ASSERT_TRUE(builder.GetKey(KeyNumber(1010), '1'));
  const int32_t deleted_at = builder.CurrentRecordPos();
  const TRecordKeys deleted_keys = builder.BuildKeys(builder.CurrentRecord());
  ASSERT_TRUE(builder.GetKey(KeyNumber(1040), '1'));
  const int32_t updated_at = builder.CurrentRecordPos();
  std::vector<uint8_t> updated = builder.CurrentRecord();
  reinterpret_cast<t_TestRate*>(updated.data())->Group = 7;
  const TRecordKeys old_keys = builder.BuildKeys(builder.CurrentRecord());
  const TRecordKeys new_keys = builder.BuildKeys(updated);
  ASSERT_EQ(db_->Flush(), 0);
  const std::string base = db_->BasePath();
  const int other = storage::testing::InFreshChild([&] {
    int handle = 0;
    if (int opened = storage::iDK_DbOpen(kDbType, base, true, true, &handle); opened != 0)
      return opened;
    const auto keys = [&](const TRecordKeys& of, int32_t position, bool insert) {
      for (const std::string& key : of.keys) {
        const storage::KeyEntry entry = MakeKeyEntry(key, static_cast<uint32_t>(position));
        const int result =
            insert ? storage::iDK_KeyInsert(handle, entry) : storage::iDK_KeyDelete(handle, entry);
        if (result != 0) return result;
      }
      return 0;
    };
    storage::TDbRecordHeader header{};
    std::vector<uint8_t> record = inserted;
    int32_t position = 0;
    int result = storage::iDK_RecordDelete(handle, &header, deleted_at);
    if (result == 0) result = keys(deleted_keys, deleted_at, false);
    if (result == 0)
      result = storage::iDK_RecordInsert(handle, record.data(), static_cast<int32_t>(record.size()),
                                         false, &position);
    if (result == 0) result = keys(inserted_keys, position, true);
    if (result == 0) {
      result =
          storage::iDK_RecordUpdate(handle, updated.data(), static_cast<int32_t>(updated.size()),
                                    updated_at, static_cast<int32_t>(updated.size()));
    }
    if (result == 0) result = keys(old_keys, updated_at, false);
    if (result == 0) result = keys(new_keys, updated_at, true);
    storage::iDK_DbClose(handle);
    return result;
  });
  ASSERT_EQ(other, 0);
  std::vector<std::pair<int32_t, int32_t>> next;
  for (int step = 0; step < 4 && table.GetNextKey(); ++step) {
    next.emplace_back(table.Rec().Id, table.Rec().Group);
  }
  EXPECT_EQ(next,
            (std::vector<std::pair<int32_t, int32_t>>{{1015, 2}, {1020, 1}, {1030, 1}, {1040, 7}}));
}

TEST_F(TableWalk, KeysOfTheFirstTables) {
  TTbTestRate rates(*db_);
  rates.Rec().Id = -1;
  rates.Rec().Group = 49;
  EXPECT_EQ(rates.CurrentKey('1'), "P1-0000000001" + Pads(kKeyLength - 13));
  EXPECT_EQ(rates.CurrentKey('2'), "P200000000049" + Pads(kKeyLength - 13));
  TTbTestMeasure measures(*db_);
  measures.Rec().IdLang = 1;
  measures.Rec().IdMeasure = 12;
  measures.Rec().Sz = 3;
  EXPECT_EQ(measures.CurrentKey('1'), "M1000001000012" + Pads(kKeyLength - 14));
  EXPECT_EQ(measures.CurrentKey('2'), "M2000001000003" + Pads(kKeyLength - 14));
  TTbCounter counters(*db_);
  counters.Rec().KzBezug = 'L';
  counters.Rec().Kennung.Set("LV");
  EXPECT_EQ(counters.CurrentKey('1'), "Z1LLV        " + Pads(kKeyLength - 13));
}

}  // namespace
}  // namespace korvan::data::testing
