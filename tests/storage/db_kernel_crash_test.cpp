// A writer killed at a random moment must not lose or damage what it already wrote: every
// record whose insert had returned is found afterwards in the data file's walk (the keys
// rebuilt after a kill are key_file_sharing_test.cpp's concern).
#include <gtest/gtest.h>

#include <fcntl.h>

#include <chrono>
#include <map>
#include <random>

#include "db_kernel_fixture.h"
#include "numbered_records.h"
#include "storage/data_file_reader.h"

namespace korvan::storage::testing {
namespace {

using korvan::testing::Channel;

// What the writer tells the parent, one message per step.
struct Report {
  int32_t deleting;  // 0: the insert of `index` returned; 1: its deletion begins
  int32_t index;
  int32_t position;
};

int InsertReported(int handle, int32_t index, bool with_key, const Channel& parent) {
  std::vector<uint8_t> record = NumberedRecord(index);
  int32_t position = 0;
  if (iDK_RecordInsert(handle, record.data(), static_cast<int32_t>(record.size()), true,
                       &position) != 0 ||
      (with_key && iDK_KeyInsert(handle, NumberedKey(index, position)) != 0)) {
    return -1;
  }
  return parent.SendMessage(Report{0, index, position}) ? position : -1;
}

// Inserts records with a key each and deletes every fourth one again, until killed.
int InsertAndDeleteWithKeys(int handle, const Channel& parent) {
  std::map<int32_t, int32_t> positions;
  for (int32_t index = 0;; ++index) {
    if ((positions[index] = InsertReported(handle, index, true, parent)) < 0) return 4;
    if (index % 4 != 3) continue;
    const int32_t victim = index - 2;
    if (!parent.SendMessage(Report{1, victim, positions[victim]})) return 3;
    TDbRecordHeader header{};
    if (iDK_RecordDelete(handle, &header, positions[victim]) != 0 ||
        iDK_KeyDelete(handle, NumberedKey(victim, positions[victim])) != 0) {
      return 5;
    }
  }
}

// Only inserts, into the free blocks the parent left, until killed. A record put into
// part of a free block is written together with the length of the rest.
int InsertIntoFreeSpace(int handle, const Channel& parent) {
  for (int32_t index = 0;; ++index) {
    if (InsertReported(handle, index, false, parent) < 0) return 4;
  }
}

using Writer = int (*)(int handle, const Channel& parent);

// Runs `writer` in a child on the database `base`, kills it after `delay_ms`, and returns
// the records whose insert returned and whose deletion had not begun: index by position.
std::map<int32_t, int32_t> SurvivorsOfKilledWriter(Writer writer, const std::string& base,
                                                   int delay_ms) {
  korvan::testing::ChildProcess child([&](const Channel& parent) {
    ForgetInheritedDatabases();
    int handle = 0;
    return iDK_DbOpen('T', base, true, false, &handle) != 0 ? 2 : writer(handle, parent);
  });
  std::map<int32_t, int32_t> survivors;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(delay_ms);
  for (bool killed = false;;) {
    if (!killed && std::chrono::steady_clock::now() >= deadline) {
      EXPECT_TRUE(child.Kill()) << "the writer ended on its own";
      killed = true;
    }
    Report report{};
    if (!child.ReceiveMessage(&report, killed ? 0 : 5)) {
      if (killed) break;
      continue;
    }
    if (report.deleting) {
      survivors.erase(report.position);
    } else {
      survivors[report.position] = report.index;
    }
  }
  return survivors;
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

// Records of 700 bytes, every second one deleted: free blocks that neither merge nor fit
// a writer's record exactly. Returns the records left, by position.
std::map<int32_t, std::vector<uint8_t>> LeaveFreeBlocks(int handle) {
  std::map<int32_t, std::vector<uint8_t>> kept;
  std::vector<int32_t> positions(120);
  for (int i = 0; i < 120; ++i) {
    std::vector<uint8_t> record = MakeRecord('Z', 700, static_cast<uint8_t>(i));
    EXPECT_EQ(iDK_RecordInsert(handle, record.data(), 700, true, &positions[i]), 0);
    kept[positions[i]] = record;
  }
  for (int i = 0; i < 120; i += 2) {
    TDbRecordHeader header{};
    EXPECT_EQ(iDK_RecordDelete(handle, &header, positions[i]), 0);
    kept.erase(positions[i]);
  }
  return kept;
}

TEST(DbKernelCrash, AWriterKilledAtRandomMomentsLosesNothingItReportedWritten) {
  struct Case {
    const char* name;
    Writer writer;
    bool into_free_space;  // then a killed insert must not leave damage inside the file
    int rounds;
    int longest_delay_ms;
  };
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  korvan::testing::TempDir dir;
  for (const Case& c : {Case{"keyed", InsertAndDeleteWithKeys, false, 2, 300},
                        Case{"torn", InsertIntoFreeSpace, true, 3, 250}}) {
    size_t checked = 0;
    for (int round = 0; round < c.rounds; ++round) {
      SCOPED_TRACE(std::string(c.name) + " round " + std::to_string(round));
      const std::string base = dir.File(c.name + std::to_string(round));
      int handle = 0;
      ASSERT_EQ(iDK_DbCreate('T', base, 24, &handle), 0);
      auto expected =
          c.into_free_space ? LeaveFreeBlocks(handle) : std::map<int32_t, std::vector<uint8_t>>{};
      ASSERT_EQ(iDK_DbClose(handle), 0);
      const auto survivors = SurvivorsOfKilledWriter(
          c.writer, base, std::uniform_int_distribution<>(5, c.longest_delay_ms)(random));
      for (const auto& [position, index] : survivors) expected[position] = NumberedRecord(index);

      DamageRanges damage;
      int64_t file_size = 0;
      const auto live = LiveBlocks(base + "0", &damage, &file_size);
      for (const auto& [position, length] : damage.ranges) {
        if (!c.into_free_space) break;
        EXPECT_EQ(position + length, file_size)
            << length << " damaged bytes at " << position << " inside the file";
      }
      for (const auto& [position, record] : expected) {
        const auto found = live.find(position);
        ASSERT_NE(found, live.end()) << "no record at " << position;
        const std::vector<uint8_t>& stored = found->second;
        // A record may own up to 3 spare bytes of the free block it was put into.
        ASSERT_GE(stored.size(), record.size()) << "at " << position;
        ASSERT_LE(stored.size(), record.size() + 3) << "at " << position;
        EXPECT_EQ(stored[4], record[4]) << "at " << position;
        EXPECT_TRUE(std::equal(record.begin() + kRecordHeaderSize, record.end(),
                               stored.begin() + kRecordHeaderSize))
            << "body at " << position;
        ++checked;
      }
    }
    EXPECT_GT(checked, 0u) << c.name << ": no writer got a record written before its kill";
  }
}

}  // namespace
}  // namespace korvan::storage::testing
