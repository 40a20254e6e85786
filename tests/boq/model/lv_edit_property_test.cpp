// Random edit sequences (add, move, remove, renumber) on random LVs under random masks:
// after every renumbering the numbers fit the mask, are unique, begin with their group's
// number and grow among siblings; a second renumbering changes nothing. Saved and loaded
// again, an edited LV keeps its tree.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

#include "../lv/lv_test_support.h"
#include "../oz/oz_test_support.h"
#include "boq/lv/project_lvs.h"
#include "boq/model/lv_editing.h"
#include "boq/model/lv_pos_list_io.h"
#include "boq/oz/oz_format.h"

namespace korvan::boq {
namespace {

struct Shape {
  std::vector<int> depth;
  std::vector<int> parent;  // index of the group, -1 at the top
  std::vector<bool> has_groups, has_items;
};

Shape ShapeOf(const TLVPosList& list) {
  Shape shape;
  std::map<int32_t, int> index_of;
  for (int i = 0; i < list.Count(); ++i) {
    const auto found = index_of.find(list[i].Struktur.ZuBg);
    shape.parent.push_back(found == index_of.end() ? -1 : found->second);
    shape.depth.push_back(found == index_of.end() ? 1 : shape.depth[found->second] + 1);
    shape.has_groups.push_back(false);
    shape.has_items.push_back(false);
    if (found != index_of.end()) {
      (list[i].IsGroup() ? shape.has_groups : shape.has_items)[found->second] = true;
    }
    if (list[i].IsGroup()) index_of[list[i].Struktur.IdBgBeschr] = i;
  }
  return shape;
}

std::string MaskOf(int group_levels) {
  std::string mask;
  for (int level = 1; level <= group_levels; ++level) {
    mask.append(2, static_cast<char>('0' + level));
    mask += '.';
  }
  return mask + "PPPP";
}

void ExpectWellNumbered(const TLVPosList& list, const std::string& mask) {
  const Shape shape = ShapeOf(list);
  const int item_level = list.FOzMask().FMaxLevel();
  std::set<std::string> seen;
  std::map<std::pair<int, bool>, std::string> last;
  for (int i = 0; i < list.Count(); ++i) {
    const std::string oz(list[i].Oz());
    SCOPED_TRACE("entry " + std::to_string(i) + " " + oz);
    EXPECT_EQ(FormLvOZ(oz, mask), oz);
    EXPECT_EQ(list.FOzMask().GetOzLevel(oz), list[i].IsGroup() ? shape.depth[i] : item_level);
    EXPECT_TRUE(seen.insert(oz).second) << "twice";
    if (shape.parent[i] >= 0) {
      const std::string parent_oz(list[shape.parent[i]].Oz());
      EXPECT_EQ(oz.substr(0, parent_oz.size() + 1), parent_oz + ".");
    }
    std::string& previous = last[{shape.parent[i], list[i].IsGroup()}];
    EXPECT_LT(previous, oz);
    previous = oz;
  }
}

// A random group that may take a child group (or, with `item`, an item).
int RandomParent(std::mt19937& random, const TLVPosList& list, int group_levels, bool item) {
  const Shape shape = ShapeOf(list);
  std::vector<int> candidates;
  for (int i = 0; i < list.Count(); ++i) {
    if (!list[i].IsGroup()) continue;
    if (item ? !shape.has_groups[i] : shape.depth[i] < group_levels && !shape.has_items[i]) {
      candidates.push_back(i);
    }
  }
  if (candidates.empty()) return -1;
  return candidates[random() % candidates.size()];
}

// One random edit: add a group or an item (with texts), remove, move, or renumber (true).
bool RandomEdit(std::mt19937& random, TLVPosList& list, int group_levels) {
  const int action = static_cast<int>(random() % 10);
  if (action < 3 || list.Count() == 0) {
    const int parent = random() % 3 == 0 ? -1 : RandomParent(random, list, group_levels, false);
    const int added = AddEntry(list, NewLvPos('B'),
                               parent < 0 ? TLvPlace{} : TLvPlace{TLvPlace::Kind::kUnder, parent});
    list[added].ShortText = "Gruppe " + std::to_string(list.Count());
  } else if (action < 6) {
    const int parent = RandomParent(random, list, group_levels, true);
    if (parent < 0) return false;
    const int added = AddEntry(list, NewLvPos('P'), {TLvPlace::Kind::kUnder, parent});
    list[added].ShortText = "Position " + std::to_string(list.Count()) + "\nzweite Zeile";
    list[added].Unit = list.Count() % 2 == 0 ? "m2" : "Stk";
    list[added].UnitChanged = true;
    list[added].LvBeschr.FMenge = list.Count() * 1.5;
  } else if (action < 7) {
    RemoveEntry(list, static_cast<int>(random() % list.Count()));
  } else if (action < 8) {
    // An item behind another item, a group behind a group of the same depth.
    const Shape shape = ShapeOf(list);
    const int from = static_cast<int>(random() % list.Count());
    const int to = static_cast<int>(random() % list.Count());
    const bool same_kind = list[from].IsGroup() == list[to].IsGroup();
    if (same_kind && (!list[from].IsGroup() || shape.depth[from] == shape.depth[to])) {
      MoveEntry(list, from, to);
    }
  } else {
    return true;
  }
  return false;
}

TEST(LvEditProperty, RandomEditSequencesKeepTheNumberingWhole) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const int group_levels = std::uniform_int_distribution<int>(1, 3)(random);
    const std::string mask = MaskOf(group_levels);
    TLVPosList list(testing::NumberedLvHeader(mask, {1, 1, 1, 1}));
    for (int step = 0; step < 60; ++step) {
      if (RandomEdit(random, list, group_levels)) {
        RenumberLv(list);
        ExpectWellNumbered(list, mask);
        const std::vector<std::string> once = testing::OzsOf(list);
        RenumberLv(list);
        EXPECT_EQ(testing::OzsOf(list), once);
      }
      if (::testing::Test::HasFailure()) return;
    }
  }
}

