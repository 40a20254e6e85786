#include "storage/file/file_sync.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

#include "testing/temp_dir.h"

namespace korvan::storage {
namespace {

namespace fs = std::filesystem;

TEST(FileSyncTest, SyncsExistingFilesAndDirectoriesAndNamesWhatIsMissing) {
  korvan::testing::TempDir dir;
  std::ofstream(dir.File("file")) << "x";
  EXPECT_EQ(SyncFile(dir.File("file")), 0);
  EXPECT_EQ(SyncDirectory(dir.path().string()), 0);
  EXPECT_EQ(SyncDirectory(""), 0);  // the current directory
  EXPECT_EQ(SyncFile(dir.File("missing")), ENOENT);
  EXPECT_EQ(SyncDirectory(dir.File("file")), ENOTDIR);
}

TEST(FileSyncTest, DirectoryOfAPath) {
  EXPECT_EQ(DirectoryOf("/data/DB_LV.QA0"), "/data");
  EXPECT_EQ(DirectoryOf("DB_LV.QA0"), "");
}

TEST(FileSyncTest, RenameDurablyReplacesTheTarget) {
  korvan::testing::TempDir dir;
  std::ofstream(dir.File("new")) << "new";
  std::ofstream(dir.File("old")) << "old";
  EXPECT_EQ(RenameDurably(dir.File("new"), dir.File("old")), 0);
  EXPECT_FALSE(fs::exists(dir.File("new")));
  EXPECT_EQ(fs::file_size(dir.File("old")), 3u);
  EXPECT_EQ(RenameDurably(dir.File("new"), dir.File("old")), ENOENT);
}

}  // namespace
}  // namespace korvan::storage
