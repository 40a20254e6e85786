#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

#include "std_tb_test_support.h"
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
  if (code == kNullId) return false;
  for (const auto& [id, item] : model) {
    if (id != except_id && item.code == code) return true;
  }
  return false;
}

// The ids in the order of an index: by key string, as the tree orders them.
std::vector<int32_t> ModelOrder(const Model& model, char index) {
  std::vector<std::pair<std::string, int32_t>> keyed;
  for (const auto& [id, item] : model) {
    if (index == '1') keyed.emplace_back(KeyNumber(id), id);
    if (index == '2' && item.code != kNullId) keyed.emplace_back(KeyNumber(item.code), id);
  }
  std::sort(keyed.begin(), keyed.end());
  std::vector<int32_t> ids;
  for (const auto& entry : keyed) ids.push_back(entry.second);
  return ids;
}

class TableProperty : public TableTest {
 protected:
  // Walks an index both ways, checking every record against the model.
  void CheckWalks(TTbTestItem& table, const Model& model) {
    for (char index : {'1', '2'}) {
      std::vector<int32_t> forward;
      for (bool found = table.GetFirstKey("", index); found; found = table.GetNextKey()) {
        forward.push_back(table.Rec().Id);
        auto it = model.find(table.Rec().Id);
        ASSERT_NE(it, model.end()) << table.Rec().Id;
        ASSERT_EQ(table.Rec().Code, it->second.code);
        ASSERT_EQ(table.Tail(),
                  std::vector<uint8_t>(static_cast<size_t>(it->second.tail), it->second.fill));
      }
      std::vector<int32_t> backward;
      for (bool found = table.GetLastKey("", index); found; found = table.GetPreviousKey()) {
        backward.push_back(table.Rec().Id);
      }
      std::reverse(backward.begin(), backward.end());
      const std::vector<int32_t> expected = ModelOrder(model, index);
      ASSERT_EQ(forward, expected) << "index " << index;
      ASSERT_EQ(backward, expected) << "index " << index;
    }
  }

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
      const int action = pick(0, 9);
      if (action < 4 || model.empty()) {
        const int32_t id = random_id();
        const ModelItem item{random_code(), pick(0, 300), static_cast<uint8_t>(pick(1, 255))};
        const bool refused = model.count(id) > 0 || CodeTaken(model, item.code, id);
        const int result = InsertItem(table, id, item.code, item.tail, item.fill);
        ASSERT_EQ(result, refused ? storage::kDkDuplicateKey : 0);
        if (!refused) model[id] = item;
      } else if (action < 8) {
        auto it = std::next(model.begin(), pick(0, static_cast<int>(model.size()) - 1));
        ASSERT_TRUE(table.GetKey(KeyNumber(it->first)));
        const int32_t new_id = pick(0, 3) == 0 ? random_id() : it->first;
        ModelItem item = it->second;
        if (pick(0, 1) == 0) item.code = random_code();
        if (pick(0, 1) == 0) {
          item.tail = pick(0, 300);
          item.fill = static_cast<uint8_t>(pick(1, 255));
        }
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
      } else {
        auto it = std::next(model.begin(), pick(0, static_cast<int>(model.size()) - 1));
        ASSERT_TRUE(table.GetKey(KeyNumber(it->first)));
        ASSERT_EQ(table.DeleteRec(), 0);
        model.erase(it);
      }
      if (step % 50 == 49) {
        CheckWalks(table, model);
        if (HasFatalFailure()) return;
      }
    }
    CheckWalks(table, model);
    int32_t count = -1;
    ASSERT_EQ(db_->RecordCount(kTestItemType, &count), 0);
    EXPECT_EQ(count, static_cast<int32_t>(model.size()));
    size_t keys = 0;
    for (const auto& [id, item] : model) keys += item.code == kNullId ? 1 : 2;
    EXPECT_EQ(AllKeys().size(), keys);
    EXPECT_EQ(StorageProblems(), std::vector<std::string>{});
  }
};

TEST_F(TableProperty, RandomWritesAndWalksAgreeWithAModel) {
  Run(20240611, 600);
}

TEST_F(TableProperty, RandomWritesAndWalksAgreeWithAModelSecondSeed) {
  Run(7, 600);
}

}  // namespace
}  // namespace korvan::data::testing
