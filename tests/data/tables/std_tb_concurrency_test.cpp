#include <gtest/gtest.h>
#include <unistd.h>

#include <memory>

#include "data/tables/std_tb_test_support.h"
#include "data/tables/table_change_journal.h"
#include "storage/db_kernel_codes.h"
#include "storage/db_kernel_fixture.h"
#include "storage/db_kernel_locks.h"
#include "testing/child_process.h"

namespace korvan::data::testing {
namespace {

using storage::testing::ForgetInheritedDatabases;
using storage::testing::InFreshChild;

// Hears of a change before it is written, and lets another process try to read the
// database's keys meanwhile: that reader must wait until the change is done.
class KeyReaderDuringChange : public TableChangeObserver {
 public:
  KeyReaderDuringChange(std::string base, char db_type, int key_length)
      : base_(std::move(base)), db_type_(db_type), key_length_(key_length) {}
  void RecordWillChange(const TableTarget&, JournalImage, JournalImage) override {
    reader_ = std::make_unique<korvan::testing::ChildProcess>([&](const korvan::testing::Channel&) {
      ForgetInheritedDatabases();
      int handle = 0;
      if (storage::iDK_DbOpen(db_type_, base_, false, true, &handle) != 0) return 1;
      storage::KeyEntry entry =
          MakeKeyEntry(std::string(static_cast<size_t>(key_length_), kKeyPadChar));
      uint32_t position = 0;
      const int found = storage::iDK_KeyFirstMatch(handle, entry, &position);
      return found == 0 || found == storage::kDkKeyNotFound ? 0 : 2;
    });
    usleep(300 * 1000);
    reader_waited_ = reader_->Running();
  }
  void RecordInserted(const TableTarget&, JournalImage) override {}
  void RecordUpdated(const TableTarget&, JournalImage, JournalImage) override {}
  void RecordDeleted(const TableTarget&, JournalImage) override {}

  // Whether the reader waited for the change and then read.
  bool ReaderWaitedAndRead() { return reader_waited_ && reader_->Wait() == 0; }

 private:
  std::string base_;
  char db_type_;
  int key_length_;
  std::unique_ptr<korvan::testing::ChildProcess> reader_;
  bool reader_waited_ = false;
};

class TableConcurrency : public TableTest {
 protected:
  void SetUp() override {
    TableTest::SetUp();
    previous_ = storage::iDK_EnableConcurrencyDetection();
    db_->SetConcurrencyQuestion(&answer_no_);
  }
  void TearDown() override {
    TStdDb::RestoreConcurrencyDetection(previous_);
    TableTest::TearDown();
  }

  // Runs `work` as another user: in a child process with its own handle of the database.
  template <typename Work>
  int AsOtherUser(Work work) {
    EXPECT_EQ(db_->Flush(), 0);
    const std::string base = db_->BasePath();
    return InFreshChild([&] {
      int handle = 0;
      if (int opened = storage::iDK_DbOpen(kDbType, base, true, true, &handle); opened != 0) {
        return opened;
      }
      const int result = work(handle);
      storage::iDK_DbClose(handle);
      return result;
    });
  }

  // Another user rewrites the tail of the record at a position.
  int OtherUserChangesTail(int32_t position, uint8_t fill) {
    return AsOtherUser([&](int handle) {
      std::vector<uint8_t> record(1024);
      int32_t length = 1024;
      storage::iDK_RecordRead(handle, position, record.data(), &length, true);
      record.resize(static_cast<size_t>(length));
      std::fill(record.begin() + sizeof(t_TestItem), record.end(), fill);
      std::memcpy(record.data() + 25, "\003BOB",
                  4);  // ModifiedById
      return storage::iDK_RecordUpdate(handle, record.data(), length, position, length);
    });
  }

