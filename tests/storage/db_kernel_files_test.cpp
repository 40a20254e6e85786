#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "db_kernel_fixture.h"
#include "storage/data_file_banner.h"
#include "storage/db_handle_table.h"
#include "storage/db_kernel.h"

namespace korvan::storage::testing {
namespace {

using DbKernelFiles = DbKernelTest;

TEST_F(DbKernelFiles, CreateWritesHeaderAndReopens) {
  ASSERT_EQ(iDK_DbSetVersion(810), 0);
  const int handle = Create("db", 'T', 67);
  ASSERT_GE(handle, 1);
  ASSERT_EQ(iDK_DbSetVersion(0), 0);
  const auto bytes = FileBytes(DataFile("db"));
  ASSERT_EQ(bytes.size(), 80u);
  const std::string banner(bytes.begin(), bytes.begin() + 24);
  EXPECT_EQ(banner, std::string("3DB \xA9 2023 Torvelin AG  "));
  EXPECT_TRUE(
      std::all_of(bytes.begin() + 24, bytes.begin() + 40, [](uint8_t b) { return b == 0; }));
  EXPECT_TRUE(std::all_of(bytes.begin() + 52, bytes.end(), [](uint8_t b) { return b == 0; }));
  EXPECT_EQ(FileBytes(KeyFile("db")).at(0), 3);  // a version 3 key file

  uint32_t version = 0;
  double stamp = 0;
  ASSERT_EQ(iDK_DbFileInfo(DataFile("db"), &version, &stamp), 0);
  EXPECT_EQ(version, 810u);
  EXPECT_GT(stamp, 40000.0);

  bool writable = false;
  char type = 0;
  ASSERT_EQ(iDK_IsWritable(handle, &writable), 0);
  ASSERT_EQ(iDK_DbType(handle, &type), 0);
  EXPECT_TRUE(writable);
  EXPECT_EQ(type, 'T');

  auto record = MakeRecord('A', 90, 3);
  const int32_t position = Insert(handle, record);
  ASSERT_EQ(iDK_DbClose(handle), 0);
  EXPECT_EQ(iDK_DbClose(handle), 4288);

  int again = 0;
  EXPECT_EQ(iDK_DbCreate('T', Base("db"), 67, &again), 4304);
  ASSERT_EQ(iDK_DbOpen('T', Base("db"), true, false, &again), 0);
  EXPECT_EQ(Read(again, position), record);
  int twice = 0;
  EXPECT_EQ(iDK_DbOpen('T', Base("db"), true, false, &twice), 4290);
  EXPECT_EQ(twice, again);
}

TEST_F(DbKernelFiles, MissingFilesAndBadKeyLengths) {
  int handle = 0;
  EXPECT_EQ(iDK_DbOpen('T', Base("nothing"), true, false, &handle), 4307);
  EXPECT_EQ(iDK_DbOpen('T', Base("no/such/dir/x"), true, false, &handle), 4307);
  const int created = Create("db");
  ASSERT_EQ(iDK_DbClose(created), 0);
  std::filesystem::remove(KeyFile("db"));
  EXPECT_EQ(iDK_DbOpen('T', Base("db"), true, false, &handle), 4308);
  // The failed open left nothing behind: the data file can be opened after repair.
  WriteFileBytes(KeyFile("db"), std::vector<uint8_t>(2048, 9));
  EXPECT_EQ(iDK_DbOpen('T', Base("db"), true, false, &handle), 4231);

  EXPECT_EQ(iDK_DbCreate('T', Base("short"), 11, &handle), 4322);
  EXPECT_EQ(iDK_DbCreate('T', Base("long"), 91, &handle), 4322);
  EXPECT_FALSE(std::filesystem::exists(DataFile("short")));
  EXPECT_FALSE(std::filesystem::exists(KeyFile("long")));
  EXPECT_EQ(iDK_DbCreate('T', Base("no/such/dir/x"), 40, &handle), 4307);
}

TEST_F(DbKernelFiles, FortyHandlesThenFourThreeOhFive) {
  std::vector<int> handles;
  for (int i = 0; i < 40; ++i) handles.push_back(Create("db" + std::to_string(i)));
  EXPECT_EQ(std::set<int>(handles.begin(), handles.end()).size(), 40u);
  int handle = 0;
  EXPECT_EQ(iDK_DbCreate('T', Base("one-more"), 40, &handle), 4305);
  ASSERT_EQ(iDK_DbClose(handles[7]), 0);
  ASSERT_EQ(iDK_DbOpen('T', Base("db7"), true, false, &handle), 0);
  EXPECT_EQ(handle, handles[7]);
  EXPECT_EQ(iDK_DbCreate('T', Base("extra-base"), 40, &handle), 4305);
  EXPECT_FALSE(std::filesystem::exists(DataFile("extra-base")));
  const int result = iDK_DbOpen('T', Base("extra"), true, false, &handle);
  EXPECT_EQ(result, 4305);
  EXPECT_EQ(KernelErrorTranslate().GetErrorString(result),
            "es sind bereits 20 (=DK_MAX_HANDLES) Datenbanken geöffnet");
}

TEST_F(DbKernelFiles, EveryOperationValidatesItsHandle) {
  KeyEntry entry;
  uint32_t position = 0;
  uint32_t count = 0;
  bool flag = false;
  char type = 0;
  std::vector<uint32_t> positions;
  for (int handle : {-1, 0, 5, 41}) {
    EXPECT_EQ(iDK_DbClose(handle), 4288);
    EXPECT_EQ(iDK_DbFlush(handle), 4288);
    EXPECT_EQ(iDK_DbSetTimeStamp(handle, 1.0), 4288);
    EXPECT_EQ(iDK_IsWritable(handle, &flag), 4288);
    EXPECT_EQ(iDK_DbType(handle, &type), 4288);
    EXPECT_EQ(iDK_KeyInsert(handle, entry), 4288);
    EXPECT_EQ(iDK_KeyDelete(handle, entry), 4288);
    EXPECT_EQ(iDK_KeyFirstMatch(handle, entry, &position), 4288);
    EXPECT_EQ(iDK_KeyLastMatch(handle, entry, &position), 4288);
    EXPECT_EQ(iDK_KeyNext(handle, entry, &position), 4288);
    EXPECT_EQ(iDK_KeyPrev(handle, entry, &position), 4288);
    EXPECT_EQ(iDK_KeyMatchesCount(handle, entry.key, 1, false, &count), 4288);
    EXPECT_EQ(iDK_KeyMatchesList(handle, entry.key, 1, false, &positions), 4288);
    EXPECT_EQ(iDK_KeyMatchEx(handle, entry, 1, &flag), 4288);
  }
}

TEST_F(DbKernelFiles, TimeStampAndVersionAndOldestLayout) {
  const int handle = Create("db");
  ASSERT_EQ(iDK_DbSetTimeStamp(handle, 45000.25), 0);
  uint32_t version = 1;
  double stamp = 0;
  ASSERT_EQ(iDK_DbFileInfo(DataFile("db"), &version, &stamp), 0);
  EXPECT_EQ(stamp, 45000.25);
  EXPECT_EQ(version, 0u);
  const int second = Create("db2");  // new files take the stamp set last
  ASSERT_EQ(iDK_DbFileInfo(DataFile("db2"), &version, &stamp), 0);
  EXPECT_EQ(stamp, 45000.25);
  EXPECT_EQ(iDK_DbClose(second), 0);

  std::vector<uint8_t> old(97, 0);
  old[0] = '3';
  old[80] = 17;
  old[84] = 'V';
  const uint32_t old_version = 512;
  const double old_stamp = 36000.5;
  std::memcpy(old.data() + 85, &old_version, 4);
  std::memcpy(old.data() + 89, &old_stamp, 8);
  WriteFileBytes(dir_.File("old0"), old);
  ASSERT_EQ(iDK_DbFileInfo(dir_.File("old0"), &version, &stamp), 0);
  EXPECT_EQ(version, 512u);
  EXPECT_EQ(stamp, 36000.5);
  old[84] = 'W';
  WriteFileBytes(dir_.File("old0"), old);
  ASSERT_EQ(iDK_DbFileInfo(dir_.File("old0"), &version, &stamp), 0);
  EXPECT_EQ(version, 0u);

  // A current file whose first record looks like the old mark keeps its own header.
  auto record = MakeRecord('V', 273, 0);
  Insert(handle, record);
  ASSERT_EQ(iDK_DbFileInfo(DataFile("db"), &version, &stamp), 0);
  EXPECT_EQ(stamp, 45000.25);

  WriteFileBytes(dir_.File("tiny0"), std::vector<uint8_t>(40, '3'));
  EXPECT_EQ(iDK_DbFileInfo(dir_.File("tiny0"), &version, &stamp), 4309);
  EXPECT_EQ(iDK_DbFileInfo(dir_.File("none0"), &version, &stamp), 4307);
}

// Deny-write and shared opens between processes, the way the share modes of the
// platform's file layer behave.
TEST_F(DbKernelFiles, ShareModesBetweenProcesses) {
  const int exclusive = Create("excl");  // type not shared: read/write, deny write
  ASSERT_EQ(iDK_DbFlush(exclusive), 0);
  const std::string excl = Base("excl");
  auto open_in_child = [](const std::string& base, bool write, bool shared) {
    return ResultInChild([&] {
      ForgetInheritedDatabases();
      int handle = 0;
      return iDK_DbOpen('T', base, write, shared, &handle);
    });
  };
  EXPECT_EQ(open_in_child(excl, true, false), 4319);
  EXPECT_EQ(open_in_child(excl, true, true), 4319);
  EXPECT_EQ(open_in_child(excl, false, true), 0);  // reading is allowed

  iDK_SetTypeShareable('S', true);
  int shared = 0;
  ASSERT_EQ(iDK_DbCreate('S', Base("shared"), 40, &shared), 0);
  const std::string base = Base("shared");
  EXPECT_EQ(open_in_child(base, true, true), 0);
  EXPECT_EQ(open_in_child(base, false, true), 0);
  EXPECT_EQ(open_in_child(base, true, false), 4319);  // cannot deny the writer here
  ASSERT_EQ(iDK_DbClose(shared), 0);
  ASSERT_EQ(iDK_DbOpen('S', base, false, true, &shared), 0);  // now only a reader
  EXPECT_EQ(open_in_child(base, true, false), 0);
  bool writable = true;
  ASSERT_EQ(iDK_IsWritable(shared, &writable), 0);
  EXPECT_FALSE(writable);
  KeyEntry entry;
  std::memset(entry.key, 'K', sizeof entry.key);
  EXPECT_EQ(iDK_KeyInsert(shared, entry), 4320);
  iDK_SetTypeShareable('S', false);

  if (geteuid() != 0) {  // root may write anywhere
    ASSERT_EQ(iDK_DbClose(exclusive), 0);
    chmod(DataFile("excl").c_str(), 0444);
    int handle = 0;
    EXPECT_EQ(iDK_DbOpen('T', excl, true, false, &handle), 4318);
  }
}

TEST_F(DbKernelFiles, DataFilesAreWrittenThrough) {
  const int handle = Create("db");
  auto record = MakeRecord('A', 200, 1);
  Insert(handle, record);
  // The bytes are in the file without any flush, as another process sees them.
  const int32_t child_length =
      ResultInChild([&] { return static_cast<int32_t>(FileBytes(DataFile("db")).size()); });
  EXPECT_EQ(child_length, 280);
  EXPECT_EQ(iDK_DbFlush(handle), 0);
}

}  // namespace
}  // namespace korvan::storage::testing
