// The GAEB header record of an LV goes with its LV: the exchange library registers its
// step in the LV's delete cascade.
#include <gtest/gtest.h>

#include <memory>

#include "boq/boq_tables.h"
#include "boq/lv/lv_delete_cascade.h"
#include "boq/lv/lv_table_types.h"
#include "boq/lv/project_lvs.h"
#include "data/tables/data_tables.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "exchange/exchange_tables.h"
#include "exchange/gaeb/tb_gaeb.h"
#include "testing/temp_dir.h"

namespace korvan::exchange {
namespace {

class GaebHeaderCascade : public ::testing::Test {
 protected:
  void SetUp() override {
    data::TTableRegistry registry;
    data::RegisterDataTables(registry);
    boq::RegisterBoqTables(registry);
    RegisterExchangeTables(registry);
    db_ = std::make_unique<data::TStdDb>("DB_Lv", dir_.path().string() + "/", boq::kLvDbType, 70);
    db_->SetModifiedById("ALICE");
    ASSERT_EQ(db_->DbCreate(), 0);
  }
  void TearDown() override {
    db_.reset();
    data::TStdDbDatas::Instance().ReleaseEmpty();
  }

  int32_t LvWithHeader(const std::string& name) {
    const int32_t lv = boq::CreateLv(*db_, {name, "11.PPP"});
    TTbGaeb headers(*db_);
    headers.InitRecord();
    headers.Rec().IdLv = lv;
    headers.Rec().VERGAN.Set("V-" + name);
    EXPECT_EQ(headers.UpDateRec(), 0);
    return lv;
  }

  korvan::testing::TempDir dir_;
  std::unique_ptr<data::TStdDb> db_;
};

TEST_F(GaebHeaderCascade, DeletingAnLvDeletesItsHeaderAndNoOther) {
  const int32_t gone = LvWithHeader("Rohbau");
  const int32_t kept = LvWithHeader("Ausbau");
  boq::DeleteLv(*db_, gone);
  TTbGaeb headers(*db_);
  EXPECT_FALSE(headers.FindLv(gone));
  ASSERT_TRUE(headers.FindLv(kept));
  EXPECT_EQ(headers.Rec().VERGAN.Get(), "V-Ausbau");
  // An LV without header is deleted alike.
  const int32_t plain = boq::CreateLv(*db_, {"Dach", "PPPP"});
  EXPECT_NO_THROW(boq::DeleteLv(*db_, plain));
}

TEST_F(GaebHeaderCascade, AFailingStepKeepsTheLv) {
  const int32_t lv = LvWithHeader("Rohbau");
  constexpr int kRefused = 4299;
  boq::TLvDeleteCascades::Instance().Register("Prüfschritt",
                                              [](data::TStdDb&, int32_t) { return kRefused; });
  EXPECT_THROW(boq::DeleteLv(*db_, lv), boq::EStoredLvError);
  boq::TLvDeleteCascades::Instance().Register("Prüfschritt",
                                              [](data::TStdDb&, int32_t) { return 0; });
  EXPECT_TRUE(boq::FindLvNamed(*db_, "Rohbau").has_value());
  boq::DeleteLv(*db_, lv);
  EXPECT_FALSE(boq::FindLvNamed(*db_, "Rohbau").has_value());
}

}  // namespace
}  // namespace korvan::exchange
