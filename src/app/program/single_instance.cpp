#include "app/program/single_instance.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

#include "data/config/config_value.h"
#include "data/config/ini_file.h"
#include "storage/file/atomic_file.h"

namespace korvan::app {

namespace fs = std::filesystem;
using storage::UniqueFd;
using Clock = std::chrono::steady_clock;

namespace {

constexpr std::string_view kHandOverLockFileName = "QParams.lock";
constexpr std::string_view kNotification = "QPARAMS\n";
constexpr std::string_view kAcknowledgement = "OK\n";
constexpr std::chrono::milliseconds kRetryInterval{10};

std::string EnvOrEmpty(const char* name) {
  const char* value = std::getenv(name);
  return value ? std::string(value) : std::string();
}

[[noreturn]] void ThrowSystemError(const std::string& what, const fs::path& path) {
  throw std::runtime_error(what + " \"" + path.string() + "\": " + std::strerror(errno));
}

// A directory only this user can enter; anything else could be a trap set by another user.
void CheckPrivateDirectory(const fs::path& dir) {
  struct stat info {};
  if (::lstat(dir.c_str(), &info) != 0) ThrowSystemError("Laufzeitverzeichnis", dir);
  if (!S_ISDIR(info.st_mode)) {
    throw std::runtime_error("Laufzeitverzeichnis \"" + dir.string() + "\" ist kein Verzeichnis");
  }
  if (info.st_uid != ::geteuid() || (info.st_mode & 077) != 0) {
    throw std::runtime_error("Laufzeitverzeichnis \"" + dir.string() +
                             "\" gehört einem anderen Benutzer oder ist für andere zugänglich");
  }
}

int MillisecondsLeft(Clock::time_point deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
  return left.count() > 0 ? static_cast<int>(left.count()) : 0;
}

bool WaitReadable(int fd, Clock::time_point deadline) {
  for (;;) {
    pollfd entry{fd, POLLIN, 0};
    const int ready = ::poll(&entry, 1, MillisecondsLeft(deadline));
    if (ready > 0) return true;
    if (ready == 0) return false;
    if (errno != EINTR) return false;
  }
}

// Reads one line of at most a few bytes; empty when nothing complete arrived in time.
std::string ReadShortLine(int fd, Clock::time_point deadline) {
  std::string line;
  while (line.size() < 64) {
    if (!WaitReadable(fd, deadline)) return {};
    char c = 0;
    const ssize_t got = ::read(fd, &c, 1);
    if (got == 0) return {};
    if (got < 0) {
      if (errno == EINTR || errno == EAGAIN) continue;
      return {};
    }
    line.push_back(c);
    if (c == '\n') return line;
  }
  return {};
}

// A new instance that gave up waiting has closed its end; its file is gone or, worse,
// already belongs to the next new instance.
bool PeerClosed(int fd) {
  char byte = 0;
  return ::recv(fd, &byte, 1, MSG_PEEK | MSG_DONTWAIT) == 0;
}

void SendAll(int fd, std::string_view text) {
  while (!text.empty()) {
    const ssize_t sent = ::send(fd, text.data(), text.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(sent));
  }
}

sockaddr_un SocketAddress(const fs::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string text = path.string();
  if (text.size() >= sizeof address.sun_path) {
    throw std::runtime_error("Pfad des Programm-Sockets ist zu lang: \"" + text + "\"");
  }
  std::memcpy(address.sun_path, text.c_str(), text.size() + 1);
  return address;
}

UniqueFd OpenLockFile(const fs::path& path) {
  UniqueFd fd(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (!fd.valid()) ThrowSystemError("Sperrdatei kann nicht geöffnet werden:", path);
  return fd;
}

bool TryLock(const UniqueFd& fd) {
  while (::flock(fd.get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    if (errno == EWOULDBLOCK) return false;
    throw std::runtime_error(std::string("Sperre nicht möglich: ") + std::strerror(errno));
  }
  return true;
}

// Serialises hand-overs of several new instances, which share one "QParams.txt".
std::optional<UniqueFd> LockHandOver(const fs::path& runtime_dir, Clock::time_point deadline) {
  UniqueFd fd = OpenLockFile(runtime_dir / kHandOverLockFileName);
  while (!TryLock(fd)) {
    if (Clock::now() >= deadline) return std::nullopt;
    std::this_thread::sleep_for(kRetryInterval);
  }
  return fd;
}

std::vector<std::string> ReadLines(const fs::path& file) {
  std::vector<std::string> lines;
  std::ifstream in(file, std::ios::binary);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(std::move(line));
  }
  return lines;
}

// The list is rewritten on each hand-over; a crash loses at most the last one.
void WriteQParams(const fs::path& file, const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  const storage::FileWriteResult result =
      storage::WriteFileAtomically(file.string(), text, storage::Durability::kAtomic);
  if (!result.ok()) {
    throw std::runtime_error("\"" + file.string() +
                             "\" kann nicht geschrieben werden: " + result.ErrorText());
  }
}

bool TerminatedIn(const std::vector<std::string>& lines) {
  for (const std::string& line : lines) {
    const auto equals = line.find('=');
    if (equals == std::string::npos) continue;
    if (!data::IniNamesEqual(line.substr(0, equals), kTerminatedKey)) continue;
    if (data::ParseConfigBool(line.substr(equals + 1)).value_or(false)) return true;
  }
  return false;
}

// Connects, notifies and waits for the acknowledgement; false when the running instance
// is not there or does not answer before the deadline.
bool NotifyRunningInstance(const fs::path& socket_path, Clock::time_point deadline) {
  UniqueFd fd(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  if (!fd.valid()) return false;
  const sockaddr_un address = SocketAddress(socket_path);
  for (;;) {
    if (::connect(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
      break;
    }
    // A full backlog: the running instance is busy; try again until the deadline.
    if (errno != EAGAIN && errno != EINTR) return false;
    if (Clock::now() >= deadline) return false;
    std::this_thread::sleep_for(kRetryInterval);
  }
  SendAll(fd.get(), kNotification);
  return ReadShortLine(fd.get(), deadline) == kAcknowledgement;
}

}  // namespace

fs::path InstanceRuntimeDirectory() {
  fs::path dir;
  if (auto configured = EnvOrEmpty(kRuntimeDirVariable); !configured.empty()) {
    dir = configured;
  } else if (auto xdg = EnvOrEmpty("XDG_RUNTIME_DIR"); !xdg.empty()) {
    dir = fs::path(xdg) / "korvan";
  } else {
    dir = fs::path("/tmp") / ("korvan-" + std::to_string(::geteuid()));
  }
  if (::mkdir(dir.c_str(), 0700) != 0 && errno != EEXIST) {
    ThrowSystemError("Laufzeitverzeichnis kann nicht angelegt werden:", dir);
  }
  CheckPrivateDirectory(dir);
  return dir;
}

std::optional<InstanceLock> InstanceLock::TryAcquire(const fs::path& runtime_dir) {
  UniqueFd fd = OpenLockFile(runtime_dir / kInstanceLockFileName);
  if (!TryLock(fd)) return std::nullopt;
  return InstanceLock(std::move(fd));
}

std::optional<InstanceLock> InstanceLock::AcquireWithin(const fs::path& runtime_dir,
                                                        std::chrono::milliseconds wait) {
  const auto deadline = Clock::now() + wait;
  for (;;) {
    if (auto lock = TryAcquire(runtime_dir)) return lock;
    if (Clock::now() >= deadline) return std::nullopt;
    std::this_thread::sleep_for(kRetryInterval);
  }
}

InstanceServer::InstanceServer(const fs::path& runtime_dir)
    : runtime_dir_(runtime_dir), socket_path_(runtime_dir / kInstanceSocketName) {
  const sockaddr_un address = SocketAddress(socket_path_);
  socket_ = UniqueFd(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  if (!socket_.valid())
    ThrowSystemError("Programm-Socket kann nicht angelegt werden:", socket_path_);
  // Left behind by an instance that ended without cleaning up; the lock says it is gone.
  ::unlink(socket_path_.c_str());
  if (::bind(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      ::listen(socket_.get(), 16) != 0) {
    ThrowSystemError("Programm-Socket kann nicht angelegt werden:", socket_path_);
  }
}

InstanceServer::~InstanceServer() {
  ::unlink(socket_path_.c_str());
}

int InstanceServer::ServePending(const HandOverHandler& handler) {
  int served = 0;
  for (;;) {
    UniqueFd client(::accept4(socket_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!client.valid()) {
      if (errno == EINTR || errno == ECONNABORTED) continue;
      return served;
    }
    ServeOne(client.get(), handler);
    ++served;
  }
}

void InstanceServer::ServeOne(int client, const HandOverHandler& handler) {
  const auto deadline = Clock::now() + kHandOverTimeout;
  if (ReadShortLine(client, deadline) != kNotification || PeerClosed(client)) return;
  const fs::path file = runtime_dir_ / kQParamsFileName;
  // Empty when the new instance gave up waiting and took its file back.
  const std::vector<std::string> lines = ReadLines(file);
  if (lines.empty()) return;
  const HandOverAnswer answer = handler(lines);
  if (answer.terminated) {
    std::ofstream out(file, std::ios::binary | std::ios::app);
    out << kTerminatedKey << "=1\n";
  }
  SendAll(client, kAcknowledgement);
}

HandOverOutcome HandOverParameters(const fs::path& runtime_dir,
                                   const std::vector<std::string>& lines,
                                   std::chrono::milliseconds timeout) {
  for (const std::string& line : lines) {
    if (line.find_first_of("\r\n") != std::string::npos) {
      throw std::invalid_argument("Parameter mit Zeilenumbruch kann nicht übergeben werden");
    }
  }
  // Waiting behind other new instances may take their time-outs as well.
  const auto start = Clock::now();
  const auto guard = LockHandOver(runtime_dir, start + 3 * timeout);
  if (!guard) return HandOverOutcome::kNoAnswer;

  const fs::path file = runtime_dir / kQParamsFileName;
  WriteQParams(file, lines);
  const bool answered =
      NotifyRunningInstance(runtime_dir / kInstanceSocketName, Clock::now() + timeout);
  HandOverOutcome outcome = HandOverOutcome::kNoAnswer;
  std::error_code error;
  if (answered) {
    const bool terminated = fs::exists(file, error) && TerminatedIn(ReadLines(file));
    outcome = terminated ? HandOverOutcome::kTerminated : HandOverOutcome::kHandedOver;
  }
  fs::remove(file, error);
  return outcome;
}

}  // namespace korvan::app
