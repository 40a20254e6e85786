#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "boq/boq_tables.h"
#include "boq/lv/lv_codes.h"
#include "boq/lv/lv_table_types.h"
#include "boq/lv/tb_beschr.h"
#include "boq/lv/tb_lv_beschr.h"
#include "boq/lv/tb_lv_bg.h"
#include "boq/lv/tb_lv_hierarchie.h"
#include "boq/lv/tb_struktur.h"
#include "data/integrity/data_integrity.h"
#include "data/records/null_values.h"
#include "data/tables/data_tables.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "testing/temp_dir.h"

namespace korvan::boq::testing {

// The program's tables as far as an LV database needs them.
inline data::TTableRegistry LvTables() {
  data::TTableRegistry registry;
  data::RegisterDataTables(registry);
  RegisterBoqTables(registry);
  return registry;
}

// Every record of a database by table letter and unique key, without what each write
// stamps anew (the slot length and the time of the write).
using Records = std::map<std::string, std::vector<uint8_t>>;

// An LV database ("DB_Lv", type "A") in a fresh directory, created and open.
class LvDbTest : public ::testing::Test {
 protected:
  static constexpr int kKeyLength = 70;

  void SetUp() override {
    db_ =
        std::make_unique<data::TStdDb>("DB_Lv", dir_.path().string() + "/", kLvDbType, kKeyLength);
    db_->SetMessages(&messages_);
    db_->SetModifiedById("ALICE");
    ASSERT_EQ(db_->DbCreate(), 0);
  }
  void TearDown() override {
    texts_.reset();
    db_.reset();
    data::TStdDbDatas::Instance().ReleaseEmpty();
  }

  // The project's text database beside the LV database, created and open as `texts_`.
  void CreateTexts() {
    texts_ = std::make_unique<data::TStdDb>("DB_Texte", dir_.path().string() + "/", 'C', 45);
    texts_->SetMessages(&messages_);
    ASSERT_EQ(texts_->DbCreate(), 0);
  }

  // A structure row with its group (kind "B") or item record, and for items with
  // `described` a description; returns the entry's id.
  int32_t AddEntry(int32_t lv, char kind, int32_t parent, bool described = false) {
    const int32_t id = next_id_++;
    int32_t description = data::kNullId;
    if (described || kind == kKindGroup) {
      TTbBeschr descriptions(*db_);
      descriptions.InitRecord();
      descriptions.Rec().Id = description = next_id_++;
      EXPECT_EQ(descriptions.UpDateRec(), 0);
    }
    if (kind == kKindGroup) {
      TTbLvBg groups(*db_);
      groups.InitRecord();
      groups.Rec().LvBgBeschr1.ID = id;
      groups.Rec().LvBgBeschr1.IDBeschr = description;
      groups.Rec().LvBgBeschr1.OZ.Set(std::to_string(id));
      EXPECT_EQ(groups.UpDateRec(), 0);
    } else {
      TTbLvBeschr items(*db_);
      items.InitRecord();
      items.Rec().LvBgBeschr1.ID = id;
      items.Rec().LvBgBeschr1.IDBeschr = description;
      items.Rec().LvBeschr2.FMenge = id * 1.5;
      EXPECT_EQ(items.UpDateRec(), 0);
    }
    TTbStruktur rows(*db_);
    rows.InitRecord();
    rows.Rec().IdLv = lv;
    rows.Rec().SzLv = id;
    rows.Rec().ZuBg = parent;
    rows.Rec().SzBg = id;
    rows.Rec().IdBgBeschr = id;
    rows.Rec().KzBgBeschr = kind;
    EXPECT_EQ(rows.UpDateRec(), 0);
    return id;
  }

  void AddLevel(int32_t lv, int32_t level) {
    TTbLvHierarchie levels(*db_);
    levels.InitRecord();
    levels.Rec().IdLv = lv;
    levels.Rec().SzLv = level;
    levels.Rec().Laenge = 2;
    levels.Rec().Typ.Set(level == 6 ? "Position" : "LVStufe");
    EXPECT_EQ(levels.UpDateRec(), 0);
  }

  Records AllRecords() {
    Records result;
    for (const std::unique_ptr<data::TStdTB>& table : LvTables().CreateTables(*db_)) {
      std::vector<std::vector<uint8_t>> records;
      EXPECT_EQ(table->GetBatch("", table->UniqueIndex(), records), 0);
      for (std::vector<uint8_t>& record : records) {
        std::fill_n(record.begin(), 4, 0);
        std::fill_n(record.begin() + offsetof(storage::TDbRecordHeader, LastModified), 8, 0);
        std::string key;
        table->GetKeyString(record, table->UniqueIndex(), key);
        result[std::string(1, table->TableType()) + key] = record;
      }
    }
    return result;
  }

  // Runs the integrity check over the database; the number of problems, the log in `log`.
  int Check(bool only_test, std::string* log = nullptr) {
    data::TDataIntegrity run(LvTables());
    run.SetOnlyTest(only_test);
    run.Add(*db_);
    if (texts_) run.Add(*texts_);
    const int problems = run.Execute();
    if (log != nullptr) {
      std::ostringstream text;
      run.AddLogToStream(text);
      *log = text.str();
    }
    return problems;
  }

  korvan::testing::TempDir dir_;
  data::TCollectedMessages messages_;
  std::unique_ptr<data::TStdDb> db_;
  std::unique_ptr<data::TStdDb> texts_;
  int32_t next_id_ = 1000;
};

}  // namespace korvan::boq::testing
