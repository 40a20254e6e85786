// Storing an edited row of a master-data list when another user changed the same record
// after the row was read: refused without --force, stored with it.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "app/commands/lists/data_module_registry.h"
#include "app/commands/lists/master_data_session.h"
#include "app/program/installation.h"
#include "app/program/program_tables.h"
#include "boq/units/tb_waehrung.h"
#include "data/component/list_operation.h"
#include "data/db/db_groups.h"
#include "data/tables/std_db.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan::app {
namespace {

namespace fs = std::filesystem;

constexpr int kBez = 2;     // column "Währung"
constexpr int kFaktor = 4;  // column "Faktor"

// The master data opened as another user ("BOB") would: a database object of its own on
// the same files.
struct OtherUser {
  explicit OtherUser(const fs::path& base)
      : db(*data::DatabaseFiles(LoadInstallation(base).machine.ToDatabaseDirectories())
                .Find("DB_Stamm", data::kPathStammdaten)) {
    db.SetModifiedById("BOB");
  }
  // The name of the currency with unique key `key`, renamed first when `new_name` is given.
  std::string Name(const std::string& key, const std::string& new_name = "") {
    boq::TTbWaehrung table(db);
    if (!table.GetKey(key, '1')) return "<fehlt>";
    if (new_name.empty()) return table.Rec().Bez.Get();
    table.Rec().Bez.Set(new_name);
    return table.UpDateRec() == 0 ? new_name : "<nicht geschrieben>";
  }
  data::TStdDb db;
};

// Conflicts are only detected while the kernel's detection is on, as a shared
// installation configures it.
class DetectionOn {
 public:
  DetectionOn() : previous_(data::TStdDb::DisableConcurrencyDetection()) {
    data::TStdDb::RestoreConcurrencyDetection(true);
  }
  ~DetectionOn() { data::TStdDb::RestoreConcurrencyDetection(previous_); }

 private:
  bool previous_;
};

// The row of the list that shows `name` in column "Währung"; 0 if none.
int RowNamed(data::TCData& cdata, const std::string& name) {
  for (int row = 1; row <= cdata.GetRmax(); ++row) {
    if (cdata.Data2Screen(row)[kBez] == name) return row;
  }
  return 0;
}

TEST(EditConflict, ARecordChangedByAnotherUserIsRefusedUnlessOverwriteIsAnswered) {
  korvan::testing::TempDir dir;
  const fs::path base = korvan::testing::MakeInstallation(dir);
  const DetectionOn detection;

  for (const bool overwrite : {false, true}) {
    SCOPED_TRACE(overwrite ? "overwrite" : "refuse");
    MasterDataSession session(ProgramTables(), base.string(), overwrite);
    const std::unique_ptr<data::TTableListModule> module =
        MakeDataModule(ProgramTables(), "waehrung", session.Db());
    ASSERT_NE(module, nullptr);
    data::TCData& cdata = module->CData1;
    const std::string shown_name = overwrite ? "Franken (Bob)" : "Schweizer Franken";
    const int row = RowNamed(cdata, shown_name);
    ASSERT_GT(row, 0);
    const std::string key = cdata.GetKey(row);
    // This user opens the row for editing, as the mask does.
    ASSERT_EQ(cdata.ListOperation(row, data::loChangeRecordIndex), data::TListOpResult::Done);
    data::TStringList values = cdata.CurrentRecord();
    values[kFaktor] = overwrite ? "0,99" : "0,97";

    OtherUser bob(base);
    ASSERT_EQ(bob.db.DbOpen(true), 0);
    const std::string bobs_name = overwrite ? "Franken (neu)" : "Franken (Bob)";
    ASSERT_EQ(bob.Name(key, bobs_name), bobs_name);

    cdata.SetUndoJournal(&session.Actions());
    const data::TScreen2DataResult result = cdata.Screen2Data(row, values);
    cdata.SetUndoJournal(nullptr);
    if (!overwrite) {
      EXPECT_EQ(result, data::TScreen2DataResult::Refused);
      const std::string& why = module->LastError();
      EXPECT_NE(why.find("BOB"), std::string::npos) << why;
      EXPECT_NE(why.find("geändert"), std::string::npos) << why;
      EXPECT_EQ(bob.Name(key), "Franken (Bob)");  // the other user's change stays
      EXPECT_TRUE(session.Journal().Empty());     // nothing stored, nothing to undo
    } else {
      EXPECT_EQ(result, data::TScreen2DataResult::Stored) << module->LastError();
      EXPECT_EQ(bob.Name(key), "Franken (Bob)");  // this user's row overwrote it
      EXPECT_EQ(session.Journal().UndoCaptions().size(), 1u);
    }
  }
}

}  // namespace
}  // namespace korvan::app
