#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/cli/command.h"
#include "app/program/installation.h"
#include "app/program/single_instance.h"
#include "data/db/db_groups.h"
#include "data/db/db_types.h"

namespace korvan::app {

inline constexpr std::string_view kApplicationTitle = "Korvan";
inline constexpr std::string_view kHelpFileName = "Hilfe.chm";
inline constexpr std::string_view kErrorCaption = "Error";
inline constexpr std::string_view kTestExceptionPrefix =
    "Manuell ueber Parameter ausgeloeste Exception: ";
inline constexpr int kStartMessage = 2038;
inline constexpr int kStartMessageParameter = 111;

// Raised on purpose by the command-line switches "TEST_EXCEPTION1" and "TEST_EXCEPTION2",
// so that the handling of unexpected errors at start-up can be tried out.
class TestException : public std::runtime_error {
 public:
  explicit TestException(std::string_view hook)
      : std::runtime_error(std::string(kTestExceptionPrefix) + std::string(hook)) {}
};

// Whether the parameters hold a switch, in any case and with or without a leading
// "-", "--" or "/".
bool HasSwitch(const std::vector<std::string>& parameters, std::string_view name);

// Named steps run in a fixed order. A step either lets the start go on or ends the
// program with an exit code; the names of the steps begun are kept for diagnostics.
class StartupSequence {
 public:
  // nullopt: go on; a value: end the program with that exit code.
  using Step = std::function<std::optional<int>()>;

  void Add(std::string name, Step step);
  // Told the name of every step as it begins.
  void OnStep(std::function<void(const std::string& name)> observer) {
    observer_ = std::move(observer);
  }
  // Runs the steps in order; the exit code of the step that ended the program, else 0.
  // Exceptions of a step pass through.
  int Run();

  std::vector<std::string> StepNames() const;
  const std::vector<std::string>& Trace() const { return trace_; }

 private:
  std::vector<std::pair<std::string, Step>> steps_;
  std::vector<std::string> trace_;
  std::function<void(const std::string&)> observer_;
};

// What the start-up of the long-running program is given.
struct StartupOptions {
  std::filesystem::path base_dir;  // the installation's base (data) directory
  // The program path, then every parameter; handed over to a running instance.
  std::vector<std::string> command_line;
  bool skip_instance_check = false;
  // Only hand the parameters over (e.g. a stop request); never become the running
  // instance.
  bool hand_over_only = false;
};

// The application object of the running program.
struct Application {
  std::string title;
  std::string help_file;
  bool browser_started = false;
  std::vector<std::pair<int, int>> posted_messages;  // message, parameter
};

class ProgramStartup;

// What the user-interface shell contributes to the start-up.
struct ShellHooks {
  std::function<void(ProgramStartup&)> create_main_modules;
  // Runs until the main form closes; returns the program's exit code.
  std::function<int(ProgramStartup&)> message_loop;
};

// The start-up of the long-running program, from the initialisation of its units to
// the message loop.
class ProgramStartup {
 public:
  ProgramStartup(StartupOptions options, Streams& streams, ShellHooks hooks);
  ProgramStartup(const ProgramStartup&) = delete;
  ProgramStartup& operator=(const ProgramStartup&) = delete;

  int Run() { return sequence_.Run(); }
  const StartupSequence& Sequence() const { return sequence_; }
  StartupSequence& Sequence() { return sequence_; }

  const StartupOptions& Options() const { return options_; }
  Streams& streams() { return streams_; }
  bool IsSecondInstance() const { return second_instance_; }
  // The socket of the running instance; nullptr when the instance check was skipped.
  InstanceServer* Server() { return server_.get(); }
  const Application& App() const { return application_; }
  Application& App() { return application_; }
  const Installation* InstallationLoaded() const { return installation_.get(); }
  const data::DatabaseFiles* Databases() const { return databases_.get(); }
  const data::DbTypeRegistry& Registry() const { return registry_; }
  bool RegenCheck() const { return regen_check_; }

 private:
  std::optional<int> InitUnits();
  std::optional<int> CheckSingleInstance();
  std::optional<int> TestHook(std::string_view hook);
  std::optional<int> InitStorage();
  std::optional<int> InitApplication();
  std::optional<int> HandOverToRunningInstance();
  std::optional<int> StartBrowser();
  std::optional<int> CreateMainModules();
  std::optional<int> SendStartMessage();
  std::optional<int> RunMessageLoop();
  void BecomeRunningInstance(InstanceLock lock);

  StartupOptions options_;
  Streams& streams_;
  ShellHooks hooks_;
  StartupSequence sequence_;

  std::filesystem::path runtime_dir_;
  std::optional<InstanceLock> lock_;
  std::unique_ptr<InstanceServer> server_;
  bool second_instance_ = false;
  std::unique_ptr<Installation> installation_;
  std::unique_ptr<data::DatabaseFiles> databases_;
  data::DbTypeRegistry registry_;
  bool regen_check_ = true;
  Application application_;
};

}  // namespace korvan::app
