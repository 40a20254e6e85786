#include "app/program/startup.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/program/installation.h"
#include "app_test_support.h"
#include "storage/kernel_settings.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;
using korvan::testing::Contains;
using korvan::testing::ExpectKorvan;
using korvan::testing::TempDir;

const std::vector<std::string> kStepOrder = {
    "InitUnits",        "SingleInstanceCheck", "TestException1", "InitStorage",
    "InitApplication",  "ParameterHandOver",   "StartBrowser",   "CreateMainModules",
    "SendStartMessage", "TestException2",      "MessageLoop"};

struct StartupRun {
  std::ostringstream out;
  std::ostringstream err;
  Streams streams{out, err};
  std::vector<std::string> shell_calls;
};

StartupOptions Options(const fs::path& base, std::vector<std::string> parameters = {}) {
  StartupOptions options;
  options.base_dir = base;
  options.command_line = {"/opt/korvan/korvan"};
  options.command_line.insert(options.command_line.end(), parameters.begin(), parameters.end());
  return options;
}

ShellHooks RecordingShell(StartupRun& run) {
  ShellHooks hooks;
  hooks.create_main_modules = [&run](ProgramStartup&) { run.shell_calls.push_back("modules"); };
  hooks.message_loop = [&run](ProgramStartup&) {
    run.shell_calls.push_back("loop");
    return 7;
  };
  return hooks;
}

TEST(StartupSequence, HasSwitchIgnoresCaseAndPrefixes) {
  EXPECT_TRUE(HasSwitch({"a", "SkipInstanceCheck"}, "skipinstancecheck"));
  EXPECT_TRUE(HasSwitch({"--skipinstancecheck"}, "skipinstancecheck"));
  EXPECT_TRUE(HasSwitch({"/test_exception2"}, "TEST_EXCEPTION2"));
  EXPECT_FALSE(HasSwitch({"skipinstancecheck2", "TEST_EXCEPTION"}, "skipinstancecheck"));
  EXPECT_FALSE(HasSwitch({}, "test"));
}

TEST(ProgramStartup, FullStartInitialisesEverythingInOrder) {
  RuntimeDir runtime;
  TempDir base;
  StartupRun run;
  bool lock_held_in_loop = false;
  ShellHooks hooks = RecordingShell(run);
  hooks.message_loop = [&](ProgramStartup& startup) {
    run.shell_calls.push_back("loop");
    lock_held_in_loop = !InstanceLock::TryAcquire(runtime.path()).has_value();
    EXPECT_NE(startup.Server(), nullptr);
    return 7;
  };
  {
    ProgramStartup startup(Options(base.path()), run.streams, hooks);
    EXPECT_EQ(startup.Run(), 7);
    EXPECT_EQ(startup.Sequence().Trace(), kStepOrder);
    EXPECT_EQ(run.shell_calls, (std::vector<std::string>{"modules", "loop"}));
    EXPECT_TRUE(lock_held_in_loop);
    EXPECT_FALSE(startup.IsSecondInstance());
    ASSERT_NE(startup.InstallationLoaded(), nullptr);
    EXPECT_EQ(startup.InstallationLoaded()->machine.BasisDirectory(),
              fs::absolute(base.path()).string() + "/");
    ASSERT_NE(startup.Databases(), nullptr);
    EXPECT_FALSE(startup.Databases()->all().empty());
    EXPECT_TRUE(startup.RegenCheck());
    EXPECT_TRUE(fs::exists(runtime.path() / kInstanceSocketName));
  }
  // Ending the program frees the lock and removes the socket.
  EXPECT_TRUE(InstanceLock::TryAcquire(runtime.path()).has_value());
  EXPECT_FALSE(fs::exists(runtime.path() / kInstanceSocketName));
}

