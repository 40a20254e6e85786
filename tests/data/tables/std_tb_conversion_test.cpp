#include <gtest/gtest.h>

#include <algorithm>

#include "data/tables/std_tb_test_support.h"

namespace korvan::data::testing {
namespace {

class TableConversion : public TableTest {
 protected:
  // Writes a record of the layout before TailLen was added (version 1, 56 bytes) with its
  // keys, as an older program left it.
  void WriteOld(TTbTestItem& table, int32_t id, int32_t code) {
    std::vector<uint8_t> record(56, 0);
    storage::TDbRecordHeader header{};
    header.RecLen = header.Size = 56;
    header.RecTyp = kTestItemType;
    header.Version = 1;
    std::memcpy(record.data(), &header, sizeof header);
    std::memcpy(record.data() + 48, &id, 4);
    std::memcpy(record.data() + 52, &code, 4);
    int32_t position = 0;
    ASSERT_EQ(storage::iDK_RecordInsert(db_->Handle(), record.data(), 56, false, &position), 0);
    ASSERT_EQ(db_->iIO_KeysInsert(table.BuildKeys(record), position), 0);
  }

  bool Logged(const std::string& line) const {
    return std::find(messages_.lines.begin(), messages_.lines.end(), line) != messages_.lines.end();
  }

  std::vector<uint16_t> StoredVersions() const {
    std::vector<std::string> keys;
    std::vector<int32_t> positions;
    EXPECT_EQ(TTbTestItem(*db_).GetKeyBatch("", '1', keys, positions), 0);
    std::vector<uint16_t> versions;
    for (int32_t position : positions) {
      std::vector<uint8_t> raw;
      EXPECT_EQ(db_->ReadRaw(position, raw), 0);
      storage::TDbRecordHeader header;
      std::memcpy(&header, raw.data(), sizeof header);
      versions.push_back(uint16_t{header.Version});
    }
    return versions;
  }
};

TEST_F(TableConversion, AnOlderRecordIsConvertedWhenRead) {
  TTbTestItem table(*db_);
  WriteOld(table, 1, 10);
  ASSERT_TRUE(table.GetKey(KeyNumber(1)));
  EXPECT_EQ(table.Rec().Code, 10);
  EXPECT_EQ(table.Rec().TailLen, 0);
  EXPECT_EQ(table.CurrentRecord().size(), sizeof(t_TestItem));
  EXPECT_TRUE(Logged("ConvertTB: TTbTestItem RecLen alt: 56  neu: 60 Var: 0"));
  EXPECT_TRUE(Logged("Version alt: 1 Version neu: 2"));

  // Written back, the record no longer fits its old slot and moves; keys follow.
  table.SetTail(5, 0x5A);
  ASSERT_EQ(table.UpDateRec(), 0);
  EXPECT_EQ(StoredVersions(), std::vector<uint16_t>{2});
  ASSERT_TRUE(table.GetKey(KeyNumber(10), '2'));
  EXPECT_EQ(table.Tail(), std::vector<uint8_t>(5, 0x5A));
  EXPECT_TRUE(StorageProblems().empty());
}

TEST_F(TableConversion, WholeTableByRecordsAndByKeys) {
  TTbTestItem table(*db_);
  for (int32_t id = 1; id <= 3; ++id) WriteOld(table, id, id * 10);
  ASSERT_EQ(InsertItem(table, 4, 40, 2, 1), 0);  // already current
  EXPECT_EQ(table.ConvertTable(true), 3);
  EXPECT_TRUE(Logged("Convert by records ..."));
  EXPECT_TRUE(Logged("3 items converted for table TTbTestItem"));

  for (int32_t id = 5; id <= 6; ++id) WriteOld(table, id, id * 10);
  EXPECT_EQ(table.ConvertTable(false), 2);
  EXPECT_TRUE(Logged("Convert by keys ..."));
  EXPECT_EQ(table.ConvertTable(false), 0);
  EXPECT_EQ(StoredVersions(), std::vector<uint16_t>(6, 2));
  std::vector<int32_t> codes;
  for (bool found = table.GetFirstKey("", '2'); found; found = table.GetNextKey()) {
    codes.push_back(table.Rec().Code);
  }
  EXPECT_EQ(codes, (std::vector<int32_t>{10, 20, 30, 40, 50, 60}));
  EXPECT_TRUE(StorageProblems().empty());
}

}  // namespace
}  // namespace korvan::data::testing
