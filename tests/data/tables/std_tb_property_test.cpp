#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "data/tables/std_tb_test_support.h"
#include "storage/db_kernel_codes.h"

namespace korvan::data::testing {
namespace {

struct ModelItem {
  int32_t code;
  int tail;
  uint8_t fill;
};
using Model = std::map<int32_t, ModelItem>;

bool CodeTaken(const Model& model, int32_t code, int32_t except_id) {
  return code != kNullId && std::any_of(model.begin(), model.end(), [&](const auto& entry) {
           return entry.first != except_id && entry.second.code == code;
         });
}

// The ids in the order of an index: by key string, as the tree orders them.
std::vector<int32_t> ModelOrder(const Model& model, char index) {
  std::map<std::string, int32_t> keyed;
  for (const auto& [id, item] : model) {
    if (index == '1') keyed.emplace(KeyNumber(id), id);
    if (index == '2' && item.code != kNullId) keyed.emplace(KeyNumber(item.code), id);
  }
  std::vector<int32_t> ids;
  for (const auto& entry : keyed) ids.push_back(entry.second);
  return ids;
}

class TableProperty : public TableTest {
 protected:
  // Walks each index both ways, checking every record against the model.
  void CheckWalks(TTbTestItem& table, const Model& model) {
    for (char index : {'1', '2'}) {
      std::vector<int32_t> forward, backward;
      for (bool found = table.GetFirstKey("", index); found; found = table.GetNextKey()) {
        forward.push_back(table.Rec().Id);
        auto it = model.find(table.Rec().Id);
        ASSERT_NE(it, model.end()) << table.Rec().Id;
        ASSERT_EQ(table.Rec().Code, it->second.code);
        ASSERT_EQ(table.Tail(), std::vector<uint8_t>(it->second.tail, it->second.fill));
      }
      for (bool found = table.GetLastKey("", index); found; found = table.GetPreviousKey()) {
        backward.insert(backward.begin(), table.Rec().Id);
      }
      ASSERT_EQ(forward, ModelOrder(model, index)) << "index " << index;
      ASSERT_EQ(backward, forward) << "index " << index;
    }
  }

  // Random inserts, updates (of keys and of length) and deletes; refusals where a unique
  // key would repeat. Ends by deleting everything, leaving the table empty.
  void Run(uint32_t seed, int operations) {
    std::mt19937 random(seed);
    const auto pick = [&](int low, int high) {
      return std::uniform_int_distribution<int>(low, high)(random);
    };
    const auto random_code = [&] { return pick(0, 9) == 0 ? kNullId : pick(-5, 40); };
    const auto random_id = [&] { return pick(0, 40) == 0 ? kNullId : pick(-20, 60); };
    TTbTestItem table(*db_);
    Model model;
    for (int step = 0; step < operations; ++step) {
      SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(step));
      if (step % 50 == 49) {
        ASSERT_NO_FATAL_FAILURE(CheckWalks(table, model));
      }
      const int action = pick(0, 9);
      if (action < 4 || model.empty()) {
        const int32_t id = random_id();
        const ModelItem item{random_code(), pick(0, 300), static_cast<uint8_t>(pick(1, 255))};
        const bool refused = model.count(id) > 0 || CodeTaken(model, item.code, id);
        ASSERT_EQ(InsertItem(table, id, item.code, item.tail, item.fill),
                  refused ? storage::kDkDuplicateKey : 0);
        if (!refused) model[id] = item;
        continue;
      }
      auto it = std::next(model.begin(), pick(0, static_cast<int>(model.size()) - 1));
      ASSERT_TRUE(table.GetKey(KeyNumber(it->first)));
      if (action >= 8) {
        ASSERT_EQ(table.DeleteRec(), 0);
        model.erase(it);
        continue;
      }
      const int32_t new_id = pick(0, 3) == 0 ? random_id() : it->first;
      ModelItem item = it->second;
      if (pick(0, 1) == 0) item.code = random_code();
      if (pick(0, 1) == 0) item = {item.code, pick(0, 300), static_cast<uint8_t>(pick(1, 255))};
      table.Rec().Id = new_id;
      table.Rec().Code = item.code;
      table.SetTail(item.tail, item.fill);
      const bool refused = (new_id != it->first && model.count(new_id) > 0) ||
                           CodeTaken(model, item.code, it->first);
      ASSERT_EQ(table.UpDateRec(), refused ? storage::kDkDuplicateKey : 0);
      if (!refused) {
        model.erase(it);
        model[new_id] = item;
      }
    }
    ASSERT_NO_FATAL_FAILURE(CheckWalks(table, model));
    int32_t count = -1;
    ASSERT_EQ(db_->RecordCount(kTestItemType, &count), 0);
    EXPECT_EQ(count, static_cast<int32_t>(model.size()));
    size_t keys = 0;
    for (const auto& [id, item] : model) keys += item.code == kNullId ? 1 : 2;
    EXPECT_EQ(AllKeys().size(), keys);
    EXPECT_EQ(StorageProblems(), std::vector<std::string>{});
    for (const auto& [id, item] : model) {
      ASSERT_TRUE(table.GetKey(KeyNumber(id)));
      ASSERT_EQ(table.DeleteRec(), 0);
    }
    EXPECT_TRUE(AllKeys().empty());
  }
};

TEST_F(TableProperty, RandomWritesAndWalksAgreeWithAModel) {
  for (uint32_t seed : {20240611u, 7u}) ASSERT_NO_FATAL_FAILURE(Run(seed, 600));
  EXPECT_EQ(StorageProblems(), std::vector<std::string>{});
}

}  // namespace
}  // namespace korvan::data::testing
