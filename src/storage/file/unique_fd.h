#pragma once

// The one owner of an open file descriptor: closed when the owner goes away, handed on
// only by moving, so that no way out of a function leaks a descriptor or closes one twice.

namespace korvan::storage {

class UniqueFd {
 public:
  UniqueFd() = default;
  // Takes ownership of `fd`; a negative value (a failed open) owns nothing.
  explicit UniqueFd(int fd) : fd_(fd < 0 ? -1 : fd) {}
  ~UniqueFd();
  UniqueFd(UniqueFd&& other) noexcept;
  UniqueFd& operator=(UniqueFd&& other) noexcept;
  UniqueFd(const UniqueFd&) = delete;
  UniqueFd& operator=(const UniqueFd&) = delete;

  int get() const { return fd_; }
  bool valid() const { return fd_ >= 0; }

  // Closes now and returns close()'s result, for callers that must know whether the
  // last writes reached the file; 0 when nothing was open.
  int Close();
  // Gives the descriptor up without closing it.
  int Release();

 private:
  int fd_ = -1;
};

}  // namespace korvan::storage
