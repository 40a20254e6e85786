#include <gtest/gtest.h>

#include <memory>

#include "boq/lv/lv_table_types.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "exchange/gaeb/tb_gaeb.h"
#include "testing/temp_dir.h"

namespace korvan::exchange {
namespace {

class GaebTable : public ::testing::Test {
 protected:
  void SetUp() override {
    db_ = std::make_unique<data::TStdDb>("DB_Lv", dir_.path().string() + "/", boq::kLvDbType, 70);
    db_->SetModifiedById("ALICE");
    ASSERT_EQ(db_->DbCreate(), 0);
  }
  void TearDown() override {
    db_.reset();
    data::TStdDbDatas::Instance().ReleaseEmpty();
  }

  korvan::testing::TempDir dir_;
  std::unique_ptr<data::TStdDb> db_;
};

TEST_F(GaebTable, KeepsOneHeaderRecordPerLv) {
  TTbGaeb table(*db_);
  EXPECT_EQ(+table.Rec().Header.RecLen, 944);
  EXPECT_EQ(table.Rec().Header.RecTyp, kGaebTableType);
  for (const int32_t lv : {7, 3}) {
    table.InitRecord();
    table.Rec().IdLv = lv;
    table.Rec().VERGAN.Set("V-" + std::to_string(lv));
    table.Rec().BidCommPerm = 1;
    ASSERT_EQ(table.UpDateRec(), 0);
  }
  ASSERT_TRUE(table.FindLv(7));
  EXPECT_EQ(table.Rec().VERGAN.Get(), "V-7");
  ASSERT_TRUE(table.FindLv(3));
  EXPECT_EQ(table.Rec().VERGAN.Get(), "V-3");
  EXPECT_FALSE(table.FindLv(5));
}

}  // namespace
}  // namespace korvan::exchange
