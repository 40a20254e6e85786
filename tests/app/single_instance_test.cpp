#include "app/program/single_instance.h"

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <poll.h>

#include <gtest/gtest.h>

#include "app_test_support.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using korvan::testing::Contains;
using korvan::testing::ExpectKorvan;
using korvan::testing::TempDir;

using KorvanProcess = korvan::testing::KorvanInBackground;

constexpr const char* kRunning = "Korvan läuft";

TEST(SingleInstance, SecondStartHandsItsParametersToTheRunningInstance) {
  RuntimeDir runtime;
  TempDir data;
  const std::string base = data.path().string();
  KorvanProcess first({"serve", "-d", base});
  ASSERT_TRUE(first.WaitForOutput(kRunning)) << first.Err();

  // An instance started with the check skipped runs fully beside it and gets nothing.
  KorvanProcess skipping({"serve", "-d", base, "--skipinstancecheck"});
  EXPECT_TRUE(skipping.WaitForOutput(kRunning)) << skipping.Out() << skipping.Err();
  EXPECT_FALSE(Contains(skipping.Out(), "Eine Programminstanz"));

  const auto second = ExpectKorvan({"serve", "-d", base, "Projekt 1", "LV-7"}, 0,
                                   {"Eine Programminstanz läuft bereits!\nkorvan\n"});
  EXPECT_FALSE(Contains(second.out, kRunning)) << "the second instance started";
  EXPECT_TRUE(first.WaitForOutput("Parameterübergabe: serve -d " + fs::absolute(base).string() +
                                  " Projekt 1 LV-7\n"))
      << first.Out();
  EXPECT_FALSE(fs::exists(runtime.path() / kQParamsFileName));
  EXPECT_FALSE(Contains(skipping.Out(), "Parameterübergabe"));
  skipping.Signal(SIGTERM);
  EXPECT_EQ(skipping.Finish(20s).exit_code, 0) << skipping.Err();

  // A hung instance: the hand-over times out and is withdrawn.
  first.Signal(SIGSTOP);
  const auto start = Clock::now();
  ExpectKorvan({"serve", "-d", base, "verloren"}, 1,
               {"Eine Programminstanz läuft bereits!", "antwortet nicht"});
  const auto elapsed = Clock::now() - start;
  first.Signal(SIGCONT);
  EXPECT_GE(elapsed, kHandOverTimeout);
  EXPECT_LT(elapsed, kHandOverTimeout + 5s);
  EXPECT_FALSE(fs::exists(runtime.path() / kQParamsFileName));
  // Awake again, it finds the hand-over withdrawn and goes on serving.
  ExpectKorvan({"serve", "-d", base, "spaeter"}, 0);
  EXPECT_TRUE(first.WaitForOutput(" spaeter\n")) << first.Out();
  EXPECT_FALSE(Contains(first.Out(), "verloren")) << first.Out();

  // A hand-over asking for the end stops the running instance.
  ExpectKorvan({"serve", "-d", base, "--stop"}, 0);
  EXPECT_EQ(first.Finish(20s).exit_code, 0) << first.Err();
  EXPECT_TRUE(Contains(first.Out(), "--stop"));
  EXPECT_TRUE(Contains(first.Out(), "Korvan beendet."));
  // With no instance left, a stop request starts nothing.
  const auto nothing =
      ExpectKorvan({"serve", "-d", base, "--stop"}, 0, {"Keine Programminstanz läuft."});
  EXPECT_FALSE(Contains(nothing.out, kRunning));
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
