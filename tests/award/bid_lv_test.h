// The ground the bid, comparison and award tests stand on: an LV database in a temporary
// folder and an LV in memory whose groups and items the tests add line by line.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>

#include "award/award_tables.h"
#include "boq/boq_tables.h"
#include "boq/lv/lv_table_types.h"
#include "boq/model/lv_pos.h"
#include "boq/model/lv_pos_list.h"
#include "boq/units/value_converter.h"
#include "data/records/null_values.h"
#include "data/tables/data_tables.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "testing/temp_dir.h"

namespace korvan::award {

class BidLvTest : public ::testing::Test {
 protected:
  // LV 7, unit prices to the cent, bid quantities taken from the LV.
  void SetUp() override {
    data::TTableRegistry registry;
    data::RegisterDataTables(registry);
    boq::RegisterBoqTables(registry);
    RegisterAwardTables(registry);
    db_ = std::make_unique<data::TStdDb>("DB_Lv", dir_.path().string() + "/", boq::kLvDbType, 70);
    db_->SetModifiedById("ALICE");
    ASSERT_EQ(db_->DbCreate(), 0);
    boq::t_Lv_DB_VERSION_3100 header{};
    header.FId = 7;
    header.EPGenauigkeit = 2;
    header.AngebotsmengenGleichLvMengen = 1;
    lv_.RefreshLvProperties(header);
  }
  void TearDown() override {
    db_.reset();
    data::TStdDbDatas::Instance().ReleaseEmpty();
  }

  // A group under `parent` (none: the root).
  int Group(int32_t parent = data::kRootParentId) {
    boq::TLvPos group = boq::NewLvPos('B');
    group.Struktur.IdBgBeschr = ++next_id_;
    group.Struktur.ZuBg = parent;
    lv_.Add(group);
    return lv_.Count() - 1;
  }
  int Item(int group, double quantity, char kind = 'P') {
    boq::TLvPos item = boq::NewLvPos(kind);
    item.Struktur.IdBgBeschr = ++next_id_;
    item.Struktur.ZuBg = lv_[group].Struktur.IdBgBeschr;
    item.LvBeschr.FMenge = quantity;
    lv_.Add(item);
    return lv_.Count() - 1;
  }

  korvan::testing::TempDir dir_;
  std::unique_ptr<data::TStdDb> db_;
  boq::TLVPosList lv_;
  boq::TAvaUiValueConverter converter_{boq::TCurrencyList(), boq::TValueConverterSettings()};
  int32_t next_id_ = 100;
};

}  // namespace korvan::award
