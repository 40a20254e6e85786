#include <gtest/gtest.h>
#include <unistd.h>

#include "db_kernel_fixture.h"
#include "storage/data_file_check.h"
#include "storage/db_kernel.h"
#include "storage/delphi_datetime.h"

namespace korvan::storage::testing {
namespace {

using DbKernelRecords = DbKernelTest;

int ReadCode(int handle, int32_t position, int32_t buffer_size = 4096) {
  std::vector<uint8_t> buffer(static_cast<size_t>(buffer_size));
  int32_t length = buffer_size;
  try {
    iDK_RecordRead(handle, position, buffer.data(), &length, true);
  } catch (const EDbKernelException& error) {
    EXPECT_STREQ(error.what(), "Read");
    EXPECT_EQ(error.FDbOperation, TDKDatabaseOperation::doRead);
    return error.FErrorCode;
  }
  return 0;
}

TEST_F(DbKernelRecords, InsertIntoEmptyDatabaseAppendsAt80AndReadsBack) {
  const int handle = Create("db");
  auto record = MakeRecord('A', 120, 0x5A);
  const double before = DelphiNow();
  const int32_t position = Insert(handle, record);
  EXPECT_EQ(position, 80);
  const TDbRecordHeader header = HeaderOf(record);
  const double last_modified = header.LastModified;
  const double created = header.CreationDate;
  EXPECT_GE(last_modified, before);
  EXPECT_EQ(last_modified, created);

  EXPECT_EQ(Read(handle, position), record);
  EXPECT_EQ(StoredLength(handle, position), 120);
  // A buffer shorter than the record gets the record's beginning.
  const auto cut = Read(handle, position, 60);
  EXPECT_EQ(cut, std::vector<uint8_t>(record.begin(), record.begin() + 60));

  auto second = MakeRecord('B', 64, 0x11);
  EXPECT_EQ(Insert(handle, second), 200);
  EXPECT_TRUE(CheckDataFile(handle).problems.empty());
}

TEST_F(DbKernelRecords, ReadFailuresRaiseWithTheirCodes) {
  const int handle = Create("db");
  auto a = MakeRecord('A', 100, 1);
  auto b = MakeRecord('B', 100, 2);
  Insert(handle, a);
  Insert(handle, b);
  EXPECT_EQ(ReadCode(handle, -5), 4352);
  EXPECT_EQ(ReadCode(handle, 20), 4352);  // inside the file header
  EXPECT_EQ(ReadCode(handle, 260), 4353);
  EXPECT_EQ(ReadCode(99, 80), 4288);
  auto old = a;
  ASSERT_EQ(iDK_RecordDelete(handle, old.data(), 80), 0);
  EXPECT_EQ(ReadCode(handle, 80), 4354);
  EXPECT_EQ(StoredLength(handle, 80), -100);
  ASSERT_EQ(truncate(DataFile("db").c_str(), 250), 0);
  EXPECT_EQ(ReadCode(handle, 180), 4356);
}

TEST_F(DbKernelRecords, SlackOfOneToThreeBytesTakesTheWholeFreeBlock) {
  const int handle = Create("db");
  auto a = MakeRecord('A', 100, 1);
  auto b = MakeRecord('B', 100, 2);
  auto c = MakeRecord('C', 100, 3);
  Insert(handle, a);
  Insert(handle, b);
  Insert(handle, c);
  auto old = b;
  ASSERT_EQ(iDK_RecordDelete(handle, old.data(), 180), 0);

  auto small = MakeRecord('D', 97, 4);
  EXPECT_EQ(Insert(handle, small), 180);
  EXPECT_EQ(StoredLength(handle, 180), 100);
  const auto back = Read(handle, 180);
  ASSERT_EQ(back.size(), 100u);
  EXPECT_TRUE(std::equal(small.begin() + 4, small.end(), back.begin() + 4));
  EXPECT_EQ(CheckDataFile(handle).blocks.size(), 3u);

  // Four bytes left over are enough for a free block with its key.
  ASSERT_EQ(iDK_RecordDelete(handle, old.data(), 180), 0);
  auto smaller = MakeRecord('E', 96, 5);
  EXPECT_EQ(Insert(handle, smaller), 180);
  const DataFileReport report = CheckDataFile(handle);
  EXPECT_TRUE(report.problems.empty());
  ASSERT_EQ(report.blocks.size(), 4u);
  EXPECT_EQ(report.blocks[2].position, 276);
  EXPECT_EQ(report.blocks[2].length, 4);
  EXPECT_FALSE(report.blocks[2].live);
}

TEST_F(DbKernelRecords, DeleteTruncatesAtTheEndAndMergesOnlyForward) {
  const int handle = Create("db");
  std::vector<std::vector<uint8_t>> records;
  for (int i = 0; i < 5; ++i) records.push_back(MakeRecord('A', 100, static_cast<uint8_t>(i)));
  for (auto& record : records) Insert(handle, record);  // 80, 180, 280, 380, 480
  std::vector<uint8_t> old(48);

  ASSERT_EQ(iDK_RecordDelete(handle, old.data(), 480), 0);
  EXPECT_EQ(FileBytes(DataFile("db")).size(), 480u);
  const int32_t old_length = HeaderOf(old).RecLen;
  EXPECT_EQ(old_length, 100);  // the caller gets the header as stored

  ASSERT_EQ(iDK_RecordDelete(handle, old.data(), 280), 0);  // before: 180 live
  ASSERT_EQ(iDK_RecordDelete(handle, old.data(), 180), 0);  // merges 280 behind it
  DataFileReport report = CheckDataFile(handle);
  EXPECT_TRUE(report.problems.empty());
  ASSERT_EQ(report.blocks.size(), 3u);
  EXPECT_EQ(report.blocks[1].position, 180);
  EXPECT_EQ(report.blocks[1].length, 200);
  EXPECT_FALSE(report.blocks[1].live);

  // A free block in front is left alone: deleting 380 (the last) truncates at 380 only.
  ASSERT_EQ(iDK_RecordDelete(handle, old.data(), 380), 0);
  EXPECT_EQ(FileBytes(DataFile("db")).size(), 380u);
  report = CheckDataFile(handle);
  EXPECT_TRUE(report.problems.empty());
  ASSERT_EQ(report.blocks.size(), 2u);
  EXPECT_EQ(report.blocks[1].length, 200);

  // Largest block first: a 60-byte record splits the 200-byte hole.
  auto next = MakeRecord('B', 60, 9);
  EXPECT_EQ(Insert(handle, next), 180);
  auto appended = MakeRecord('B', 300, 9);
  EXPECT_EQ(Insert(handle, appended), 380);
  EXPECT_TRUE(CheckDataFile(handle).problems.empty());
}

TEST_F(DbKernelRecords, UpdateStaysInItsSlotOrFailsWith4313) {
  const int handle = Create("db");
  auto record = MakeRecord('A', 100, 1);
  auto follower = MakeRecord('B', 100, 2);
  Insert(handle, record);
  Insert(handle, follower);

  const auto before = FileBytes(DataFile("db"));
  for (int32_t new_length : {96, 104, 150, 50}) {
    auto changed = MakeRecord('A', new_length, 7);
    EXPECT_EQ(iDK_RecordUpdate(handle, changed.data(), 100, 80, new_length), 4313) << new_length;
  }
  auto same_old = MakeRecord('A', 100, 7);
  EXPECT_EQ(iDK_RecordUpdate(handle, same_old.data(), 104, 80, 100), 4313);
  EXPECT_EQ(FileBytes(DataFile("db")), before);

  auto shorter = MakeRecord('A', 97, 8);
  ASSERT_EQ(iDK_RecordUpdate(handle, shorter.data(), 100, 80, 97), 0);
  EXPECT_EQ(StoredLength(handle, 80), 100);  // the slot keeps its size
  const double updated_at = HeaderOf(shorter).LastModified;
  const double inserted_at = HeaderOf(record).LastModified;
  EXPECT_GE(updated_at, inserted_at);
  auto back = Read(handle, 80);
  EXPECT_TRUE(std::equal(shorter.begin() + 4, shorter.end(), back.begin() + 4));
  auto full = MakeRecord('A', 100, 9);
  ASSERT_EQ(iDK_RecordUpdate(handle, full.data(), 97, 80, 100), 0);
  EXPECT_EQ(Read(handle, 80), full);
  EXPECT_EQ(Read(handle, 180), follower);

  std::vector<uint8_t> old(48);
  ASSERT_EQ(iDK_RecordDelete(handle, old.data(), 80), 0);
  EXPECT_EQ(iDK_RecordUpdate(handle, full.data(), 100, 80, 100), 4325);
  EXPECT_EQ(iDK_RecordDelete(handle, old.data(), 80), 4325);
}

TEST_F(DbKernelRecords, AppendPast2GBRaises4357) {
  const int handle = Create("db");
  auto record = MakeRecord('A', 100, 1);
  ASSERT_EQ(truncate(DataFile("db").c_str(), 2147483647 - 100), 0);
  try {
    int32_t position = 0;
    iDK_RecordInsert(handle, record.data(), 100, true, &position);
    ADD_FAILURE() << "no exception";
  } catch (const EDbKernelException& error) {
    EXPECT_EQ(error.FErrorCode, 4357);
    EXPECT_STREQ(error.what(), "Insert");
    EXPECT_EQ(error.FTableType, 'A');
  }
  ASSERT_EQ(truncate(DataFile("db").c_str(), 2147483647 - 101), 0);
  EXPECT_EQ(Insert(handle, record, false), 2147483647 - 101);
  EXPECT_EQ(Read(handle, 2147483647 - 101), record);
}

TEST_F(DbKernelRecords, RecordCountByTypeAndOnDamage) {
  const int handle = Create("db");
  std::vector<uint8_t> old(48);
  for (char type : {'A', 'B', 'A', 'C', 'A'}) {
    auto record = MakeRecord(type, 60, 0);
    Insert(handle, record);
  }
  ASSERT_EQ(iDK_RecordDelete(handle, old.data(), 80 + 60), 0);  // a B
  int32_t count = 0;
  ASSERT_EQ(iDK_RecordCount(handle, 0, &count), 0);
  EXPECT_EQ(count, 4);
  ASSERT_EQ(iDK_RecordCount(handle, 'A', &count), 0);
  EXPECT_EQ(count, 3);
  ASSERT_EQ(iDK_RecordCount(handle, 'B', &count), 0);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(iDK_RecordCount(41, 0, &count), 4288);

  auto bytes = FileBytes(DataFile("db"));
  ASSERT_EQ(iDK_DbClose(handle), 0);
  bytes[80 + 4] = '7';  // a live block without a type letter
  WriteFileBytes(DataFile("db"), bytes);
  int reopened = 0;
  ASSERT_EQ(iDK_DbOpen('T', Base("db"), true, false, &reopened), 0);
  ASSERT_EQ(iDK_RecordCount(reopened, 0, &count), 0);
  EXPECT_EQ(count, -3);
  ASSERT_EQ(iDK_RecordCount(reopened, 'A', &count), 0);
  EXPECT_EQ(count, 2);
  EXPECT_FALSE(CheckDataFile(reopened).problems.empty());
}

TEST_F(DbKernelRecords, DamagedLengthsGiveCodesNotCrashes) {
  const int handle = Create("db");
  for (int i = 0; i < 3; ++i) {
    auto record = MakeRecord('A', 100, 1);
    Insert(handle, record);
  }
  ASSERT_EQ(iDK_DbClose(handle), 0);
  const auto good = FileBytes(DataFile("db"));
  const int32_t garbage[] = {0x7FFFFFF0, -0x7FFFFFF0, 3, -2, static_cast<int32_t>(0x80000000), 0};
  for (int32_t length : garbage) {
    auto bytes = good;
    std::memcpy(bytes.data() + 180, &length, sizeof length);
    WriteFileBytes(DataFile("db"), bytes);
    int reopened = 0;
    ASSERT_EQ(iDK_DbOpen('T', Base("db"), true, false, &reopened), 0);
    int32_t count = 0;
    ASSERT_EQ(iDK_RecordCount(reopened, 0, &count), 0);
    EXPECT_TRUE(count == 1 || count == -2) << length << " " << count;
    EXPECT_FALSE(CheckDataFile(reopened).problems.empty()) << length;
    auto record = MakeRecord('A', 100, 1);
    auto old = record;
    const int update = iDK_RecordUpdate(reopened, record.data(), 100, 180, 100);
    const int erase = iDK_RecordDelete(reopened, old.data(), 180);
    EXPECT_NE(update, 0) << length;
    EXPECT_NE(erase, 0) << length;
    EXPECT_NE(ReadCode(reopened, 180), 0);
    // The intact record before the damage stays readable.
    EXPECT_EQ(StoredLength(reopened, 80), 100);
    ASSERT_EQ(iDK_DbClose(reopened), 0);
  }

  WriteFileBytes(DataFile("db"), std::vector<uint8_t>(good.begin(), good.begin() + 30));
  int reopened = 0;
  EXPECT_EQ(iDK_DbOpen('T', Base("db"), true, false, &reopened), 4309);
  EXPECT_EQ(iDK_DbCheckFile('T', DataFile("db")), 4320);
}

TEST_F(DbKernelRecords, InvalidArgumentsAreRefused) {
  const int handle = Create("db");
  auto tiny = MakeRecord('A', 48, 0);
  int32_t position = 0;
  EXPECT_EQ(iDK_RecordInsert(handle, tiny.data(), 47, true, &position), 4302);
  EXPECT_EQ(iDK_RecordInsert(0, tiny.data(), 48, true, &position), 4288);
  EXPECT_EQ(iDK_RecordUpdate(-1, tiny.data(), 48, 80, 48), 4288);
  EXPECT_EQ(iDK_RecordDelete(41, tiny.data(), 80), 4288);
  EXPECT_EQ(iDK_RecordUpdate(handle, tiny.data(), 48, 80, 48), 4320);  // nothing there
  EXPECT_EQ(iDK_RecordDelete(handle, tiny.data(), 10), 4320);
}

}  // namespace
}  // namespace korvan::storage::testing
