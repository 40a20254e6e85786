#pragma once

namespace korvan::data {

// A place where the undo journal or the data is about to be written. The crash tests set
// KORVAN_TEST_KILL_AFTER_WRITES=N in the environment of a child process; that process
// then kills itself with SIGKILL when it reaches such a place for the (N+1)th time, so
// that exactly N writes happened. Without the variable this does nothing.
void TestKillPoint();

}  // namespace korvan::data
