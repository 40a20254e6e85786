#include "testing/run_korvan.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <regex>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "testing/temp_dir.h"

namespace korvan::testing {

namespace {
[[noreturn]] void ExecChild(const std::string& binary, const std::vector<std::string>& args,
                            const TempDir& io) {
  int in = open(io.File("in").c_str(), O_RDONLY);
  int out = open(io.File("out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  int err = open(io.File("err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (in < 0 || out < 0 || err < 0) _exit(126);
  dup2(in, 0);
  dup2(out, 1);
  dup2(err, 2);
  std::vector<char*> argv;
  argv.push_back(const_cast<char*>(binary.c_str()));
  for (const auto& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
  argv.push_back(nullptr);
  execv(binary.c_str(), argv.data());
  _exit(127);
}
}  // namespace

KorvanInBackground::KorvanInBackground(const std::vector<std::string>& args,
                                       const std::string& input) {
  const char* binary = std::getenv("KORVAN_BINARY");
  if (binary == nullptr) throw std::runtime_error("KORVAN_BINARY is not set (run through ctest)");
  std::ofstream(io_.File("in"), std::ios::binary) << input;
  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("fork failed");
  if (pid_ == 0) ExecChild(binary, args, io_);
}

KorvanInBackground::~KorvanInBackground() {
  if (Ended()) return;
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
}

bool KorvanInBackground::Ended() {
  if (exit_code_) return true;
  int status = 0;
  if (waitpid(pid_, &status, WNOHANG) != pid_) return false;
  exit_code_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return true;
}

ProgramResult KorvanInBackground::Finish(std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!Ended() && std::chrono::steady_clock::now() < deadline) usleep(2000);
  return {exit_code_.value_or(-1), Out(), Err()};
}

bool KorvanInBackground::WaitForOutput(const std::string& text, std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!Contains(Out(), text) && !Ended() && std::chrono::steady_clock::now() < deadline) {
    usleep(5000);
  }
  return Contains(Out(), text);
}

void KorvanInBackground::Signal(int signal) const {
  kill(pid_, signal);
}

ProgramResult RunKorvanBinary(const std::vector<std::string>& args, const std::string& input) {
  return KorvanInBackground(args, input).Finish();
}

bool Crashed(const ProgramResult& result) {
  return result.exit_code >= 128 || Contains(result.err, "Sanitizer") ||
         Contains(result.err, "runtime error") || Contains(result.err, "terminate called");
}

ProgramResult ExpectKorvan(const std::vector<std::string>& args, int exit_code,
                           const std::vector<std::string>& parts, const std::string& input) {
  const ProgramResult result = RunKorvanBinary(args, input);
  std::string call = "korvan";
  for (const std::string& arg : args) call += " " + arg;
  const std::string output = result.out + result.err;
  EXPECT_EQ(result.exit_code, exit_code) << call << "\n" << output;
  EXPECT_FALSE(Crashed(result)) << call << "\n" << output;
  for (const std::string& part : parts) {
    EXPECT_TRUE(Contains(output, part)) << call << ": \"" << part << "\" not in\n" << output;
  }
  return result;
}

ProgramResult ExpectKorvanOn(const std::filesystem::path& base, std::vector<std::string> args,
                             int exit_code, const std::vector<std::string>& parts) {
  args.insert(args.end(), {"-d", base.string()});
  return ExpectKorvan(args, exit_code, parts);
}

int ListRowOf(const std::string& listing, const std::string& text) {
  std::istringstream lines(listing);
  int row = 0;
  for (std::string line; std::getline(lines, line);) {
    if (Contains(line, text)) return std::istringstream(line) >> row ? row : 0;
  }
  return 0;
}

std::string WithoutWriteTimes(const std::string& dump) {
  static const std::regex stamp("LastModified: [^\t\n]*");
  return std::regex_replace(dump, stamp, "LastModified: -");
}

std::filesystem::path MakeInstallation(const TempDir& dir, const std::string& command) {
  const std::filesystem::path base = dir.path() / "ava";
  std::vector<std::string> args = {command, "-d", base.string()};
  if (command == "demo") args.push_back("--setup-only");
  const ProgramResult made = RunKorvanBinary(args);
  EXPECT_EQ(made.exit_code, 0) << command << ": " << made.err;
  return base;
}

}  // namespace korvan::testing
