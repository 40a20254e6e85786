// Key files shared between processes and key files whose writer was killed: every
// record a writer was told is stored is found by its key afterwards.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "numbered_records.h"
#include "storage/data_file_banner.h"
#include "storage/data_file_check.h"
#include "storage/key_file_sharing.h"
#include "storage/key_tree_check.h"

namespace korvan::storage::testing {
namespace {

using Positions = std::map<int32_t, int32_t>;

int InsertNumbered(int handle, int32_t index, int32_t* position) {
  std::vector<uint8_t> record = NumberedRecord(index);
  if (int result = iDK_RecordInsert(handle, record.data(), static_cast<int32_t>(record.size()),
                                    true, position);
      result != 0) {
    return result;
  }
  return iDK_KeyInsert(handle, NumberedKey(index, *position));
}

int DeleteNumbered(int handle, int32_t index, int32_t position) {
  TDbRecordHeader header{};
  if (int result = iDK_RecordDelete(handle, &header, position); result != 0) return result;
  return iDK_KeyDelete(handle, NumberedKey(index, position));
}

// Every record is where its key says, with its content; key tree and free-space index
// agree with the data file.
void ExpectAllFound(int handle, const Positions& expected) {
  for (const auto& [index, position] : expected) {
    ASSERT_EQ(FindNumbered(handle, index), position) << "key of record " << index;
    const std::vector<uint8_t> record = NumberedRecord(index);
    std::vector<uint8_t> stored(record.size() + 8);
    auto length = static_cast<int32_t>(stored.size());
    ASSERT_NO_THROW(iDK_RecordRead(handle, position, stored.data(), &length, true));
    EXPECT_TRUE(std::equal(record.begin() + kRecordHeaderSize, record.end(),
                           stored.begin() + kRecordHeaderSize))
        << "record " << index;
  }
  EXPECT_EQ(CheckKeyFile(handle), std::vector<std::string>{});
  EXPECT_EQ(CheckDataFile(handle).problems, std::vector<std::string>{});
  int32_t live = 0;
  ASSERT_EQ(iDK_RecordCount(handle, 0, &live), 0);
  EXPECT_EQ(live, static_cast<int32_t>(expected.size()));
}

bool ClosedCleanly(const std::string& key_file) {
  bool clean = false;
  EXPECT_EQ(kernel::KeyFileClosedCleanly(key_file, &clean), 0);
  return clean;
}

class KeyFileKilledWriter : public DbKernelTest {
 protected:
  // A writer that inserts `count` numbered records into a new database, inside a held
  // tree lock or not, and is killed before it closes; returns where the records are
  // (positions follow from the order of appends).
  Positions InsertThenKill(const std::string& name, int32_t count, bool hold) {
    EXPECT_EQ(iDK_DbClose(Create(name, 'T', 24)), 0);
    const std::string base = Base(name);
    EXPECT_EQ(KilledAfter([&] {
                int handle = 0;
                if (iDK_DbOpen('T', base, true, false, &handle) != 0) return 1;
                if (hold && iDK_TreeLock(handle, true) != 0) return 2;
                for (int32_t index = 0; index < count; ++index) {
                  int32_t position = 0;
                  if (InsertNumbered(handle, index, &position) != 0) return 3;
                }
                return 0;
              }),
              0);
    Positions written;
    int64_t position = kFirstBlockPosition;
    for (int32_t index = 0; index < count; ++index) {
      written[index] = static_cast<int32_t>(position);
      position += static_cast<int64_t>(NumberedRecord(index).size());
    }
    EXPECT_FALSE(ClosedCleanly(KeyFile(name)));
    return written;
  }
};

TEST_F(KeyFileKilledWriter, AcknowledgedKeysAreFoundAfterTheWriterIsKilled) {
  for (const bool hold : {false, true}) {
    SCOPED_TRACE(hold ? "inside a held tree lock" : "without a hold");
    const std::string name = hold ? "held" : "killed";
    const Positions acknowledged = InsertThenKill(name, hold ? 200 : 500, hold);
    int handle = 0;
    // Nobody knows the records' keys: the key file is not trusted, nor touched.
    EXPECT_EQ(iDK_DbOpen('T', Base(name), false, true, &handle), kDkFatalRegenerateOk);
    EXPECT_FALSE(ClosedCleanly(KeyFile(name)));

    NumberedKeySource source;
    ASSERT_EQ(iDK_DbOpen('T', Base(name), false, true, &handle), 0);
    ASSERT_EQ(source.told.size(), 1u);
    EXPECT_NE(source.told[0].find("nicht sauber geschlossen"), std::string::npos) << source.told[0];
    EXPECT_NE(source.told[0].find(std::to_string(acknowledged.size()) + " Datensätze"),
              std::string::npos)
        << source.told[0];
    ExpectAllFound(handle, acknowledged);
    ASSERT_EQ(iDK_DbClose(handle), 0);
    EXPECT_TRUE(ClosedCleanly(KeyFile(name)));
    ASSERT_EQ(iDK_DbOpen('T', Base(name), true, false, &handle), 0);
    EXPECT_EQ(source.told.size(), 1u) << "a clean key file is rebuilt again";
    ASSERT_EQ(iDK_DbClose(handle), 0);
  }
}

TEST_F(KeyFileKilledWriter, ADamagedDataFileBehindAnUncleanKeyFileIsLeftToTheRebuild) {
  InsertThenKill("damaged", 20, false);
  const std::string base = Base("damaged");
  // The fifth record's length is gone: keys for the four in front would hide the rest.
  int64_t fifth = kFirstBlockPosition;
  for (int32_t index = 0; index < 4; ++index) {
    fifth += static_cast<int64_t>(NumberedRecord(index).size());
  }
  std::vector<uint8_t> bytes = FileBytes(DataFile("damaged"));
  std::fill_n(bytes.begin() + fifth, 4, uint8_t{0});
  WriteFileBytes(DataFile("damaged"), bytes);
  const std::vector<uint8_t> keys = FileBytes(KeyFile("damaged"));

  NumberedKeySource source;
  int handle = 0;
  EXPECT_EQ(iDK_DbOpen('T', base, true, false, &handle), kDkFatalRegenerateOk);
  ASSERT_EQ(source.told.size(), 1u);
  EXPECT_NE(source.told[0].find("Block an Position " + std::to_string(fifth)), std::string::npos)
      << source.told[0];
  EXPECT_NE(source.told[0].find("korvan rebuild"), std::string::npos) << source.told[0];
  EXPECT_EQ(FileBytes(KeyFile("damaged")), keys) << "the key file was touched";
}

TEST_F(KeyFileKilledWriter, MergedFreeSpaceOfAKilledWriterIsNotHandedOutInPieces) {
  const std::string base = Base("merged");
  const int created = Create("merged", 'T', 24);
  Positions stored;
  for (int32_t index = 0; index < 4; ++index) {
    ASSERT_EQ(InsertNumbered(created, index, &stored[index]), 0);
  }
  ASSERT_EQ(iDK_DbClose(created), 0);
  // The writer frees record 2, writes its keys back, then frees record 1, which merges
  // both blocks into one, and is killed before it writes the keys back.
  ASSERT_EQ(KilledAfter([&] {
              int handle = 0;
              if (iDK_DbOpen('T', base, true, false, &handle) != 0) return 1;
              if (DeleteNumbered(handle, 2, stored[2]) != 0 || iDK_DbFlush(handle) != 0) return 2;
              return DeleteNumbered(handle, 1, stored[1]);
            }),
            0);
  stored.erase(1);
  stored.erase(2);

  NumberedKeySource source;
  int handle = 0;
  ASSERT_EQ(iDK_DbOpen('T', base, true, false, &handle), 0);
  EXPECT_EQ(source.told.size(), 1u);
  ASSERT_EQ(InsertNumbered(handle, 10, &stored[10]), 0);
  EXPECT_EQ(stored[10], stored[0] + static_cast<int32_t>(NumberedRecord(0).size()))
      << "the new record belongs at the start of the merged block";
  ASSERT_EQ(iDK_DbClose(handle), 0);
  ASSERT_EQ(iDK_DbOpen('T', base, false, true, &handle), 0);
  ExpectAllFound(handle, stored);
}

class KeyFileTwoWriters : public DbKernelTest {};

// A writer of its own numbers: inserts, and deletes every fourth again so that free
// space is shared too. Returns 0 when everything it was told succeeded.
int WriteNumbers(const std::string& base, int32_t first, int count) {
  int handle = 0;
  if (iDK_DbOpen('S', base, true, true, &handle) != 0) return 1;
  Positions mine;
  for (int32_t index = first; index < first + count; ++index) {
    if (InsertNumbered(handle, index, &mine[index]) != 0) return 2;
    if (index % 4 == 3 && DeleteNumbered(handle, index - 2, mine[index - 2]) != 0) return 3;
  }
  return iDK_DbClose(handle) == 0 ? 0 : 4;
}

TEST_F(KeyFileTwoWriters, InsertingAtOnceBothAreFoundByAllKeys) {
  const std::string base = Base("shared");
  ASSERT_EQ(iDK_DbClose(Create("shared", 'S', 24)), 0);
  constexpr int kEach = 400;
  const auto writer = [&](int32_t first) {
    return [&base, first](const korvan::testing::Channel&) {
      ForgetInheritedDatabases();
      return WriteNumbers(base, first, kEach);
    };
  };
  korvan::testing::ChildProcess low(writer(0));
  korvan::testing::ChildProcess high(writer(100000));
  ASSERT_EQ(low.Wait(), 0);
  ASSERT_EQ(high.Wait(), 0);
  EXPECT_TRUE(ClosedCleanly(KeyFile("shared")));

  int handle = 0;
  ASSERT_EQ(iDK_DbOpen('S', base, false, true, &handle), 0);
  Positions found;
  for (int32_t first : {0, 100000}) {
    for (int32_t index = first; index < first + kEach; ++index) {
      const bool deleted = (index - first) % 4 == 1 && index + 2 < first + kEach;
      const int32_t position = FindNumbered(handle, index);
      if (deleted) {
        EXPECT_EQ(position, -1) << "deleted record " << index << " still has its key";
      } else {
        ASSERT_GE(position, 0) << "record " << index << " lost its key";
        found[index] = position;
      }
    }
  }
  ExpectAllFound(handle, found);
}

class KeyFileHeldTreeLock : public DbKernelTest {};

TEST_F(KeyFileHeldTreeLock, AnotherProcessWaitsForTheUnlockAndThenSeesEveryChange) {
  const std::string base = Base("held");
  const int handle = Create("held", 'S', 24);
  ASSERT_EQ(iDK_TreeLock(handle, true), 0);
  Positions stored;
  for (int32_t index = 0; index < 50; ++index) {
    ASSERT_EQ(InsertNumbered(handle, index, &stored[index]), 0);
  }
  korvan::testing::ChildProcess reader([&](const korvan::testing::Channel& parent) {
    ForgetInheritedDatabases();
    int own = 0;
    if (iDK_DbOpen('S', base, false, true, &own) != 0) return 1;
    int32_t found = 0;
    for (int32_t index = 0; index < 50; ++index) found += FindNumbered(own, index) >= 0 ? 1 : 0;
    return parent.Send(found) ? 0 : 2;
  });
  // While the hold lasts the reader's first search waits.
  usleep(200 * 1000);
  EXPECT_TRUE(reader.Running()) << "the reader did not wait for the unlock";
  ASSERT_EQ(iDK_TreeUnlock(handle), 0);
  const int32_t found = reader.Receive();
  EXPECT_EQ(reader.Wait(), 0);
  EXPECT_EQ(found, 50) << "keys written inside the hold are not all seen after it";
  ExpectAllFound(handle, stored);
}

TEST_F(KeyFileHeldTreeLock, HoldsNestEndWithACloseAndRefuseWhatTheyCannotCover) {
  const int handle = Create("nest", 'S', 24);
  EXPECT_EQ(iDK_TreeUnlock(handle), kDkIoError) << "nothing is held";
  ASSERT_EQ(iDK_TreeLock(handle, false), 0);
  int32_t position = 0;
  EXPECT_EQ(InsertNumbered(handle, 1, &position), kDkIoError) << "a change inside a read";
  EXPECT_EQ(iDK_TreeLock(handle, true), kDkIoError);
  ASSERT_EQ(iDK_TreeUnlock(handle), 0);

  ASSERT_EQ(iDK_TreeLock(handle, true), 0);
  ASSERT_EQ(iDK_TreeLock(handle, false), 0);
  ASSERT_EQ(InsertNumbered(handle, 1, &position), 0);
  ASSERT_EQ(iDK_TreeUnlock(handle), 0);
  EXPECT_EQ(FindNumbered(handle, 1), position);
  ASSERT_EQ(iDK_TreeUnlock(handle), 0);
  EXPECT_EQ(iDK_TreeUnlock(handle), kDkIoError);

  // A close ends a hold and keeps its changes.
  ASSERT_EQ(iDK_TreeLock(handle, true), 0);
  ASSERT_EQ(InsertNumbered(handle, 2, &position), 0);
  ASSERT_EQ(iDK_DbClose(handle), 0);
  EXPECT_TRUE(ClosedCleanly(KeyFile("nest")));
  int reader = 0;
  ASSERT_EQ(iDK_DbOpen('S', Base("nest"), false, true, &reader), 0);
  EXPECT_EQ(FindNumbered(reader, 2), position);
  EXPECT_EQ(iDK_TreeLock(reader, true), kDkIoError) << "a change hold on a read-only handle";
}

}  // namespace
}  // namespace korvan::storage::testing
