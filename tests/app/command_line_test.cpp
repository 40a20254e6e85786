#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

using testing::RunKorvanBinary;

TEST(CommandLine, HelpAndVersion) {
  auto help = RunKorvanBinary({"--help"});
  EXPECT_EQ(help.exit_code, 0);
  EXPECT_NE(help.out.find("demo"), std::string::npos) << help.out;
  EXPECT_NE(help.out.find("help"), std::string::npos);

  auto version = RunKorvanBinary({"--version"});
  EXPECT_EQ(version.exit_code, 0);
  EXPECT_EQ(version.out.rfind("korvan ", 0), 0u) << version.out;

  auto command_help = RunKorvanBinary({"help", "demo"});
  EXPECT_EQ(command_help.exit_code, 0);
  EXPECT_NE(command_help.out.find("--data"), std::string::npos) << command_help.out;
}

TEST(CommandLine, WrongCallsExitWithTwoAndNameTheCulprit) {
  auto unknown = RunKorvanBinary({"frobnicate"});
  EXPECT_EQ(unknown.exit_code, 2);
  EXPECT_NE(unknown.err.find("frobnicate"), std::string::npos) << unknown.err;
  EXPECT_EQ(std::count(unknown.err.begin(), unknown.err.end(), '\n'), 1) << unknown.err;
  EXPECT_TRUE(unknown.out.empty());

  auto bad_option = RunKorvanBinary({"demo", "--bogus"});
  EXPECT_EQ(bad_option.exit_code, 2);
  EXPECT_NE(bad_option.err.find("--bogus"), std::string::npos) << bad_option.err;

  auto unknown_help = RunKorvanBinary({"help", "frobnicate"});
  EXPECT_EQ(unknown_help.exit_code, 2);
  EXPECT_NE(unknown_help.err.find("frobnicate"), std::string::npos);
}

TEST(CommandLine, DemoCreatesItsDataDirectoryAndFailsCleanlyWhereItCannot) {
  testing::TempDir dir;
  auto target = (dir.path() / "sample").string();
  auto demo = RunKorvanBinary({"demo", "-d", target});
  EXPECT_EQ(demo.exit_code, 0) << demo.err;
  EXPECT_TRUE(std::filesystem::is_directory(target));

  // A data directory below a plain file cannot be created: a failure of the work.
  std::ofstream(dir.File("plain")) << "x";
  auto blocked = RunKorvanBinary({"demo", "-d", dir.File("plain") + "/sub"});
  EXPECT_EQ(blocked.exit_code, 1);
  EXPECT_NE(blocked.err.find("plain/sub"), std::string::npos) << blocked.err;
}

}  // namespace
}  // namespace korvan
