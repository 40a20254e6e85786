#include <gtest/gtest.h>

#include <map>
#include <random>

#include "db_kernel_fixture.h"
#include "storage/data_file_check.h"

namespace korvan::storage::testing {
namespace {

// What the data file should hold: blocks by position. Free space is chosen exactly as
// the kernel promises: largest free block first (the highest position among equals),
// the whole block when 1..3 bytes would be left, forward-only merging, truncation.
struct DataFileModel {
  struct Block {
    int32_t length = 0;
    bool live = false;
    std::vector<uint8_t> bytes;  // live blocks: the slot as stored
  };

  int32_t End() const {
    return blocks.empty() ? 80 : blocks.rbegin()->first + blocks.rbegin()->second.length;
  }

  // Where an insert of `length` bytes goes, and how long its slot is.
  std::pair<int32_t, int32_t> Placement(int32_t length, bool reuse) const {
    const Block* largest = nullptr;
    int32_t at = 0;
    for (const auto& [position, block] : blocks) {
      if (!block.live && (largest == nullptr || block.length >= largest->length)) {
        largest = &block;
        at = position;
      }
    }
    if (!reuse || largest == nullptr || largest->length < length) return {End(), length};
    return {at, largest->length - length <= 3 ? largest->length : length};
  }

  void Insert(int32_t position, int32_t slot, std::vector<uint8_t> bytes) {
    auto free_block = blocks.find(position);
    if (free_block != blocks.end()) {
      const int32_t rest = free_block->second.length - slot;
      if (rest > 0) blocks[position + slot] = Block{rest, false, {}};
    }
    blocks[position] = Block{slot, true, std::move(bytes)};
  }

  void Delete(int32_t position) {
    int32_t total = blocks.at(position).length;
    auto next = blocks.find(position + total);
    while (next != blocks.end() && !next->second.live) {
      total += next->second.length;
      next = blocks.erase(next);
    }
    if (next == blocks.end()) {
      blocks.erase(position);
    } else {
      blocks[position] = Block{total, false, {}};
    }
  }

  std::vector<int32_t> LivePositions() const {
    std::vector<int32_t> live;
    for (const auto& [position, block] : blocks) {
      if (block.live) live.push_back(position);
    }
    return live;
  }

  std::map<int32_t, Block> blocks;
};

std::vector<uint8_t> SlotBytes(std::vector<uint8_t> record, int32_t slot) {
  std::memcpy(record.data(), &slot, sizeof slot);
  record.resize(static_cast<size_t>(slot), 0);
  return record;
}

class DbKernelProperty : public DbKernelTest {
 protected:
  void Verify(int handle, int step) {
    const DataFileReport report = CheckDataFile(handle);
    for (const std::string& problem : report.problems) ADD_FAILURE() << step << ": " << problem;
    ASSERT_EQ(report.blocks.size(), model_.blocks.size()) << "step " << step;
    auto expected = model_.blocks.begin();
    for (const DataFileBlock& block : report.blocks) {
      ASSERT_EQ(block.position, expected->first) << "step " << step;
      ASSERT_EQ(block.length, expected->second.length) << "step " << step;
      ASSERT_EQ(block.live, expected->second.live) << "step " << step;
      if (block.live) {
        ASSERT_EQ(Read(handle, block.position, block.length + 10), expected->second.bytes)
            << "step " << step << " at " << block.position;
      }
      ++expected;
    }
  }

  DataFileModel model_;
};

TEST_F(DbKernelProperty, RandomInsertsUpdatesAndDeletesMatchTheModel) {
  int handle = Create("db", 'T', 30);
  std::mt19937 random(20240611);
  auto uniform = [&](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  for (int step = 0; step < 500; ++step) {
    const std::vector<int32_t> live = model_.LivePositions();
    const int choice = uniform(0, 99);
    if (live.empty() || choice < 45) {
      const int32_t length = uniform(0, 4) == 0 ? uniform(48, 52) : uniform(48, 260);
      const bool reuse = uniform(0, 9) != 0;
      auto record = MakeRecord(static_cast<char>('A' + uniform(0, 25)), length,
                               static_cast<uint8_t>(uniform(0, 255)));
      const auto [expected_position, slot] = model_.Placement(length, reuse);
      int32_t position = -1;
      ASSERT_EQ(iDK_RecordInsert(handle, record.data(), length, reuse, &position), 0);
      ASSERT_EQ(position, expected_position) << "step " << step;
      model_.Insert(position, slot, SlotBytes(record, slot));
    } else if (choice < 65) {
      const int32_t position = live[static_cast<size_t>(uniform(0, int(live.size()) - 1))];
      std::vector<uint8_t> old(48);
      ASSERT_EQ(iDK_RecordDelete(handle, old.data(), position), 0) << "step " << step;
      model_.Delete(position);
    } else {
      const int32_t position = live[static_cast<size_t>(uniform(0, int(live.size()) - 1))];
      const int32_t slot = model_.blocks.at(position).length;
      const int delta = uniform(0, 3) == 0 ? uniform(-40, 40) : uniform(-5, 5);
      const int32_t new_length = std::max(48, slot + delta);
      auto record = MakeRecord('U', new_length, static_cast<uint8_t>(uniform(0, 255)));
      const bool fits = slot - new_length >= 0 && slot - new_length <= 3;
      const int result = iDK_RecordUpdate(handle, record.data(), slot, position, new_length);
      ASSERT_EQ(result, fits ? 0 : 4313) << "step " << step;
      if (fits) model_.blocks[position].bytes = SlotBytes(record, slot);
    }
    Verify(handle, step);
    if (HasFatalFailure()) return;
    if (step % 100 == 99) {
      ASSERT_EQ(iDK_DbClose(handle), 0);
      ASSERT_EQ(iDK_DbOpen('T', Base("db"), true, false, &handle), 0);
      Verify(handle, step);
    }
  }
  int32_t count = 0;
  ASSERT_EQ(iDK_RecordCount(handle, 0, &count), 0);
  EXPECT_EQ(count, static_cast<int32_t>(model_.LivePositions().size()));
}

}  // namespace
}  // namespace korvan::storage::testing
