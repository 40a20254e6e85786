// The data file's block reader: intact blocks in file order, damage skipped and reported.
#include "storage/data_file_reader.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <random>

#include "db_kernel_fixture.h"

namespace korvan::storage::testing {
namespace {

struct Damage {
  int64_t position;
  int64_t length;
  BlockDamage why;
};

class DamageList : public DataFileReader::Reporter {
 public:
  void Damaged(int64_t position, int64_t length, BlockDamage why) override {
    list.push_back({position, length, why});
  }
  std::vector<Damage> list;
};

struct Walk {
  std::map<int32_t, std::vector<uint8_t>> live;  // by position
  std::vector<int32_t> free_blocks;
  std::vector<Damage> damage;
  int64_t file_size = 0;
};

// Reads a data file through the reader; fails the test when it steps more often than
// the file has room for blocks (it would be looping).
Walk WalkFile(const std::string& path) {
  Walk walk;
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  EXPECT_GE(fd, 0);
  DamageList damage;
  DataFileReader reader(fd, &damage);
  walk.file_size = reader.file_size();
  const int64_t most_blocks = walk.file_size / 4 + 1;
  DataFileBlock block;
  int64_t steps = 0;
  while (reader.ReadBlock(&block)) {
    EXPECT_LE(++steps, most_blocks) << "the reader does not advance";
    if (steps > most_blocks) break;
    if (block.live) {
      reader.ReadRecord(block, &walk.live[block.position]);
    } else {
      walk.free_blocks.push_back(block.position);
    }
  }
  EXPECT_FALSE(reader.io_error());
  close(fd);
  walk.damage = damage.list;
  return walk;
}

class DataFileReaderTest : public DbKernelTest {
 protected:
  // Records of the given lengths one after the other; returns their positions.
  std::vector<int32_t> Fill(const std::string& name, const std::vector<int32_t>& lengths) {
    const int handle = Create(name);
    std::vector<int32_t> positions;
    for (size_t i = 0; i < lengths.size(); ++i) {
      auto record =
          MakeRecord(static_cast<char>('A' + i % 26), lengths[i], static_cast<uint8_t>(0x30 + i));
      positions.push_back(Insert(handle, record));
    }
    EXPECT_EQ(iDK_DbClose(handle), 0);
    return positions;
  }

