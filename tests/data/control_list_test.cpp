#include "data/control_list.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

void WriteFile(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

// A one-byte signal between two processes.
class Signal {
 public:
  Signal() { EXPECT_EQ(::pipe(fds_), 0); }
  ~Signal() {
    ::close(fds_[0]);
    ::close(fds_[1]);
  }
  void Send() { (void)!::write(fds_[1], "x", 1); }
  bool Wait() {
    char byte;
    return ::read(fds_[0], &byte, 1) == 1;
  }

 private:
  int fds_[2] = {-1, -1};
};

enum class ChildEnd { kSignOff, kCrash };

// Runs a child process that signs `user` into the directory, reports back, waits for
// the word to leave, and then signs off or ends without doing so.
pid_t StartChild(const std::string& directory, const std::string& user, bool exclusive,
                 ChildEnd end, Signal& signed_in, Signal& leave) {
  const pid_t pid = ::fork();
  if (pid != 0) return pid;
  int status = 0;
  {
    TControlList list(directory);
    if (!list.Open({user, "child-pc"}, exclusive)) ::_exit(2);
    signed_in.Send();
    leave.Wait();
    if (end == ChildEnd::kCrash) ::_exit(0);  // no destructor: the entry stays behind
    list.Close();
  }
  ::_exit(status);
}

int WaitForChild(pid_t pid) {
  int status = 0;
  ::waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(ControlListProcesses, ExclusiveHolderIsNamedToTheOtherProcess) {
  testing::TempDir temp;
  const std::string directory = temp.path().string();
  Signal signed_in, leave;
  const pid_t child = StartChild(directory, "Anna", true, ChildEnd::kSignOff, signed_in, leave);
  ASSERT_TRUE(signed_in.Wait());

  // Even a shared sign-in is refused while Anna works exclusively.
  ExclusiveLockingResult check = CheckExclusiveLocking(directory, false, false, {"Bernd", "pc2"});
  EXPECT_TRUE(check.held_by_other);
  ASSERT_TRUE(check.holder.has_value());
  EXPECT_EQ(check.holder->DisplayName(), "Anna");
  EXPECT_EQ(check.holder->machine, "child-pc");
  EXPECT_EQ(check.holder->process_id, child);
  EXPECT_NE(check.message.find("\"Anna\""), std::string::npos) << check.message;
  EXPECT_EQ(check.list, nullptr);
  EXPECT_EQ(ReadFile(temp.File("DATA.QDC")).find("Bernd"), std::string::npos);

  leave.Send();
  EXPECT_EQ(WaitForChild(child), 0);

  ExclusiveLockingResult after = CheckExclusiveLocking(directory, true, false, {"Bernd", "pc2"});
  EXPECT_FALSE(after.held_by_other);
  ASSERT_NE(after.list, nullptr);
  const std::vector<ControlEntry> users = after.list->Users();
  ASSERT_EQ(users.size(), 1u);
  EXPECT_EQ(users[0].user, "Bernd");
  EXPECT_TRUE(users[0].exclusive);
}

TEST(ControlListProcesses, SharedUsersCoexistButBlockAnExclusiveWish) {
  testing::TempDir temp;
  const std::string directory = temp.path().string();
  Signal signed_in, leave;
  const pid_t child = StartChild(directory, "Anna", false, ChildEnd::kSignOff, signed_in, leave);
  ASSERT_TRUE(signed_in.Wait());

  TControlList shared(directory);
  EXPECT_TRUE(shared.Open({"Bernd", "pc2"}, false));
  EXPECT_EQ(shared.Users().size(), 2u);

  // The configuration asks for exclusive use although the caller did not.
  ExclusiveLockingResult check = CheckExclusiveLocking(directory, false, true, {"Carla", "pc3"});
  EXPECT_TRUE(check.held_by_other);
  ASSERT_TRUE(check.holder.has_value());
  EXPECT_EQ(check.holder->user, "Anna");

  leave.Send();
  EXPECT_EQ(WaitForChild(child), 0);
  EXPECT_EQ(shared.Users().size(), 1u);
}

TEST(ControlListProcesses, EntryOfAProgramThatEndedWithoutSigningOffIsDropped) {
  testing::TempDir temp;
  const std::string directory = temp.path().string();
  Signal signed_in, leave;
  const pid_t child = StartChild(directory, "Anna", true, ChildEnd::kCrash, signed_in, leave);
  ASSERT_TRUE(signed_in.Wait());
  leave.Send();
  EXPECT_EQ(WaitForChild(child), 0);
  EXPECT_NE(ReadFile(temp.File("DATA.QDC")).find("Anna"), std::string::npos);

  TControlList list(directory);
  EXPECT_TRUE(list.Open({"Bernd", "pc2"}, true));
  const std::vector<ControlEntry> users = list.Users();
  ASSERT_EQ(users.size(), 1u);
  EXPECT_EQ(users[0].user, "Bernd");
  EXPECT_EQ(ReadFile(temp.File("DATA.QDC")).find("Anna"), std::string::npos);
}

TEST(ControlList, SignInSignOffAndFileContent) {
  testing::TempDir temp;
  std::vector<std::string> diagnostics;
  TControlList::Options options;
  options.diagnostics = [&](const std::string& line) { diagnostics.push_back(line); };
  TControlList list(temp.path().string(), options);
  ASSERT_TRUE(list.Open({"Anna|Admin\n", "pc1"}, false));
  EXPECT_TRUE(list.IsSignedIn());

  const std::string path = temp.File("DATA.QDC");
  EXPECT_EQ(list.ControlFilePath(), path);
  const ControlFileContent content = ParseControlFile(ReadFile(path), path);
  ASSERT_EQ(content.users.size(), 1u);
  EXPECT_EQ(content.users[0].user, "Anna_Admin_") << "separators in names are replaced";
  EXPECT_EQ(content.users[0].machine, "pc1");
  EXPECT_FALSE(content.users[0].exclusive);
  EXPECT_EQ(content.users[0].process_id, ::getpid());

  const std::string list_lock =
      "LockRegion " + std::to_string(TControlList::kListLockOffset) + ", 1";
  ASSERT_FALSE(diagnostics.empty());
  EXPECT_EQ(diagnostics.front(), list_lock);
  EXPECT_NE(std::find(diagnostics.begin(), diagnostics.end(), "Un" + list_lock), diagnostics.end());

  list.Close();
  EXPECT_FALSE(list.IsOpen());
  EXPECT_TRUE(ParseControlFile(ReadFile(path), path).users.empty());
  list.Close();  // a second close does nothing
}

TEST(ControlList, UnknownUserShowsAsStandardUser) {
  testing::TempDir temp;
  TControlList holder(temp.path().string());
  ASSERT_TRUE(holder.Open({"", "pc1"}, true));
  TControlList other(temp.path().string());
  EXPECT_FALSE(other.Open({"Bernd", "pc2"}, false));
  ASSERT_TRUE(other.GetLockUser().has_value());
  EXPECT_EQ(other.GetLockUser()->DisplayName(), "Standard User");
  EXPECT_FALSE(other.IsSignedIn());

  ExclusiveLockingResult check = CheckExclusiveLocking(temp.path().string(), false, false, {});
  EXPECT_NE(check.message.find("\"Standard User\""), std::string::npos) << check.message;
}

TEST(ControlList, TableChangesOfOthersAreSeenOnce) {
  testing::TempDir temp;
  TControlList anna(temp.path().string());
  TControlList bernd(temp.path().string());
  ASSERT_TRUE(anna.Open({"Anna", "pc1"}, false));
  ASSERT_TRUE(bernd.Open({"Bernd", "pc2"}, false));

  EXPECT_FALSE(bernd.IsTableChanged("LV"));
  anna.TableModify("LV");
  anna.TableModify("LV");
  EXPECT_FALSE(anna.IsTableChanged("LV")) << "own changes are not news";
  EXPECT_TRUE(bernd.IsTableChanged("LV"));
  EXPECT_FALSE(bernd.IsTableChanged("LV"));
  EXPECT_FALSE(bernd.IsTableChanged("Adressen"));

  // A user signing in later starts from the current state.
  anna.TableModify("Adressen");
  TControlList carla(temp.path().string());
  ASSERT_TRUE(carla.Open({"Carla", "pc3"}, false));
  EXPECT_FALSE(carla.IsTableChanged("Adressen"));
  EXPECT_TRUE(bernd.IsTableChanged("Adressen"));
}

TEST(ControlList, HeldListLockTimesOutWithAClearError) {
  testing::TempDir temp;
  TControlList holder(temp.path().string());
  ASSERT_TRUE(holder.Open({"Anna", "pc1"}, false));
  holder.Lock();
  holder.Lock();
  holder.Unlock();  // still held once

  TControlList::Options options;
  options.lock_timeout = std::chrono::milliseconds(50);
  TControlList waiting(temp.path().string(), options);
  try {
    waiting.Open({"Bernd", "pc2"}, false);
    FAIL() << "expected ControlFileError";
  } catch (const ControlFileError& error) {
    EXPECT_EQ(error.file(), temp.File("DATA.QDC"));
    EXPECT_NE(std::string(error.what()).find("gesperrt"), std::string::npos) << error.what();
  }
  EXPECT_FALSE(waiting.IsOpen());

  holder.Unlock();
  EXPECT_TRUE(waiting.Open({"Bernd", "pc2"}, false));
}

struct DamagedCase {
  std::string text;
  int line;
  const char* problem;
};

TEST(ControlList, DamagedFileNamesFileAndLine) {
  const std::vector<DamagedCase> cases = {
      {"hello\n", 1, "Kopfzeile"},
      {"QDC|7\nEND|0\n", 1, "Formatversion"},
      {"QDC|1\nU|x|X|a|b|1|t\nEND|1\n", 2, "Platznummer"},
      {"QDC|1\nU|0|Q|a|b|1|t\nEND|1\n", 2, "Zugriffsart"},
      {"QDC|1\nU|0|X|a|b|1\nEND|1\n", 2, "6 Felder statt 7"},
      {"QDC|1\nU|0|X|a|b|1|t\nU|0|S|c|d|2|t\nEND|2\n", 3, "doppelt"},
      {"QDC|1\nT|LV|-4\nEND|1\n", 2, "Änderungszähler"},
      {"QDC|1\nU|0|X|a|b|1|t\n", 3, "END"},
      {"QDC|1\nEND|2\n", 2, "Schlusszeile"},
      {"QDC|1\nEND|0\nU|0|X|a|b|1|t\n", 3, "nach der Schlusszeile"},
      {"QDC|1\nZ|0\nEND|1\n", 2, "Zeilenart"},
      {std::string("QDC|1\n\0\xff\x01|\nEND|0\n", 17), 2, "Zeilenart"},
  };
  testing::TempDir temp;
  const std::string path = temp.File("DATA.QDC");
  for (const DamagedCase& damaged : cases) {
    SCOPED_TRACE(damaged.text);
    WriteFile(path, damaged.text);
    TControlList list(temp.path().string());
    try {
      list.Open({"Anna", "pc1"}, false);
      ADD_FAILURE() << "expected ControlFileError";
    } catch (const ControlFileError& error) {
      EXPECT_EQ(error.file(), path);
      EXPECT_EQ(error.line(), damaged.line);
      const std::string what = error.what();
      EXPECT_NE(what.find("\"" + path + "\""), std::string::npos) << what;
      EXPECT_NE(what.find("Zeile " + std::to_string(damaged.line)), std::string::npos) << what;
      EXPECT_NE(what.find(damaged.problem), std::string::npos) << what;
    }
    EXPECT_FALSE(list.IsOpen());
    EXPECT_EQ(ReadFile(path), damaged.text) << "a damaged file is left as it was";
  }
}

TEST(ControlList, EveryTruncationOfAValidFileParsesOrFailsCleanly) {
  ControlFileContent content;
  content.users.push_back({0, true, "Anna", "pc1", 12, "2024-05-01 10:00:00"});
  content.users.push_back({3, false, "", "pc2", 99, "2024-05-01 11:00:00"});
  content.table_counters["LV"] = 7;
  const std::string text = FormatControlFile(content);
  const ControlFileContent round_trip = ParseControlFile(text, "DATA.QDC");
  ASSERT_EQ(round_trip.users.size(), 2u);
  EXPECT_EQ(round_trip.users[1].slot, 3);
  EXPECT_EQ(round_trip.users[1].DisplayName(), "Standard User");
  EXPECT_EQ(round_trip.table_counters.at("LV"), 7u);

  int parsed = 0;
  for (std::size_t length = 0; length < text.size(); ++length) {
    try {
      ParseControlFile(std::string_view(text).substr(0, length), "DATA.QDC");
      ++parsed;
    } catch (const ControlFileError& error) {
      EXPECT_GT(error.line(), 0) << length;
    }
  }
  // Only the empty file and the file missing just its last line break are whole.
  EXPECT_EQ(parsed, 2);
}

}  // namespace
}  // namespace korvan::data
