#include <gtest/gtest.h>

#include <memory>

#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "formula/catalogue/builtin_reb_formeln.h"
#include "formula/catalogue/tb_reb_formel.h"
#include "formula/reb/reb_sheet.h"
#include "testing/temp_dir.h"

namespace korvan::formula {
namespace {

class RebCatalogueTest : public ::testing::Test {
 protected:
  void SetUp() override {
    stamm_ = std::make_unique<data::TStdDb>("DB_Stamm", dir_.path().string(), 'E', 33);
    stamm_->SetMessages(&messages_);
    ASSERT_EQ(stamm_->DbCreate(), 0);
  }
  void TearDown() override {
    stamm_.reset();
    data::TStdDbDatas::Instance().ReleaseEmpty();
  }

  korvan::testing::TempDir dir_;
  data::TCollectedMessages messages_;
  std::unique_ptr<data::TStdDb> stamm_;
};

TEST_F(RebCatalogueTest, ANewCatalogueHoldsTheBuiltInListFoundByAnyWritingOfTheNumber) {
  TTbRebFormel table(*stamm_);
  EXPECT_EQ(FillBuiltInRebFormeln(table), static_cast<int>(BuiltInRebFormeln().size()));
  EXPECT_EQ(FillBuiltInRebFormeln(table), 0);
  ASSERT_TRUE(table.FindNr("004"));
  EXPECT_EQ(table.Rec().Bezeichnung.Get(), "Rechteck/Quader");
  EXPECT_FALSE(table.FindNr("4a"));
  EXPECT_EQ(table.All().size(), BuiltInRebFormeln().size());

  // The interpreter reads the stored formula.
  TRebFormelTableSource source(table);
  auto interpreter = CoREB003FormelInterpreter::Create(source);
  TRebLine line;
  line.FormelNr = "4";
  line.Formel = "2|3|4";
  std::vector<TRebLine> lines = {line};
  EXPECT_DOUBLE_EQ(EvaluateRebLines(*interpreter, lines).sum, 24);
}

}  // namespace
}  // namespace korvan::formula
