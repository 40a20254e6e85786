#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <set>

#include "db_kernel_fixture.h"
#include "storage/data_file_banner.h"

namespace korvan::storage::testing {
namespace {

using DbKernelFiles = DbKernelTest;

TEST_F(DbKernelFiles, CreateWritesHeaderAndReopens) {
  ASSERT_EQ(iDK_DbSetVersion(810), 0);
  const int handle = Create("db", 'T', 67);
  ASSERT_EQ(iDK_DbSetVersion(0), 0);
  const auto bytes = FileBytes(DataFile("db"));
  ASSERT_EQ(bytes.size(), 80u);
  EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 24), "3DB \xA9 2023 Torvelin AG  ");
  EXPECT_EQ(FileBytes(KeyFile("db")).at(0), 3);  // a version 3 key file
  uint32_t version = 0;
  double stamp = 0;
  ASSERT_EQ(iDK_DbFileInfo(DataFile("db"), &version, &stamp), 0);
  EXPECT_EQ(version, 810u);
  EXPECT_GT(stamp, 40000.0);

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
  ASSERT_EQ(iDK_DbClose(Create("db")), 0);
  std::filesystem::remove(KeyFile("db"));
  EXPECT_EQ(iDK_DbOpen('T', Base("db"), true, false, &handle), 4308);
  // The failed open left nothing behind: the next open gets as far as the key file.
  WriteFileBytes(KeyFile("db"), std::vector<uint8_t>(2048, 9));
  EXPECT_EQ(iDK_DbOpen('T', Base("db"), true, false, &handle), 4231);

  EXPECT_EQ(iDK_DbCreate('T', Base("short"), 11, &handle), 4322);
  EXPECT_EQ(iDK_DbCreate('T', Base("long"), 91, &handle), 4322);
  EXPECT_FALSE(std::filesystem::exists(DataFile("short")));
  EXPECT_FALSE(std::filesystem::exists(KeyFile("long")));
  EXPECT_EQ(iDK_DbCreate('T', Base("no/such/dir/x"), 40, &handle), 4307);
}

TEST_F(DbKernelFiles, KeyFileHeaderWithNodesBeyondTheFileIsRefusedAtOpen) {
  ASSERT_EQ(iDK_DbClose(Create("db")), 0);
  const auto good = FileBytes(KeyFile("db"));
  // Highest node at offset 2, head of the free list at 6 (version 3 header).
  for (const auto& [offset, value] :
       std::vector<std::pair<size_t, uint32_t>>{{2, 0x7FFFFFF0u}, {2, 1u}, {6, 5u}}) {
    auto bytes = good;
    std::memcpy(bytes.data() + offset, &value, sizeof value);
    WriteFileBytes(KeyFile("db"), bytes);
    int handle = 0;
    EXPECT_EQ(iDK_DbOpen('T', Base("db"), true, false, &handle), 4231) << offset << " " << value;
    EXPECT_EQ(std::filesystem::file_size(KeyFile("db")), good.size());
  }
  WriteFileBytes(KeyFile("db"), good);
  int handle = 0;
  EXPECT_EQ(iDK_DbOpen('T', Base("db"), true, false, &handle), 0);
}

TEST_F(DbKernelFiles, DirectoriesAndPipesInPlaceOfDatabaseFilesAreNoDatabaseFiles) {
  ASSERT_EQ(iDK_DbClose(Create("db")), 0);
  auto open_in_child = [this] {
    // A hang would stop the whole suite: the child gives up after a few seconds.
    return InFreshChild([this] {
      alarm(5);
      int handle = 0;
      return iDK_DbOpen('T', Base("db"), true, false, &handle);
    });
  };
  std::filesystem::remove(KeyFile("db"));
  std::filesystem::create_directory(KeyFile("db"));
  EXPECT_EQ(open_in_child(), 4309);
  std::filesystem::remove(KeyFile("db"));
  ASSERT_EQ(mkfifo(KeyFile("db").c_str(), 0600), 0);
  EXPECT_EQ(open_in_child(), 4309);

  std::filesystem::remove(DataFile("db"));
  ASSERT_EQ(mkfifo(DataFile("db").c_str(), 0600), 0);
  EXPECT_EQ(open_in_child(), 4309);
  EXPECT_EQ(InFreshChild([this] {
              alarm(5);
              return iDK_DbCheckFile('T', DataFile("db"));
            }),
            4309);
  std::filesystem::remove(DataFile("db"));
  std::filesystem::create_directory(DataFile("db"));
  EXPECT_EQ(open_in_child(), 4309);
}