  void Poke(const std::string& name, int64_t position, int32_t value) {
    auto bytes = FileBytes(DataFile(name));
    std::memcpy(bytes.data() + position, &value, sizeof value);
    WriteFileBytes(DataFile(name), bytes);
  }
};

TEST_F(DataFileReaderTest, IntactFileReadsAsItsBlocksWithoutDamage) {
  const auto positions = Fill("db", {60, 100, 70, 200});
  const int handle = [&] {
    int h = 0;
    EXPECT_EQ(iDK_DbOpen('T', Base("db"), true, false, &h), 0);
    return h;
  }();
  TDbRecordHeader old{};
  ASSERT_EQ(iDK_RecordDelete(handle, &old, positions[1]), 0);
  ASSERT_EQ(iDK_DbClose(handle), 0);
  const Walk walk = WalkFile(DataFile("db"));
  EXPECT_TRUE(walk.damage.empty());
  EXPECT_EQ(walk.live.size(), 3u);
  EXPECT_EQ(walk.free_blocks, std::vector<int32_t>{positions[1]});
  EXPECT_EQ(walk.live.at(positions[3]).size(), 200u);
}

TEST_F(DataFileReaderTest, GoesOnPastATornBlockAndReportsWhatItSkipped) {
  // What an insert into free space used to leave when killed between its two writes:
  // a record in front, then the old bytes of the free block where the rest's length
  // should have been.
  const auto positions = Fill("db", {60, 300, 80, 90});
  Poke("db", positions[1], 100);               // the new record of 100 bytes...
  Poke("db", positions[1] + 100, 0x30303030);  // ...and garbage behind it
  const Walk walk = WalkFile(DataFile("db"));
  ASSERT_EQ(walk.damage.size(), 1u);
  EXPECT_EQ(walk.damage[0].position, positions[1] + 100);
  EXPECT_EQ(walk.damage[0].length, 200);
  EXPECT_EQ(walk.damage[0].why, BlockDamage::kPastEndOfFile);
  for (int i : {0, 1, 2, 3}) EXPECT_EQ(walk.live.count(positions[i]), 1u) << i;
}

TEST_F(DataFileReaderTest, ALengthThatLeadsIntoTheMiddleOfBlocksIsTheDamagedOne) {
  const auto positions = Fill("db", {60, 100, 70, 80, 90, 100});
  // The second record claims 150 bytes: that ends inside the third.
  Poke("db", positions[1], 150);
  const Walk walk = WalkFile(DataFile("db"));
  ASSERT_EQ(walk.damage.size(), 1u);
  EXPECT_EQ(walk.damage[0].position, positions[1]);
  EXPECT_EQ(walk.damage[0].length, 100);
  EXPECT_EQ(walk.damage[0].why, BlockDamage::kLeadsIntoDamage);
  for (int i : {0, 2, 3, 4, 5}) EXPECT_EQ(walk.live.count(positions[i]), 1u) << i;
}

TEST_F(DataFileReaderTest, ACutOffLastRecordIsDamageUpToTheEnd) {
  const auto positions = Fill("db", {60, 100, 70});
  auto bytes = FileBytes(DataFile("db"));
  bytes.resize(bytes.size() - 20);
  WriteFileBytes(DataFile("db"), bytes);
  const Walk walk = WalkFile(DataFile("db"));
  ASSERT_EQ(walk.damage.size(), 1u);
  EXPECT_EQ(walk.damage[0].position, positions[2]);
  EXPECT_EQ(walk.damage[0].length, 50);
  EXPECT_EQ(walk.live.size(), 2u);
}

TEST_F(DataFileReaderTest, RunsOfZerosAreDamageAndPassedQuickly) {
  const auto positions = Fill("db", {60, 100, 70, 80});
  const std::vector<uint8_t> good = FileBytes(DataFile("db"));
  const auto last = good.begin() + positions[3];
  // Zeros in place of the last record, as far as a sparse gigabyte (no disk space).
  WriteFileBytes(DataFile("db"), std::vector<uint8_t>(good.begin(), last));
  std::filesystem::resize_file(DataFile("db"), static_cast<uintmax_t>(positions[3]) + (1u << 30));
  Walk walk = WalkFile(DataFile("db"));
  ASSERT_EQ(walk.damage.size(), 1u);
  EXPECT_EQ(walk.damage[0].position, positions[3]);
  EXPECT_EQ(walk.damage[0].length, 1 << 30);
  EXPECT_EQ(walk.damage[0].why, BlockDamage::kZeroLength);
  EXPECT_EQ(walk.live.size(), 3u);

  // Zeros with a record behind them: the record is found behind the damage.
  std::vector<uint8_t> bytes(good.begin(), last);
  bytes.resize(bytes.size() + 4096);
  bytes.insert(bytes.end(), last, good.end());
  WriteFileBytes(DataFile("db"), bytes);
  walk = WalkFile(DataFile("db"));
  ASSERT_EQ(walk.damage.size(), 1u);
  EXPECT_EQ(walk.damage[0].position, positions[3]);
  EXPECT_EQ(walk.damage[0].length, 4096);
  EXPECT_EQ(walk.live.size(), 4u);
  EXPECT_EQ(walk.live.count(positions[3] + 4096), 1u);
}

// How a file was spoilt, to know which records stayed intact.
struct Spoilt {
  std::vector<std::pair<int64_t, int64_t>> ranges;  // [begin, end) changed
  int64_t size = 0;                                 // after a cut
  bool surely_damaged = false;                      // a block start became 0, or a cut
};

Spoilt Spoil(std::vector<uint8_t>& bytes, const std::vector<int32_t>& block_starts,
             std::mt19937& random) {
  Spoilt spoilt;
  auto pick = [&](int64_t low, int64_t high) {
    return std::uniform_int_distribution<int64_t>(low, high)(random);
  };
  std::vector<int64_t> zeroed_lengths;  // block starts whose length became 0
  bool cut_inside_a_block = false;
  const int times = static_cast<int>(pick(1, 3));
  for (int i = 0; i < times && bytes.size() > 90; ++i) {
    const int64_t size = static_cast<int64_t>(bytes.size());
    const int kind = static_cast<int>(pick(0, 4));
    if (kind == 4) {  // cut the file short
      const int64_t at = pick(81, size - 1);
      bytes.resize(static_cast<size_t>(at));
      cut_inside_a_block =
          std::find(block_starts.begin(), block_starts.end(), at) == block_starts.end();
      continue;
    }
    int64_t begin = pick(80, size - 1);
    if (kind == 3 && !block_starts.empty()) {  // a block's length replaced
      begin = block_starts[static_cast<size_t>(pick(0, block_starts.size() - 1))];
    }
    const int64_t end = std::min(size, begin + (kind == 3 ? 4 : pick(1, 400)));
    for (int64_t p = begin; p < end; ++p) {
      auto& byte = bytes[static_cast<size_t>(p)];
      byte = kind == 0 ? 0 : kind == 1 ? 0xFF : static_cast<uint8_t>(pick(0, 255));
    }
    for (int32_t start : block_starts) {
      if (kind == 0 && start >= begin && start + 4 <= end) zeroed_lengths.push_back(start);
    }
    spoilt.ranges.emplace_back(begin, end);
  }
  spoilt.size = static_cast<int64_t>(bytes.size());
  // A length of 0 that a later change did not overwrite or cut off is damage for sure.
  for (int64_t start : zeroed_lengths) {
    bool still_zero = start + 4 <= spoilt.size;
    for (int64_t p = start; still_zero && p < start + 4; ++p) still_zero = bytes[p] == 0;
    spoilt.surely_damaged = spoilt.surely_damaged || still_zero;
  }
  spoilt.surely_damaged = spoilt.surely_damaged || cut_inside_a_block;
  return spoilt;
}

bool Intact(const Spoilt& spoilt, int64_t position, int64_t length) {
  if (position + length > spoilt.size) return false;
  return std::none_of(spoilt.ranges.begin(), spoilt.ranges.end(), [&](const auto& range) {
    return range.first < position + length && position < range.second;
  });
}

// Damage is found and passed, and what lies before it is kept whole. Behind damage the
// reader has to guess where blocks start again; free space still holds the lengths and
// headers of what it held before, so a guess can be wrong. The guesses are held to a
// rate: nearly every intact record behind damage is found again (over seeds 1 to 11,
// between none and 1.2% were lost, each time a run of records that an old free-space
// header in front of them made the reader step over).
TEST_F(DataFileReaderTest, SpoiltFilesNeverStopTheReaderAndKeepIntactRecords) {
  // A fixed seed keeps the suite repeatable; KORVAN_TEST_SEED explores others.
  const char* chosen = std::getenv("KORVAN_TEST_SEED");
  const unsigned seed = chosen ? static_cast<unsigned>(std::stoul(chosen)) : 20261123u;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  int intact_behind_damage = 0;
  int lost_behind_damage = 0;
  for (int round = 0; round < 6; ++round) {
    const std::string name = "db" + std::to_string(round);
    // A history of inserts (into free space too) and deletes.
    const int handle = Create(name);
    std::vector<int32_t> live;
    for (int step = 0; step < 150; ++step) {
      if (!live.empty() && std::uniform_int_distribution<>(0, 2)(random) == 0) {
        const size_t victim = std::uniform_int_distribution<size_t>(0, live.size() - 1)(random);
        TDbRecordHeader old{};
        ASSERT_EQ(iDK_RecordDelete(handle, &old, live[victim]), 0);
        live.erase(live.begin() + static_cast<std::ptrdiff_t>(victim));
      } else {
        auto record = MakeRecord(static_cast<char>('A' + step % 26),
                                 std::uniform_int_distribution<int32_t>(48, 400)(random),
                                 static_cast<uint8_t>(step));
        live.push_back(Insert(handle, record));
      }
    }
    ASSERT_EQ(iDK_DbClose(handle), 0);
    const Walk before = WalkFile(DataFile(name));
    ASSERT_TRUE(before.damage.empty());
    ASSERT_EQ(before.live.size(), live.size());
    std::vector<int32_t> block_starts = before.free_blocks;
    for (const auto& [position, bytes] : before.live) block_starts.push_back(position);
    const std::vector<uint8_t> good = FileBytes(DataFile(name));

    for (int trial = 0; trial < 40; ++trial) {
      SCOPED_TRACE("round " + std::to_string(round) + " trial " + std::to_string(trial));
      std::vector<uint8_t> bytes = good;
      const Spoilt spoilt = Spoil(bytes, block_starts, random);
      WriteFileBytes(DataFile(name), bytes);
      const Walk after = WalkFile(DataFile(name));
      if (spoilt.surely_damaged) {
        EXPECT_FALSE(after.damage.empty());
      }
      for (const Damage& damage : after.damage) {
        EXPECT_GT(damage.length, 0);
        EXPECT_LE(damage.position + damage.length, after.file_size);
      }
      int64_t first_change = spoilt.size;
      for (const auto& range : spoilt.ranges) first_change = std::min(first_change, range.first);
      for (const auto& [position, record] : before.live) {
        if (!Intact(spoilt, position, static_cast<int64_t>(record.size()))) continue;
        const auto found = after.live.find(position);
        if (position + static_cast<int64_t>(record.size()) <= first_change) {
          ASSERT_NE(found, after.live.end()) << "intact record at " << position << " lost";
        } else {
          ++intact_behind_damage;
          if (found == after.live.end()) ++lost_behind_damage;
        }
        if (found != after.live.end()) {
          EXPECT_EQ(found->second, record) << "at " << position;
        }
      }
    }
  }
  std::cout << "seed " << seed << ": " << lost_behind_damage << " of " << intact_behind_damage
            << " intact records behind damage not found\n";
  EXPECT_LE(lost_behind_damage * 50, intact_behind_damage)
      << "more than 2% of the intact records behind damage lost";
}

}  // namespace
}  // namespace korvan::storage::testing
