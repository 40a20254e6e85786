#include "app/startup.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/installation.h"
#include "storage/kernel_settings.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;
using korvan::testing::RunKorvanBinary;
using korvan::testing::TempDir;

const std::vector<std::string> kStepOrder = {
    "InitUnits",        "SingleInstanceCheck", "TestException1", "InitStorage",
    "InitApplication",  "ParameterHandOver",   "StartBrowser",   "CreateMainModules",
    "SendStartMessage", "TestException2",      "MessageLoop"};

// Every instance of one test shares this runtime directory.
class RuntimeDir {
 public:
  RuntimeDir() { setenv(kRuntimeDirVariable, dir_.path().c_str(), 1); }
  ~RuntimeDir() { unsetenv(kRuntimeDirVariable); }
  const fs::path& path() const { return dir_.path(); }

 private:
  TempDir dir_;
};

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

TEST(StartupSequence, RunsNamedStepsInOrderUntilOneEndsTheProgram) {
  StartupSequence sequence;
  std::vector<std::string> ran;
  std::vector<std::string> observed;
  sequence.Add("a", [&] {
    ran.push_back("a");
    return std::optional<int>();
  });
  sequence.Add("b", [&] {
    ran.push_back("b");
    return std::optional<int>(3);
  });
  sequence.Add("c", [&] {
    ran.push_back("c");
    return std::optional<int>();
  });
  sequence.OnStep([&](const std::string& name) { observed.push_back(name); });
  EXPECT_EQ(sequence.StepNames(), (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(sequence.Run(), 3);
  EXPECT_EQ(ran, (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(sequence.Trace(), ran);
  EXPECT_EQ(observed, ran);

  StartupSequence throwing;
  throwing.Add("ok", [] { return std::optional<int>(); });
  throwing.Add("fails", []() -> std::optional<int> { throw std::runtime_error("kaputt"); });
  throwing.Add("never", [] { return std::optional<int>(); });
  EXPECT_THROW(throwing.Run(), std::runtime_error);
  EXPECT_EQ(throwing.Trace(), (std::vector<std::string>{"ok", "fails"}));
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
    EXPECT_EQ(startup.Sequence().StepNames(), kStepOrder);
    EXPECT_EQ(startup.Run(), 7);
    EXPECT_EQ(startup.Sequence().Trace(), kStepOrder);
    EXPECT_EQ(run.shell_calls, (std::vector<std::string>{"modules", "loop"}));
    EXPECT_TRUE(lock_held_in_loop);
    EXPECT_FALSE(startup.IsSecondInstance());
    EXPECT_EQ(startup.App().title, "Korvan");
    EXPECT_EQ(startup.App().help_file, "Hilfe.chm");
    EXPECT_FALSE(startup.App().browser_started);
    EXPECT_EQ(startup.App().posted_messages, (std::vector<std::pair<int, int>>{{2038, 111}}));
    ASSERT_NE(startup.InstallationLoaded(), nullptr);
    EXPECT_EQ(startup.InstallationLoaded()->machine.BasisDirectory(),
              fs::absolute(base.path()).string() + "/");
    EXPECT_EQ(startup.InstallationLoaded()->system.OZFormat(), "11.22.PPPP");
    ASSERT_NE(startup.Databases(), nullptr);
    EXPECT_FALSE(startup.Databases()->all().empty());
    EXPECT_TRUE(startup.Registry().IsRegistered('A'));
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

TEST(ProgramStartup, TestExceptionsAreRaisedAtTheirSteps) {
  RuntimeDir runtime;
  TempDir base;
  for (const auto& [parameter, last_step] : std::vector<std::pair<std::string, std::string>>{
           {"TEST_EXCEPTION1", "TestException1"}, {"-test_exception2", "TestException2"}}) {
    StartupRun run;
    ProgramStartup startup(Options(base.path(), {parameter}), run.streams, RecordingShell(run));
    try {
      startup.Run();
      ADD_FAILURE() << parameter << " raised nothing";
    } catch (const TestException& e) {
      EXPECT_TRUE(
          std::string(e.what()).starts_with("Manuell ueber Parameter ausgeloeste Exception: "))
          << e.what();
    }
    EXPECT_EQ(startup.Sequence().Trace().back(), last_step);
    EXPECT_TRUE(run.shell_calls.size() <= 1u);
  }
  // The lock is free again although the start failed.
  EXPECT_TRUE(InstanceLock::TryAcquire(runtime.path()).has_value());
}

TEST(ProgramStartup, StorageFailuresEndTheStartWithAnError) {
  RuntimeDir runtime;
  TempDir base;
  {
    StartupRun run;
    ProgramStartup startup(Options(base.path() / "fehlt"), run.streams, RecordingShell(run));
    EXPECT_EQ(startup.Run(), kExitFailure);
    EXPECT_EQ(startup.Sequence().Trace().back(), "InitStorage");
    EXPECT_TRUE(run.err.str().starts_with("Error: ")) << run.err.str();
    EXPECT_NE(run.err.str().find("fehlt"), std::string::npos);
  }
  {
    // A machine file that claims to be a user configuration.
    const fs::path machine_file = LoadInstallation(base.path()).machine.MachineConfigFile();
    fs::create_directories(machine_file.parent_path());
    std::ofstream(machine_file) << "[Globals]\nConfigTyp=User\n";
    StartupRun run;
    ProgramStartup startup(Options(base.path()), run.streams, RecordingShell(run));
    EXPECT_EQ(startup.Run(), kExitFailure);
    EXPECT_EQ(startup.Sequence().Trace().back(), "InitStorage");
    EXPECT_TRUE(run.err.str().starts_with("Error: ")) << run.err.str();
    EXPECT_NE(run.err.str().find("Q_Machine.ini"), std::string::npos) << run.err.str();
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

  const auto first = RunKorvanBinary({"serve", "-d", dir, "--trace", "TEST_EXCEPTION1"});
  EXPECT_EQ(first.exit_code, 1);
  EXPECT_NE(first.err.find("Manuell ueber Parameter ausgeloeste Exception: TEST_EXCEPTION1"),
            std::string::npos)
      << first.err;
  EXPECT_NE(first.err.find("Startschritt: TestException1\n"), std::string::npos);
  EXPECT_EQ(first.err.find("Startschritt: InitStorage"), std::string::npos);

  const auto second = RunKorvanBinary({"serve", "-d", dir, "--trace", "TEST_EXCEPTION2"});
  EXPECT_EQ(second.exit_code, 1);
  std::string expected_trace;
  for (std::size_t i = 0; i + 1 < kStepOrder.size(); ++i) {
    expected_trace += "Startschritt: " + kStepOrder[i] + "\n";
  }
  EXPECT_TRUE(second.err.starts_with(expected_trace)) << second.err;
  EXPECT_NE(second.err.find("Exception: TEST_EXCEPTION2"), std::string::npos);

  const auto missing = RunKorvanBinary({"serve", "-d", dir + "/fehlt"});
  EXPECT_EQ(missing.exit_code, 1);
  EXPECT_TRUE(missing.err.starts_with("Error: ")) << missing.err;
}

}  // namespace
}  // namespace korvan::app
