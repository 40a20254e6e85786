// `korvan db` end to end: through the binary, on databases made by its own shell and on
// files damaged by hand.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

using testing::ProgramResult;
using testing::RunKorvanBinary;

// Three records (58, 51 and 148 bytes at 80, 138 and 189), the middle one deleted again,
// and a key for each of the others: key length 20.
constexpr char kBuildScript[] =
    "insert A 10 ab\n"
    "insert B 3 01\n"
    "insert C 100 ff\n"
    "key+ 80 Aone\n"
    "key+ 189 Cthree\n"
    "delete 138\n";
// The free-space key of the 51-byte block, as the shell takes it.
constexpr char kFreeKeyTyped[] = "~\\x20\\x20\\x20\\x20\\x20\\x20\\x20\\x20\\x2051";

std::string Pads(int count) {
  return std::string(static_cast<size_t>(count), '.');
}

std::string BuildDatabase(const testing::TempDir& dir, const std::string& name) {
  const std::string base = dir.File(name);
  const ProgramResult created =
      RunKorvanBinary({"db", "create", base, "--type", "T", "--keylen", "20"});
  EXPECT_EQ(created.exit_code, 0) << created.err;
  const ProgramResult shell = RunKorvanBinary({"db", "shell", base}, kBuildScript);
  EXPECT_EQ(shell.exit_code, 0) << shell.err;
  EXPECT_EQ(shell.out, "80\n138\n189\nok\nok\nok\n");
  return base;
}

