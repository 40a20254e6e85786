#pragma once

#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <type_traits>

// The one scaffolding of the tests that need a second process: a forked child that is
// stepped through messages, killed at a chosen moment, waited for.
namespace korvan::testing {

// One end of a socket pair that keeps message boundaries, so that a message of a few
// bytes arrives whole or not at all. Receive gives up after ten seconds, so that a
// failing partner cannot hang a suite.
class Channel {
 public:
  static constexpr int32_t kNoMessage = INT32_MIN;

  explicit Channel(int fd) : fd_(fd) {}

  // A number (a task, a result code, a character standing for a step).
  bool Send(int32_t number) const { return SendMessage(number); }
  // A number, or kNoMessage when none came.
  int32_t Receive() const {
    int32_t number = kNoMessage;
    return ReceiveMessage(&number) ? number : kNoMessage;
  }

  // Lets a sender on this end get only a few messages ahead of its reader: a process
  // killed after the reader has seen the n-th message has not got much further.
  void KeepCloseBehind() const {
    const int bytes = 4096;
    setsockopt(fd_, SOL_SOCKET, SO_SNDBUF, &bytes, sizeof bytes);
  }

  template <typename Message>
  bool SendMessage(const Message& message) const {
    static_assert(std::is_trivially_copyable_v<Message>);
    return write(fd_, &message, sizeof message) == static_cast<ssize_t>(sizeof message);
  }
  template <typename Message>
  bool ReceiveMessage(Message* message, int timeout_ms = 10000) const {
    pollfd ready{fd_, POLLIN, 0};
    return poll(&ready, 1, timeout_ms) == 1 &&
           read(fd_, message, sizeof *message) == static_cast<ssize_t>(sizeof *message);
  }

 protected:
  int fd_;
};

// Runs `body` in a forked child, which exits with its result (an exception: 98). A child
// still running when the object goes is killed.
class ChildProcess : public Channel {
 public:
  explicit ChildProcess(const std::function<int(const Channel&)>& body) : Channel(-1) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) != 0) throw std::runtime_error("socketpair");
    pid_ = fork();
    if (pid_ < 0) throw std::runtime_error("fork");
    if (pid_ == 0) {
      close(ends[0]);
      int result = 98;
      try {
        result = body(Channel(ends[1]));
      } catch (...) {
      }
      _exit(result);
    }
    close(ends[1]);
    fd_ = ends[0];
  }
  ~ChildProcess() {
    if (!waited_) Kill();
    close(fd_);
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  pid_t pid() const { return pid_; }
  // The child's exit status, or -1 when it did not end normally.
  int Wait() { return WaitStatus(0); }
  // Whether the child is still running (then it is not waited for).
  bool Running() { return WaitStatus(WNOHANG) == kStillRunning; }
  // Kills the child; true when it was still running (and so died of the kill).
  bool Kill() {
    if (waited_) return false;
    kill(pid_, SIGKILL);
    int status = 0;
    waited_ = true;
    return waitpid(pid_, &status, 0) == pid_ && WIFSIGNALED(status);
  }

 private:
  static constexpr int kStillRunning = -2;

  int WaitStatus(int options) {
    if (waited_) return -1;
    int status = 0;
    const pid_t ended = waitpid(pid_, &status, options);
    if (ended == 0) return kStillRunning;
    waited_ = true;
    if (ended != pid_) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  pid_t pid_ = -1;
  bool waited_ = false;
};

// What `work` returns when run in a child (kNoMessage when the child died first).
inline int32_t ResultInChild(const std::function<int32_t()>& work) {
  ChildProcess child([&](const Channel& parent) {
    parent.Send(work());
    return 0;
  });
  return child.Receive();
}

// Runs `work` in a child, and kills the child as soon as `work` has returned, before it
// can do anything else (close files, flush caches); returns what `work` returned.
inline int32_t ResultThenKill(const std::function<int32_t()>& work) {
  ChildProcess child([&](const Channel& parent) {
    parent.Send(work());
    for (;;) pause();
    return 0;
  });
  const int32_t result = child.Receive();
  child.Kill();
  return result;
}

}  // namespace korvan::testing