  TFixedConcurrencyAnswer answer_no_{false};
  bool previous_ = false;
};

TEST_F(TableConcurrency, ChangedByAnotherUserIsAskedAndNoWritesNothing) {
  TTbTestItem table(*db_);
  ASSERT_EQ(InsertItem(table, 1, 10, 16, 0x11), 0);
  const int32_t position = table.CurrentRecordPos();
  const std::vector<std::string> keys_before = AllKeys();

  ASSERT_EQ(OtherUserChangesTail(position, 0x22), 0);
  table.Rec().Code = 99;  // this user changes a key field of the stale copy
  EXPECT_EQ(table.UpDateRec(), storage::kDkConcurrencyConflict);
  EXPECT_EQ(answer_no_.questions(), 1);
  const std::string& question = answer_no_.last_question();
  EXPECT_EQ(question.rfind(
                "DB: DB_Stamm\r\nDer Datensatz \"TTbTestItem 00000000001\" wurde bereits am ", 0),
            0u)
      << question;
  EXPECT_NE(question.find(" von \"BOB\" geändert.\r\nSoll der Datensatz überschrieben werden?"),
            std::string::npos)
      << question;
  EXPECT_EQ(AllKeys(), keys_before);
  TTbTestItem fresh(*db_);
  ASSERT_TRUE(fresh.GetKey(KeyNumber(1)));
  EXPECT_EQ(fresh.Rec().Code, 10);
  EXPECT_EQ(fresh.Tail(), std::vector<uint8_t>(16, 0x22));  // the other user's change stays

  // Asked again and answered yes: this user's record overwrites, keys follow.
  TFixedConcurrencyAnswer answer_yes(true);
  db_->SetConcurrencyQuestion(&answer_yes);
  db_->SetUserNameLookup([](const std::string& id) { return "Bob Baumann (" + id + ")"; });
  EXPECT_EQ(table.UpDateRec(), 0);
  EXPECT_EQ(answer_yes.questions(), 1);
  EXPECT_NE(answer_yes.last_question().find("von \"Bob Baumann (BOB)\""), std::string::npos);
  EXPECT_TRUE(storage::iDK_ConcurrencyDetectionEnabled());
  ASSERT_TRUE(fresh.GetKey(KeyNumber(99), '2'));
  EXPECT_EQ(fresh.Tail(), std::vector<uint8_t>(16, 0x11));
  EXPECT_FALSE(fresh.GetKey(KeyNumber(10), '2'));
  EXPECT_TRUE(StorageProblems().empty());
}

TEST_F(TableConcurrency, DeleteOfAChangedRecordAnsweredNoKeepsIt) {
  TTbTestItem table(*db_);
  ASSERT_EQ(InsertItem(table, 1, 10, 4, 0x11), 0);
  ASSERT_EQ(OtherUserChangesTail(table.CurrentRecordPos(), 0x33), 0);
  EXPECT_EQ(table.DeleteRec(), storage::kDkConcurrencyConflict);
  EXPECT_TRUE(table.ExistsRec(KeyNumber(1)));
  EXPECT_TRUE(table.ExistsRec(KeyNumber(10), '2'));
  EXPECT_EQ(AllKeys().size(), 2u);
}

TEST_F(TableConcurrency, ALockedRecordIsRefusedToOtherUsers) {
  TTbTestItem table(*db_);
  ASSERT_EQ(InsertItem(table, 1, 10), 0);
  ASSERT_EQ(table.LockRec(), 0);
  EXPECT_TRUE(table.IsLocked());
  const std::string name = table.RecordLockName();
  EXPECT_EQ(name, "T100000000001");
  const auto other_user_locks = [&] {
    return AsOtherUser([&](int handle) {
      int task = 0;
      int result = storage::iDK_DbLock(handle, 4711, false, &task);
      if (result == 0) result = storage::iDK_LockSet(handle, task, true, name, nullptr);
      storage::iDK_DbUnlock(handle);
      return result;
    });
  };
  EXPECT_EQ(other_user_locks(), storage::kDkRecordLocked);
  ASSERT_EQ(table.UnLockRec(), 0);
  EXPECT_EQ(other_user_locks(), 0);
  EXPECT_FALSE(db_->OtherUserLocked(name));
}

TEST_F(TableTest, OtherProcessesWaitWhileAnUpdateOrADeleteIsUnderWay) {
  TTbTestItem table(*db_);
  ASSERT_EQ(InsertItem(table, 1, 10, 8, 0x11), 0);
  {
    KeyReaderDuringChange reader(db_->BasePath(), kDbType, kKeyLength);
    ScopedTableChangeObserver observing(&reader);
    table.Rec().Code = 11;
    ASSERT_EQ(table.UpDateRec(), 0);
    EXPECT_TRUE(reader.ReaderWaitedAndRead()) << "update";
  }
  KeyReaderDuringChange reader(db_->BasePath(), kDbType, kKeyLength);
  ScopedTableChangeObserver observing(&reader);
  ASSERT_EQ(table.DeleteRec(), 0);
  EXPECT_TRUE(reader.ReaderWaitedAndRead()) << "delete";
}

// Two processes insert the same unique ids at once: the unique check and the insert it
// guards are one change, so every id ends with one record and one key.
TEST_F(TableTest, TwoProcessesInsertingTheSameUniqueIdsLeaveOneRecordEach) {
  constexpr int32_t kIds = 300;
  const std::string directory = dir_.path().string();
  db_.reset();
  TStdDbDatas::Instance().ReleaseEmpty();
  const auto insert_all = [&] {
    TStdDb db("DB_Stamm", directory, kDbType, kKeyLength);
    if (int opened = db.DbOpen(); opened != 0) return -opened;
    TTbTestItem table(db);
    int inserted = 0;
    for (int32_t id = 0; id < kIds; ++id) {
      const int result = InsertItem(table, id, kNullId);
      if (result == 0) ++inserted;
      if (result != 0 && result != storage::kDkDuplicateKey) return -result;
    }
    return inserted;
  };
  const auto writer = [&](const korvan::testing::Channel& parent) {
    return parent.Send(insert_all()) ? 0 : 1;
  };
  korvan::testing::ChildProcess first(writer);
  korvan::testing::ChildProcess second(writer);
  int total = 0;
  for (korvan::testing::ChildProcess* child : {&first, &second}) {
    const int32_t inserted = child->Receive();
    EXPECT_GE(inserted, 0) << "a writer failed with " << -inserted;
    total += inserted;
    EXPECT_EQ(child->Wait(), 0);
  }
  EXPECT_EQ(total, kIds) << "inserts acknowledged to both writers";

  db_ = std::make_unique<TStdDb>("DB_Stamm", directory, kDbType, kKeyLength);
  ASSERT_EQ(db_->DbOpen(), 0);
  int32_t records = 0;
  ASSERT_EQ(db_->RecordCount(0, &records), 0);
  EXPECT_EQ(records, kIds);
  EXPECT_EQ(AllKeys().size(), size_t{kIds});
  EXPECT_EQ(StorageProblems(), std::vector<std::string>{});
}

}  // namespace
}  // namespace korvan::data::testing
