#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "data/records/null_values.h"
#include "data/tables/std_db.h"
#include "data/tables/std_tb.h"
#include "data/tables/table_key.h"
#include "storage/data_file_check.h"
#include "storage/db_kernel.h"
#include "storage/key_tree_check.h"
#include "testing/temp_dir.h"

namespace korvan::data::testing {

#pragma pack(push, 1)
// A record with a fixed part and a tail of variable length, so that updates can outgrow
// their slot.
struct t_TestItem {
  storage::TDbRecordHeader Header;
  int32_t Id;       // index "1", unique
  int32_t Code;     // index "2", unique; the null id keeps the record out of the index
  int32_t TailLen;  // bytes of tail after the fixed part
};
#pragma pack(pop)
static_assert(sizeof(t_TestItem) == 60);

inline constexpr char kTestItemType = 'T';
inline constexpr int kTestItemMaxTail = 400;

class TTbTestItem : public TTypedTB<t_TestItem> {
 public:
  explicit TTbTestItem(TStdDb& db, uint16_t version = 2)
      : TTypedTB(db, kTestItemType, version, "TTbTestItem") {
    InitRecord();
  }

  void InitRecord() override {
    TStdTB::InitRecord();
    Rec().Id = Rec().Code = kNullId;
    Rec().TailLen = 0;
  }
  char GetMaxIndex() const override { return '2'; }
  bool IsUniqueIndex(char) const override { return true; }
  int GetKeyString(RecordView record, char index, std::string& key) const override {
    const t_TestItem item = Of(record);
    const int32_t value = index == '1' ? item.Id : index == '2' ? item.Code : kNullId;
    key = index == '1' || value != kNullId ? KeyNumber(value) : "";
    return key.empty() ? -1 : static_cast<int>(key.size());
  }
  int RecordLength(RecordView record) const override {
    return static_cast<int>(sizeof(t_TestItem)) +
           std::clamp(Of(record).TailLen, 0, kTestItemMaxTail);
  }

  // Sets the tail to `length` bytes of `fill`.
  void SetTail(int length, uint8_t fill) {
    Rec().TailLen = length;
    CurrentRecord().resize(sizeof(t_TestItem));
    CurrentRecord().resize(sizeof(t_TestItem) + static_cast<size_t>(length), fill);
  }
  std::vector<uint8_t> Tail() const {
    return {CurrentRecord().begin() + sizeof(t_TestItem), CurrentRecord().end()};
  }
};

// A database of type "E" in a fresh directory, created and open.
class TableTest : public ::testing::Test {
 protected:
  static constexpr char kDbType = 'E';
  static constexpr int kKeyLength = 33;

  void SetUp() override {
    db_ = std::make_unique<TStdDb>("DB_Stamm", dir_.path().string(), kDbType, kKeyLength);
    db_->SetMessages(&messages_);
    db_->SetModifiedById("ALICE");
    ASSERT_EQ(db_->DbCreate(), 0);
  }
  void TearDown() override {
    db_.reset();
    TStdDbDatas::Instance().ReleaseEmpty();
  }

  // The storage checks of the database: empty when data file and key file are sound.
  std::vector<std::string> StorageProblems() const {
    EXPECT_EQ(db_->Flush(), 0);
    std::vector<std::string> problems = storage::CheckDataFile(db_->Handle()).problems;
    for (std::string& problem : storage::CheckKeyFile(db_->Handle())) {
      problems.push_back(std::move(problem));
    }
    return problems;
  }

  // Every full key of the tree in order, with its record position.
  std::vector<std::string> AllKeys() const {
    std::vector<std::string> keys;
    storage::KeyEntry entry = MakeKeyEntry(std::string(kKeyLength, kKeyPadChar));
    uint32_t position = 0;
    for (int result = storage::iDK_KeyFirstMatch(db_->Handle(), entry, &position); result == 0;
         result = storage::iDK_KeyNext(db_->Handle(), entry, &position)) {
      const std::string key = KeyOf(entry, kKeyLength);
      if (key[0] != '~') keys.push_back(key + "@" + std::to_string(position));
    }
    return keys;
  }

  korvan::testing::TempDir dir_;
  TCollectedMessages messages_;
  std::unique_ptr<TStdDb> db_;
};

inline int InsertItem(TTbTestItem& table, int32_t id, int32_t code, int tail = 0,
                      uint8_t fill = 0) {
  table.InitRecord();
  table.Rec().Id = id;
  table.Rec().Code = code;
  table.SetTail(tail, fill);
  return table.UpDateRec();
}

}  // namespace korvan::data::testing
