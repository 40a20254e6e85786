// `korvan currency convert`, and `korvan undo` of records in a project's databases.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "app/program/program_tables.h"
#include "boq/text/long_text_store.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "data/tables/table_change_journal.h"
#include "data/undo/undo_redo.h"
#include "data/undo/undo_table_restorer.h"
#include "testing/files.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

namespace fs = std::filesystem;
using testing::ExpectKorvan;
using testing::ProgramResult;

TEST(CurrencyCommand, RefusesWhatItDoesNotKnowThenConvertsAndAppendsToTheProtocol) {
  testing::TempDir dir;
  const fs::path base = testing::MakeInstallation(dir, "demo");
  for (const auto& [args, exit_code, named] :
       std::vector<std::tuple<std::vector<std::string>, int, std::string>>{
           {{"XYZ"}, 1, "Währung \"XYZ\" steht nicht in der Währungstabelle (bekannt: "},
           {{"--von", "ABC", "EUR"}, 1, "\"ABC\""},
           {{"--project", "Fehlt", "EUR"}, 1, "PROJEKTE/Fehlt/ gibt es nicht"},
           {{"--project", "a/b", "EUR"}, 2, ""}}) {
    std::vector<std::string> call = {"currency", "convert", "-d", base.string()};
    call.insert(call.end(), args.begin(), args.end());
    ExpectKorvan(call, exit_code, {named});
  }
  EXPECT_FALSE(fs::exists(base / "PROJEKTE/Beispiel/WaeKonv.LOG"));
  const ProgramResult run = ExpectKorvan(
      {"currency", "convert", "-d", base.string(), "--von", "CHF", "EUR"}, 0,
      {"Währungskonvertierung CHF nach EUR: 0 Datensätze, 0 Beträge in ", "Protokoll: "});
  ExpectKorvan({"currency", "convert", "-d", base.string(), "--project", "Beispiel", "USD"}, 0);
  // The master database is opened once although it is both the currency source and converted.
  ExpectKorvan({"currency", "convert", "-d", base.string(), "--with-master-data", "EUR"}, 0,
               {" und den gemeinsamen Stammdaten, Katalogen und Ablagen umgerechnet"});
  const std::string log = testing::ReadFile(base / "PROJEKTE/Beispiel/WaeKonv.LOG");
  EXPECT_EQ(log.front(), '[');
  EXPECT_TRUE(testing::Contains(log, " - CHF - EUR\r\n0 Datensätze, 0 Beträge umgerechnet\r\n"))
      << log;
  EXPECT_FALSE(testing::Contains(log, "kein passendes Feldverzeichnis")) << log;
  EXPECT_TRUE(testing::Contains(log, " - EUR - USD\r\n")) << log;
}

TEST(CurrencyCommand, ConvertsTheProjectsLvsAndTheProjectTemplateAsOneUndoStep) {
  testing::TempDir dir;
  const fs::path base = testing::MakeInstallation(dir, "demo");
  ExpectKorvan({"lv", "new", "Rohbau", "-d", base.string()}, 0);
  const fs::path project = base / "PROJEKTE/Beispiel";
  const fs::path project_template = base / "PROJEKTE/STAMMPROJEKT";
  fs::create_directories(project_template);
  for (const char* file : {"DB_Lv.QA0", "DB_Lv.QA1"}) {
    fs::copy_file(project / file, project_template / file);
  }
  const std::string lv_db = (project / "DB_Lv.QA").string();
  const std::string template_db = (project_template / "DB_Lv.QA").string();
  ExpectKorvan({"db", "dump", lv_db, "--table", "K"}, 0, {"Summe: 0 [-1]\n"});
  ExpectKorvan({"lv", "list", "-d", base.string()}, 0, {"Projekt \"Beispiel\": 1 LV, Währung EUR"});
  ExpectKorvan({"currency", "convert", "-d", base.string(), "CHF"}, 0,
               {"Währungskonvertierung EUR nach CHF: 2 Datensätze, ", " und der Projektvorlage",
                "Rückgängig: korvan undo"});
  // The LVs record their currency: it is the project's from now on.
  for (const std::string& db : {lv_db, template_db}) {
    ExpectKorvan({"db", "dump", db, "--table", "K"}, 0,
                 {"IdWae: 41\n", "Summe: 0 [41]\n", "Budget: 0 [41]\n"});
  }
  ExpectKorvan({"lv", "new", "Zweites", "-d", base.string()}, 0);
  ExpectKorvan({"lv", "show", "Zweites", "-d", base.string()}, 0, {", Währung CHF, "});
  ExpectKorvan({"lv", "list", "-d", base.string()}, 0, {"2 LVs, Währung CHF"});
  ExpectKorvan({"currency", "convert", "-d", base.string(), "EUR"}, 0,
               {"Währungskonvertierung CHF nach EUR: 3 Datensätze, "});
  for (const char* step : {"Währungskonvertierung CHF nach EUR", "LV \"Zweites\" anlegen",
                           "Währungskonvertierung EUR nach CHF"}) {
    ExpectKorvan({"undo", "-d", base.string()}, 0, {std::string("Rückgängig gemacht: ") + step});
  }
  for (const std::string& db : {lv_db, template_db}) {
    ExpectKorvan({"db", "dump", db, "--table", "K"}, 0, {"Summe: 0 [-1]\n"});
  }
}

