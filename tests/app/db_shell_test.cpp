#include "app/db_shell.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "app/key_text.h"
#include "storage/db_kernel.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

constexpr int kKeyLength = 16;

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string Repeat(const std::string& piece, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

// A shell on a fresh database with the key length above.
class DbShellTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(storage::iDK_DbCreate('T', dir_.File("db"), kKeyLength, &handle_), 0);
  }
  void TearDown() override { storage::iDK_DbClose(handle_); }

  // Runs a script and returns its result lines; *bad receives the lines not understood.
  std::vector<std::string> Run(const std::string& script, int* bad = nullptr) {
    std::ostringstream out;
    DbShell shell(handle_, kKeyLength, out);
    std::istringstream in(script);
    const int not_understood = shell.Run(in);
    if (bad != nullptr) *bad = not_understood;
    return Lines(out.str());
  }

  korvan::testing::TempDir dir_;
  int handle_ = 0;
};

TEST_F(DbShellTest, RecordsAreInsertedReadUpdatedAndDeleted) {
  int bad = -1;
  const auto lines =
      Run("# two records, the first one rewritten\n"
          "insert A 3 ab\n"
          "\n"
          "insert Z 0 7\n"
          "read 80\n"
          "read 131\n"
          "update 80 1 ff\n"
          "read 80\n"
          "update 80 4 ff\n"
          "delete 131\n"
          "read 131\n"
          "read 80\n",
          &bad);
  EXPECT_EQ(bad, 0);
  const std::vector<std::string> expected = {"80",         "131",         "51 A ababab", "48 Z",
                                             "ok",         "51 A ff0000",  // slot keeps its size
                                             "4313",                       // 52 bytes do not fit 51
                                             "ok",         "4353",         // the file ends at 131
                                             "51 A ff0000"};
  EXPECT_EQ(lines, expected);
}

TEST_F(DbShellTest, KeysAreWalkedInOrderAndCounted) {
  const auto lines =
      Run("key+ 300 B\\x01\n"
          "key+ 100 Aa\n"
          "key+ 200 Aa\n"
          "key+ 100 Aa\n"
          "first A\n"
          "next\n"
          "next\n"
          "next\n"
          "prev\n"
          "last A\n"
          "count A\n"
          "count \\x04\n"
          "key- 200 Aa\n"
          "key- 200 Aa\n"
          "count A\n"
          "first C\n"
          "flush\n");
  const std::string pads = Repeat(".", kKeyLength - 2);
  const std::vector<std::string> expected = {"ok",
                                             "ok",
                                             "ok",
                                             "4291",  // the same pair twice
                                             "100 Aa" + pads,
                                             "200 Aa" + pads,
                                             "300 B\\x01" + pads,
                                             "4314",  // past the last key
                                             "200 Aa" + pads,
                                             "200 Aa" + pads,
                                             "2",
                                             "3",
                                             "ok",
                                             "4314",
                                             "1",
                                             "4314",
                                             "ok"};
  EXPECT_EQ(lines, expected);
}

TEST_F(DbShellTest, DeletedRecordsLeaveFreeSpaceKeysThatCountOnlyWithTilde) {
  const auto lines =
      Run("insert A 52 1\n"
          "insert B 0 2\n"
          "delete 80\n"
          "count \\x04\n"
          "count \\x04 tilde\n"
          "first ~\n"
          "insert C 48 3\n"
          "count ~ tilde\n");
  ASSERT_EQ(lines.size(), 8u);
  EXPECT_EQ(lines[2], "ok");
  EXPECT_EQ(lines[3], "0");
  EXPECT_EQ(lines[4], "1");
  EXPECT_EQ(lines[5], "80 ~        100....");  // the freed block of 100 bytes
  EXPECT_EQ(lines[6], "80");                   // the largest free block is reused
  EXPECT_EQ(lines[7], "1");                    // its 4-byte rest is a block of its own
}

TEST_F(DbShellTest, WrongLinesSayWhyAndTheShellGoesOn) {
  int bad = 0;
  const auto lines =
      Run("frobnicate\n"
          "insert a 3 1\n"
          "insert A -1 1\n"
          "insert A 3 1ff\n"
          "read\n"
          "next\n"
          "key+ 80 " +
              Repeat("x", kKeyLength + 1) +
              "\n"
              "key+ 80 A\\x4\n"
              "count A maybe\n"
              "read 999999\n"
              "insert A 1 00\n",
          &bad);
  ASSERT_EQ(lines.size(), 11u);
  EXPECT_EQ(bad, 9);
  for (int i = 0; i < 9; ++i) EXPECT_EQ(lines[i].rfind("error: ", 0), 0u) << lines[i];
  EXPECT_NE(lines[0].find("frobnicate"), std::string::npos);
  EXPECT_NE(lines[6].find("key length is 16"), std::string::npos) << lines[6];
  EXPECT_EQ(lines[9], "4353");  // a kernel failure is a result, not a wrong line
  EXPECT_EQ(lines[10], "80");
}

TEST(KeyText, BytesRoundTripThroughTheirText) {
  const std::vector<uint8_t> key = {'A', 0x04, '.', '\\', 0x00, 0xff, ' ', 'z'};
  const std::string text = KeyToText(key);
  EXPECT_EQ(text, "A.\\x2e\\x5c\\x00\\xff z");
  std::string error;
  auto back = KeyFromText("A\\x04\\x2e\\x5c\\x00\\xFF z", &error);
  ASSERT_TRUE(back.has_value()) << error;
  EXPECT_EQ(*back, key);
  EXPECT_EQ(KeyEntryLine(42, key), "42 " + text);

  for (const char* broken : {"A\\", "A\\x", "A\\x4", "A\\y41", "\\xg0"}) {
    EXPECT_FALSE(KeyFromText(broken, &error).has_value()) << broken;
    EXPECT_NE(error.find("escape"), std::string::npos) << error;
  }
}

}  // namespace
}  // namespace korvan::app