TEST_F(DbKernelFiles, FortyHandlesThenFourThreeOhFive) {
  std::vector<int> handles;
  for (int i = 0; i < 40; ++i) handles.push_back(Create("db" + std::to_string(i)));
  EXPECT_EQ(std::set<int>(handles.begin(), handles.end()).size(), 40u);
  int handle = 0;
  EXPECT_EQ(iDK_DbCreate('T', Base("one-more"), 40, &handle), 4305);
  EXPECT_FALSE(std::filesystem::exists(DataFile("one-more")));
  ASSERT_EQ(iDK_DbClose(handles[7]), 0);
  ASSERT_EQ(iDK_DbOpen('T', Base("db7"), true, false, &handle), 0);
  EXPECT_EQ(handle, handles[7]);
  EXPECT_EQ(
      KernelErrorTranslate().GetErrorString(iDK_DbOpen('T', Base("extra"), true, false, &handle)),
      "es sind bereits 20 (=DK_MAX_HANDLES) Datenbanken geöffnet");
}

TEST_F(DbKernelFiles, EveryOperationValidatesItsHandle) {
  KeyEntry entry;
  uint32_t position = 0;
  bool flag = false;
  char type = 0;
  std::vector<uint32_t> positions;
  auto record = MakeRecord('A', 48, 0);
  int32_t at = 0;
  for (int handle : {-1, 0, 5, 41}) {
    EXPECT_EQ(iDK_RecordInsert(handle, record.data(), 48, true, &at), 4288);
    EXPECT_EQ(iDK_RecordUpdate(handle, record.data(), 48, 80, 48), 4288);
    EXPECT_EQ(iDK_RecordDelete(handle, record.data(), 80), 4288);
    EXPECT_EQ(iDK_RecordCount(handle, 0, &at), 4288);
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
    EXPECT_EQ(iDK_KeyMatchesCount(handle, entry.key, 1, false, &position), 4288);
    EXPECT_EQ(iDK_KeyMatchesList(handle, entry.key, 1, false, &positions), 4288);
    EXPECT_EQ(iDK_KeyMatchEx(handle, entry, 1, &flag), 4288);
  }
}

TEST_F(DbKernelFiles, TimeStampAndVersionAndOldestLayout) {
  auto info = [](const std::string& path) {
    uint32_t version = 1;
    double stamp = 0;
    const int result = iDK_DbFileInfo(path, &version, &stamp);
    return std::to_string(result) + " " + std::to_string(version) + " " + std::to_string(stamp);
  };
  const int handle = Create("db");
  ASSERT_EQ(iDK_DbSetTimeStamp(handle, 45000.25), 0);
  EXPECT_EQ(info(DataFile("db")), "0 0 45000.250000");
  Create("db2");  // new files take the stamp set last
  EXPECT_EQ(info(DataFile("db2")), "0 0 45000.250000");
  // A current file whose first record looks like the old mark keeps its own header.
  auto record = MakeRecord('V', 273, 0);
  Insert(handle, record);
  EXPECT_EQ(info(DataFile("db")), "0 0 45000.250000");

  // The oldest layout keeps version and stamp in a first record marked 'V'.
  std::vector<uint8_t> old(97, 0);
  old[0] = '3';
  old[80] = 17;
  old[84] = 'V';
  const uint32_t old_version = 512;
  const double old_stamp = 36000.5;
  std::memcpy(old.data() + 85, &old_version, 4);
  std::memcpy(old.data() + 89, &old_stamp, 8);
  WriteFileBytes(dir_.File("old0"), old);
  EXPECT_EQ(info(dir_.File("old0")), "0 512 36000.500000");
  old[84] = 'W';
  WriteFileBytes(dir_.File("old0"), old);
  EXPECT_EQ(info(dir_.File("old0")).substr(0, 4), "0 0 ");
  WriteFileBytes(dir_.File("tiny0"), std::vector<uint8_t>(40, '3'));
  EXPECT_EQ(info(dir_.File("tiny0")).substr(0, 5), "4309 ");
  EXPECT_EQ(info(dir_.File("none0")).substr(0, 5), "4307 ");
}

