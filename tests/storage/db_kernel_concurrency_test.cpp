#include <gtest/gtest.h>

#include "db_kernel_fixture.h"

namespace korvan::storage::testing {
namespace {

using DbKernelConcurrency = DbKernelTest;

// Another user (a child process) rewrites, and perhaps then deletes, a record.
int OtherUser(const std::string& base, int32_t position, const std::string& user, bool erase) {
  return InFreshChild([&] {
    int handle = 0;
    if (int opened = iDK_DbOpen('S', base, true, true, &handle); opened != 0) return opened;
    std::vector<uint8_t> record(100);
    int32_t length = 100;
    iDK_RecordRead(handle, position, record.data(), &length, true);
    record[25] = static_cast<uint8_t>(user.size());
    std::memcpy(record.data() + 26, user.data(), user.size());
    // The freed block keeps the header of the last write, so the deleter writes first.
    int result = iDK_RecordUpdate(handle, record.data(), 100, position, 100);
    if (result == 0 && erase) result = iDK_RecordDelete(handle, record.data(), position);
    iDK_DbClose(handle);
    return result;
  });
}

TEST_F(DbKernelConcurrency, WritesOverAnotherUsersChangeRaise) {
  const int handle = Create("db", 'S', 20);
  std::vector<std::vector<uint8_t>> records;
  for (uint8_t fill = 0; fill < 4; ++fill) {
    records.push_back(MakeRecord('P', 100, fill, "ALICE"));
    Insert(handle, records.back());  // at 80, 180, 280, 380
  }
  ASSERT_EQ(iDK_DbFlush(handle), 0);
  const bool was_enabled = iDK_EnableConcurrencyDetection();
  ASSERT_EQ(OtherUser(Base("db"), 80, "BOB", false), 0);
  ASSERT_EQ(OtherUser(Base("db"), 180, "BOB", true), 0);
  ASSERT_EQ(OtherUser(Base("db"), 280, "ALICE", false), 0);
  ASSERT_EQ(OtherUser(Base("db"), 380, "FFFFFFFF", false), 0);
  try {
    iDK_RecordUpdate(handle, records[0].data(), 100, 80, 100);
    ADD_FAILURE() << "no conflict";
  } catch (const EDbKernelConcurrencyException& conflict) {
    EXPECT_EQ(conflict.FErrorCode, 4358);
    EXPECT_EQ(conflict.FDbHandle, handle);
    EXPECT_EQ(conflict.FModifiedById, "BOB");
    EXPECT_FALSE(conflict.FRecordIsDeleted);
    EXPECT_EQ(
        std::string(conflict.what())
            .rfind("Update: Dataset (Type: P) has already been changed by user id: \"BOB\"", 0),
        0u)
        << conflict.what();
  }
  EXPECT_EQ(Read(handle, 80)[26], 'B');  // the other user's record is untouched
  try {
    iDK_RecordDelete(handle, records[1].data(), 180);
    ADD_FAILURE() << "no conflict";
  } catch (const EDbKernelConcurrencyException& conflict) {
    EXPECT_EQ(conflict.FDbOperation, TDKDatabaseOperation::doDelete);
    EXPECT_TRUE(conflict.FRecordIsDeleted);
    EXPECT_EQ(conflict.FModifiedById, "BOB");
  }
  // The same user and the system may overwrite; own writes carry the stamp just written.
  EXPECT_EQ(iDK_RecordUpdate(handle, records[2].data(), 100, 280, 100), 0);
  EXPECT_EQ(iDK_RecordUpdate(handle, records[3].data(), 100, 380, 100), 0);
  EXPECT_EQ(iDK_RecordUpdate(handle, records[3].data(), 100, 380, 100), 0);

  // Switched off for mass updates: the stale write goes through.
  EXPECT_TRUE(iDK_DisableConcurrencyDetection());
  EXPECT_EQ(iDK_RecordUpdate(handle, records[0].data(), 100, 80, 100), 0);
  EXPECT_FALSE(iDK_EnableConcurrencyDetection());
  if (!was_enabled) iDK_DisableConcurrencyDetection();

  // 45000.5 is 15 March 2023, 12:00.
  EXPECT_STREQ(
      EDbKernelConcurrencyException(4, TDKDatabaseOperation::doUpdate, 'P', 45000.5, "MEIER", false)
          .what(),
      "Update: Dataset (Type: P) has already been changed by user id: \"MEIER\" at: "
      "15.03.2023 12:00:00");
}

}  // namespace
}  // namespace korvan::storage::testing
