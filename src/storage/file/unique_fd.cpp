#include "storage/file/unique_fd.h"

#include <unistd.h>

#include <utility>

namespace korvan::storage {

UniqueFd::~UniqueFd() {
  Close();
}

UniqueFd::UniqueFd(UniqueFd&& other) noexcept : fd_(other.Release()) {}

UniqueFd& UniqueFd::operator=(UniqueFd&& other) noexcept {
  if (this != &other) {
    Close();
    fd_ = other.Release();
  }
  return *this;
}

int UniqueFd::Close() {
  if (fd_ < 0) return 0;
  // The descriptor is gone after close() whatever it answers (also on EINTR), so it is
  // never closed a second time.
  return ::close(std::exchange(fd_, -1));
}

int UniqueFd::Release() {
  return std::exchange(fd_, -1);
}

}  // namespace korvan::storage
