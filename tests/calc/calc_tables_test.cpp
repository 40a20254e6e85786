// The calculation tables: the master defaults and the per-LV copies made on first use.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <memory>

#include "boq/model/lv_pos.h"
#include "boq/model/lv_pos_list.h"
#include "boq/units/value_converter.h"
#include "calc/model/cost_types.h"
#include "calc/price/lv_calculation.h"
#include "calc/tables/calc_table_types.h"
#include "calc/tables/lv_calc_delete.h"
#include "calc/tables/tb_ends.h"
#include "calc/tables/tb_ltext.h"
#include "calc/tables/tb_mittellohn.h"
#include "calc/tables/tb_zuschlag.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "testing/temp_dir.h"

namespace korvan::calc {
namespace {

class CalcTablesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    master_ = Create("DB_KR", kKrDbType);
    project_ = Create("DB_KP", kKpDbType);
  }
  void TearDown() override {
    master_.reset();
    project_.reset();
    data::TStdDbDatas::Instance().ReleaseEmpty();
  }
  std::unique_ptr<data::TStdDb> Create(const char* group, char type) {
    auto db = std::make_unique<data::TStdDb>(group, dir_.path().string() + "/", type, 70);
    EXPECT_EQ(db->DbCreate(), 0);
    return db;
  }

  korvan::testing::TempDir dir_;
  std::unique_ptr<data::TStdDb> master_;
  std::unique_ptr<data::TStdDb> project_;
};

TEST_F(CalcTablesTest, ANewMasterSurchargeTableHoldsTheNineteenDefaults) {
  TTbZuR master(*master_);
  ASSERT_EQ(master.InitTable(), 0);
  ASSERT_EQ(master.InitTable(), 0);  // a second run adds nothing
  EXPECT_EQ(master.All().size(), 19u);
  EXPECT_EQ(master.Find('Z', 'E'), 80.0);
  EXPECT_EQ(master.Find('Z', 'I'), 5.0);
  EXPECT_EQ(master.Find('E', 'K'), 9.0);
  EXPECT_EQ(master.Find('E', 'P'), 50.0);
  EXPECT_EQ(master.Find('Z', 'K'), std::nullopt);
}

TEST_F(CalcTablesTest, TheLvCopiesTheMasterOnFirstUseOnly) {
  TTbZuR master(*master_);
  ASSERT_EQ(master.InitTable(), 0);
  TTbZuP project(*project_);
  ASSERT_EQ(project.InitTable(7, master), 0);
  EXPECT_EQ(project.AllOf(7).size(), 19u);
  ASSERT_EQ(project.Set(7, 'Z', 'M', 12.5), 0);
  ASSERT_EQ(project.InitTable(7, master), 0);
  EXPECT_EQ(project.Find(7, 'Z', 'M'), 12.5);
  EXPECT_EQ(project.AllOf(7).size(), 19u);
  EXPECT_TRUE(project.AllOf(8).empty());
}

TEST_F(CalcTablesTest, TheEndSumRecordTakesTheMasterRowsOfKindE) {
  TTbZuR master(*master_);
  TTbEndsP ends(*project_);
  ASSERT_EQ(ends.InitTable(1, master), 0);  // empty master: all 0
  EXPECT_EQ(double{ends.Get(1)->UMLLOHN}, 0.0);
  ASSERT_EQ(master.InitTable(), 0);
  ASSERT_EQ(ends.InitTable(2, master), 0);
  const t_KpENDS two = *ends.Get(2);
  EXPECT_EQ(double{two.UMLPRZMAT}, 5.0);
  EXPECT_EQ(double{two.ENDSAGKPRZEL}, 9.0);
  EXPECT_EQ(double{two.ENDSAGKPRZFL}, 0.0);
  EXPECT_EQ(double{two.ENDSWUGPRZEL}, 5.0);
  EXPECT_EQ(double{two.UMLLOHN}, 50.0);
  EXPECT_EQ(int32_t{two.IDUMLLV}, 2147483647);
  ASSERT_EQ(ends.InitTable(1, master), 0);  // there already: nothing copied
  EXPECT_EQ(double{ends.Get(1)->UMLLOHN}, 0.0);
}

TEST_F(CalcTablesTest, TheAverageWageOfAnLvComesFromTheMasterRow) {
  TTbMLohnR master(*master_);
  TTbMLohnP project(*project_);
  ASSERT_EQ(project.InitTable(3, master), 0);
  EXPECT_EQ(project.Get(3), std::nullopt);  // no master row: nothing to copy
  master.InitRecord();
  master.Rec().MLL = 20;
  master.Rec().MLS = 80;
  ASSERT_EQ(master.UpDateRec(), 0);
  ASSERT_EQ(project.InitTable(3, master), 0);
  EXPECT_EQ(double{project.Get(3)->MLS}, 80.0);
}

