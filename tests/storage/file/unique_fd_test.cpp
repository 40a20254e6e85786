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

TEST(UniqueFdTest, ClosesTheDescriptorWhenItGoesAway) {
  int raw = -1;
  {
    const UniqueFd fd(OpenDevNull());
    raw = fd.get();
    ASSERT_TRUE(fd.valid());
    EXPECT_TRUE(IsOpen(raw));
  }
  EXPECT_FALSE(IsOpen(raw));
}

TEST(UniqueFdTest, AFailedOpenOwnsNothing) {
  const UniqueFd fd(::open("/nonexistent/korvan", O_RDONLY));
  EXPECT_FALSE(fd.valid());
  EXPECT_EQ(fd.get(), -1);
  EXPECT_FALSE(UniqueFd().valid());
}

TEST(UniqueFdTest, MovingHandsOnOwnershipAndClosesWhatTheTargetHeld) {
  UniqueFd first(OpenDevNull());
  UniqueFd second(OpenDevNull());
  const int first_raw = first.get();
  const int second_raw = second.get();

  UniqueFd moved(std::move(first));
  EXPECT_FALSE(first.valid());  // NOLINT(bugprone-use-after-move): the moved-from state
  EXPECT_EQ(moved.get(), first_raw);

  second = std::move(moved);
  EXPECT_EQ(second.get(), first_raw);
  EXPECT_FALSE(IsOpen(second_raw));
  EXPECT_TRUE(IsOpen(first_raw));

  second = std::move(second);  // NOLINT: self-move keeps the descriptor
  EXPECT_TRUE(IsOpen(first_raw));
}

TEST(UniqueFdTest, CloseAndReleaseEndOwnership) {
  UniqueFd closed(OpenDevNull());
  const int closed_raw = closed.get();
  EXPECT_EQ(closed.Close(), 0);
  EXPECT_FALSE(closed.valid());
  EXPECT_FALSE(IsOpen(closed_raw));
  EXPECT_EQ(closed.Close(), 0);  // nothing left to close

  int released = -1;
  {
    UniqueFd fd(OpenDevNull());
    released = fd.Release();
    EXPECT_FALSE(fd.valid());
  }
  EXPECT_TRUE(IsOpen(released));
  ::close(released);
}

}  // namespace
}  // namespace korvan::storage
