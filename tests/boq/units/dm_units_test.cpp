#include <gtest/gtest.h>

#include <map>
#include <random>

#include "boq/boq_tables.h"
#include "boq/units/dm_einheit.h"
#include "boq/units/dm_waehrung.h"
#include "data/tables/data_tables.h"
#include "data/tables/std_tb_test_support.h"
#include "data/undo/undo_redo.h"
#include "data/undo/undo_table_restorer.h"

namespace korvan::data::testing {
namespace {

class DataModuleTest : public TableTest {};

// The tables the journal writes back through: the framework's and the units'.
TTableRegistry UnitTables() {
  TTableRegistry registry;
  RegisterDataTables(registry);
  boq::RegisterBoqTables(registry);
  return registry;
}

TStringList Euro() {
  return {"32766", "Europa", "Euro", "EUR", "1", "2", "J", "J", "2", "32766"};
}

TEST_F(DataModuleTest, CurrencyAndUnitRowsAreCheckedAndWrittenThroughTheTable) {
  boq::TdmWaehrung module(*db_);
  ASSERT_TRUE(module.Loaded()) << module.CData1.LastError();
  ASSERT_EQ(module.CData1.ListOperation(0, loAddRecord), TListOpResult::Done);
  ASSERT_EQ(module.CData1.Screen2Data(1, Euro()), TScreen2DataResult::Stored) << module.LastError();
  boq::TdmWaehrung reread(*db_);
  ASSERT_TRUE(reread.Loaded());
  ASSERT_EQ(reread.CData1.GetRmax(), 1);
  EXPECT_EQ(reread.CData1.Data2Screen(1), Euro());

  TStringList changed = Euro();
  changed[4] = "eins";  // does not fit: refused, nothing changes
  EXPECT_EQ(reread.CData1.Screen2Data(1, changed), TScreen2DataResult::Refused);
  EXPECT_NE(reread.LastError().find("Faktor"), std::string::npos) << reread.LastError();
  EXPECT_EQ(reread.CData1.Data2Screen(1), Euro());
  changed[4] = "1,95583";
  ASSERT_EQ(reread.CData1.Screen2Data(1, changed), TScreen2DataResult::Stored);
  EXPECT_EQ(reread.CData1.Data2Screen(1), changed);
  ASSERT_TRUE(reread.Table().GetKey(KeyNumber(32766), '1'));
  EXPECT_DOUBLE_EQ(reread.Table().Rec().Faktor, 1.95583);
  ASSERT_EQ(reread.CData1.ListOperation(1, loDeleteRecord), TListOpResult::Done);
  EXPECT_FALSE(reread.Table().ExistsRec(KeyNumber(32766), '1'));

  boq::TdmEinheit units(*db_);
  ASSERT_TRUE(units.Loaded());
  const TStringList meter = {"49", "1", "10", "Meter", "m", "1", "3", "1", "", ""};
  for (int row = 1; row <= 2; ++row) {
    ASSERT_EQ(units.CData1.ListOperation(0, loAddRecord), TListOpResult::Done);
  }
  ASSERT_EQ(units.CData1.Screen2Data(1, meter), TScreen2DataResult::Stored) << units.LastError();
  EXPECT_EQ(units.CData1.Data2Screen(1), meter);
  EXPECT_EQ(units.CData1.Screen2Data(2, meter), TScreen2DataResult::Refused);  // the same key
  EXPECT_NE(units.LastError().find("gibt es schon"), std::string::npos);
  EXPECT_EQ(units.CheckValue(5, "C"), "eines der Zeichen 1 2 3 A B");
  EXPECT_EQ(units.CheckValue(4, "Meterx"), "");
  EXPECT_NE(units.CheckValue(4, "Meterxx"), "");
}

// The rows of the currency list come from the table, so a row taken back or made again
// needs only a reload of the list.
class ReloadRows : public TCDataRowRestorer {
 public:
  int MoveRow(int32_t, int32_t, int32_t, std::string&) override { return kUndoOk; }
  int RemoveRow(int32_t, const std::string&, int32_t, std::string&) override { return kUndoOk; }
  int RestoreRow(int32_t, const std::string&, int32_t, std::string&) override { return kUndoOk; }
};

using Model = std::map<int32_t, TStringList>;
using Records = std::map<std::string, std::vector<uint8_t>>;

class DataModuleUndoTest : public TableTest {
 protected:
  void SetUp() override {
    TableTest::SetUp();
    module_ = std::make_unique<boq::TdmWaehrung>(*db_);
    restorer_ =
        std::make_unique<TTableRecordRestorer>(std::vector<TStdDb*>{db_.get()}, UnitTables());
    journal_.SetRecordRestorer(restorer_.get());
    journal_.SetRowRestorer(&rows_);
    module_->CData1.SetUndoJournal(&actions_);
    ASSERT_TRUE(module_->Loaded());
  }
  void TearDown() override {
    module_.reset();
    TableTest::TearDown();
  }
  Model Shown() {  // by currency id
    Model shown;
    for (int z = 1; z <= module_->CData1.GetRmax(); ++z) {
      const TStringList values = module_->CData1.Data2Screen(z);
      shown[std::stoi(values.at(0))] = values;
    }
    return shown;
  }
  // The stored records without what every write stamps anew (slot length, time).
  Records Stored() {
    std::vector<std::vector<uint8_t>> records;
    EXPECT_EQ(module_->Table().GetBatch("", '1', records), 0);
    Records result;
    for (std::vector<uint8_t>& record : records) {
      record.resize(static_cast<size_t>(module_->Table().RecordLength(record)));
      std::fill_n(record.begin(), 4, 0);
      std::fill_n(record.begin() + offsetof(storage::TDbRecordHeader, LastModified), 8, 0);
      std::string key;
      module_->Table().GetKeyString(record, '1', key);
      result[key] = record;
    }
    return result;
  }
  static TStringList RandomCurrency(std::mt19937& random, int32_t id) {
    const std::string n = std::to_string(random() % 1000);
    return {std::to_string(id),
            "Land " + n,
            "Währung " + n,
            "X" + n.substr(0, 3),
            std::to_string(random() % 5000) + "," + std::to_string(random() % 100),
            std::to_string(random() % 4),
            random() % 2 ? "J" : "N",
            random() % 2 ? "J" : "N",
            std::to_string(random() % 4),
            std::to_string(random() % 400)};
  }

