#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "data/data_check.h"
#include "data/data_integrity.h"
#include "data/tb_waehrung.h"
#include "std_tb_test_support.h"

namespace korvan::data::testing {
namespace {

#pragma pack(push, 1)
struct t_TestRef {
  storage::TDbRecordHeader Header;
  int32_t Id;
  int32_t IdWaehrung;  // a currency of the same database, or the null id
  char Kz;             // "A" or "B"
};
#pragma pack(pop)

class TTbTestRef : public TTypedTB<t_TestRef> {
 public:
  explicit TTbTestRef(TStdDb& db) : TTypedTB(db, 'R', 1, "TTbTestRef") { InitRecord(); }
  void InitRecord() override {
    TStdTB::InitRecord();
    Rec().Id = kNullId;
    Rec().IdWaehrung = kNullId;
    Rec().Kz = 'A';
  }
  char GetMaxIndex() const override { return '1'; }
  int GetKeyString(RecordView record, char, std::string& key) const override {
    key = KeyNumber(Of(record).Id);
    return static_cast<int>(key.size());
  }
  using TStdTB::DoValidateRecord;
  void DoValidateRecord(TDataCheck& check) override {
    check.SetAvaRecordID(Rec().Id);
    check.CheckItemForElementAsPrimaryKeyInTable("IdWaehrung", Rec().IdWaehrung, kNullId, 'E',
                                                 kWaehrungTableType);
    check.CheckItemForCharSelector("Kz", Rec().Kz, 'A', "AB", "Kennzeichen A oder B");
  }
};

std::string FileBytes(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

class IntegrityCheckTest : public TableTest {
 protected:
  void AddCurrency(int32_t id) {
    TTbWaehrung currencies(*db_);
    currencies.InitRecord();
    currencies.Rec().ID = id;
    ASSERT_EQ(currencies.UpDateRec(), 0);
  }
  void AddRef(int32_t id, int32_t currency, char kz) {
    TTbTestRef refs(*db_);
    refs.InitRecord();
    refs.Rec().Id = id;
    refs.Rec().IdWaehrung = currency;
    refs.Rec().Kz = kz;
    ASSERT_EQ(refs.UpDateRec(), 0);
  }
  int Run(bool only_test, std::string* log) {
    TDataIntegrity run;
    run.SetOnlyTest(only_test);
    std::vector<std::unique_ptr<TStdTB>> tables;
    tables.push_back(std::make_unique<TTbWaehrung>(*db_));
    tables.push_back(std::make_unique<TTbTestRef>(*db_));
    run.Add(*db_, std::move(tables));
    const int problems = run.Execute();
    std::ostringstream text;
    run.AddLogToStream(text);
    *log = text.str();
    return problems;
  }
};

TEST_F(IntegrityCheckTest, ForeignKeysAndCodeLettersDryRunThenRepair) {
  AddCurrency(42);
  AddRef(1, kNullId, 'A');  // the null reference passes
  AddRef(2, 42, 'B');
  AddRef(3, 99, 'A');  // no currency 99
  AddRef(4, 42, 'Q');  // letter not allowed
  ASSERT_EQ(db_->Flush(), 0);
  const std::string data_before = FileBytes(db_->BasePath() + "0");
  const std::string keys_before = FileBytes(db_->BasePath() + "1");

  std::string log;
  EXPECT_EQ(Run(true, &log), 2);
  EXPECT_NE(log.find("ForeignKey: IdWaehrung=99 nicht vorhanden in DB_Stamm - W"),
            std::string::npos)
      << log;
  EXPECT_NE(log.find("CharSelektor: Kz='Q'($51) not allowed"), std::string::npos) << log;
  EXPECT_NE(log.find("IdWaehrung -> set to default (2147483647) "), std::string::npos) << log;
  EXPECT_NE(log.find("Aktion: <Nur Trockenlauf - Datensatz nicht geschrieben>"), std::string::npos);
  EXPECT_EQ(log.find("ID=1>"), std::string::npos) << "a null reference is no finding";
  EXPECT_EQ(log.find("ID=2>"), std::string::npos);
  EXPECT_NE(log.find("    4 Record(s) untersucht\r\n"), std::string::npos) << log;
  EXPECT_EQ(FileBytes(db_->BasePath() + "0"), data_before);
  EXPECT_EQ(FileBytes(db_->BasePath() + "1"), keys_before);

  EXPECT_EQ(Run(false, &log), 2);
  EXPECT_NE(log.find("Aktion: <Datensatz neu geschrieben>"), std::string::npos) << log;
  EXPECT_EQ(Run(true, &log), 0) << log;
  TTbTestRef refs(*db_);
  ASSERT_TRUE(refs.GetKey(KeyNumber(3)));
  EXPECT_EQ(refs.Rec().IdWaehrung, kNullId);
  ASSERT_TRUE(refs.GetKey(KeyNumber(4)));
  EXPECT_EQ(refs.Rec().Kz, 'A');
  EXPECT_TRUE(StorageProblems().empty());
}

TEST_F(IntegrityCheckTest, RecordCountDifferenceAbortsTheTable) {
  AddRef(1, 7, 'Q');
  // A record of the table whose keys never made it into the key file.
  TTbTestRef refs(*db_);
  refs.InitRecord();
  refs.Rec().Id = 2;
  int32_t position = 0;
  ASSERT_EQ(
      storage::iDK_RecordInsert(db_->Handle(), refs.CurrentRecord().data(),
                                static_cast<int32_t>(refs.CurrentRecord().size()), true, &position),
      0);
  std::string log;
  EXPECT_EQ(Run(false, &log), 1);
  EXPECT_NE(log.find("    RecordCount: 2 - PrimaryKeysCount: 1\r\n"
                     "    Aktion: RecordCountDifferenz: Abbruch!\r\n"),
            std::string::npos)
      << log;
  EXPECT_EQ(log.find("CharSelektor"), std::string::npos) << "records are not checked further";
}

TEST(IntegrityLogTest, FormatAndFile) {
  TDiLogItem item;
  item.FDatabaseName = "DB_Stamm";
  item.FTableName = "TTbWaehrung";
  item.FRecordCountResult.push_back("    1 Record(s) untersucht");
  TDiSubLogItem finding;
  finding.FKind = TLogKind::lkError;
  finding.FData = "ID=5";
  finding.FProperties = {"EUR (5)", "MandatoryValue: ID is default: 5"};
  finding.FConclusion = "c";
  finding.FAction = "Fehler bei Datensatz-Update";
  item.FDISubItems.push_back(finding);
  TDiSubLogItem hint = finding;
  hint.FKind = TLogKind::lkHint;
  item.FDISubItems.push_back(hint);
  EXPECT_EQ(item.ProblemCount(), 1);
  std::ostringstream text;
  AddLogToStream({item}, text);
  const std::string expected_finding =
      "      Daten: <ID=5>\r\n"
      "            EUR (5)\r\n"
      "            MandatoryValue: ID is default: 5\r\n"
      "      Folgerung: <c>\r\n"
      "      Aktion: <Fehler bei Datensatz-Update>\r\n";
  EXPECT_EQ(text.str(),
            "  DB: DB_Stamm\r\n    TB: TTbWaehrung\r\n    1 Record(s) untersucht\r\n"
            "      [Fehler  ]\r\n" +
                expected_finding + "      [Hinweis ]\r\n" + expected_finding);
  korvan::testing::TempDir dir;
  const auto first = AddLogToFile({item}, dir.path() / "SYS");
  const auto second = AddLogToFile({item}, dir.path() / "SYS");
  EXPECT_NE(first, second);
  EXPECT_EQ(first.filename().string().rfind("Integrity_", 0), 0u);
  EXPECT_EQ(first.extension(), ".log");
  EXPECT_EQ(FileBytes(first), text.str());
}

}  // namespace
}  // namespace korvan::data::testing
