#include "app/program/startup.h"

#include <algorithm>
#include <ostream>

#include "data/common/ascii_text.h"
#include "data/config/helvio_ini.h"
#include "storage/db_kernel.h"
#include "storage/db_kernel_locks.h"
#include "storage/kernel_settings.h"

namespace korvan::app {

namespace {

// A running instance that is ending gets this long to let go of its lock.
constexpr std::chrono::milliseconds kEndingInstanceWait{5000};

std::string_view WithoutSwitchPrefix(std::string_view parameter) {
  if (parameter.starts_with("--")) return parameter.substr(2);
  if (parameter.starts_with("-") || parameter.starts_with("/")) return parameter.substr(1);
  return parameter;
}

std::string ProgramFileName(const std::vector<std::string>& command_line) {
  if (command_line.empty()) return std::string(kApplicationTitle);
  return std::filesystem::path(command_line.front()).filename().string();
}

std::vector<std::string> Parameters(const StartupOptions& options) {
  if (options.command_line.empty()) return {};
  return {options.command_line.begin() + 1, options.command_line.end()};
}

}  // namespace

bool HasSwitch(const std::vector<std::string>& parameters, std::string_view name) {
  return std::any_of(parameters.begin(), parameters.end(), [name](const std::string& parameter) {
    return data::EqualsIgnoringCase(WithoutSwitchPrefix(parameter), name);
  });
}

void StartupSequence::Add(std::string name, Step step) {
  steps_.emplace_back(std::move(name), std::move(step));
}

int StartupSequence::Run() {
  trace_.clear();
  for (const auto& [name, step] : steps_) {
    trace_.push_back(name);
    if (observer_) observer_(name);
    if (const std::optional<int> exit_code = step()) return *exit_code;
  }
  return kExitOk;
}

std::vector<std::string> StartupSequence::StepNames() const {
  std::vector<std::string> names;
  for (const auto& step : steps_) names.push_back(step.first);
  return names;
}

ProgramStartup::ProgramStartup(StartupOptions options, Streams& streams, ShellHooks hooks)
    : options_(std::move(options)), streams_(streams), hooks_(std::move(hooks)) {
  sequence_.Add("InitUnits", [this] { return InitUnits(); });
  sequence_.Add("SingleInstanceCheck", [this] { return CheckSingleInstance(); });
  sequence_.Add("TestException1", [this] { return TestHook("TEST_EXCEPTION1"); });
  sequence_.Add("InitStorage", [this] { return InitStorage(); });
  sequence_.Add("InitApplication", [this] { return InitApplication(); });
  sequence_.Add("ParameterHandOver", [this] { return HandOverToRunningInstance(); });
  sequence_.Add("StartBrowser", [this] { return StartBrowser(); });
  sequence_.Add("CreateMainModules", [this] { return CreateMainModules(); });
  sequence_.Add("SendStartMessage", [this] { return SendStartMessage(); });
  sequence_.Add("TestException2", [this] { return TestHook("TEST_EXCEPTION2"); });
  sequence_.Add("MessageLoop", [this] { return RunMessageLoop(); });
}

// Process-wide switches and the directories every later step relies on.
std::optional<int> ProgramStartup::InitUnits() {
  const std::vector<std::string> parameters = Parameters(options_);
  if (HasSwitch(parameters, "skipinstancecheck")) options_.skip_instance_check = true;
  storage::SetPendingLockDiagnostics(HasSwitch(parameters, "test"));
  if (!options_.skip_instance_check) runtime_dir_ = InstanceRuntimeDirectory();
  return std::nullopt;
}

std::optional<int> ProgramStartup::CheckSingleInstance() {
  if (options_.skip_instance_check) return std::nullopt;
  std::optional<InstanceLock> lock = InstanceLock::TryAcquire(runtime_dir_);
  if (!lock) {
    second_instance_ = true;
    return std::nullopt;
  }
  if (options_.hand_over_only) {
    streams_.out << "Keine Programminstanz läuft.\n";
    return kExitOk;
  }
  BecomeRunningInstance(std::move(*lock));
  return std::nullopt;
}

void ProgramStartup::BecomeRunningInstance(InstanceLock lock) {
  lock_.emplace(std::move(lock));
  // Listening right away: a new instance started meanwhile waits in the backlog until
  // the message loop runs.
  server_ = std::make_unique<InstanceServer>(runtime_dir_);
}

std::optional<int> ProgramStartup::TestHook(std::string_view hook) {
  if (HasSwitch(Parameters(options_), hook)) throw TestException(hook);
  return std::nullopt;
}

std::optional<int> ProgramStartup::InitStorage() {
  try {
    std::error_code error;
    if (!std::filesystem::is_directory(options_.base_dir, error)) {
      throw std::runtime_error("Datenverzeichnis \"" + options_.base_dir.string() +
                               "\" existiert nicht");
    }
    installation_ = std::make_unique<Installation>(LoadInstallation(options_.base_dir));
    const data::TMachineConfig& machine = installation_->machine;
    databases_ = std::make_unique<data::DatabaseFiles>(machine.ToDatabaseDirectories());
    data::RegisterDBTypes(registry_, data::UnboundIoCallbacks());
    const int version_result = storage::iDK_DbSetVersion(data::kDataFileVersion);
    if (version_result != 0) {
      throw std::runtime_error("Datenversion kann nicht gesetzt werden (Code " +
                               std::to_string(version_result) + ")");
    }
    const data::THelvioIni helvio = data::THelvioIni::Load(HelvioIniFile(machine));
    storage::ApplyKernelSettings(helvio.KernelSettings());
    regen_check_ = helvio.RegenCheck();
  } catch (const std::exception& e) {
    streams_.err << kErrorCaption << ": " << e.what() << "\n";
    return kExitFailure;
  }
  return std::nullopt;
}

std::optional<int> ProgramStartup::InitApplication() {
  application_.title = std::string(kApplicationTitle);
  application_.help_file = std::string(kHelpFileName);
  return std::nullopt;
}

std::optional<int> ProgramStartup::HandOverToRunningInstance() {
  if (!second_instance_) return std::nullopt;
  streams_.out << kInstanceRunningMessage << "\n"
               << ProgramFileName(options_.command_line) << "\n"
               << std::flush;
  switch (HandOverParameters(runtime_dir_, options_.command_line)) {
    case HandOverOutcome::kHandedOver:
      return kExitOk;
    case HandOverOutcome::kNoAnswer:
      streams_.err << "Die laufende Programminstanz antwortet nicht; die Parameter wurden nicht "
                      "übergeben.\n";
      return kExitFailure;
    case HandOverOutcome::kTerminated:
      break;
  }
  // The running instance is ending: this one takes its place.
  std::optional<InstanceLock> lock = InstanceLock::AcquireWithin(runtime_dir_, kEndingInstanceWait);
  if (!lock) {
    streams_.err << "Die laufende Programminstanz beendet sich nicht.\n";
    return kExitFailure;
  }
  second_instance_ = false;
  if (options_.hand_over_only) return kExitOk;
  BecomeRunningInstance(std::move(*lock));
  return std::nullopt;
}

// This platform has no embedded browser component; the flag keeps the shut-down honest.
std::optional<int> ProgramStartup::StartBrowser() {
  application_.browser_started = false;
  return std::nullopt;
}

std::optional<int> ProgramStartup::CreateMainModules() {
  if (hooks_.create_main_modules) hooks_.create_main_modules(*this);
  return std::nullopt;
}

std::optional<int> ProgramStartup::SendStartMessage() {
  application_.posted_messages.emplace_back(kStartMessage, kStartMessageParameter);
  return std::nullopt;
}

std::optional<int> ProgramStartup::RunMessageLoop() {
  const int exit_code = hooks_.message_loop ? hooks_.message_loop(*this) : kExitOk;
  application_.browser_started = false;
  return exit_code;
}

}  // namespace korvan::app
