#include "data/db/control_list.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "data/config/config_test_support.h"
#include "testing/child_process.h"
#include "testing/files.h"
#include "testing/temp_dir.h"

namespace korvan::data {
namespace {

using korvan::testing::ReadFile;
using testing::Contains;

// Another program, in a child process, signed into a directory until it leaves.
class OtherProgram {
 public:
  OtherProgram(const std::string& directory, const std::string& user, bool exclusive)
      : child_([&](const korvan::testing::Channel& parent) {
          TControlList list(directory);
          if (!list.Open({user, "child-pc"}, exclusive)) return 2;
          parent.Send('x');
          if (parent.Receive() == 's') list.Close();
          _exit(0);  // no destructors: after a crash the entry stays behind
        }) {
    child_.Receive();  // signed in, or failed to
  }
  ~OtherProgram() {
    if (!left_) Leave();
  }
  OtherProgram(const OtherProgram&) = delete;
  OtherProgram& operator=(const OtherProgram&) = delete;

  pid_t pid() const { return child_.pid(); }
  // Ends the other program, signed off or as after a crash; its exit status.
  int Leave(bool sign_off = true) {
    left_ = true;
    child_.Send(sign_off ? 's' : 'c');
    return child_.Wait();
  }

 private:
  korvan::testing::ChildProcess child_;
  bool left_ = false;
};

TEST(ControlListProcesses, ExclusiveAndSharedUseAcrossProcesses) {
  korvan::testing::TempDir temp;
  const std::string directory = temp.path().string();
  {
    OtherProgram anna(directory, "Anna", true);
    // Even a shared sign-in is refused while Anna works exclusively.
    ExclusiveLockingResult check = CheckExclusiveLocking(directory, false, false, {"Bernd", "pc2"});
    EXPECT_TRUE(check.held_by_other);
    ASSERT_TRUE(check.holder.has_value());
    EXPECT_EQ(check.holder->machine, "child-pc");
    EXPECT_EQ(check.holder->process_id, anna.pid());
    EXPECT_TRUE(Contains(check.message, "\"Anna\"")) << check.message;
    EXPECT_EQ(check.list, nullptr);
    EXPECT_FALSE(Contains(ReadFile(temp.File("DATA.QDC")), "Bernd"));
    EXPECT_EQ(anna.Leave(), 0);
    ExclusiveLockingResult after = CheckExclusiveLocking(directory, true, false, {"Bernd", "pc2"});
    ASSERT_NE(after.list, nullptr);
    ASSERT_EQ(after.list->Users().size(), 1u);
    EXPECT_TRUE(after.list->Users()[0].exclusive);
  }
  OtherProgram anna(directory, "Anna", false);
  TControlList shared(directory);
  EXPECT_TRUE(shared.Open({"Bernd", "pc2"}, false));
  EXPECT_EQ(shared.Users().size(), 2u);
  // The configuration asks for exclusive use although the caller did not.
  ExclusiveLockingResult check = CheckExclusiveLocking(directory, false, true, {"Carla", "pc3"});
  EXPECT_TRUE(check.held_by_other);
  EXPECT_EQ(check.holder.value_or(ControlEntry{}).user, "Anna");
  EXPECT_EQ(anna.Leave(), 0);
  EXPECT_EQ(shared.Users().size(), 1u);
}

TEST(ControlListProcesses, EntryOfAProgramThatEndedWithoutSigningOffIsDropped) {
  korvan::testing::TempDir temp;
  EXPECT_EQ(OtherProgram(temp.path().string(), "Anna", true).Leave(/*sign_off=*/false), 0);
  EXPECT_TRUE(Contains(ReadFile(temp.File("DATA.QDC")), "Anna"));
  TControlList list(temp.path().string());
  EXPECT_TRUE(list.Open({"Bernd", "pc2"}, true));
  ASSERT_EQ(list.Users().size(), 1u);
  EXPECT_EQ(list.Users()[0].user, "Bernd");
  EXPECT_FALSE(Contains(ReadFile(temp.File("DATA.QDC")), "Anna"));
}

TEST(ControlList, SignInSignOffAndFileContent) {
  korvan::testing::TempDir temp;
  std::vector<std::string> diagnostics;
  TControlList::Options options;
  options.diagnostics = [&](const std::string& line) { diagnostics.push_back(line); };
  TControlList list(temp.path().string(), options);
  ASSERT_TRUE(list.Open({"Anna|Admin\n", "pc1"}, false));
  const std::string path = temp.File("DATA.QDC");
  const ControlFileContent content = ParseControlFile(ReadFile(path), path);
  ASSERT_EQ(content.users.size(), 1u);
  EXPECT_EQ(content.users[0].user, "Anna_Admin_") << "separators in names are replaced";
  EXPECT_EQ(content.users[0].process_id, ::getpid());
  const std::string list_lock =
      "LockRegion " + std::to_string(TControlList::kListLockOffset) + ", 1";
  ASSERT_FALSE(diagnostics.empty());
  EXPECT_EQ(diagnostics.front(), list_lock);
  EXPECT_NE(std::find(diagnostics.begin(), diagnostics.end(), "Un" + list_lock), diagnostics.end());
  list.Close();
  EXPECT_TRUE(ParseControlFile(ReadFile(path), path).users.empty());
  list.Close();  // a second close does nothing

  // An exclusive holder without a name shows as the standard user.
  ASSERT_TRUE(list.Open({"", "pc1"}, true));
  TControlList other(temp.path().string());
  EXPECT_FALSE(other.Open({"Bernd", "pc2"}, false));
  EXPECT_FALSE(other.IsSignedIn());
  EXPECT_EQ(other.GetLockUser().value_or(ControlEntry{}).DisplayName(), "Standard User");
}

TEST(ControlList, TableChangesOfOthersAreSeenOnce) {
  korvan::testing::TempDir temp;
  TControlList anna(temp.path().string()), bernd(temp.path().string());
  ASSERT_TRUE(anna.Open({"Anna", "pc1"}, false));
  ASSERT_TRUE(bernd.Open({"Bernd", "pc2"}, false));
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
  korvan::testing::TempDir temp;
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
    EXPECT_TRUE(Contains(error.what(), "gesperrt")) << error.what();
  }
  EXPECT_FALSE(waiting.IsOpen());
  holder.Unlock();
  EXPECT_TRUE(waiting.Open({"Bernd", "pc2"}, false));
}

TEST(ControlList, DamagedFileNamesFileAndLine) {
  const struct {
    std::string text;
    int line;
    const char* problem;
  } cases[] = {
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
      {std::string("QDC|1\n\0\xff\x01|\nEND|0\n", 17), 2, "Zeilenart"},
  };
  korvan::testing::TempDir temp;
  const std::string path = temp.File("DATA.QDC");
  for (const auto& damaged : cases) {
    SCOPED_TRACE(damaged.text);
    korvan::testing::WriteFile(path, damaged.text);
    TControlList list(temp.path().string());
    try {
      list.Open({"Anna", "pc1"}, false);
      ADD_FAILURE() << "expected ControlFileError";
    } catch (const ControlFileError& error) {
      EXPECT_EQ(error.file(), path);
      EXPECT_EQ(error.line(), damaged.line);
      const std::string what = error.what();
      EXPECT_TRUE(Contains(what, "\"" + path + "\"")) << what;
      EXPECT_TRUE(Contains(what, "Zeile " + std::to_string(damaged.line))) << what;
      EXPECT_TRUE(Contains(what, damaged.problem)) << what;
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
