#pragma once

#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <stdexcept>

namespace korvan::testing {

// One end of a socket pair carrying single-byte messages. Receive gives up after ten
// seconds (and returns 0) so that a failing partner cannot hang the suite.
class Channel {
 public:
  explicit Channel(int fd) : fd_(fd) {}
  bool Send(char message) const { return write(fd_, &message, 1) == 1; }
  char Receive() const {
    pollfd ready{fd_, POLLIN, 0};
    char message = 0;
    if (poll(&ready, 1, 10000) != 1 || read(fd_, &message, 1) != 1) return 0;
    return message;
  }

 protected:
  int fd_;
};

// A forked process for tests of the lock protocol between users, stepped through a
// channel. The child runs `body` and exits with its result (0 = as expected).
class TestProcess : public Channel {
 public:
  explicit TestProcess(const std::function<int(const Channel&)>& body) : Channel(-1) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) throw std::runtime_error("socketpair");
    pid_ = fork();
    if (pid_ < 0) throw std::runtime_error("fork");
    if (pid_ == 0) {
      close(ends[0]);
      _exit(body(Channel(ends[1])));
    }
    close(ends[1]);
    fd_ = ends[0];
  }
  ~TestProcess() {
    if (!waited_) {
      kill(pid_, SIGKILL);
      Wait();
    }
    close(fd_);
  }
  TestProcess(const TestProcess&) = delete;
  TestProcess& operator=(const TestProcess&) = delete;

  // The child's exit status, or -1 when it did not end normally.
  int Wait() {
    int status = 0;
    waited_ = true;
    if (waitpid(pid_, &status, 0) != pid_) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  pid_t pid_ = -1;
  bool waited_ = false;
};

}  // namespace korvan::testing