TEST(CurrencyCommand, ConvertsTheAmountsOfTheCalculation) {
  testing::TempDir dir;
  const fs::path base = testing::MakeInstallation(dir, "demo");
  ExpectKorvan({"lv", "new", "Rohbau", "-d", base.string()}, 0);
  ExpectKorvan({"lv", "add", "Rohbau", "P", "-d", base.string()}, 0);
  ExpectKorvan({"calc", "set", "Rohbau", "1", "M=100", "-d", base.string()}, 0);
  ExpectKorvan({"currency", "convert", "-d", base.string(), "CHF"}, 0);
  // A franc is 0,94 of a euro.
  ExpectKorvan({"calc", "item", "Rohbau", "1", "-d", base.string(), "--json"}, 0,
               {"\"direct\": 94,"});
}

// A conversion that fails half-way leaves data and journal as they were: no amount
// converted, no step to undo, and the step the user had undone can still be made again.
TEST(CurrencyCommand, AConversionFailingHalfWayLeavesDataAndJournalAsTheyWere) {
  testing::TempDir dir;
  const fs::path base = testing::MakeInstallation(dir, "demo");
  for (const char* lv : {"Rohbau", "Zweites", "Drittes"}) {
    ExpectKorvan({"lv", "new", lv, "-d", base.string()}, 0);
  }
  ExpectKorvan({"undo", "-d", base.string()}, 0);
  const std::string journal = ExpectKorvan({"undo", "--list", "-d", base.string()}, 0).out;
  // The second LV's header becomes unreadable: its length field says 12 bytes.
  const fs::path data_file = base / "PROJEKTE/Beispiel/DB_Lv.QA0";
  std::string bytes = testing::ReadFile(data_file);
  const size_t name = bytes.find(std::string("\x07") + "Zweites");
  ASSERT_NE(name, std::string::npos);
  const size_t record = name - 806;  // the name's place in the LV header
  const std::string length = bytes.substr(record, 4);
  bytes.replace(record, 4, std::string("\x0c\0\0\0", 4));
  testing::WriteFile(data_file, bytes);

  ExpectKorvan({"currency", "convert", "-d", base.string(), "--von", "EUR", "CHF"}, 1,
               {"Währungskonvertierung abgebrochen, nichts geändert: "});
  EXPECT_EQ(ExpectKorvan({"undo", "--list", "-d", base.string()}, 0).out, journal);
  EXPECT_FALSE(fs::exists(base / "PROJEKTE/Beispiel/WaeKonv.LOG"));
  bytes = testing::ReadFile(data_file);
  bytes.replace(record, 4, length);
  testing::WriteFile(data_file, bytes);
  const std::string headers =
      ExpectKorvan({"db", "dump", (base / "PROJEKTE/Beispiel/DB_Lv.QA").string(), "--table", "K"},
                   0, {"Summe: 0 [-1]\n"})
          .out;
  EXPECT_FALSE(testing::Contains(headers, "[41]")) << headers;
  ExpectKorvan({"redo", "-d", base.string()}, 0);
}

TEST(CurrencyCommand, AnEmptyCurrencyTableIsNamed) {
  testing::TempDir dir;
  const fs::path base = testing::MakeInstallation(dir, "init");
  // A master database made by hand has no currencies (a new installation has the
  // built-in list).
  const std::string stamm = (base / "STAMMDATEN/DB_Stamm.QE").string();
  fs::remove(stamm + "0");
  fs::remove(stamm + "1");
  ExpectKorvan({"db", "create", stamm, "--type", "E", "--keylen", "33"}, 0);
  ExpectKorvan({"currency", "convert", "-d", base.string(), "EUR"}, 1,
               {"die Währungstabelle in ", "DB_Stamm.QE0 ist leer"});
}

// A step that changed a project's database is taken back and made again by the commands,
// which open that database when the journal needs it.
TEST(UndoOfProjectRecords, TakesBackAndRedoesALongTextOfTheProject) {
  testing::TempDir dir;
  const fs::path base = testing::MakeInstallation(dir, "init");
  const std::string project = (base / "PROJEKTE/Beispiel/").string();
  {
    std::unique_ptr<data::TUndoRedo> journal = data::TUndoRedo::OpenPersistent(base.string());
    data::TCollectedMessages messages;
    data::TStdDb db("DB_Texte", project, 'C', 45);
    db.SetMessages(&messages);
    ASSERT_EQ(db.DbOpen(true), 0);
    data::TTableRecordRestorer restorer(std::vector<data::TStdDb*>{&db}, app::ProgramTables(),
                                        base.string());
    journal->SetRecordRestorer(&restorer);
    data::ScopedTableChangeObserver observing(journal.get());
    boq::TLongTextStore store(db);
    journal->StartTransaction(data::TStartItem(1, data::TOperationKind::okEdit, "Langtext"));
    ASSERT_EQ(store.Store(12, 'L', 49, "{\\rtf1 Gr\\'f6\\'dfe}", {}), 0);
    journal->EndTransaction();
    ASSERT_EQ(db.DbClose(), 0);
  }
  data::TStdDbDatas::Instance().ReleaseEmpty();

  ExpectKorvan({"undo", "-d", base.string()}, 0, {"Rückgängig gemacht: Langtext"});
  const auto stored_text = [&] {
    data::TCollectedMessages messages;
    data::TStdDb db("DB_Texte", project, 'C', 45);
    db.SetMessages(&messages);
    EXPECT_EQ(db.DbOpen(false), 0);
    boq::TLongTextStore store(db);
    const std::string text = store.Read(12, 'L', 49).rich_text;
    db.DbClose();
    data::TStdDbDatas::Instance().ReleaseEmpty();
    return text;
  };
  EXPECT_EQ(stored_text(), "");
  ExpectKorvan({"redo", "-d", base.string()}, 0, {"Wiederhergestellt: Langtext"});
  EXPECT_EQ(stored_text(), "{\\rtf1 Gr\\'f6\\'dfe}");
}

}  // namespace
}  // namespace korvan