TEST(ProgramStartup, SecondInstanceInitialisesStorageBeforeTheHandOver) {
  RuntimeDir runtime;
  TempDir base;
  std::optional<InstanceLock> running = InstanceLock::TryAcquire(runtime.path());
  ASSERT_TRUE(running.has_value());
  StartupRun run;
  ProgramStartup startup(Options(base.path(), {"Projekt"}), run.streams, RecordingShell(run));
  // The running instance has no socket here: the hand-over gets no answer.
  EXPECT_EQ(startup.Run(), kExitFailure);
  EXPECT_TRUE(startup.IsSecondInstance());
  EXPECT_EQ(startup.Sequence().Trace(),
            std::vector<std::string>(kStepOrder.begin(), kStepOrder.begin() + 6));
  EXPECT_NE(startup.InstallationLoaded(), nullptr);
  EXPECT_EQ(run.out.str(), "Eine Programminstanz läuft bereits!\nkorvan\n");
  EXPECT_NE(run.err.str().find("antwortet nicht"), std::string::npos);
  EXPECT_TRUE(run.shell_calls.empty());

  // Skipping the check starts fully although the lock is taken.
  StartupRun skipped;
  ProgramStartup full(Options(base.path(), {"SKIPINSTANCECHECK"}), skipped.streams,
                      RecordingShell(skipped));
  EXPECT_EQ(full.Run(), 7);
  EXPECT_EQ(full.Sequence().Trace(), kStepOrder);
  EXPECT_EQ(full.Server(), nullptr);
}

TEST(ProgramStartup, StorageFailuresEndTheStartWithAnError) {
  RuntimeDir runtime;
  TempDir base;
  // A machine file that claims to be a user configuration.
  const fs::path machine_file = LoadInstallation(base.path()).machine.MachineConfigFile();
  fs::create_directories(machine_file.parent_path());
  std::ofstream(machine_file) << "[Globals]\nConfigTyp=User\n";
  for (const auto& [dir, named] : std::vector<std::pair<fs::path, std::string>>{
           {base.path() / "fehlt", "fehlt"}, {base.path(), "Q_Machine.ini"}}) {
    StartupRun run;
    ProgramStartup startup(Options(dir), run.streams, RecordingShell(run));
    EXPECT_EQ(startup.Run(), kExitFailure);
    EXPECT_EQ(startup.Sequence().Trace().back(), "InitStorage");
    EXPECT_TRUE(run.err.str().starts_with("Error: ")) << run.err.str();
    EXPECT_NE(run.err.str().find(named), std::string::npos) << run.err.str();
    EXPECT_TRUE(run.shell_calls.empty());
  }
}

TEST(ProgramStartup, ReadsKernelSettingsFromTheSharedConfiguration) {
  RuntimeDir runtime;
  TempDir base;
  fs::create_directories(base.path() / "SYSTEM");
  std::ofstream(base.path() / "SYSTEM" / "HELVIO.INI")
      << "[DBKERNEL]\nLOCK_TIMEOUT=100\nFlush_TimeOut=600\nDB_CACHESIZE=3\n"
         "[DEFAULTINFO]\nREGEN_CHECK=0\n";
  StartupRun run;
  ProgramStartup startup(Options(base.path()), run.streams, RecordingShell(run));
  EXPECT_EQ(startup.Run(), 7);
  const storage::KernelSettings& settings = storage::CurrentKernelSettings();
  EXPECT_EQ(settings.lock_timeout_ms, storage::kDefaultLockTimeoutMs);
  EXPECT_EQ(settings.flush_timeout_ms, 600);
  EXPECT_EQ(settings.db_cache_size, storage::kMinCacheBlocks);
  EXPECT_FALSE(startup.RegenCheck());
  storage::ApplyKernelSettings(storage::KernelSettings{});
}

TEST(ServeCommand, ReportsFailuresOfTheStartThroughItsExitCode) {
  RuntimeDir runtime;
  TempDir base;
  const std::string dir = base.path().string();
  // The test exceptions are raised at their steps, after every step before them.
  for (const auto& [parameter, step] : std::vector<std::pair<std::string, size_t>>{
           {"TEST_EXCEPTION1", 2}, {"test_exception2", 9}}) {
    std::string trace;
    for (size_t i = 0; i <= step; ++i) trace += "Startschritt: " + kStepOrder[i] + "\n";
    const auto failed = ExpectKorvan({"serve", "-d", dir, "--trace", parameter}, 1,
                                     {"Manuell ueber Parameter ausgeloeste Exception: "});
    EXPECT_TRUE(failed.err.starts_with(trace)) << failed.err;
    EXPECT_FALSE(Contains(failed.err, "Startschritt: " + kStepOrder[step + 1])) << failed.err;
  }
  ExpectKorvan({"serve", "-d", dir + "/fehlt"}, 1, {"Error: "});
  // The lock is free again although the starts failed.
  EXPECT_TRUE(InstanceLock::TryAcquire(runtime.path()).has_value());
}

}  // namespace
}  // namespace korvan::app
