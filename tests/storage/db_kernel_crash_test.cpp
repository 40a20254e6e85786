// A writer killed at a random moment must not lose or damage what it already wrote:
// every record whose insert had returned reads back intact afterwards. The key file may
// be left inconsistent (its blocks sit in the cache until written back); rebuilding it
// from the data file is the remedy for that, so only the data file is checked here.
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>
#include <random>
#include <vector>

#include "db_kernel_fixture.h"
#include "storage/db_kernel.h"
#include "testing/temp_dir.h"

namespace korvan::storage::testing {
namespace {

constexpr int kKeyLength = 24;
constexpr int kRounds = 5;
constexpr int kMaxRecords = 200000;  // far more than a child gets through before the kill

// What the child tells the parent, one message per step, each written atomically.
struct Report {
  enum Kind : int32_t { kWritten = 1, kDeleting = 2 };
  int32_t kind;
  int32_t index;
  int32_t position;
};

// Record i: a header of type letter "A".."Z", then a body that spells out i and is
// otherwise filled with a byte derived from it; lengths vary so that freed blocks are
// split and reused.
std::vector<uint8_t> RecordNumber(int32_t index) {
  const int32_t length = kRecordHeaderSize + 8 + (index * 37) % 300;
  std::vector<uint8_t> record =
      MakeRecord(static_cast<char>('A' + index % 26), length, static_cast<uint8_t>(index * 7));
  std::memcpy(record.data() + kRecordHeaderSize, &index, sizeof index);
  return record;
}

KeyEntry KeyOf(int32_t index, int32_t position) {
  KeyEntry entry;
  std::memset(entry.key, kKeyPad, sizeof entry.key);
  std::snprintf(reinterpret_cast<char*>(entry.key), kKeyLength, "K%08d", index);
  entry.key[9] = kKeyPad;  // snprintf's terminating zero
  entry.position = static_cast<uint32_t>(position);
  return entry;
}

void Send(int channel, Report report) {
  if (write(channel, &report, sizeof report) != static_cast<ssize_t>(sizeof report)) _exit(3);
}

// The child: inserts records with a key each and deletes every fourth one again, until
// it is killed. Never returns.
[[noreturn]] void WriteUntilKilled(const std::string& base, int channel) {
  ForgetInheritedDatabases();
  int handle = 0;
  if (iDK_DbOpen('T', base, true, false, &handle) != 0) _exit(2);
  std::map<int32_t, int32_t> positions;
  for (int32_t index = 0; index < kMaxRecords; ++index) {
    std::vector<uint8_t> record = RecordNumber(index);
    int32_t position = 0;
    if (iDK_RecordInsert(handle, record.data(), static_cast<int32_t>(record.size()), true,
                         &position) != 0) {
      _exit(4);
    }
    if (iDK_KeyInsert(handle, KeyOf(index, position)) != 0) _exit(5);
    Send(channel, {Report::kWritten, index, position});
    positions[index] = position;
    if (index % 4 == 3) {
      const int32_t victim = index - 2;
      Send(channel, {Report::kDeleting, victim, positions[victim]});
      TDbRecordHeader header{};
      if (iDK_RecordDelete(handle, &header, positions[victim]) != 0) _exit(6);
      if (iDK_KeyDelete(handle, KeyOf(victim, positions[victim])) != 0) _exit(7);
    }
  }
  _exit(0);
}

// Collects the child's reports until the deadline, kills it and reads the rest.
std::vector<Report> KillAfter(pid_t child, int channel, std::chrono::milliseconds delay) {
  std::vector<Report> reports;
  Report report{};
  const auto deadline = std::chrono::steady_clock::now() + delay;
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) break;
    pollfd ready{channel, POLLIN, 0};
    if (poll(&ready, 1, static_cast<int>(left.count())) <= 0) continue;
    if (read(channel, &report, sizeof report) != static_cast<ssize_t>(sizeof report)) break;
    reports.push_back(report);
  }
  kill(child, SIGKILL);
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status)) << "the child ended on its own, status " << status;
  while (read(channel, &report, sizeof report) == static_cast<ssize_t>(sizeof report)) {
    reports.push_back(report);
  }
  return reports;
}

// Records whose insert returned and whose deletion had not begun, by position.
std::map<int32_t, int32_t> SurvivingRecords(const std::vector<Report>& reports) {
  std::map<int32_t, int32_t> by_index;
  for (const Report& report : reports) {
    if (report.kind == Report::kWritten) by_index[report.index] = report.position;
    if (report.kind == Report::kDeleting) by_index.erase(report.index);
  }
  return by_index;
}

void ExpectIntact(int handle, int32_t index, int32_t position) {
  const std::vector<uint8_t> expected = RecordNumber(index);
  std::vector<uint8_t> stored(expected.size() + 8);
  auto length = static_cast<int32_t>(stored.size());
  ASSERT_NO_THROW(iDK_RecordRead(handle, position, stored.data(), &length, true))
      << "record " << index << " at " << position;
  // A record may own up to 3 spare bytes of the free block it was put into.
  ASSERT_GE(length, static_cast<int32_t>(expected.size())) << "record " << index;
  ASSERT_LE(length, static_cast<int32_t>(expected.size()) + 3) << "record " << index;
  EXPECT_EQ(stored[4], expected[4]) << "type letter of record " << index;
  EXPECT_TRUE(std::equal(expected.begin() + kRecordHeaderSize, expected.end(),
                         stored.begin() + kRecordHeaderSize))
      << "body of record " << index << " at " << position;
}

TEST(DbKernelCrash, RecordsReportedWrittenSurviveASigkillAtRandomMoments) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::uniform_int_distribution<int> delay_ms(20, 400);
  korvan::testing::TempDir dir;
  size_t checked = 0;
  for (int round = 0; round < kRounds; ++round) {
    const std::string base = dir.File("crash" + std::to_string(round));
    int handle = 0;
    ASSERT_EQ(iDK_DbCreate('T', base, kKeyLength, &handle), 0);
    ASSERT_EQ(iDK_DbClose(handle), 0);

    int channel[2];
    ASSERT_EQ(pipe(channel), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      close(channel[0]);
      WriteUntilKilled(base, channel[1]);
    }
    close(channel[1]);
    const auto delay = std::chrono::milliseconds(delay_ms(random));
    const std::vector<Report> reports = KillAfter(child, channel[0], delay);
    close(channel[0]);

    ASSERT_EQ(iDK_DbOpen('T', base, false, true, &handle), 0) << "round " << round;
    for (const auto& [index, position] : SurvivingRecords(reports)) {
      ExpectIntact(handle, index, position);
      ++checked;
    }
    EXPECT_EQ(iDK_DbClose(handle), 0);
  }
  RecordProperty("records_checked", static_cast<int>(checked));
  EXPECT_GT(checked, 0u) << "no child got a record written before its kill";
}

}  // namespace
}  // namespace korvan::storage::testing
