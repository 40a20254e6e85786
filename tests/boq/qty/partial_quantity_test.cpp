// Partial quantities and variables of LV items: the quantity formed from them, the keys
// of variables, percent units, what deleting items and LVs leaves, the integrity check.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <utility>
#include <vector>

#include "boq/lv/lv_test_support.h"
#include "boq/lv/project_lvs.h"
#include "boq/model/lv_editing.h"
#include "boq/model/lv_pos.h"
#include "boq/model/lv_pos_list_io.h"
#include "boq/qty/item_partial_quantities.h"
#include "boq/qty/tb_lv_teilmenge.h"
#include "boq/text/tb_texte.h"
#include "boq/vars/tb_variable.h"
#include "boq/vars/variable_codes.h"
#include "data/tables/table_key.h"
#include "storage/db_kernel_codes.h"
#include "storage/result_codes.h"

namespace korvan::boq::testing {
namespace {

using data::KeyNumber;
using data::kNullId;
using data::kNullId16;
using data::kRootParentId;

// A quantity field of a packed record, read out (gtest binds references).
double Qty(double value) {
  return value;
}

class PartialQuantityTest : public LvDbTest {
 protected:
  void SetUp() override {
    LvDbTest::SetUp();
    lv_ = CreateLv(*db_, {"Rohbau", "11.PPP"});
  }

  TLvPos Entry(char kind) {
    TLvPos entry = NewLvPos(kind);
    entry.LvBgBeschr.ID = AddEntry(lv_, kind, kRootParentId);
    return entry;
  }

  void AddVariable(int32_t owner, char owner_kind, const std::string& name,
                   int32_t cad_entity = kNullId, int expected = storage::kOk) {
    TTbVariable variables(*db_);
    variables.InitRecord();
    variables.Rec().ID = next_id_++;
    variables.Rec().IdBezug = owner;
    variables.Rec().KzBezug = owner_kind;
    variables.Rec().Name.Set(name);
    variables.Rec().IdCad = {static_cast<int16_t>(cad_entity == kNullId ? kNullId16 : 1),
                             cad_entity};
    EXPECT_EQ(variables.UpDateRec(), expected) << name;
  }

  size_t CountOf(char table_type) {
    size_t count = 0;
    for (const auto& [key, record] : AllRecords()) count += key[0] == table_type ? 1 : 0;
    return count;
  }

