#include "data/undo/test_kill_point.h"

#include <csignal>
#include <cstdlib>
#include <string>

namespace korvan::data {

namespace {

// Read once: the number of writes a test lets this process make; -1 when none is set.
long AllowedWrites() {
  static const long allowed = [] {
    const char* value = std::getenv("KORVAN_TEST_KILL_AFTER_WRITES");
    if (value == nullptr || *value == '\0') return -1L;
    char* end = nullptr;
    const long parsed = std::strtol(value, &end, 10);
    return *end == '\0' && parsed >= 0 ? parsed : -1L;
  }();
  return allowed;
}

}  // namespace

void TestKillPoint() {
  static long reached = 0;
  const long allowed = AllowedWrites();
  if (allowed < 0) return;
  if (reached++ >= allowed) std::raise(SIGKILL);
}

}  // namespace korvan::data
