// A writer killed at a random moment must not lose or damage what it already wrote:
// every record whose insert had returned reads back intact afterwards and is found by
// its key: the key file the killed writer left is rebuilt from the data file when the
// database is opened next.
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>

#include <fcntl.h>

#include <chrono>
#include <map>
#include <random>

#include "db_kernel_fixture.h"
#include "numbered_records.h"
#include "storage/data_file_reader.h"

namespace korvan::storage::testing {
namespace {

// What the child tells the parent, one message per step, each written atomically.
struct Report {
  int32_t deleting;  // 0: the insert of `index` returned; 1: its deletion begins
  int32_t index;
  int32_t position;
};

// The child: inserts records with a key each and deletes every fourth one again, until
// it is killed.
[[noreturn]] void WriteUntilKilled(const std::string& base, int channel) {
  ForgetInheritedDatabases();
  int handle = 0;
  if (iDK_DbOpen('T', base, true, false, &handle) != 0) _exit(2);
  auto send = [channel](Report report) {
    if (write(channel, &report, sizeof report) != ssize_t{sizeof report}) _exit(3);
  };
  std::map<int32_t, int32_t> positions;
  for (int32_t index = 0;; ++index) {
    std::vector<uint8_t> record = NumberedRecord(index);
    int32_t& position = positions[index];
    if (iDK_RecordInsert(handle, record.data(), static_cast<int32_t>(record.size()), true,
                         &position) != 0 ||
        iDK_KeyInsert(handle, NumberedKey(index, position)) != 0) {
      _exit(4);
    }
    send({0, index, position});
    if (index % 4 == 3) {
      const int32_t victim = index - 2;
      send({1, victim, positions[victim]});
      TDbRecordHeader header{};
      if (iDK_RecordDelete(handle, &header, positions[victim]) != 0 ||
          iDK_KeyDelete(handle, NumberedKey(victim, positions[victim])) != 0) {
        _exit(5);
      }
    }
  }
}

// Reads the child's reports until the deadline, kills it, and returns the records whose
// insert returned and whose deletion had not begun, by index.
std::map<int32_t, int32_t> SurvivorsAfterKill(pid_t child, int channel, int delay_ms) {
  std::map<int32_t, int32_t> survivors;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(delay_ms);
  bool killed = false;
  for (;;) {
    if (!killed && std::chrono::steady_clock::now() >= deadline) {
      kill(child, SIGKILL);
      int status = 0;
      waitpid(child, &status, 0);
      EXPECT_TRUE(WIFSIGNALED(status)) << "the child ended on its own, status " << status;
      killed = true;
    }
    pollfd ready{channel, POLLIN, 0};
    if (!killed && poll(&ready, 1, 5) <= 0) continue;
    Report report{};
    if (read(channel, &report, sizeof report) != ssize_t{sizeof report}) break;
    if (report.deleting) {
      survivors.erase(report.index);
    } else {
      survivors[report.index] = report.position;
    }
  }
  return survivors;
}

// Runs `writer` in a child on the database `base` and kills it after `delay_ms`;
// returns what SurvivorsAfterKill returns.
std::map<int32_t, int32_t> SurvivorsOfKilledWriter(void (*writer)(const std::string&, int),
                                                   const std::string& base, int delay_ms) {
  int channel[2];
  if (pipe(channel) != 0) {
    ADD_FAILURE() << "pipe failed";
    return {};
  }
  const pid_t child = fork();
  if (child == 0) {
    close(channel[0]);
    writer(base, channel[1]);
    _exit(0);
  }
  close(channel[1]);
  std::map<int32_t, int32_t> survivors;
  if (child < 0) {
    ADD_FAILURE() << "fork failed";
  } else {
    survivors = SurvivorsAfterKill(child, channel[0], delay_ms);
  }
  close(channel[0]);
  return survivors;
}

TEST(DbKernelCrash, RecordsReportedWrittenSurviveASigkillAtRandomMoments) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  korvan::testing::TempDir dir;
  NumberedKeySource key_source;
  size_t checked = 0;
  for (int round = 0; round < 5; ++round) {
    const std::string base = dir.File("crash" + std::to_string(round));
    int handle = 0;
    ASSERT_EQ(iDK_DbCreate('T', base, 24, &handle), 0);
    ASSERT_EQ(iDK_DbClose(handle), 0);
    const auto survivors = SurvivorsOfKilledWriter(
        WriteUntilKilled, base, std::uniform_int_distribution<>(20, 400)(random));

    ASSERT_EQ(iDK_DbOpen('T', base, false, true, &handle), 0) << "round " << round;
    // Keys are rebuilt from the blocks the data file walk reaches; a block torn by the
    // kill ends that walk, which is the data file's write order's concern, not the key
    // file's.
    int32_t live_records = 0;
    ASSERT_EQ(iDK_RecordCount(handle, 0, &live_records), 0);
    const bool data_file_whole = live_records >= 0;
    for (const auto& [index, position] : survivors) {
      const std::vector<uint8_t> expected = NumberedRecord(index);
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
      if (data_file_whole) {
        EXPECT_EQ(FindNumbered(handle, index), position)
            << "key of record " << index << "; " << ::testing::PrintToString(key_source.told);
      }
      ++checked;
    }
    EXPECT_EQ(iDK_DbClose(handle), 0);
  }
  EXPECT_GT(checked, 0u) << "no child got a record written before its kill";
}

// Damage the reader reported, as (position, length).
class DamageRanges : public DataFileReader::Reporter {
 public:
  void Damaged(int64_t position, int64_t length, BlockDamage) override {
    ranges.emplace_back(position, length);
  }
  std::vector<std::pair<int64_t, int64_t>> ranges;
};

// Every live block of a data file by position, read the way a rebuild reads it.
std::map<int32_t, std::vector<uint8_t>> LiveBlocks(const std::string& data_file,
                                                   DamageRanges* damage, int64_t* file_size) {
  std::map<int32_t, std::vector<uint8_t>> live;
  const int fd = open(data_file.c_str(), O_RDONLY | O_CLOEXEC);
  EXPECT_GE(fd, 0) << data_file;
  DataFileReader reader(fd, damage);
  DataFileBlock block;
  while (reader.ReadBlock(&block)) {
    if (block.live) reader.ReadRecord(block, &live[block.position]);
  }
  EXPECT_FALSE(reader.io_error());
  *file_size = reader.file_size();
  close(fd);
  return live;
}

// The child of the torn-insert test: only inserts, into the free blocks the parent left,
// reporting each insert that returned.
[[noreturn]] void InsertIntoFreeSpaceUntilKilled(const std::string& base, int channel) {
  ForgetInheritedDatabases();
  int handle = 0;
  if (iDK_DbOpen('T', base, true, false, &handle) != 0) _exit(2);
  for (int32_t index = 0;; ++index) {
    std::vector<uint8_t> record = NumberedRecord(index);
    int32_t position = 0;
    if (iDK_RecordInsert(handle, record.data(), static_cast<int32_t>(record.size()), true,
                         &position) != 0) {
      _exit(4);
    }
    const Report report{0, index, position};
    if (write(channel, &report, sizeof report) != ssize_t{sizeof report}) _exit(3);
  }
}

// A record put into part of a free block is written together with the length of the
// rest. Killed between those writes at random, the file must still read as a chain of
// blocks without damage (a cut-off append at the very end aside), and every record
// written before, by the parent or by the killed child, must be found by the walk.
TEST(DbKernelCrash, InsertsIntoFreeSpaceKilledAtRandomLeaveAFileThatReadsThrough) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  korvan::testing::TempDir dir;
  size_t checked = 0;
  for (int round = 0; round < 8; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    const std::string base = dir.File("torn" + std::to_string(round));
    int handle = 0;
    ASSERT_EQ(iDK_DbCreate('T', base, 24, &handle), 0);
    // Records of 700 bytes, every second one deleted: free blocks that neither merge
    // nor fit a child's record exactly.
    std::map<int32_t, std::vector<uint8_t>> expected;
    std::vector<int32_t> positions;
    for (int i = 0; i < 120; ++i) {
      std::vector<uint8_t> record = MakeRecord('Z', 700, static_cast<uint8_t>(i));
      int32_t position = 0;
      ASSERT_EQ(iDK_RecordInsert(handle, record.data(), 700, true, &position), 0);
      positions.push_back(position);
      expected[position] = record;
    }
    for (size_t i = 0; i < positions.size(); i += 2) {
      TDbRecordHeader header{};
      ASSERT_EQ(iDK_RecordDelete(handle, &header, positions[i]), 0);
      expected.erase(positions[i]);
    }
    ASSERT_EQ(iDK_DbClose(handle), 0);

    const auto survivors = SurvivorsOfKilledWriter(InsertIntoFreeSpaceUntilKilled, base,
                                                   std::uniform_int_distribution<>(5, 250)(random));
    for (const auto& [index, position] : survivors) expected[position] = NumberedRecord(index);

    DamageRanges damage;
    int64_t file_size = 0;
    const auto live = LiveBlocks(base + "0", &damage, &file_size);
    for (const auto& [position, length] : damage.ranges) {
      EXPECT_EQ(position + length, file_size)
          << length << " damaged bytes at " << position << " inside the file";
    }
    for (const auto& [position, record] : expected) {
      const auto found = live.find(position);
      ASSERT_NE(found, live.end()) << "no record at " << position;
      const std::vector<uint8_t>& stored = found->second;
      ASSERT_GE(stored.size(), record.size()) << "at " << position;
      ASSERT_LE(stored.size(), record.size() + 3) << "at " << position;
      EXPECT_EQ(stored[4], record[4]) << "at " << position;
      EXPECT_TRUE(std::equal(record.begin() + kRecordHeaderSize, record.end(),
                             stored.begin() + kRecordHeaderSize))
          << "body at " << position;
      ++checked;
    }
  }
  EXPECT_GT(checked, 0u);
}

}  // namespace
}  // namespace korvan::storage::testing
