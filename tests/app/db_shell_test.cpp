#include "app/commands/db/db_shell.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "app/commands/db/key_text.h"
#include "storage/db_kernel.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

constexpr int kKeyLength = 16;

// A shell on a fresh database with the key length above.
class DbShellTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(storage::iDK_DbCreate('T', dir_.File("db"), kKeyLength, &handle_), 0);
  }
  void TearDown() override { storage::iDK_DbClose(handle_); }

  // Runs a script and returns its output; *bad receives the number of lines not understood.
  std::string Run(const std::string& script, int* bad = nullptr) {
    std::ostringstream out;
    DbShell shell(handle_, kKeyLength, out);
    std::istringstream in(script);
    const int not_understood = shell.Run(in);
    if (bad != nullptr) *bad = not_understood;
    return out.str();
  }

  korvan::testing::TempDir dir_;
  int handle_ = 0;
};

TEST_F(DbShellTest, RecordsAreInsertedReadUpdatedDeletedAndTheirSpaceReused) {
  int bad = -1;
  EXPECT_EQ(Run("# two records, the first one rewritten\ninsert A 3 ab\n\ninsert Z 0 7\n"
                "read 80\nread 131\nupdate 80 1 ff\nread 80\nupdate 80 4 ff\ndelete 131\n"
                "read 131\nread 80\n",
                &bad),
            "80\n131\n51 A ababab\n48 Z\nok\n"
            "51 A ff0000\n"  // the slot keeps its size
            "4313\n"         // 52 bytes do not fit 51
            "ok\n4353\n"     // the file ends at 131
            "51 A ff0000\n");
  EXPECT_EQ(bad, 0);

  // The freed block leaves a free-space key that only a count with "tilde" sees; the
  // largest free block is reused and its 4-byte rest is a block of its own.
  EXPECT_EQ(Run("insert A 52 1\ninsert B 0 2\ndelete 131\ncount \\x04\ncount \\x04 tilde\n"
                "first ~\ninsert C 48 3\ncount ~ tilde\n"),
            "131\n231\nok\n0\n1\n131 ~        100....\n131\n1\n");
}

TEST_F(DbShellTest, WrongLinesSayWhyAndTheShellGoesOn) {
  int bad = 0;
  std::istringstream lines(
      Run("frobnicate\ninsert a 3 1\ninsert A -1 1\ninsert A 3 1ff\nread\n"
          "next\nkey+ 80 " +
              std::string(kKeyLength + 1, 'x') +
              "\nkey+ 80 A\\x4\ncount A maybe\nread 999999\ninsert A 1 00\n",
          &bad));
  std::vector<std::string> out;
  for (std::string line; std::getline(lines, line);) out.push_back(line);
  ASSERT_EQ(out.size(), 11u);
  EXPECT_EQ(bad, 9);
  for (int i = 0; i < 9; ++i) EXPECT_EQ(out[i].rfind("error: ", 0), 0u) << out[i];
  EXPECT_NE(out[0].find("frobnicate"), std::string::npos);
  EXPECT_NE(out[6].find("key length is 16"), std::string::npos) << out[6];
  EXPECT_EQ(out[9], "4353");  // a kernel failure is a result, not a wrong line
  EXPECT_EQ(out[10], "80");
}

TEST(KeyText, BytesRoundTripThroughTheirText) {
  const std::vector<uint8_t> key = {'A', 0x04, '.', '\\', 0x00, 0xff, ' ', 'z'};
  EXPECT_EQ(KeyToText(key), "A.\\x2e\\x5c\\x00\\xff z");
  std::string error;
  auto back = KeyFromText("A\\x04\\x2e\\x5c\\x00\\xFF z", &error);
  ASSERT_TRUE(back.has_value()) << error;
  EXPECT_EQ(*back, key);
  EXPECT_EQ(KeyEntryLine(42, key), "42 " + KeyToText(key));
  for (const char* broken : {"A\\", "A\\x", "A\\x4", "A\\y41", "\\xg0"}) {
    EXPECT_FALSE(KeyFromText(broken, &error).has_value()) << broken;
    EXPECT_NE(error.find("escape"), std::string::npos) << error;
  }
}

}  // namespace
}  // namespace korvan::app