// The tree as a round trip through the databases must keep it: per entry its kind, OZ,
// parent, short text, unit and quantity.
std::vector<std::string> TreeOf(const TLVPosList& list) {
  const Shape shape = ShapeOf(list);
  std::vector<std::string> tree;
  for (int i = 0; i < list.Count(); ++i) {
    tree.push_back(std::string(1, list[i].Kind()) + " " + std::string(list[i].Oz()) + " under " +
                   std::to_string(shape.parent[i]) + " \"" + list[i].ShortText + "\" " +
                   list[i].Unit + " " + std::to_string(list[i].LvBeschr.FMenge));
  }
  return tree;
}

class LvEditRoundTrip : public testing::LvDbTest {
 protected:
  void SetUp() override {
    LvDbTest::SetUp();
    CreateTexts();
  }
};

// Two LVs edited in turns, so that their entries, descriptions and texts lie mixed in the
// tables a load reads.
TEST_F(LvEditRoundTrip, LoadSaveLoadAfterRandomEditsGivesTheSameTree) {
  const std::vector<std::pair<int32_t, int>> lvs = {{CreateLv(*db_, {"Rohbau", MaskOf(2)}), 2},
                                                    {CreateLv(*db_, {"Dach", MaskOf(1)}), 1}};
  std::mt19937 random(7);
  for (int round = 0; round < 8; ++round) {
    for (const auto& [lv, group_levels] : lvs) {
      SCOPED_TRACE("round " + std::to_string(round) + ", LV " + std::to_string(lv));
      TLVPosList list = LoadLvPosList(*db_, texts_.get(), lv);
      for (int step = 0; step < 12; ++step) {
        if (RandomEdit(random, list, group_levels)) RenumberLv(list);
      }
      RenumberLv(list);
      SaveLvPosList(*db_, texts_.get(), list);
      TLVPosList loaded = LoadLvPosList(*db_, texts_.get(), lv);
      ASSERT_EQ(TreeOf(loaded), TreeOf(list));
      SaveLvPosList(*db_, texts_.get(), loaded);
      ASSERT_EQ(TreeOf(LoadLvPosList(*db_, texts_.get(), lv)), TreeOf(list));
    }
  }
}

}  // namespace
}  // namespace korvan::boq
