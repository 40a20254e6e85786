#include <gtest/gtest.h>

#include "data/tables/std_tb_test_support.h"
#include "data/tables/table_key.h"
#include "data/tables/tb_counter.h"
#include "data/test_tables.h"

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
