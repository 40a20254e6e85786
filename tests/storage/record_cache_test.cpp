// Records read again under the tree lock come from memory; whatever another process
// writes, and whatever this one writes, is seen.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <memory>

#include "db_kernel_fixture.h"
#include "numbered_records.h"
#include "storage/db_kernel_exception.h"
#include "storage/result_codes.h"

namespace korvan::storage::testing {
namespace {

constexpr int32_t kLength = 120;

class RecordCacheTest : public DbKernelTest {
 protected:
  // A shared database with one record, read once under the lock.
  void SetUp() override {
    handle_ = Create("cached", 'S', 24);
    std::vector<uint8_t> record = MakeRecord('A', kLength, 0x11);
    position_ = Insert(handle_, record);
    EXPECT_EQ(FillByteUnderLock(), 0x11);
  }

  // The last byte of the record, read under a shared hold.
  int FillByteUnderLock() {
    EXPECT_EQ(iDK_TreeLock(handle_, false), 0);
    const std::vector<uint8_t> record = Read(handle_, position_);
    EXPECT_EQ(iDK_TreeUnlock(handle_), 0);
    return record.size() == size_t{kLength} ? record.back() : -1;
  }

  // Changes the record's body in the file without the kernel: a read from the file
  // would tell.
  void OverwriteBodyInFile(uint8_t fill) {
    const int fd = open(DataFile("cached").c_str(), O_WRONLY);
    ASSERT_GE(fd, 0);
    const std::vector<uint8_t> body(kLength - kRecordHeaderSize, fill);
    ASSERT_EQ(pwrite(fd, body.data(), body.size(), position_ + kRecordHeaderSize),
              ssize_t(body.size()));
    close(fd);
  }

  // Another process, open for writing and past its first change (the one that marks it
  // as a writer), updates the record to `fill` once this one has read it again under
  // the lock. With `killed` it is killed before it lets go of its lock; otherwise it
  // stays open until the test ends, so that its close changes nothing seen here.
  void UpdateInOtherProcess(uint8_t fill, bool killed) {
    other_ = std::make_unique<korvan::testing::ChildProcess>(
        [&](const korvan::testing::Channel& parent) {
          ForgetInheritedDatabases();
          int own = 0;
          std::vector<uint8_t> record = MakeRecord('A', kLength, 0x11);
          int result = iDK_DbOpen('S', Base("cached"), true, true, &own);
          if (result == 0)
            result = iDK_RecordUpdate(own, record.data(), kLength, position_, kLength);
          parent.Send(result);
          if (parent.Receive() != 'g') return 4;
          if (killed && iDK_TreeLock(own, true) != 0) return 5;
          record = MakeRecord('A', kLength, fill);
          parent.Send(iDK_RecordUpdate(own, record.data(), kLength, position_, kLength));
          for (;;) pause();
        });
    ASSERT_EQ(other_->Receive(), 0) << "the other process's first change";
    EXPECT_EQ(FillByteUnderLock(), 0x11);
    other_->Send('g');
    EXPECT_EQ(other_->Receive(), 0) << "the other process's update";
    if (killed) other_->Kill();
  }

  int handle_ = 0;
  int32_t position_ = 0;
  std::unique_ptr<korvan::testing::ChildProcess> other_;
};

TEST_F(RecordCacheTest, ARecordReadAgainUnderTheLockComesFromMemory) {
  OverwriteBodyInFile(0x22);
  EXPECT_EQ(FillByteUnderLock(), 0x11) << "the second read went to the file";
  EXPECT_EQ(Read(handle_, position_).back(), 0x22) << "a read without the lock reads the file";
}

TEST_F(RecordCacheTest, AnUpdateByAnotherProcessIsSeenAtTheNextLock) {
  UpdateInOtherProcess(0x33, false);
  EXPECT_EQ(FillByteUnderLock(), 0x33);
}

TEST_F(RecordCacheTest, AWriterKilledBeforeItsUnlockLeavesNoStaleRecord) {
  UpdateInOtherProcess(0x44, true);
  EXPECT_EQ(FillByteUnderLock(), 0x44);
}

TEST_F(RecordCacheTest, ThisProcessSeesItsOwnWritesInsideOneHold) {
  ASSERT_EQ(iDK_TreeLock(handle_, true), 0);
  EXPECT_EQ(Read(handle_, position_).back(), 0x11);
  std::vector<uint8_t> updated = MakeRecord('A', kLength, 0x55);
  ASSERT_EQ(iDK_RecordUpdate(handle_, updated.data(), kLength, position_, kLength), 0);
  EXPECT_EQ(Read(handle_, position_).back(), 0x55);

  // A record behind keeps the freed one from vanishing at the end of the file.
  std::vector<uint8_t> behind = MakeRecord('A', kLength, 0x66);
  Insert(handle_, behind);
  TDbRecordHeader header{};
  ASSERT_EQ(iDK_RecordDelete(handle_, &header, position_), 0);
  std::vector<uint8_t> buffer(kLength);
  int32_t length = kLength;
  try {
    iDK_RecordRead(handle_, position_, buffer.data(), &length, true);
    ADD_FAILURE() << "a deleted record was read";
  } catch (const EDbKernelException& error) {
    EXPECT_EQ(error.FErrorCode, kDkRecordDeleted);
  }
  std::vector<uint8_t> reused = MakeRecord('A', kLength, 0x77);
  ASSERT_EQ(Insert(handle_, reused), position_) << "the freed block is reused";
  EXPECT_EQ(Read(handle_, position_).back(), 0x77);
  ASSERT_EQ(iDK_TreeUnlock(handle_), 0);
  EXPECT_EQ(FillByteUnderLock(), 0x77);
}

}  // namespace
}  // namespace korvan::storage::testing
