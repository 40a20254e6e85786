#include "app/single_instance.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <poll.h>

#include <gtest/gtest.h>

#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using korvan::testing::RunKorvanBinary;
using korvan::testing::TempDir;

constexpr auto kPollInterval = 5ms;
constexpr auto kProcessLimit = 20s;

std::string ReadAll(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// The user's runtime directory of every instance started by one test.
class RuntimeDir {
 public:
  RuntimeDir() { setenv(kRuntimeDirVariable, dir_.path().c_str(), 1); }
  ~RuntimeDir() { unsetenv(kRuntimeDirVariable); }
  const fs::path& path() const { return dir_.path(); }

 private:
  TempDir dir_;
};

// The korvan binary running in the background, its output going to files.
class KorvanProcess {
 public:
  explicit KorvanProcess(const std::vector<std::string>& args) {
    const char* binary = std::getenv("KORVAN_BINARY");
    if (binary == nullptr) throw std::runtime_error("KORVAN_BINARY is not set (run through ctest)");
    pid_ = fork();
    if (pid_ < 0) throw std::runtime_error("fork failed");
    if (pid_ == 0) Exec(binary, args);
  }
  ~KorvanProcess() {
    if (!exit_code_) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
  }
  KorvanProcess(const KorvanProcess&) = delete;
  KorvanProcess& operator=(const KorvanProcess&) = delete;

  pid_t pid() const { return pid_; }
  std::string Out() const { return ReadAll(io_.File("out")); }
  std::string Err() const { return ReadAll(io_.File("err")); }

  // True as soon as the output holds `text`; false when the limit passes first or the
  // process ends without writing it.
  bool WaitForOutput(const std::string& text) {
    const auto deadline = Clock::now() + kProcessLimit;
    while (Clock::now() < deadline) {
      if (Out().find(text) != std::string::npos) return true;
      if (Exited()) return Out().find(text) != std::string::npos;
      std::this_thread::sleep_for(kPollInterval);
    }
    return false;
  }

  // The exit code, or nullopt when the process still runs after the limit.
  std::optional<int> WaitForExit() {
    const auto deadline = Clock::now() + kProcessLimit;
    while (!Exited() && Clock::now() < deadline) std::this_thread::sleep_for(kPollInterval);
    return exit_code_;
  }

  void Signal(int signal) { kill(pid_, signal); }

 private:
  [[noreturn]] void Exec(const char* binary, const std::vector<std::string>& args) {
    const int out = open(io_.File("out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int err = open(io_.File("err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int in = open("/dev/null", O_RDONLY);
    if (out < 0 || err < 0 || in < 0) _exit(126);
    dup2(in, 0);
    dup2(out, 1);
    dup2(err, 2);
    std::vector<char*> argv{const_cast<char*>(binary)};
    for (const auto& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    execv(binary, argv.data());
    _exit(127);
  }

  bool Exited() {
    if (exit_code_) return true;
    int status = 0;
    if (waitpid(pid_, &status, WNOHANG) != pid_) return false;
    exit_code_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return true;
  }

  TempDir io_;
  pid_t pid_ = -1;
  std::optional<int> exit_code_;
};

constexpr const char* kRunning = "Korvan läuft";

TEST(SingleInstance, SecondStartHandsItsParametersToTheRunningInstance) {
  RuntimeDir runtime;
  TempDir data;
  const std::string base = data.path().string();
  KorvanProcess first({"serve", "-d", base});
  ASSERT_TRUE(first.WaitForOutput(kRunning)) << first.Err();

  const auto second = RunKorvanBinary({"serve", "-d", base, "Projekt 1", "LV-7"});
  EXPECT_EQ(second.exit_code, 0) << second.err;
  EXPECT_NE(second.out.find("Eine Programminstanz läuft bereits!\nkorvan\n"), std::string::npos)
      << second.out;
  EXPECT_EQ(second.out.find(kRunning), std::string::npos) << "the second instance started";
  EXPECT_TRUE(first.WaitForOutput("Parameterübergabe: serve -d " + fs::absolute(base).string() +
                                  " Projekt 1 LV-7\n"))
      << first.Out();
  EXPECT_FALSE(fs::exists(runtime.path() / kQParamsFileName));

  // A hand-over asking for the end stops the running instance.
  const auto stop = RunKorvanBinary({"serve", "-d", base, "--stop"});
  EXPECT_EQ(stop.exit_code, 0) << stop.err;
  EXPECT_EQ(first.WaitForExit(), 0) << first.Err();
  EXPECT_NE(first.Out().find("--stop"), std::string::npos);
  EXPECT_NE(first.Out().find("Korvan beendet."), std::string::npos);

  // With no instance left, a stop request starts nothing.
  const auto nothing = RunKorvanBinary({"serve", "-d", base, "--stop"});
  EXPECT_EQ(nothing.exit_code, 0) << nothing.err;
  EXPECT_NE(nothing.out.find("Keine Programminstanz läuft."), std::string::npos) << nothing.out;
  EXPECT_EQ(nothing.out.find(kRunning), std::string::npos);
}

TEST(SingleInstance, SkipInstanceCheckStartsAFullSecondInstance) {
  RuntimeDir runtime;
  TempDir data;
  const std::string base = data.path().string();
  KorvanProcess first({"serve", "-d", base});
  ASSERT_TRUE(first.WaitForOutput(kRunning)) << first.Err();

  KorvanProcess option({"serve", "-d", base, "--skipinstancecheck"});
  KorvanProcess word({"serve", "-d", base, "skipinstancecheck"});
  EXPECT_TRUE(option.WaitForOutput(kRunning)) << option.Out() << option.Err();
  EXPECT_TRUE(word.WaitForOutput(kRunning)) << word.Out() << word.Err();
  EXPECT_EQ(option.Out().find("Eine Programminstanz"), std::string::npos);

  // The first instance still holds the lock and its socket: a normal start hands over.
  const auto third = RunKorvanBinary({"serve", "-d", base, "drei"});
  EXPECT_EQ(third.exit_code, 0) << third.err;
  EXPECT_TRUE(first.WaitForOutput(" drei\n")) << first.Out();
  EXPECT_EQ(option.Out().find("Parameterübergabe"), std::string::npos);

  for (KorvanProcess* process : {&first, &option, &word}) {
    process->Signal(SIGTERM);
    EXPECT_EQ(process->WaitForExit(), 0) << process->Err();
  }
}

TEST(SingleInstance, HandOverToAHungInstanceTimesOut) {
  RuntimeDir runtime;
  TempDir data;
  const std::string base = data.path().string();
  KorvanProcess first({"serve", "-d", base});
  ASSERT_TRUE(first.WaitForOutput(kRunning)) << first.Err();

  first.Signal(SIGSTOP);
  const auto start = Clock::now();
  const auto second = RunKorvanBinary({"serve", "-d", base, "verloren"});
  const auto elapsed = Clock::now() - start;
  first.Signal(SIGCONT);

  EXPECT_EQ(second.exit_code, 1);
  EXPECT_NE(second.out.find("Eine Programminstanz läuft bereits!"), std::string::npos);
  EXPECT_NE(second.err.find("antwortet nicht"), std::string::npos) << second.err;
  EXPECT_GE(elapsed, kHandOverTimeout);
  EXPECT_LT(elapsed, kHandOverTimeout + 5s);
  EXPECT_FALSE(fs::exists(runtime.path() / kQParamsFileName));

  // Awake again, the first instance finds the hand-over withdrawn and goes on serving.
  const auto later = RunKorvanBinary({"serve", "-d", base, "spaeter"});
  EXPECT_EQ(later.exit_code, 0) << later.err;
  EXPECT_TRUE(first.WaitForOutput(" spaeter\n")) << first.Out();
  EXPECT_EQ(first.Out().find("verloren"), std::string::npos) << first.Out();
  first.Signal(SIGINT);
  EXPECT_EQ(first.WaitForExit(), 0);
}

// Runs an instance server on a thread of the test until the object goes away.
class ServerThread {
 public:
  ServerThread(const fs::path& runtime_dir, HandOverHandler handler)
      : server_(runtime_dir), thread_([this, handler] {
          while (!stop_) {
            pollfd wait{server_.fd(), POLLIN, 0};
            if (poll(&wait, 1, 20) > 0) server_.ServePending(handler);
          }
        }) {}
  ~ServerThread() {
    stop_ = true;
    thread_.join();
  }

 private:
  InstanceServer server_;
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

TEST(SingleInstance, HandOverProtocol) {
  TempDir runtime;
  std::optional<InstanceLock> lock = InstanceLock::TryAcquire(runtime.path());
  ASSERT_TRUE(lock.has_value());
  EXPECT_FALSE(InstanceLock::TryAcquire(runtime.path()).has_value());

  // Nobody listens yet.
  const auto start = Clock::now();
  EXPECT_EQ(HandOverParameters(runtime.path(), {"/bin/korvan", "a"}), HandOverOutcome::kNoAnswer);
  EXPECT_LT(Clock::now() - start, kHandOverTimeout);
  EXPECT_FALSE(fs::exists(runtime.path() / kQParamsFileName));

  std::vector<std::string> received;
  std::atomic<bool> ending{false};
  {
    ServerThread server(runtime.path(), [&](const std::vector<std::string>& lines) {
      received = lines;
      return HandOverAnswer{.terminated = ending.load()};
    });
    EXPECT_EQ(HandOverParameters(runtime.path(), {"/bin/korvan", "serve", "Ä ö ü", ""}),
              HandOverOutcome::kHandedOver);
    EXPECT_EQ(received, (std::vector<std::string>{"/bin/korvan", "serve", "Ä ö ü", ""}));
    ending = true;
    EXPECT_EQ(HandOverParameters(runtime.path(), {"/bin/korvan", "x"}),
              HandOverOutcome::kTerminated);
    EXPECT_FALSE(fs::exists(runtime.path() / kQParamsFileName));
  }
  EXPECT_THROW(HandOverParameters(runtime.path(), {"/bin/korvan", "zwei\nZeilen"}),
               std::invalid_argument);

  lock.reset();
  EXPECT_TRUE(InstanceLock::TryAcquire(runtime.path()).has_value());
}

TEST(SingleInstance, RuntimeDirectoryMustBePrivate) {
  TempDir parent;
  const fs::path dir = parent.path() / "laufzeit";
  setenv(kRuntimeDirVariable, dir.c_str(), 1);
  EXPECT_EQ(InstanceRuntimeDirectory(), dir);
  struct stat info {};
  ASSERT_EQ(stat(dir.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0700u);

  chmod(dir.c_str(), 0755);
  EXPECT_THROW(InstanceRuntimeDirectory(), std::runtime_error);
  fs::remove(dir);
  fs::create_directory_symlink(parent.path(), dir);
  EXPECT_THROW(InstanceRuntimeDirectory(), std::runtime_error);
  unsetenv(kRuntimeDirVariable);
}

}  // namespace
}  // namespace korvan::app