  korvan::testing::TempDir journal_dir_;
  TUndoRedo journal_{journal_dir_.path().string()};
  ScopedTableChangeObserver observing_{&journal_};
  TCDataUndoJournal actions_{journal_};
  ReloadRows rows_;
  std::unique_ptr<TTableRecordRestorer> restorer_;
  std::unique_ptr<boq::TdmWaehrung> module_;
};

// Random edits, inserts and deletes through the currency list, with undo and redo in
// between: after every step the list equals a model, and undoing everything gives back
// the records the table started with.
TEST_F(DataModuleUndoTest, RandomStepsAgainstAModel) {
  std::mt19937 random(4711);
  Model model;
  journal_.Lock();
  for (int32_t id = 1; id <= 4; ++id) {
    ASSERT_EQ(module_->CData1.ListOperation(0, loAddRecord), TListOpResult::Done);
    model[id] = RandomCurrency(random, id);
    ASSERT_EQ(module_->CData1.Screen2Data(module_->CData1.GetRmax(), model[id]),
              TScreen2DataResult::Stored)
        << module_->LastError();
  }
  journal_.UnLock();
  for (auto& [id, values] : model) values = Shown().at(id);  // in the list's own notation
  const Records start = Stored();
  std::vector<Model> undo_models;
  std::vector<Model> redo_models;
  int32_t next_id = 10;

  for (int step = 0; step < 60; ++step) {
    const size_t steps_before = journal_.UndoCaptions().size();
    const Model before = model;
    const int choice = static_cast<int>(random() % 10);
    const int rows = module_->CData1.GetRmax();
    bool user_step = true;
    if (choice < 3 && !(choice < 2 ? undo_models : redo_models).empty()) {
      const bool back = choice < 2;
      const TUndoOutcome outcome = back ? journal_.PopUndo() : journal_.PopRedo();
      ASSERT_TRUE(outcome.ok()) << outcome.error;
      user_step = false;
      (back ? redo_models : undo_models).push_back(model);
      model = (back ? undo_models : redo_models).back();
      (back ? undo_models : redo_models).pop_back();
    } else if (choice < 5 || rows == 0) {
      ASSERT_EQ(module_->CData1.ListOperation(0, loAddRecord), TListOpResult::Done);
      const int32_t id = next_id++;
      const int z = module_->CData1.GetRmax();
      ASSERT_EQ(module_->CData1.Screen2Data(z, RandomCurrency(random, id)),
                TScreen2DataResult::Stored)
          << module_->LastError();
      model[id] = module_->CData1.Data2Screen(z);
    } else if (choice < 8) {
      const int z = 1 + static_cast<int>(random() % static_cast<unsigned>(rows));
      const int32_t id = std::stoi(module_->CData1.Data2Screen(z)[0]);
      TStringList values = RandomCurrency(random, id);
      if (random() % 4 == 0) values[4] = "kein Faktor";  // refused, nothing changes
      const TScreen2DataResult result = module_->CData1.Screen2Data(z, values);
      if (values[4] == "kein Faktor") {
        ASSERT_EQ(result, TScreen2DataResult::Refused);
      } else {
        ASSERT_EQ(result, TScreen2DataResult::Stored) << module_->LastError();
        model[id] = module_->CData1.Data2Screen(z);
      }
    } else {
      const int z = 1 + static_cast<int>(random() % static_cast<unsigned>(rows));
      const int32_t id = std::stoi(module_->CData1.Data2Screen(z)[0]);
      ASSERT_EQ(module_->CData1.ListOperation(z, loDeleteRecord), TListOpResult::Done);
      model.erase(id);
    }
    if (user_step && journal_.UndoCaptions().size() > steps_before) {
      ASSERT_EQ(journal_.UndoCaptions().size(), steps_before + 1) << "step " << step;
      undo_models.push_back(before);
      redo_models.clear();
    }
    ASSERT_EQ(module_->CData1.ListOperation(0, loReload), TListOpResult::Done);
    ASSERT_EQ(Shown(), model) << "step " << step;
  }

  for (; !undo_models.empty(); undo_models.pop_back()) ASSERT_TRUE(journal_.PopUndo().ok());
  EXPECT_EQ(Stored(), start);
  EXPECT_TRUE(StorageProblems().empty());
}

}  // namespace
}  // namespace korvan::data::testing
