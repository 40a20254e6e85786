#include <gtest/gtest.h>

#include <array>
#include <map>
#include <random>
#include <set>

#include "boq/oz/boq_oz_builder.h"
#include "boq/oz/oz_format.h"
#include "oz_test_support.h"

// Renumbering random LVs under random masks: whatever numbers the entries carried before,
// afterwards every number fits the mask, is unique, begins with its group's number, grows
// among the siblings of one level, and a second run changes nothing.
namespace korvan::boq {
namespace {

struct RandomLv {
  std::string mask;
  int group_levels = 0;
  TLVPosList list;
  std::vector<int> parent;  // index of each entry's group, -1 at the top
  std::vector<int> level;   // the level each entry stands on
};

std::string RandomMask(std::mt19937& random, int group_levels) {
  std::string mask;
  for (int level = 1; level <= group_levels; ++level) {
    mask.append(std::uniform_int_distribution<int>(1, 2)(random), static_cast<char>('0' + level));
    mask += '.';
  }
  mask.append(std::uniform_int_distribution<int>(3, 4)(random), 'P');
  if (random() % 4 == 0) mask += ".I";
  return mask;
}

std::string RandomOzOfLevel(std::mt19937& random, int level) {
  std::string oz = std::to_string(random() % 9 + 1);
  for (int part = 2; part <= level; ++part) oz += "." + std::to_string(random() % 99 + 1);
  return oz;
}

void AddChildren(std::mt19937& random, RandomLv& lv, int group_index, int group_level) {
  const int children = std::uniform_int_distribution<int>(1, 4)(random);
  // A group holds groups of the next level or items; sometimes items that skip the levels
  // between. Numbers follow the list, so items after a sub-group would belong to it.
  const bool group = group_level < lv.group_levels && random() % 5 != 0;
  for (int child = 0; child < children; ++child) {
    const int child_level = group ? group_level + 1 : lv.group_levels + 1;
    const int index = lv.list.Count();
    const bool numbered_before = random() % 2 == 0;
    lv.list.Add(testing::Entry(group ? 'B' : 'P',
                               numbered_before ? RandomOzOfLevel(random, child_level) : ""));
    // An empty number is built from the entry before; give groups their level's shape.
    if (group && !numbered_before) lv.list[index].SetOz(RandomOzOfLevel(random, child_level));
    lv.parent.push_back(group_index);
    lv.level.push_back(child_level);
    if (group) AddChildren(random, lv, index, child_level);
  }
}

RandomLv MakeRandomLv(unsigned seed) {
  std::mt19937 random(seed);
  RandomLv lv;
  lv.group_levels = std::uniform_int_distribution<int>(1, 3)(random);
  lv.mask = RandomMask(random, lv.group_levels);
  t_Lv_DB_VERSION_3100 header = testing::NumberedLvHeader(lv.mask, {1, 1, 1});
  const int16_t item_step = std::array<int16_t, 3>{1, 5, 10}[random() % 3];
  header.OZSchrittweiteGT[static_cast<std::size_t>(lv.group_levels + 1)] = item_step;
  header.OZDurchNumGT[static_cast<std::size_t>(lv.group_levels + 1)] = random() % 3 == 0;
  lv.list = TLVPosList(header);
  // Few enough top groups that every counter fits its width.
  const int top_groups = std::uniform_int_distribution<int>(1, 4)(random);
  for (int group = 0; group < top_groups; ++group) {
    const int index = lv.list.Count();
    lv.list.Add(testing::Entry('B', RandomOzOfLevel(random, 1)));
    lv.parent.push_back(-1);
    lv.level.push_back(1);
    if (lv.group_levels > 1 || random() % 2 == 0) AddChildren(random, lv, index, 1);
  }
  return lv;
}

std::size_t LengthOfLevel(const std::string& mask, int level, int item_level) {
  if (level == item_level) return static_cast<std::size_t>(TLvOzMask(mask).FEndPosIndex());
  std::size_t position = 0;
  for (int dot = 0; dot < level; ++dot) position = mask.find('.', position) + 1;
  return position - 1;
}

void ExpectWellNumbered(const RandomLv& lv) {
  const TLvOzMask& mask = lv.list.FOzMask();
  std::set<std::string> seen;
  std::map<std::pair<int, int>, std::string> last_of_sibling_level;
  for (int i = 0; i < lv.list.Count(); ++i) {
    const std::string oz(lv.list[i].Oz());
    SCOPED_TRACE("entry " + std::to_string(i) + " " + oz);
    EXPECT_EQ(FormLvOZ(oz, lv.mask), oz);
    EXPECT_EQ(oz.size(), LengthOfLevel(lv.mask, lv.level[i], lv.group_levels + 1));
    EXPECT_EQ(mask.GetOzLevel(oz), lv.level[i]);
    EXPECT_TRUE(seen.insert(oz).second) << "twice";
    if (lv.parent[i] >= 0) {
      const std::string parent_oz(lv.list[lv.parent[i]].Oz());
      EXPECT_EQ(oz.substr(0, parent_oz.size() + 1), parent_oz + ".");
    }
    std::string& last = last_of_sibling_level[{lv.parent[i], lv.level[i]}];
    EXPECT_LT(last, oz);
    last = oz;
  }
}

TEST(OzNumberingProperty, RenumberedRandomLvsAreWellNumberedAndStable) {
  for (unsigned seed = 1; seed <= 300; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomLv lv = MakeRandomLv(seed);
    SCOPED_TRACE("mask " + lv.mask);
    TBoqOzBuilder(lv.list).BuildOzForItems(0);
    ExpectWellNumbered(lv);
    const std::vector<std::string> once = testing::OzsOf(lv.list);
    TBoqOzBuilder(lv.list).BuildOzForItems(0);
    EXPECT_EQ(testing::OzsOf(lv.list), once);
    if (::testing::Test::HasFailure()) return;
  }
}

}  // namespace
}  // namespace korvan::boq
