// `korvan db check` on a database whose writer was killed before it closed it.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "storage/db_kernel.h"
#include "testing/child_process.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

// Stores records with a key each in a child process, which is killed once it says so.
int32_t WriteAndGetKilled(const std::string& base, int records) {
  return testing::ResultThenKill([&] {
    int handle = 0;
    int failed = storage::iDK_DbOpen('T', base, true, false, &handle);
    for (int i = 0; failed == 0 && i < records; ++i) {
      std::vector<uint8_t> record(60, static_cast<uint8_t>(i));
      storage::TDbRecordHeader header{};
      header.RecLen = static_cast<int32_t>(record.size());
      header.RecTyp = 'A';
      std::memcpy(record.data(), &header, sizeof header);
      int32_t position = 0;
      failed = storage::iDK_RecordInsert(handle, record.data(), header.RecLen, true, &position);
      storage::KeyEntry key;
      std::memset(key.key, storage::kKeyPad, sizeof key.key);
      const std::string text = "A" + std::to_string(100000 + i);
      std::memcpy(key.key, text.data(), text.size());
      key.position = static_cast<uint32_t>(position);
      if (failed == 0) failed = storage::iDK_KeyInsert(handle, key);
    }
    return failed;
  });
}

TEST(DbCheckUnclean, KeyFileOfAKilledWriterIsReportedNotTrusted) {
  testing::TempDir dir;
  const std::string base = dir.File("killed");
  testing::ExpectKorvan({"db", "create", base, "--type", "T", "--keylen", "20"}, 0);
  ASSERT_EQ(WriteAndGetKilled(base, 500), 0);

  const testing::ProgramResult check = testing::ExpectKorvan(
      {"db", "check", base}, 1, {base + "1: nicht sauber geschlossen", "4325"});
  EXPECT_FALSE(testing::Contains(check.out, "no problems found"));
  // The tables of a bare database are unknown: nothing rebuilds it behind the user's back.
  testing::ExpectKorvan({"db", "check", base}, 1, {"nicht sauber geschlossen"});
}

}  // namespace
}  // namespace korvan