void Patch(const std::string& path, int64_t offset, const std::vector<uint8_t>& bytes) {
  std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(offset);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

using testing::Contains;

TEST(DbCommand, ShellMadeDatabaseIsDescribedByInfoDumpKeysAndCheck) {
  testing::TempDir dir;
  const std::string base = BuildDatabase(dir, "t");

  const ProgramResult info = RunKorvanBinary({"db", "info", base});
  EXPECT_EQ(info.exit_code, 0) << info.err;
  for (const char* line : {"format: 4345 (current format)\n", "file version: 0\n",
                           "key file version: 3\n", "key length: 20\n", "records: 2\n",
                           "keys: 3 (2 table keys, 1 free-space keys)\n", "free blocks: 1\n"}) {
    EXPECT_TRUE(Contains(info.out, line)) << line << " in\n" << info.out;
  }
  EXPECT_TRUE(Contains(info.out, "time stamp: ")) << info.out;

  const ProgramResult dump = RunKorvanBinary({"db", "dump", base});
  EXPECT_EQ(dump.exit_code, 0) << dump.err;
  EXPECT_EQ(dump.out, "80 58 A\n138 51 free\n189 148 C\n");

  const ProgramResult keys = RunKorvanBinary({"db", "keys", base});
  EXPECT_EQ(keys.exit_code, 0) << keys.err;
  EXPECT_EQ(keys.out, "80 Aone" + Pads(16) + "\n189 Cthree" + Pads(14) + "\n138 ~         51" +
                          Pads(8) + "\n");

  const ProgramResult check = RunKorvanBinary({"db", "check", base});
  EXPECT_EQ(check.exit_code, 0) << check.out << check.err;
  EXPECT_EQ(check.out, base + ": no problems found\n");
}

TEST(DbCommand, CheckListsEveryInconsistencyOnALineOfItsOwn) {
  testing::TempDir dir;
  const std::string base = BuildDatabase(dir, "t");
  const std::string script = std::string("key- 138 ") + kFreeKeyTyped +
                             "\n"
                             "key+ 189 ~\\x20\\x20\\x20\\x20\\x20\\x20\\x20\\x20\\x20148\n"
                             "key+ 138 Xlost\n";
  const ProgramResult shell = RunKorvanBinary({"db", "shell", base}, script);
  ASSERT_EQ(shell.out, "ok\nok\nok\n") << shell.err;

  const ProgramResult check = RunKorvanBinary({"db", "check", base});
  EXPECT_EQ(check.exit_code, 1);
  EXPECT_TRUE(
      Contains(check.out, base + "0: block at 138: free block of 51 bytes has 0 free-space keys\n"))
      << check.out;
  EXPECT_TRUE(Contains(check.out, base + "0: free-space key at 189 names no free block\n"))
      << check.out;
  EXPECT_TRUE(Contains(check.out, base + "1: key Xlost" + Pads(15) +
                                      " points to 138, where no live record starts\n"))
      << check.out;
}

TEST(DbCommand, WrongCallsExitWithTwoAndFailuresNameTheFile) {
  testing::TempDir dir;
  const std::string base = dir.File("t");
  for (const std::vector<std::string>& call :
       {std::vector<std::string>{"db"},
        {"db", "frobnicate", base},
        {"db", "info"},
        {"db", "create", base, "--type", "TT", "--keylen", "20"},
        {"db", "create", base, "--type", "T", "--keylen", "11"},
        {"db", "create", base, "--keylen", "20"}}) {
    const ProgramResult result = RunKorvanBinary(call);
    EXPECT_EQ(result.exit_code, 2) << call.back() << ": " << result.err;
    EXPECT_FALSE(result.err.empty());
  }
  EXPECT_FALSE(std::filesystem::exists(base + "0"));

  ASSERT_EQ(RunKorvanBinary({"db", "create", base, "--type", "T", "--keylen", "12"}).exit_code, 0);
  const ProgramResult again =
      RunKorvanBinary({"db", "create", base, "--type", "T", "--keylen", "12"});
  EXPECT_EQ(again.exit_code, 1);
  EXPECT_TRUE(Contains(again.err, base + "0: 4304 (Datendatei existiert bereits)")) << again.err;

  const ProgramResult missing = RunKorvanBinary({"db", "info", dir.File("nowhere")});
  EXPECT_EQ(missing.exit_code, 1);
  EXPECT_TRUE(Contains(missing.err, dir.File("nowhere") + "0: 4307 (Datendatei nicht vorhanden)"))
      << missing.err;

  const ProgramResult bad_shell = RunKorvanBinary({"db", "shell", base}, "insert A 1 zz\nflush\n");
  EXPECT_EQ(bad_shell.exit_code, 1);
  EXPECT_EQ(bad_shell.out.substr(0, 7), "error: ");
  EXPECT_TRUE(Contains(bad_shell.out, "\nok\n"));
}

struct Damage {
  const char* name;
  char file;  // '0' data file, '1' key file
  void (*apply)(const std::string& path);
};

const Damage kDamages[] = {
    {"data file cut inside its header", '0',
     [](const std::string& path) { std::filesystem::resize_file(path, 30); }},
    {"data file cut inside its last record", '0',
     [](const std::string& path) { std::filesystem::resize_file(path, 300); }},
    {"data file header scrambled", '0',
     [](const std::string& path) {
       Patch(path, 0, {0x13, 0x37, 0x00, 0xff, 0x42, 0x42});
     }},
    {"garbage length in the middle", '0',
     [](const std::string& path) {
       Patch(path, 138, {0x00, 0x00, 0x00, 0x70});
     }},
    {"most negative length", '0',
     [](const std::string& path) {
       Patch(path, 80, {0x00, 0x00, 0x00, 0x80});
     }},
    {"record without type letter", '0', [](const std::string& path) { Patch(path, 84, {0x01}); }},
    {"key file cut inside its first node", '1',
     [](const std::string& path) { std::filesystem::resize_file(path, 3000); }},
    {"key file version scrambled", '1', [](const std::string& path) { Patch(path, 0, {0x09}); }},
    {"key node count scrambled", '1',
     [](const std::string& path) {
       Patch(path, 2048, {0xff, 0x7f});
     }},
    {"key node child pointing at itself", '1',
     [](const std::string& path) {
       Patch(path, 2050, {0x01, 0x00, 0x00, 0x00});
     }},
};

TEST(DbCommand, DamagedFilesGiveAClearErrorNamingTheFileNeverACrash) {
  testing::TempDir dir;
  const std::string good = BuildDatabase(dir, "good");
  for (const Damage& damage : kDamages) {
    SCOPED_TRACE(damage.name);
    const std::string base = dir.File("bad");
    std::filesystem::remove(base + "0");
    std::filesystem::remove(base + "1");
    std::filesystem::copy_file(good + "0", base + "0");
    std::filesystem::copy_file(good + "1", base + "1");
    damage.apply(base + damage.file);

    for (const char* operation : {"info", "dump", "keys"}) {
      const ProgramResult result = RunKorvanBinary({"db", operation, base});
      EXPECT_LE(result.exit_code, 1) << operation << ": " << result.err;
    }
    const ProgramResult check = RunKorvanBinary({"db", "check", base});
    EXPECT_EQ(check.exit_code, 1) << check.out;
    EXPECT_TRUE(Contains(check.out + check.err, base + damage.file + ": "))
        << check.out << check.err;

    const ProgramResult shell =
        RunKorvanBinary({"db", "shell", base}, "read 80\nread 189\nfirst C\ncount \\x04\n");
    EXPECT_LE(shell.exit_code, 1) << shell.err;
  }
}

}  // namespace
}  // namespace korvan
