#pragma once

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <stdexcept>

namespace korvan::testing {

// A forked process for tests of the lock protocol between users, with a pipe in each
// direction to step parent and child in lockstep. The child runs a function and ends
// with its result as exit status (0 = as expected); it never returns into the test
// framework. Messages are single bytes; a read gives up after a time-out so that a
// failing partner cannot hang the suite.
class TestProcess {
 public:
  class Channel {
   public:
    Channel(int read_fd, int write_fd) : read_fd_(read_fd), write_fd_(write_fd) {}
    bool Send(char message) const { return write(write_fd_, &message, 1) == 1; }
    // The next message, or 0 after the time-out or when the partner is gone.
    char Receive(int timeout_ms = 10000) const {
      pollfd ready{read_fd_, POLLIN, 0};
      if (poll(&ready, 1, timeout_ms) != 1) return 0;
      char message = 0;
      return read(read_fd_, &message, 1) == 1 ? message : 0;
    }

   private:
    int read_fd_;
    int write_fd_;
  };

  explicit TestProcess(const std::function<int(const Channel&)>& body) {
    int to_child[2];
    int to_parent[2];
    if (pipe(to_child) != 0 || pipe(to_parent) != 0) throw std::runtime_error("pipe");
    pid_ = fork();
    if (pid_ < 0) throw std::runtime_error("fork");
    if (pid_ == 0) {
      close(to_child[1]);
      close(to_parent[0]);
      int status = body(Channel(to_child[0], to_parent[1]));
      _exit(status);
    }
    close(to_child[0]);
    close(to_parent[1]);
    read_fd_ = to_parent[0];
    write_fd_ = to_child[1];
  }

  ~TestProcess() {
    if (pid_ > 0 && !waited_) {
      kill(pid_, SIGKILL);
      Wait();
    }
    close(read_fd_);
    close(write_fd_);
  }

  TestProcess(const TestProcess&) = delete;
  TestProcess& operator=(const TestProcess&) = delete;

  Channel channel() const { return Channel(read_fd_, write_fd_); }
  bool Send(char message) const { return channel().Send(message); }
  char Receive(int timeout_ms = 10000) const { return channel().Receive(timeout_ms); }

  // The child's exit status, or -1 when it did not end normally.
  int Wait() {
    int status = 0;
    waited_ = true;
    if (waitpid(pid_, &status, 0) != pid_) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  pid_t pid_ = -1;
  int read_fd_ = -1;
  int write_fd_ = -1;
  bool waited_ = false;
};

}  // namespace korvan::testing
