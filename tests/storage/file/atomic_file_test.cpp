#include "storage/file/atomic_file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "testing/files.h"
#include "testing/temp_dir.h"

namespace korvan::storage {
namespace {

namespace fs = std::filesystem;
using korvan::testing::ReadFile;

std::vector<std::string> Names(const fs::path& directory) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(directory)) {
    names.push_back(entry.path().filename().string());
  }
  return names;
}

mode_t ModeOf(const std::string& path) {
  struct stat info {};
  EXPECT_EQ(::stat(path.c_str(), &info), 0);
  return info.st_mode & 07777;
}

// Lets no file of this process grow beyond `limit` bytes while it lives: a write past
// it fails with EFBIG as on a full disk, whatever rights the test runs with.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t limit) {
    ::getrlimit(RLIMIT_FSIZE, &saved_);
    old_handler_ = std::signal(SIGXFSZ, SIG_IGN);
    rlimit lowered = saved_;
    lowered.rlim_cur = limit;
    ::setrlimit(RLIMIT_FSIZE, &lowered);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &saved_);
    std::signal(SIGXFSZ, old_handler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit saved_{};
  void (*old_handler_)(int) = nullptr;
};

class AtomicFileTest : public ::testing::Test {
 protected:
  void WriteOld() {
    ASSERT_TRUE(WriteFileAtomically(target_, "old content", Durability::kAtomic).ok());
  }
  // The target still has its old content and no temporary file was left behind.
  void ExpectOldContentOnly() {
    EXPECT_EQ(ReadFile(target_), "old content");
    EXPECT_EQ(Names(dir_.path()), std::vector<std::string>{"target.txt"});
  }

  korvan::testing::TempDir dir_;
  const std::string target_ = dir_.File("target.txt");
};

TEST_F(AtomicFileTest, WritesNewFilesAndReplacesContentAtEachDurability) {
  for (const Durability durability : {Durability::kAtomic, Durability::kDurable}) {
    fs::remove(target_);
    ASSERT_TRUE(WriteFileAtomically(target_, "first", durability).ok());
    EXPECT_EQ(ReadFile(target_), "first");
    ASSERT_TRUE(WriteFileAtomically(target_, std::string("a\0b", 3), durability).ok());
    EXPECT_EQ(ReadFile(target_), std::string("a\0b", 3));
    ASSERT_TRUE(WriteFileAtomically(target_, "", durability).ok());
    EXPECT_EQ(ReadFile(target_), "");
    EXPECT_EQ(Names(dir_.path()), std::vector<std::string>{"target.txt"});
  }
}

TEST_F(AtomicFileTest, NewFileIsReadableByAllAndAReplacementKeepsThePermissions) {
  ASSERT_TRUE(WriteFileAtomically(target_, "x", Durability::kDurable).ok());
  EXPECT_EQ(ModeOf(target_), 0644u);
  fs::permissions(target_, fs::perms::owner_read | fs::perms::owner_write);
  ASSERT_TRUE(WriteFileAtomically(target_, "y", Durability::kDurable).ok());
  EXPECT_EQ(ModeOf(target_), 0600u);
}

TEST_F(AtomicFileTest, ADirectoryThatDoesNotExistFailsAtCreation) {
  const FileWriteResult result =
      WriteFileAtomically(dir_.File("missing/target.txt"), "x", Durability::kDurable);
  EXPECT_EQ(result.failed, FileWriteStep::kCreate);
  EXPECT_EQ(result.error, ENOENT);
  EXPECT_FALSE(result.ErrorText().empty());
  EXPECT_TRUE(Names(dir_.path()).empty());
}

// A full disk, a filler that fails, a copy of a missing source: the old content stays.
TEST_F(AtomicFileTest, AFailedWriteOrCopyKeepsTheOldContent) {
  struct Case {
    const char* what;
    std::function<FileWriteResult()> write;
    FileWriteStep step;
    int error;
  };
  const Case cases[] = {
      {"full disk",
       [&] {
         const FileSizeLimit limit(1024);
         return WriteFileAtomically(target_, std::string(64 * 1024, 'n'), Durability::kDurable);
       },
       FileWriteStep::kWrite, EFBIG},
      {"failing filler",
       [&] {
         return ReplaceFileAtomically(target_, Durability::kAtomic, [](int) { return ENOSPC; });
       },
       FileWriteStep::kWrite, ENOSPC},
      {"missing source",
       [&] { return CopyFileAtomically(dir_.File("missing.bin"), target_, Durability::kDurable); },
       FileWriteStep::kWrite, ENOENT},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    WriteOld();
    const FileWriteResult result = c.write();
    EXPECT_EQ(result.failed, c.step);
    EXPECT_EQ(result.error, c.error);
    ExpectOldContentOnly();
  }
}

TEST_F(AtomicFileTest, ATargetThatCannotBeReplacedIsLeftAsItWas) {
  fs::create_directories(dir_.path() / "target.txt" / "inside");
  const FileWriteResult result = WriteFileAtomically(target_, "x", Durability::kDurable);
  EXPECT_EQ(result.failed, FileWriteStep::kReplace);
  EXPECT_TRUE(fs::is_directory(dir_.path() / "target.txt" / "inside"));
  EXPECT_EQ(Names(dir_.path()), std::vector<std::string>{"target.txt"});
}

TEST_F(AtomicFileTest, CopyReplacesTheTargetWithTheSource) {
  WriteOld();
  const std::string source = dir_.File("source.bin");
  std::string bytes(200 * 1024, '\0');
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 13);
  ASSERT_TRUE(WriteFileAtomically(source, bytes, Durability::kAtomic).ok());

  ASSERT_TRUE(CopyFileAtomically(source, target_, Durability::kDurable).ok());
  EXPECT_EQ(ReadFile(target_), bytes);
  EXPECT_EQ(ReadFile(source), bytes);
}

}  // namespace
}  // namespace korvan::storage
