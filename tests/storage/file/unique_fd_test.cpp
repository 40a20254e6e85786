#include "storage/file/unique_fd.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <utility>

namespace korvan::storage {
namespace {

bool IsOpen(int fd) {
  return ::fcntl(fd, F_GETFD) != -1;
}

int OpenDevNull() {
  return ::open("/dev/null", O_RDONLY | O_CLOEXEC);
}

TEST(UniqueFdTest, OwnsItsDescriptorUntilItGoesAwayIsClosedOrReleased) {
  int raw = -1;
  {
    const UniqueFd fd(OpenDevNull());
    raw = fd.get();
    ASSERT_TRUE(fd.valid());
  }
  EXPECT_FALSE(IsOpen(raw));
  EXPECT_FALSE(UniqueFd(::open("/nonexistent/korvan", O_RDONLY)).valid());

  UniqueFd closed(OpenDevNull());
  raw = closed.get();
  EXPECT_EQ(closed.Close(), 0);
  EXPECT_FALSE(closed.valid() || IsOpen(raw));
  EXPECT_EQ(closed.Close(), 0);  // nothing left to close
  {
    UniqueFd fd(OpenDevNull());
    raw = fd.Release();
    EXPECT_FALSE(fd.valid());
  }
  EXPECT_TRUE(IsOpen(raw));
  ::close(raw);
}

TEST(UniqueFdTest, MovingHandsOnOwnershipAndClosesWhatTheTargetHeld) {
  UniqueFd first(OpenDevNull());
  UniqueFd second(OpenDevNull());
  const int first_raw = first.get();
  const int second_raw = second.get();
  UniqueFd moved(std::move(first));
  EXPECT_FALSE(first.valid());  // NOLINT(bugprone-use-after-move): the moved-from state
  second = std::move(moved);
  EXPECT_EQ(second.get(), first_raw);
  EXPECT_FALSE(IsOpen(second_raw));
  second = std::move(second);  // NOLINT: self-move keeps the descriptor
  EXPECT_TRUE(IsOpen(first_raw));
}

}  // namespace
}  // namespace korvan::storage