TEST_F(DbKernelFiles, CheckFileRecognisesBannersOfEveryFormat) {
  ASSERT_EQ(iDK_DbClose(Create("db")), 0);
  const std::string db = DataFile("db");
  EXPECT_EQ(iDK_DbCheckFile('T', db), 4345);
  EXPECT_EQ(iDK_DbCheckFile('G', db), 4309);  // a data file is no library
  for (int code : {4344, 4343, 4342, 4341, 4340, 4338, 4331, 4303, 4312, 4311}) {
    ASSERT_EQ(iDK_DbWriteBanner(db, code), 0);
    // The 2018 banner starts with the current prefix and is taken as current.
    EXPECT_EQ(iDK_DbCheckFile('T', db), code == 4344 ? 4345 : code) << code;
  }
  EXPECT_EQ(iDK_DbWriteBanner(db, 4310), 4310);
  EXPECT_EQ(iDK_DbWriteBanner(DataFile("none"), 4311), 4307);
  EXPECT_EQ(iDK_DbCheckFile('T', DataFile("none")), 4307);

  auto check = [this](char type, const std::vector<uint8_t>& bytes) {
    WriteFileBytes(dir_.File("probe"), bytes);
    return iDK_DbCheckFile(type, dir_.File("probe"));
  };
  auto bytes = FileBytes(db);
  bytes[0] = '4';
  EXPECT_EQ(check('T', bytes), 4310);
  EXPECT_EQ(check('T', {bytes.begin(), bytes.begin() + 79}), 4320);
  const auto banner = LibraryBanner();
  std::vector<uint8_t> library(banner.begin(), banner.end());
  EXPECT_EQ(check('G', library), 0);
  EXPECT_EQ(check('G', {library.begin(), library.begin() + 20}), 4320);
  library[8] = 'X';
  EXPECT_EQ(check('G', library), 4309);
}

// Deny-write and shared opens between processes, as the platform's share modes behave.
TEST_F(DbKernelFiles, ShareModesBetweenProcesses) {
  const int exclusive = Create("excl");  // type not shared: read/write, deny write
  ASSERT_EQ(iDK_DbFlush(exclusive), 0);
  auto open_in_child = [this](const std::string& name, bool write, bool shared) {
    return InFreshChild([&] {
      int handle = 0;
      return iDK_DbOpen('T', Base(name), write, shared, &handle);
    });
  };
  EXPECT_EQ(open_in_child("excl", true, false), 4319);
  EXPECT_EQ(open_in_child("excl", true, true), 4319);
  EXPECT_EQ(open_in_child("excl", false, true), 0);  // reading is allowed

  int shared = Create("shared", 'S');
  EXPECT_EQ(open_in_child("shared", true, true), 0);
  EXPECT_EQ(open_in_child("shared", false, true), 0);
  EXPECT_EQ(open_in_child("shared", true, false), 4319);  // cannot deny the writer here
  ASSERT_EQ(iDK_DbClose(shared), 0);
  ASSERT_EQ(iDK_DbOpen('S', Base("shared"), false, true, &shared), 0);  // now only a reader
  EXPECT_EQ(open_in_child("shared", true, false), 0);
  bool writable = true;
  ASSERT_EQ(iDK_IsWritable(shared, &writable), 0);
  EXPECT_FALSE(writable);

  if (geteuid() != 0) {  // root may write anywhere
    ASSERT_EQ(iDK_DbClose(exclusive), 0);
    chmod(DataFile("excl").c_str(), 0444);
    int handle = 0;
    EXPECT_EQ(iDK_DbOpen('T', Base("excl"), true, false, &handle), 4318);
  }
}

}  // namespace
}  // namespace korvan::storage::testing