  int32_t lv_ = 0;
};

TEST_F(PartialQuantityTest, TheItemQuantityIsTheSumOfItsPartialQuantities) {
  TLvPos item = Entry(kKindItem);
  AddPartialQuantity(*db_, item, 10.0, "Achse A");
  const uint16_t second = AddPartialQuantity(*db_, item, 15.5, "");
  EXPECT_TRUE(item.RecalcQuantity(*db_, false));
  EXPECT_DOUBLE_EQ(Qty(item.LvBeschr.FMenge), 25.5);
  EXPECT_DOUBLE_EQ(Qty(item.LvBeschr.VaMenge), 25.5);
  ASSERT_NE(item.GetQtyDeterm(1), nullptr);
  EXPECT_DOUBLE_EQ(item.GetQtyDeterm(1)->Contract, 15.5);
  EXPECT_EQ(item.GetQtyDeterm(2), nullptr);

  // Nothing changed since: no change is answered and nothing is written.
  const Records before = AllRecords();
  EXPECT_FALSE(item.RecalcQuantity(*db_, false));
  EXPECT_EQ(AllRecords(), before);

  ASSERT_TRUE(RemovePartialQuantity(*db_, item, 1));
  EXPECT_TRUE(item.RecalcQuantity(*db_, false));
  EXPECT_DOUBLE_EQ(Qty(item.LvBeschr.FMenge), 15.5);
  EXPECT_FALSE(SetPartialQuantity(*db_, item, 1, 3.0));
  EXPECT_TRUE(SetPartialQuantity(*db_, item, second, 3.0));
  EXPECT_TRUE(item.RecalcQuantity(*db_, false));
  EXPECT_DOUBLE_EQ(Qty(item.LvBeschr.FMenge), 3.0);
}

TEST_F(PartialQuantityTest, WhichEntriesTakeTheirQuantityFromPartialQuantities) {
  // A note never; an item only when it says so or the LV asks and it has some.
  TLvPos note = Entry('H');
  note.LvBeschr.KzTeilmengen = 1;
  AddPartialQuantity(*db_, note, 4.0, "");
  EXPECT_FALSE(note.RecalcQuantity(*db_, true));
  EXPECT_DOUBLE_EQ(Qty(note.LvBeschr.FMenge), 0.0);

  TLvPos typed = Entry(kKindItem);
  typed.LvBeschr.FMenge = 7.0;
  EXPECT_FALSE(typed.RecalcQuantity(*db_, true));
  EXPECT_DOUBLE_EQ(Qty(typed.LvBeschr.FMenge), 7.0);

  TLvPos forced = Entry(kKindItem);
  AddPartialQuantity(*db_, forced, 2.0, "");
  forced.LvBeschr.KzTeilmengen = 0;
  EXPECT_FALSE(forced.RecalcQuantity(*db_, false));
  EXPECT_TRUE(forced.RecalcQuantity(*db_, true));
  EXPECT_DOUBLE_EQ(Qty(forced.LvBeschr.FMenge), 2.0);
}

TEST_F(PartialQuantityTest, ACostElementGivesItsPartialQuantityItsQuantity) {
  TLvPos item = Entry(kKindItem);
  AddPartialQuantity(*db_, item, 1.0, "");
  TTbLvTeilmenge rows(*db_);
  ASSERT_TRUE(rows.FindBySort(item.LvBgBeschr.ID, 1));
  rows.Rec().IdLkt = 77;
  ASSERT_EQ(rows.UpDateRec(), 0);
  TTbVariable variables(*db_);
  variables.InitRecord();
  variables.Rec().ID = next_id_++;
  variables.Rec().IdBezug = 77;
  variables.Rec().KzBezug = kOwnerCostElement;
  variables.Rec().Typ = kTypeItemQuantity;
  variables.Rec().Menge = 42.0;
  ASSERT_EQ(variables.UpDateRec(), 0);

  EXPECT_TRUE(item.RecalcQuantity(*db_, false));
  EXPECT_DOUBLE_EQ(Qty(item.LvBeschr.FMenge), 42.0);
  EXPECT_EQ(item.GetQtyDeterm(0)->Kind, kDetermCostElement);
  ASSERT_TRUE(rows.FindBySort(item.LvBgBeschr.ID, 1));
  EXPECT_DOUBLE_EQ(Qty(rows.Rec().VMenge), 42.0);
}

TEST_F(PartialQuantityTest, ANameIsOneVariablePerOwnerAndCadEntity) {
  const int32_t item = Entry(kKindItem).LvBgBeschr.ID;
  AddVariable(item, kOwnerLvItem, "Breite");
  AddVariable(item, kOwnerLvItem, "Breite", 501);
  AddVariable(item, kOwnerLvItem, "Breite", 502);
  AddVariable(item, kOwnerLvItem, "Breite", 502, storage::kDkDuplicateKey);
  AddVariable(item, kOwnerLvPartialQty, "Breite");
  TTbVariable variables(*db_);
  EXPECT_EQ(variables.ListOf(item, kOwnerLvItem).size(), 3u);
  ASSERT_TRUE(variables.FindByName(item, kOwnerLvItem, "Breite"));
  EXPECT_EQ(int32_t{variables.Rec().IdCad.IdEntity}, kNullId);
  EXPECT_FALSE(variables.FindByName(item, kOwnerLvItem, "Höhe"));
}

TEST_F(PartialQuantityTest, PercentVariables) {
  for (const auto& [unit, stored, percent] : {std::tuple{"PROZENT", "%", true},
                                              {"Prozent", "%", true},
                                              {"%", "%", true},
                                              {"m2", "m2", false},
                                              {"", "", false}}) {
    EXPECT_EQ(NormalizedVariableUnit(unit), stored) << unit;
    EXPECT_EQ(IsPercentUnit(unit), percent) << unit;
  }
}

TEST_F(PartialQuantityTest, DeletingItemsAndLvsLeavesNoVariableOrPartialQuantity) {
  TLvPos item = Entry(kKindItem);
  TLvPos other = Entry(kKindItem);
  AddPartialQuantity(*db_, item, 1.0, "");
  AddPartialQuantity(*db_, other, 2.0, "");
  const t_LvTeilmenge_2700 own = PartialQuantitiesOf(*db_, item.LvBgBeschr.ID).front();
  AddVariable(item.LvBgBeschr.ID, kOwnerLvItem, "a");
  AddVariable(own.ID, kOwnerLvPartialQty, "b");
  AddVariable(other.LvBgBeschr.ID, kOwnerLvItem, "c");

  TTbStruktur rows(*db_);
  ASSERT_TRUE(rows.GetKey(KeyNumber(item.LvBgBeschr.ID), '1'));
  ASSERT_EQ(rows.DeleteRec(), 0);
  EXPECT_EQ(CountOf(kVariableTableType), 1u);
  EXPECT_EQ(CountOf(kLvTeilmengeTableType), 1u);
  std::string log;
  EXPECT_EQ(Check(true, &log), 0) << log;

  DeleteLv(*db_, lv_);
  EXPECT_EQ(CountOf(kVariableTableType), 0u);
  EXPECT_EQ(CountOf(kLvTeilmengeTableType), 0u);
  EXPECT_EQ(Check(true, &log), 0) << log;
}

TEST_F(PartialQuantityTest, NewVariablesAreNumberedAndOrderedPerOwner) {
  const int32_t item = Entry(kKindItem).LvBgBeschr.ID;
  TTbVariable variables(*db_);
  std::vector<std::pair<int32_t, int16_t>> made;  // id, sort number
  for (const char* name : {"a", "b"}) {
    ASSERT_EQ(variables.NewVariable(item, kOwnerLvItem, name), 0);
    ASSERT_EQ(variables.UpDateRec(), 0);
    made.emplace_back(variables.Rec().ID, variables.Rec().SzBezug);
  }
  ASSERT_EQ(variables.NewVariable(item, kOwnerLvPartialQty, "a"), 0);
  EXPECT_NE(made[0].first, made[1].first);
  EXPECT_EQ(made[0].second, 1);
  EXPECT_EQ(made[1].second, 2);
  EXPECT_EQ(variables.Rec().SzBezug, 1);  // another owner kind counts on its own
  EXPECT_EQ(variables.Rec().Typ, kTypeInput);
}

TEST_F(PartialQuantityTest, AVariablesDescriptionLinesGoWithItsItemAndItsLv) {
  CreateTexts();
  TLvPos item = Entry(kKindItem);
  const int32_t item_id = item.LvBgBeschr.ID;
  const int32_t other = Entry(kKindItem).LvBgBeschr.ID;
  AddPartialQuantity(*db_, item, 1.0, "");
  const int32_t own = PartialQuantitiesOf(*db_, item_id).front().ID;
  TTbVariable variables(*db_);
  TTbTexte lines(*texts_);
  std::vector<int32_t> ids;
  for (const auto& [owner, owner_kind] :
       {std::pair{item_id, kOwnerLvItem}, {own, kOwnerLvPartialQty}, {other, kOwnerLvItem}}) {
    ASSERT_EQ(variables.NewVariable(owner, owner_kind, "a"), 0);
    ASSERT_EQ(variables.UpDateRec(), 0);
    ids.push_back(variables.Rec().ID);
    ASSERT_TRUE(lines.WriteLines(ids.back(), kVariableTextKind, 49, {"Breite der Achse"}).Ok());
  }

  TLVPosList list = LoadLvPosList(*db_, texts_.get(), lv_, false);
  ASSERT_EQ(RemoveEntry(list, list.SearchItemIndexByIdLvBgBeschr(item_id)), "");
  SaveLvPosList(*db_, texts_.get(), list);
  EXPECT_TRUE(lines.ReadLines(ids[0], kVariableTextKind, 49).empty());
  EXPECT_TRUE(lines.ReadLines(ids[1], kVariableTextKind, 49).empty());
  EXPECT_FALSE(lines.ReadLines(ids[2], kVariableTextKind, 49).empty());
  std::string log;
  EXPECT_EQ(Check(true, &log), 0) << log;

  DeleteLv(*db_, lv_, texts_.get());
  EXPECT_TRUE(lines.ReadLines(ids[2], kVariableTextKind, 49).empty());
  EXPECT_EQ(Check(true, &log), 0) << log;
}

TEST_F(PartialQuantityTest, TheCheckReportsVariablesWhoseOwnerDoesNotAgree) {
  AddVariable(kNullId, kOwnerLvItem, "ohne");
  AddVariable(987654, kOwnerLvItem, "verwaist");
  std::string log;
  EXPECT_EQ(Check(true, &log), 2) << log;
  EXPECT_NE(log.find("ForeignKey: IdBezug=2147483647 ist DefaultValue. Hat aber einen Bezug(L)."),
            std::string::npos)
      << log;
  EXPECT_NE(log.find("ForeignKey: IdBezug=987654 ist nicht DefaultValue. Hat aber keinen Bezug."),
            std::string::npos)
      << log;
  // The orphan goes, the other one waits for someone to decide.
  Check(false);
  EXPECT_EQ(CountOf(kVariableTableType), 1u);
}

// Adds, edits and deletes at random; the item's quantity is always the sum the model of
// the test keeps.
TEST_F(PartialQuantityTest, AfterRandomEditsTheQuantityIsTheSum) {
  std::mt19937 random(19);
  TLvPos item = Entry(kKindItem);
  std::map<uint16_t, double> model;
  for (int step = 0; step < 60; ++step) {
    const double qty = static_cast<double>(random() % 1000) / 4.0;
    const int action = static_cast<int>(random() % 3);
    if (action == 0 || model.empty()) {
      model[AddPartialQuantity(*db_, item, qty, "")] = qty;
    } else {
      auto chosen = std::next(model.begin(), static_cast<long>(random() % model.size()));
      if (action == 1) {
        ASSERT_TRUE(SetPartialQuantity(*db_, item, chosen->first, qty));
        chosen->second = qty;
      } else {
        ASSERT_TRUE(RemovePartialQuantity(*db_, item, chosen->first));
        model.erase(chosen);
      }
    }
    item.RecalcQuantity(*db_, false);
    double sum = 0.0;
    for (const auto& [number, value] : model) sum += value;
    ASSERT_NEAR(Qty(item.LvBeschr.FMenge), sum, 1e-9) << "step " << step;
    ASSERT_EQ(item.QtyDeterms.size(), model.size());
  }
}

}  // namespace
}  // namespace korvan::boq::testing
