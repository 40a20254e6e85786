// `korvan edit` and `korvan undo` killed at every write they make to the journal or the
// data (a redo writes as an edit does); afterwards the journal must agree with the data:
// the step is whole or not there, and the newest step can be taken back or made again.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "app_test_support.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ExpectKorvan;
using testing::ExpectKorvanOn;
using testing::ProgramResult;

constexpr int kKilled = 128 + SIGKILL;
constexpr int kMostWrites = 60;  // far more than one edit, undo or redo makes

// The pound's factor as `korvan list waehrung` shows it.
std::string PoundFactor(const std::filesystem::path& base) {
  const ProgramResult listing = ExpectKorvan({"list", "waehrung", "-d", base.string()}, 0);
  std::istringstream lines(listing.out);
  for (std::string line; std::getline(lines, line);) {
    if (!Contains(line, "Pfund Sterling")) continue;
    for (const char* factor : {"0,85", "1,11"}) {
      if (Contains(line, factor)) return factor;
    }
    return line;
  }
  return "no pound in: " + listing.out;
}

// The number of steps `korvan undo --list` shows under `title`.
int Steps(const std::string& listing, const std::string& title) {
  const std::regex count(title + " \\((\\d+) Schritt");
  std::smatch match;
  return std::regex_search(listing, match, count) ? std::stoi(match[1]) : -1;
}

struct JournalState {
  int undo = -1;
  int redo = -1;
  std::string pound;
};

// Runs one command with the test hook that kills it after `writes` writes.
ProgramResult RunKilledAfter(int writes, const std::vector<std::string>& args) {
  setenv("KORVAN_TEST_KILL_AFTER_WRITES", std::to_string(writes).c_str(), 1);
  ProgramResult result = testing::RunKorvanBinary(args);
  unsetenv("KORVAN_TEST_KILL_AFTER_WRITES");
  return result;
}

class UndoCrash : public ::testing::Test {
 protected:
  void SetUp() override {
    ExpectKorvanOn(base_, {"demo", "--setup-only"});
    // Step "A": the Swiss franc's factor; it stays below every step the tests kill.
    ExpectKorvanOn(base_, {"edit", "waehrung", kDemoFrancRow, "Faktor=0,97"});
  }
  // A copy of the installation as it is now, for one killed run.
  fs::path Copy(int run) {
    const fs::path copy = dir_.path() / ("run" + std::to_string(run));
    fs::remove_all(copy);
    fs::copy(base_, copy, fs::copy_options::recursive);
    return copy;
  }
  JournalState Look(const fs::path& base, bool check) {
    JournalState state;
    const ProgramResult listing = ExpectKorvanOn(base, {"undo", "--list"});
    state.undo = Steps(listing.out, "Rückgängig machen");
    state.redo = Steps(listing.out, "Wiederherstellen");
    state.pound = PoundFactor(base);
    if (check) ExpectKorvanOn(base, {"check"});
    return state;
  }

  // Kills `args` after 0, 1, 2, ... writes until a run completes. After each kill the
  // state must be `before` or `after` (nothing in between), and the step the stacks
  // say is newest must be takable back (or, when there is none to take back, makable
  // again) with the data following. The run that completes must leave `after`.
  void KillAtEveryWrite(const std::vector<std::string>& args, const JournalState& before,
                        const JournalState& after) {
    bool completed = false;
    for (int writes = 0; writes < kMostWrites && !completed; ++writes) {
      SCOPED_TRACE("killed after " + std::to_string(writes) + " writes");
      const fs::path copy = Copy(writes);
      std::vector<std::string> call = args;
      call.insert(call.end(), {"-d", copy.string()});
      const ProgramResult run = RunKilledAfter(writes, call);
      ASSERT_TRUE(run.exit_code == 0 || run.exit_code == kKilled) << run.out << run.err;
      completed = run.exit_code == 0;
      const JournalState state = Look(copy, writes % 5 == 0);
      if (completed) {
        EXPECT_EQ(state.pound, after.pound);
        EXPECT_EQ(state.undo, after.undo);
        EXPECT_EQ(state.redo, after.redo);
      } else {
        const bool done = state.pound == after.pound;
        const JournalState& expected = done ? after : before;
        EXPECT_EQ(state.pound, expected.pound);
        EXPECT_EQ(state.undo, expected.undo) << "pound at " << state.pound;
        EXPECT_EQ(state.redo, expected.redo) << "pound at " << state.pound;
      }
      // Going on: the newest step moves, and the data with it. Only "B" changes the
      // pound; making a step again is always "B", taking one back leaves 0,85.
      const bool redo = state.redo > 0;
      ExpectKorvanOn(copy, {redo ? "redo" : "undo"});
      EXPECT_EQ(PoundFactor(copy), redo ? "1,11" : "0,85");
      fs::remove_all(copy);
    }
    EXPECT_TRUE(completed) << "the command never completed";
  }

  testing::TempDir dir_;
  fs::path base_ = dir_.path() / "base";
};

// Steps on the stacks (undo, redo) and the pound before and after each command.
TEST_F(UndoCrash, AKilledEditUndoOrRedoLeavesItsStepWholeOrNotAtAll) {
  struct Case {
    std::vector<std::string> command;
    JournalState before, after;
  };
  const Case cases[] = {
      {{"edit", "waehrung", kDemoPoundRow, "Faktor=1,11"}, {1, 0, "0,85"}, {2, 0, "1,11"}},
      {{"undo"}, {2, 0, "1,11"}, {1, 1, "0,85"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.command.front());
    KillAtEveryWrite(c.command, c.before, c.after);
    // The command done for real brings the installation to where the next one begins.
    ExpectKorvanOn(base_, c.command);
  }
}

// The records of the whole installation as `korvan info` counts them.
std::string Records(const fs::path& base) {
  const ProgramResult info = ExpectKorvan({"info", "-d", base.string()}, 0);
  const std::regex count("Summe: \\d+ Datenbanken, (\\d+) Datens");
  std::smatch match;
  return std::regex_search(info.out, match, count) ? match[1].str() : "none in: " + info.out;
}

// A step a killed process left is settled by the next command that opens the journal;
// clearing the journal must settle it the same way, never drop it half done. Every third
// write is enough to leave the delete's step open across several databases.
TEST_F(UndoCrash, ClearingTheJournalAfterAKillSettlesTheUnfinishedStepFirst) {
  ExpectKorvanOn(base_, {"lv", "new", "Rohbau", "--mask", "11.22.PPPP"});
  bool completed = false;
  int settled_back = 0;
  for (int writes = 1; writes < kMostWrites && !completed; writes += 3) {
    SCOPED_TRACE("killed after " + std::to_string(writes) + " writes");
    const fs::path cleared = Copy(writes);
    const ProgramResult run =
        RunKilledAfter(writes, {"lv", "delete", "Rohbau", "-d", cleared.string()});
    ASSERT_TRUE(run.exit_code == 0 || run.exit_code == kKilled) << run.out << run.err;
    completed = run.exit_code == 0;
    const fs::path listed = dir_.path() / "listed";
    fs::remove_all(listed);
    fs::copy(cleared, listed, fs::copy_options::recursive);
    ExpectKorvanOn(listed, {"undo", "--list"});
    ExpectKorvanOn(cleared, {"undo", "--clear"});
    EXPECT_EQ(Records(cleared), Records(listed));
    if (Records(listed) == Records(base_)) ++settled_back;
    fs::remove_all(cleared);
  }
  EXPECT_TRUE(completed) << "the delete never completed";
  EXPECT_GT(settled_back, 0) << "no kill left a step to take back";
}

}  // namespace
}  // namespace korvan::app
