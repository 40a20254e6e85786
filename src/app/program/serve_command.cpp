#include "app/program/serve_command.h"

#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <ostream>
#include <stdexcept>

#include <CLI/CLI.hpp>

#include "app/program/data_dir.h"
#include "app/program/startup.h"
#include "storage/file/unique_fd.h"

namespace korvan::app {

namespace {

constexpr std::string_view kStopParameter = "--stop";

// SIGINT and SIGTERM delivered through a descriptor, so that the message loop waits on
// them like on the socket; the previous signal mask comes back at the end.
class StopSignals {
 public:
  StopSignals() {
    sigemptyset(&signals_);
    sigaddset(&signals_, SIGINT);
    sigaddset(&signals_, SIGTERM);
    if (pthread_sigmask(SIG_BLOCK, &signals_, &previous_) != 0) {
      throw std::runtime_error("Signale können nicht umgeleitet werden");
    }
    fd_ = storage::UniqueFd(signalfd(-1, &signals_, SFD_CLOEXEC | SFD_NONBLOCK));
    if (!fd_.valid()) {
      pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
      throw std::runtime_error(std::string("signalfd: ") + std::strerror(errno));
    }
  }
  ~StopSignals() {
    fd_.Close();
    pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
  }
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  int fd() const { return fd_.get(); }

  // Takes a pending signal; otherwise it would end the process once the mask is back.
  bool Received() const {
    signalfd_siginfo info{};
    return read(fd_.get(), &info, sizeof info) == static_cast<ssize_t>(sizeof info);
  }

 private:
  sigset_t signals_{};
  sigset_t previous_{};
  storage::UniqueFd fd_;
};

std::string JoinParameters(const std::vector<std::string>& lines) {
  std::string text;
  for (std::size_t i = 1; i < lines.size(); ++i) {
    if (i > 1) text += ' ';
    text += lines[i];
  }
  return text;
}

// Waits for a stop signal or hand-overs; prints every parameter list received.
int MessageLoop(ProgramStartup& startup, const StopSignals& signals) {
  std::ostream& out = startup.streams().out;
  InstanceServer* server = startup.Server();
  out << startup.App().title << " läuft (Prozess " << getpid() << ")" << std::endl;
  bool stop = false;
  const HandOverHandler receive = [&out, &stop](const std::vector<std::string>& lines) {
    out << "Parameterübergabe: " << JoinParameters(lines) << std::endl;
    if (std::find(lines.begin() + 1, lines.end(), kStopParameter) != lines.end()) stop = true;
    return HandOverAnswer{};
  };
  while (!stop) {
    pollfd waits[2] = {{signals.fd(), POLLIN, 0}, {server ? server->fd() : -1, POLLIN, 0}};
    if (poll(waits, 2, -1) < 0) {
      if (errno == EINTR) continue;
      throw std::runtime_error(std::string("poll: ") + std::strerror(errno));
    }
    if ((waits[0].revents & POLLIN) && signals.Received()) break;
    if (server && (waits[1].revents & POLLIN)) server->ServePending(receive);
  }
  // Starts that arrive while this instance ends run as full instances themselves.
  if (server)
    server->ServePending(
        [](const std::vector<std::string>&) { return HandOverAnswer{.terminated = true}; });
  out << startup.App().title << " beendet." << std::endl;
  return kExitOk;
}

std::string ProgramPath() {
  std::error_code error;
  const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::string("korvan") : path.string();
}

}  // namespace

void ServeCommand::Define(CLI::App& app) {
  AddDataDirOption(app, data_dir_);
  app.add_flag("--skipinstancecheck", skip_instance_check_,
               "startet auch, wenn schon eine Instanz läuft (eine volle zweite Instanz)");
  app.add_flag("--stop", stop_, "bittet die laufende Instanz, sich zu beenden");
  app.add_flag("--trace", trace_, "zeigt die Schritte des Starts, während sie laufen");
  app.add_option("parameter", parameters_,
                 "Parameter für die laufende Instanz; TEST_EXCEPTION1 und TEST_EXCEPTION2 "
                 "lösen beim Start eine Testausnahme aus");
}

std::vector<std::string> ServeCommand::CommandLine() const {
  std::vector<std::string> line = {ProgramPath(), "serve", "-d",
                                   std::filesystem::absolute(data_dir_).string()};
  if (skip_instance_check_) line.emplace_back("--skipinstancecheck");
  if (stop_) line.emplace_back(kStopParameter);
  line.insert(line.end(), parameters_.begin(), parameters_.end());
  return line;
}

int ServeCommand::Run(Streams& streams) {
  StartupOptions options;
  options.base_dir = data_dir_;
  options.command_line = CommandLine();
  options.skip_instance_check = skip_instance_check_;
  options.hand_over_only = stop_;

  std::unique_ptr<StopSignals> signals;
  ShellHooks hooks;
  hooks.create_main_modules = [&signals](ProgramStartup&) {
    signals = std::make_unique<StopSignals>();
  };
  hooks.message_loop = [&signals](ProgramStartup& startup) {
    return MessageLoop(startup, *signals);
  };
  ProgramStartup startup(std::move(options), streams, std::move(hooks));
  if (trace_) {
    startup.Sequence().OnStep([&streams](const std::string& step) {
      streams.err << "Startschritt: " << step << std::endl;
    });
  }
  return startup.Run();
}

}  // namespace korvan::app
