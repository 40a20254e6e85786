#include <gtest/gtest.h>

#include "db_kernel_fixture.h"
#include "storage/db_kernel.h"

namespace korvan::storage::testing {
namespace {

class DbKernelConcurrency : public DbKernelTest {
 protected:
  void SetUp() override {
    iDK_SetTypeShareable('S', true);
    ASSERT_EQ(iDK_DbCreate('S', Base("db"), 20, &handle_), 0);
    first_ = MakeRecord('P', 100, 1, "ALICE");
    second_ = MakeRecord('P', 100, 2, "ALICE");
    Insert(handle_, first_);   // 80
    Insert(handle_, second_);  // 180
    ASSERT_EQ(iDK_DbFlush(handle_), 0);
    previous_ = iDK_EnableConcurrencyDetection();
  }
  void TearDown() override {
    if (!previous_) iDK_DisableConcurrencyDetection();
    iDK_SetTypeShareable('S', false);
    DbKernelTest::TearDown();
  }

  // Another user (a child process) rewrites or deletes the record at a position.
  int OtherUser(int32_t position, const std::string& user, bool erase) {
    return ResultInChild([&] {
      ForgetInheritedDatabases();
      int handle = 0;
      if (int opened = iDK_DbOpen('S', Base("db"), true, true, &handle); opened != 0) return opened;
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

  int handle_ = 0;
  bool previous_ = false;
  std::vector<uint8_t> first_;
  std::vector<uint8_t> second_;
};

TEST_F(DbKernelConcurrency, UpdateOfARecordAnotherUserChangedRaises) {
  ASSERT_EQ(OtherUser(80, "BOB", false), 0);
  auto stale = first_;
  try {
    iDK_RecordUpdate(handle_, stale.data(), 100, 80, 100);
    ADD_FAILURE() << "no conflict";
  } catch (const EDbKernelConcurrencyException& conflict) {
    EXPECT_EQ(conflict.FErrorCode, 4358);
    EXPECT_EQ(conflict.FDbHandle, handle_);
    EXPECT_EQ(conflict.FDbOperation, TDKDatabaseOperation::doUpdate);
    EXPECT_EQ(conflict.FTableType, 'P');
    EXPECT_EQ(conflict.FModifiedById, "BOB");
    EXPECT_FALSE(conflict.FRecordIsDeleted);
    EXPECT_EQ(std::string(conflict.what())
                  .rfind("Update: Dataset (Type: P) has already been "
                         "changed by user id: \"BOB\" at: ",
                         0),
              0u)
        << conflict.what();
  }
  EXPECT_EQ(Read(handle_, 80)[26], 'B');  // the other user's record is untouched

  // Switched off for mass updates: the stale write goes through.
  EXPECT_TRUE(iDK_DisableConcurrencyDetection());
  EXPECT_FALSE(iDK_DisableConcurrencyDetection());
  EXPECT_EQ(iDK_RecordUpdate(handle_, stale.data(), 100, 80, 100), 0);
  EXPECT_FALSE(iDK_EnableConcurrencyDetection());
  EXPECT_TRUE(iDK_ConcurrencyDetectionEnabled());
}

TEST_F(DbKernelConcurrency, SameUserAndSystemWritesDoNotConflict) {
  ASSERT_EQ(OtherUser(80, "ALICE", false), 0);
  auto stale = first_;
  EXPECT_EQ(iDK_RecordUpdate(handle_, stale.data(), 100, 80, 100), 0);
  ASSERT_EQ(OtherUser(180, "FFFFFFFF", false), 0);
  stale = second_;
  EXPECT_EQ(iDK_RecordUpdate(handle_, stale.data(), 100, 180, 100), 0);
  // Own writes never conflict: the buffer carries the stamp the kernel wrote.
  EXPECT_EQ(iDK_RecordUpdate(handle_, stale.data(), 100, 180, 100), 0);
}

TEST_F(DbKernelConcurrency, DeletedByAnotherUserIsReportedAsDeleted) {
  ASSERT_EQ(OtherUser(80, "BOB", true), 0);
  auto stale = first_;
  try {
    iDK_RecordDelete(handle_, stale.data(), 80);
    ADD_FAILURE() << "no conflict";
  } catch (const EDbKernelConcurrencyException& conflict) {
    EXPECT_EQ(conflict.FDbOperation, TDKDatabaseOperation::doDelete);
    EXPECT_TRUE(conflict.FRecordIsDeleted);
    EXPECT_EQ(conflict.FModifiedById, "BOB");
  }
}

}  // namespace
}  // namespace korvan::storage::testing
