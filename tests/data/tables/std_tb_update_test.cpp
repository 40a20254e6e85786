#include <gtest/gtest.h>

#include "data/tables/std_tb_test_support.h"
#include "data/tables/tb_counter.h"
#include "data/tables/tb_db_info.h"
#include "data/test_tables.h"
#include "storage/db_kernel_codes.h"

namespace korvan::data::testing {
namespace {

int32_t CountRecords(const TStdDb& db, char type) {
  int32_t count = -1;
  EXPECT_EQ(db.RecordCount(type, &count), 0);
  return count;
}

TEST_F(TableTest, DuplicateUniqueKeyIsRefusedAndRolledBack) {
  TTbTestItem table(*db_);
  ASSERT_EQ(InsertItem(table, 1, 10), 0);
  ASSERT_EQ(InsertItem(table, 2, 20), 0);
  const std::vector<std::string> keys_before = AllKeys();

  // Index "1" is entered first, then index "2" collides: both go, and the record too.
  EXPECT_EQ(InsertItem(table, 3, 10), storage::kDkDuplicateKey);
  EXPECT_FALSE(table.HasPosition());
  EXPECT_EQ(AllKeys(), keys_before);
  EXPECT_EQ(CountRecords(*db_, kTestItemType), 2);
  EXPECT_EQ(messages_.errors.at(0),
            "Error in Database Operation \"Insert\": [DB: DB_Stamm, TB: TTbTestItem]: \r\n"
            "keine doppelten Schlüssel zulässig");
  EXPECT_EQ(InsertItem(table, 1, 30), storage::kDkDuplicateKey);  // index "1" itself

  // An update onto another record's key writes nothing.
  ASSERT_TRUE(table.GetKey(KeyNumber(2)));
  table.Rec().Code = 10;
  EXPECT_EQ(table.UpDateRec(), storage::kDkDuplicateKey);
  ASSERT_TRUE(table.GetKey(KeyNumber(2)));
  EXPECT_EQ(table.Rec().Code, 20);
  EXPECT_EQ(AllKeys(), keys_before);
  EXPECT_TRUE(StorageProblems().empty());
}

TEST_F(TableTest, UpdateKeepsKeysInStepAndMovesRecordsThatOutgrowTheirSlot) {
  TTbTestItem table(*db_);
  ASSERT_EQ(InsertItem(table, 1, 10, 8, 0xAA), 0);
  ASSERT_EQ(InsertItem(table, 2, 20), 0);
  ASSERT_TRUE(table.GetKey(KeyNumber(1)));
  const int32_t first_position = table.CurrentRecordPos();

  table.Rec().Code = 15;  // a key field: index "2" follows, index "1" stays
  ASSERT_EQ(table.UpDateRec(), 0);
  EXPECT_EQ(table.CurrentRecordPos(), first_position);
  EXPECT_FALSE(table.GetKey(KeyNumber(10), '2'));
  ASSERT_TRUE(table.GetKey(KeyNumber(15), '2'));
  EXPECT_EQ(table.Rec().Id, 1);

  table.SetTail(300, 0xBB);  // no longer fits: deleted and written anew
  ASSERT_EQ(table.UpDateRec(), 0);
  const int32_t moved = table.CurrentRecordPos();
  EXPECT_NE(moved, first_position);
  ASSERT_TRUE(table.GetKey(KeyNumber(15), '2'));
  EXPECT_EQ(table.CurrentRecordPos(), moved);
  EXPECT_EQ(table.Tail(), std::vector<uint8_t>(300, 0xBB));

  table.Rec().Code = kNullId;  // index "2" reports no key: the record leaves it
  table.SetTail(298, 0xCC);    // shrinks within the slot's 3 spare bytes
  ASSERT_EQ(table.UpDateRec(), 0);
  EXPECT_EQ(table.CurrentRecordPos(), moved);
  std::vector<int32_t> in_index2;
  for (bool found = table.GetFirstKey("", '2'); found; found = table.GetNextKey()) {
    in_index2.push_back(table.Rec().Id);
  }
  EXPECT_EQ(in_index2, std::vector<int32_t>{2});
  ASSERT_TRUE(table.GetKey(KeyNumber(1)));
  EXPECT_EQ(table.Tail(), std::vector<uint8_t>(298, 0xCC));
  EXPECT_TRUE(StorageProblems().empty());
}

TEST_F(TableTest, DeleteRemovesRecordAndKeysAndTellsAfterwards) {
  TTbTestItem table(*db_);
  ASSERT_EQ(InsertItem(table, 1, 10), 0);
  ASSERT_EQ(InsertItem(table, 2, 20), 0);
  int inserted = 0, deleted = 0;
  table.FOnAfterInsert = [&](TStdTB&) { ++inserted; };
  table.FOnAfterDelete = [&](TStdTB& from) { deleted += &from == &table; };
  ASSERT_EQ(InsertItem(table, 3, 30), 0);
  EXPECT_EQ(inserted, 1);
  EXPECT_EQ(table.DeleteRec(), 0);
  EXPECT_EQ(deleted, 1);
  EXPECT_EQ(table.DeleteRec(), storage::kDbNoRecordFound);  // nothing current any more
  EXPECT_FALSE(table.ExistsRec(KeyNumber(30), '2'));
  EXPECT_EQ(CountRecords(*db_, kTestItemType), 2);
  EXPECT_EQ(AllKeys().size(), 4u);
  EXPECT_TRUE(StorageProblems().empty());
}

TEST_F(TableTest, CounterHandsOutLastIdPlusOneAndKeepsIt) {
  int32_t id = 0;
  {
    TTbCounter counters(*db_);
    for (int32_t expected : {1, 2}) {
      ASSERT_EQ(counters.NextId('L', "LV", &id), 0);
      EXPECT_EQ(id, expected);
    }
    ASSERT_EQ(counters.NextId('P', "LV", &id), 0);
    EXPECT_EQ(id, 1);
  }
  ASSERT_EQ(db_->DbClose(), 0);
  ASSERT_EQ(db_->DbOpen(), 0);
  TTbCounter counters(*db_);
  EXPECT_EQ(counters.LastId('L', "LV"), 2);
  EXPECT_EQ(counters.LastId('X', "LV"), 0);
  ASSERT_EQ(counters.NextId('L', "LV", &id), 0);
  EXPECT_EQ(id, 3);
  EXPECT_EQ(CountRecords(*db_, kCounterTableType), 2);
}

TEST_F(TableTest, DbInfoTellsWhetherTheDataIsOlder) {
  TTbDbInfo info(*db_);
  EXPECT_TRUE(info.IsToConvert(810));  // no version stored yet
  ASSERT_EQ(info.WriteVersion(800), 0);
  t_VersionInfo version{};
  ASSERT_TRUE(info.ReadVersion(version));
  EXPECT_EQ(version.Version, 800);
  EXPECT_TRUE(info.IsToConvert(810));
  ASSERT_EQ(info.WriteVersion(810), 0);
  EXPECT_FALSE(info.IsToConvert(810));
  EXPECT_EQ(CountRecords(*db_, kDbInfoTableType), 1);
}

TEST_F(TableTest, DatabaseObjectsOfOneFileShareOneHandle) {
  TStdDb second("DB_Stamm", dir_.path().string(), kDbType, kKeyLength);
  ASSERT_EQ(second.DbOpen(), 0);
  EXPECT_EQ(second.Handle(), db_->Handle());
  TStdDbData* data = TStdDbDatas::Instance().QueryDBdata(db_->BasePath());
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(data->RefCount(), 2);

  // What one object writes, the other reads.
  TTbTestItem writer(*db_);
  ASSERT_EQ(InsertItem(writer, 7, 70), 0);
  TTbTestItem reader(second);
  ASSERT_TRUE(reader.GetKey(KeyNumber(7)));

  ASSERT_EQ(second.DbClose(), 0);
  EXPECT_EQ(data->RefCount(), 1);
  EXPECT_TRUE(db_->IsOpen());
  ASSERT_EQ(db_->DbClose(), 0);
  EXPECT_EQ(TStdDbDatas::Instance().QueryDBdata(db_->BasePath()), nullptr);
}

TEST_F(TableTest, ReadOfAWrongSizedRecordIsReported) {
  TTbTestRate table(*db_);
  // A record of the rate letter and version but not its size.
  std::vector<uint8_t> record(120, 0);
  storage::TDbRecordHeader header{};
  header.RecLen = 120;
  header.RecTyp = kTestRateType;
  header.Version = 1;
  std::memcpy(record.data(), &header, sizeof header);
  int32_t position = 0;
  ASSERT_EQ(storage::iDK_RecordInsert(db_->Handle(), record.data(), 120, true, &position), 0);
  EXPECT_FALSE(table.GetRec(position));
  EXPECT_EQ(table.LastErrorText(),
            "Error: Expected record size: 91, read record size: 120 (function: GetRec) in DB: "
            "DB_Stamm - TB: TTbTestRate");
  EXPECT_FALSE(table.GetRec(position + 7));  // not a record boundary
  EXPECT_NE(table.LastError(), 0);
}

}  // namespace
}  // namespace korvan::data::testing