TEST_F(CalcTablesTest, SubItemLongTextsKeepTheirLinesInOrderAndGoWithTheItem) {
  TTbLText texts(*project_);
  const std::vector<std::string> lines{
      "Erste Zeile", "", std::string(300, 'x'), "Zeile 4", "5", "6", "7", "8", "9", "Zeile 10"};
  ASSERT_EQ(texts.ReplaceLines(30, 1, {"alt", "alt"}), 0);
  ASSERT_EQ(texts.ReplaceLines(30, 1, lines), 0);
  ASSERT_EQ(texts.ReplaceLines(30, 2, {"zweite"}), 0);
  ASSERT_EQ(texts.ReplaceLines(31, 1, {"andere Position"}), 0);
  EXPECT_EQ(texts.LinesOf(30, 1), lines);
  EXPECT_EQ(texts.LinesOf(30, 2), std::vector<std::string>{"zweite"});

  ASSERT_EQ(DeleteItemCalculation(*project_, 30), 0);
  EXPECT_TRUE(texts.LinesOf(30, 1).empty());
  EXPECT_TRUE(texts.LinesOf(30, 2).empty());
  EXPECT_EQ(texts.LinesOf(31, 1), std::vector<std::string>{"andere Position"});
}

TEST_F(CalcTablesTest, CostElementsGiveDirectCostsAndPricesWithTheSurcharges) {
  TTbZuR(*master_).InitTable();
  TLvCalculation calculation(*project_, *master_, 4, true);
  calculation.SetCostElement(30, TResultIndex::kMaterial, 10);
  calculation.SetCostElement(30, TResultIndex::kLohn, 20);
  calculation.SetCostElement(30, TResultIndex::kFremd, 5);
  calculation.SetCostElement(30, TResultIndex::kFremd, 6);  // replaces the 5
  calculation.SetCostElement(30, TResultIndex::kRsv, 0);    // nothing to remove
  TItemCosts costs = calculation.CostsOf(30);
  EXPECT_EQ(costs.direct_total, 36.0);
  EXPECT_DOUBLE_EQ(costs.price_total, 10.5 + 20 + 6.3);  // no wage A: no wage surcharge
  EXPECT_FALSE(calculation.CostsOf(31).HasElements());

  // With a wage A of 20 and no social costs, E 80 % and I 5 % give (16 + 1) / 20.
  TTbBASP keys(*project_);
  keys.InitRecord();
  keys.Rec().ID.SetRaw("1");
  keys.Rec().MLA.Betrag = 20;
  ASSERT_EQ(keys.UpDateRec(), 0);
  TLvCalculation with_wage(*project_, *master_, 4, false);
  EXPECT_DOUBLE_EQ(with_wage.Surcharges()[1], 85.0);
  calculation.SetCostElement(30, TResultIndex::kLohn, 0);
  EXPECT_EQ(calculation.CostsOf(30).direct_total, 16.0);
}

// Half a unit and more rounds up (every amount here is positive).
int64_t RoundedDivision(int64_t numerator, int64_t denominator) {
  return (numerator * 2 + denominator) / (denominator * 2);
}

// Material and subcontracts carry the default surcharge of 5 %, the wage none while the
// project has no average wage; unit prices round to cents, totals from them.
TEST_F(CalcTablesTest, TwentyItemsGiveTheHandComputedPricesToTheCent) {
  TTbZuR(*master_).InitTable();
  TLvCalculation calculation(*project_, *master_, 4, true);
  boq::TLVPosList list;
  std::vector<int64_t> unit_prices, totals;
  int64_t bid_total = 0;
  for (int64_t i = 1; i <= 20; ++i) {
    const int64_t material = 1000 + (737 * i) % 50000, wage = 2500 + 311 * i;
    const int64_t subcontract = (913 * i) % 3000 + 5, milli_qty = 1000 + (12345 * i) % 99999;
    boq::TLvPos item = boq::NewLvPos('P');
    item.Struktur.IdBgBeschr = static_cast<int32_t>(i);
    item.LvBgBeschr.IDBeschr = static_cast<int32_t>(1000 + i);
    item.LvBeschr.FMenge = static_cast<double>(milli_qty) / 1000.0;
    list.Add(item);
    calculation.SetCostElement(item.LvBgBeschr.IDBeschr, TResultIndex::kMaterial,
                               static_cast<double>(material) / 100.0);
    calculation.SetCostElement(item.LvBgBeschr.IDBeschr, TResultIndex::kLohn,
                               static_cast<double>(wage) / 100.0);
    calculation.SetCostElement(item.LvBgBeschr.IDBeschr, TResultIndex::kFremd,
                               static_cast<double>(subcontract) / 100.0);
    unit_prices.push_back(RoundedDivision(105 * (material + subcontract) + 100 * wage, 100));
    totals.push_back(RoundedDivision(milli_qty * unit_prices.back(), 1000));
    bid_total += totals.back();
  }
  boq::TValueConverterSettings settings;
  settings.currency_rounding = data::TRoundingType::rtCommercial;
  const boq::TAvaUiValueConverter converter(boq::TCurrencyList(), settings);
  const TItemCalculation rounding(converter, 2);
  calculation.UpdateCalculatedPrices(list, rounding);
  double sum = 0.0;
  for (int i = 0; i < list.Count(); ++i) {
    const boq::TLvPos& item = list[i];
    EXPECT_EQ(std::llround(item.LvBeschr.AngebotsEP.Betrag * 100), unit_prices[i]) << i + 1;
    EXPECT_EQ(std::llround(item.LvBgBeschr.AngebotsGP.Betrag * 100), totals[i]) << i + 1;
    sum += item.LvBgBeschr.AngebotsGP.Betrag;
  }
  EXPECT_EQ(std::llround(rounding.RoundAmount(sum) * 100), bid_total);
}

}  // namespace
}  // namespace korvan::calc
