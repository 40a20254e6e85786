// `korvan db` end to end on databases made by its own shell and on files damaged by hand
// (one damage of each kind: which damage is found is the storage suite's).
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "storage/db_kernel.h"
#include "storage/result_codes.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

using testing::Contains;
using testing::ExpectKorvan;
using testing::ProgramResult;
using testing::RunKorvanBinary;

std::string Pads(int count) {
  return std::string(static_cast<size_t>(count), '.');
}

// Three records (58, 51 and 148 bytes at 80, 138 and 189), the middle one deleted again,
// and a key for each of the others: key length 20.
std::string BuildDatabase(const testing::TempDir& dir, const std::string& name) {
  const std::string base = dir.File(name);
  ExpectKorvan({"db", "create", base, "--type", "T", "--keylen", "20"}, 0);
  const ProgramResult shell = RunKorvanBinary(
      {"db", "shell", base},
      "insert A 10 ab\ninsert B 3 01\ninsert C 100 ff\nkey+ 80 Aone\nkey+ 189 Cthree\n"
      "delete 138\n");
  EXPECT_EQ(shell.out, "80\n138\n189\nok\nok\nok\n") << shell.err;
  return base;
}

TEST(DbCommand, ShellMadeDatabaseIsDescribedByInfoDumpKeysAndCheck) {
  testing::TempDir dir;
  const std::string base = BuildDatabase(dir, "t");

  ExpectKorvan({"db", "info", base}, 0,
               {"Schlüssellänge: 20\n", "Datensätze: 2\n",
                "Schlüssel: 3 (2 Tabellenschlüssel, 1 Freiplatzschlüssel)\n", "freie Blöcke: 1\n"});
  EXPECT_EQ(RunKorvanBinary({"db", "dump", base}).out, "80 58 A\n138 51 frei\n189 148 C\n");
  EXPECT_EQ(
      RunKorvanBinary({"db", "keys", base}).out,
      "80 Aone" + Pads(16) + "\n189 Cthree" + Pads(14) + "\n138 ~         51" + Pads(8) + "\n");
  const ProgramResult check = RunKorvanBinary({"db", "check", base});
  EXPECT_EQ(check.exit_code, 0) << check.out << check.err;
  EXPECT_EQ(check.out, base + ": keine Probleme gefunden\n");

  // What the check finds in detail is the storage suite's; one finding per file here.
  const ProgramResult shell = RunKorvanBinary({"db", "shell", base}, "key+ 138 Xlost\n");
  ASSERT_EQ(shell.out, "ok\n") << shell.err;
  ExpectKorvan(
      {"db", "check", base}, 1,
      {base + "1: Schlüssel Xlost" + Pads(15) + " zeigt auf 138, wo kein Datensatz beginnt\n"});
}

TEST(DbCommand, FailuresExitWithOneAndNameTheFile) {
  testing::TempDir dir;
  const std::string base = dir.File("t");
  ExpectKorvan({"db", "create", base, "--type", "T", "--keylen", "12"}, 0);
  ExpectKorvan({"db", "create", base, "--type", "T", "--keylen", "12"}, 1,
               {base + "0: 4304 (Datendatei existiert bereits)"});
  ExpectKorvan({"db", "info", dir.File("nowhere")}, 1,
               {dir.File("nowhere") + "0: 4307 (Datendatei nicht vorhanden)"});
  const ProgramResult bad_shell =
      ExpectKorvan({"db", "shell", base}, 1, {}, "insert A 1 zz\nflush\n");
  EXPECT_EQ(bad_shell.out.substr(0, 7), "error: ");
  EXPECT_TRUE(Contains(bad_shell.out, "\nok\n"));
}

// A database another program holds open for writing: the message says what happened, and
// claims no wait that did not happen.
TEST(DbCommand, ADatabaseOpenedExclusivelyElsewhereIsReportedAsSuch) {
  testing::TempDir dir;
  const std::string base = BuildDatabase(dir, "t");
  int handle = 0;
  ASSERT_EQ(storage::iDK_DbOpen('T', base, true, false, &handle), storage::kOk);
  const ProgramResult refused = ExpectKorvan(
      {"db", "shell", base}, 1, {base + "0: 4319 (", "anderes Programm", "exklusiv geöffnet"}, "");
  EXPECT_FALSE(Contains(refused.err, "gewartet")) << refused.err;
  EXPECT_FALSE(Contains(refused.err, "Schreibengeöffnet")) << refused.err;
  storage::iDK_DbClose(handle);
  ExpectKorvan({"db", "info", base}, 0);
}

TEST(DbCommand, DamagedFilesGiveAClearErrorNamingTheFileNeverACrash) {
  struct Damage {
    const char* name;
    char file;       // '0' data file, '1' key file
    int64_t cut_to;  // new size, or -1
    int64_t offset;  // where `bytes` go when not cut
    std::string bytes;
  };
  const Damage damages[] = {
      {"data file cut inside its header", '0', 30, 0, ""},
      {"data file header scrambled", '0', -1, 0, std::string("\x13\x37\x00\xff\x42\x42", 6)},
      {"most negative length", '0', -1, 80, std::string("\x00\x00\x00\x80", 4)},
      {"key file cut inside its first node", '1', 3000, 0, ""},
      {"key node child pointing at itself", '1', -1, 2050, std::string("\x01\x00\x00\x00", 4)},
  };
  testing::TempDir dir;
  const std::string good = BuildDatabase(dir, "good");
  const std::string base = dir.File("bad");
  for (const Damage& damage : damages) {
    SCOPED_TRACE(damage.name);
    for (const char* file : {"0", "1"}) {
      std::filesystem::copy_file(good + file, base + file,
                                 std::filesystem::copy_options::overwrite_existing);
    }
    const std::string damaged = base + damage.file;
    if (damage.cut_to >= 0) {
      std::filesystem::resize_file(damaged, static_cast<uintmax_t>(damage.cut_to));
    } else {
      testing::PatchFile(damaged, damage.offset, damage.bytes);
    }
    for (const char* operation : {"info", "dump", "keys"}) {
      const ProgramResult result = RunKorvanBinary({"db", operation, base});
      EXPECT_LE(result.exit_code, 1) << operation << ": " << result.err;
      EXPECT_FALSE(testing::Crashed(result)) << operation << ": " << result.err;
    }
    ExpectKorvan({"db", "check", base}, 1, {damaged + ": "});
    const ProgramResult shell =
        RunKorvanBinary({"db", "shell", base}, "read 80\nread 189\nfirst C\ncount \\x04\n");
    EXPECT_LE(shell.exit_code, 1) << shell.err;
    EXPECT_FALSE(testing::Crashed(shell)) << shell.err;
  }
}

}  // namespace
}  // namespace korvan
