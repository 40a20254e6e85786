#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "storage/file/unique_fd.h"

namespace korvan::app {

// Only one long-running instance of the program runs per user. The first instance holds
// an exclusive lock on a file in the user's runtime directory and listens on a
// Unix-domain socket there. A later instance writes its command line into "QParams.txt"
// in the same directory and notifies the running one through the socket, which reads
// the file, processes the parameters and answers. One-shot commands never take part.

inline constexpr std::string_view kQParamsFileName = "QParams.txt";
inline constexpr std::string_view kInstanceLockFileName = "korvan.lock";
inline constexpr std::string_view kInstanceSocketName = "korvan.sock";
inline constexpr std::string_view kInstanceRunningMessage = "Eine Programminstanz läuft bereits!";
inline constexpr std::string_view kTerminatedKey = "Terminated";
inline constexpr std::chrono::milliseconds kHandOverTimeout{2000};

// Overrides the runtime directory (tests and side-by-side installations).
inline constexpr const char* kRuntimeDirVariable = "KORVAN_RUNTIME_DIR";

// The directory shared by all instances of this user: $KORVAN_RUNTIME_DIR, else
// $XDG_RUNTIME_DIR/korvan, else /tmp/korvan-<uid>. Created with mode 0700 when missing.
// std::runtime_error when it cannot be created or belongs to someone else or is open
// to others (another user could otherwise intercept the hand-over).
std::filesystem::path InstanceRuntimeDirectory();

// The exclusive lock that makes this process the running instance; released when the
// object goes away or the process ends, however it ends.
class InstanceLock {
 public:
  // nullopt when another process holds the lock. std::runtime_error when the lock
  // file cannot be opened.
  static std::optional<InstanceLock> TryAcquire(const std::filesystem::path& runtime_dir);

  // Retries until `wait` has passed; for an instance that is ending.
  static std::optional<InstanceLock> AcquireWithin(const std::filesystem::path& runtime_dir,
                                                   std::chrono::milliseconds wait);

 private:
  explicit InstanceLock(storage::UniqueFd fd) : fd_(std::move(fd)) {}
  storage::UniqueFd fd_;
};

// What the running instance tells the new one about its parameters.
struct HandOverAnswer {
  // The running instance is ending and did not take the parameters: the new instance
  // starts fully. Written into "QParams.txt" as "Terminated=1".
  bool terminated = false;
};

// Processes the lines of "QParams.txt": the program path, then one parameter per line.
using HandOverHandler = std::function<HandOverAnswer(const std::vector<std::string>& lines)>;

// The listening socket of the running instance. Requires the instance lock: a stale
// socket file of an ended instance is replaced.
class InstanceServer {
 public:
  explicit InstanceServer(const std::filesystem::path& runtime_dir);
  ~InstanceServer();
  InstanceServer(const InstanceServer&) = delete;
  InstanceServer& operator=(const InstanceServer&) = delete;

  // The descriptor to wait on (readable when a notification is pending).
  int fd() const { return socket_.get(); }

  // Serves every notification pending now: reads "QParams.txt", calls the handler,
  // writes its answer into the file and acknowledges. A client that does not send its
  // notification within the hand-over time-out is dropped. Returns how many hand-overs
  // were served.
  int ServePending(const HandOverHandler& handler);

 private:
  void ServeOne(int client, const HandOverHandler& handler);

  std::filesystem::path runtime_dir_;
  std::filesystem::path socket_path_;
  storage::UniqueFd socket_;
};

// How a hand-over to the running instance ended.
enum class HandOverOutcome {
  kHandedOver,  // the running instance took the parameters; this instance ends
  kTerminated,  // the running instance is ending ("Terminated=1"); this instance starts
  kNoAnswer,    // no running instance answered within the time-out; nothing was handed over
};

// Writes `lines` (the program path and every parameter) into "QParams.txt", notifies
// the running instance and waits at most `timeout` for its answer; reads "Terminated"
// back and deletes the file. Hand-overs of several new instances run one after the
// other. std::invalid_argument for a parameter containing a line break,
// std::runtime_error when the file cannot be written.
HandOverOutcome HandOverParameters(const std::filesystem::path& runtime_dir,
                                   const std::vector<std::string>& lines,
                                   std::chrono::milliseconds timeout = kHandOverTimeout);

}  // namespace korvan::app
