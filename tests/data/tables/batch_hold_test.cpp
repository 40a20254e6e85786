#include "data/tables/batch_hold.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "data/tables/std_tb_test_support.h"
#include "storage/db_kernel_fixture.h"
#include "testing/child_process.h"

namespace korvan::data::testing {
namespace {

using BatchHoldTest = TableTest;

// Another user counting the records' keys: it must wait while a batch is under way.
std::unique_ptr<korvan::testing::ChildProcess> KeyCounter(const std::string& base, char db_type,
                                                          int key_length) {
  return std::make_unique<korvan::testing::ChildProcess>(
      [=](const korvan::testing::Channel& parent) {
        storage::testing::ForgetInheritedDatabases();
        int handle = 0;
        if (storage::iDK_DbOpen(db_type, base, false, true, &handle) != 0) return 1;
        storage::KeyEntry entry =
            MakeKeyEntry(std::string(static_cast<size_t>(key_length), kKeyPadChar));
        uint32_t position = 0;
        int32_t keys = 0;
        for (int found = storage::iDK_KeyFirstMatch(handle, entry, &position); found == 0;
             found = storage::iDK_KeyNext(handle, entry, &position)) {
          if (KeyOf(entry, key_length)[0] != '~') ++keys;
        }
        return parent.Send(keys) ? 0 : 2;
      });
}

TEST_F(BatchHoldTest, OtherUsersWaitForTheBatchThenSeeAllOfIt) {
  TTbTestItem table(*db_);
  std::unique_ptr<korvan::testing::ChildProcess> reader;
  const auto expect_reader_sees_all = [&] {
    EXPECT_EQ(reader->Receive(), static_cast<int32_t>(AllKeys().size()));
    EXPECT_EQ(reader->Wait(), 0);
  };
  for (const bool finished : {true, false}) {
    SCOPED_TRACE(finished ? "ended by Finish" : "ended by leaving the scope");
    {
      TBatchHold batch({db_.get()}, 100);
      for (int32_t id = finished ? 1 : 101; id % 100 <= 20; ++id) {
        ASSERT_EQ(InsertItem(table, id, id), 0);
        ASSERT_EQ(batch.Step(), 0);
      }
      reader = KeyCounter(db_->BasePath(), kDbType, kKeyLength);
      usleep(200 * 1000);
      EXPECT_TRUE(reader->Running()) << "the other user did not wait for the batch";
      if (finished) {
        ASSERT_EQ(batch.Finish(), 0);
        expect_reader_sees_all();
      }
    }
    if (!finished) expect_reader_sees_all();
  }
  EXPECT_TRUE(StorageProblems().empty());
}

}  // namespace
}  // namespace korvan::data::testing
